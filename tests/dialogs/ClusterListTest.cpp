#include "ClusterList.h"
#include "QtPrinters.h"
#include "SiteDefaults.h"

#include <QFile>

#include <gtest/gtest.h>

#include <vector>

namespace zkr {

// Found by GoogleTest next to the row's own namespace.
void PrintTo(const ClusterList::Row &row, std::ostream *out) {
    *out << row.line << " [" << row.name.toStdString() << "|" << row.host.toStdString() << "|"
         << row.port.toStdString() << "]";
}

namespace {

using Row = ClusterList::Row;

TEST(ClusterList, HeaderAndTextAfterTheLastLineEndAreNoClusters) {
    struct Case {
        const char *name;
        QByteArray bytes;
        std::vector<Row> rows;
    };
    const Row a{1, "GB7AAA", "a.example", "7300"};
    const Row b{2, "DB0BBB", "b.example", "8000"};
    const Row v{3, "VE7CCC", "c.example", "23"};
    const QByteArray three = "DX-Cluster|Host|Port\r\nGB7AAA|a.example|7300\r\n"
                             "DB0BBB|b.example|8000\r\nVE7CCC|c.example|23";
    const Case cases[] = {
        {"three with the final CR LF", three + "\r\n", {a, b, v}},
        {"three without it: the last is lost", three, {a, b}},
        {"header only", "DX-Cluster|Host|Port\r\n", {}},
        {"empty file", "", {}},
        {"lines end at CR LF only", "H\nX|y|1\r\nA|b\nc|2\r\n", {{1, "A", "b\nc", "2"}}},
        {"malformed lines do not break it",
         "H\r\nNOSEP\r\nA|host only\r\nB|h|p|more\r\n|\r\n\r\n C | h |\r\n",
         {{1, "NOSEP", "", ""},
          {2, "A", "host only", ""},
          {3, "B", "h", "p|more"},
          {4, "", "", ""},
          {5, "", "", ""},
          {6, " C ", " h ", ""}}},
        {"single-byte text", "H\r\nOH\xC4|h\xFC|1\r\n", {{1, "OH\u00C4", "h\u00FC", "1"}}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        const QList<Row> rows = ClusterList::parse(c.bytes);
        EXPECT_EQ(std::vector<Row>(rows.begin(), rows.end()), c.rows);
    }
}

TEST(ClusterList, TheLastRowNamedLikeTheClusterInUseIsMarked) {
    const QList<Row> rows = ClusterList::parse("H\r\nGB7AAA|a|1\r\nDB0BBB|b|2\r\nGB7AAA|c|3\r\n");
    EXPECT_EQ(ClusterList::selectedRow(rows, "GB7AAA"), 3);
    EXPECT_EQ(ClusterList::selectedRow(rows, "DB0BBB"), 2);
    EXPECT_EQ(ClusterList::selectedRow(rows, "gb7aaa"), 0);
    EXPECT_EQ(ClusterList::selectedRow(rows, ""), 0);
    EXPECT_EQ(ClusterList::notFoundText("/x/TelnetDXCluster.txt"),
              "Datei '/x/TelnetDXCluster.txt not found !");
}

// The list that ships beside the program: every line a usable node, and the
// built-in cluster among them so that it is marked on the first opening.
TEST(ClusterList, ShippedListHoldsUsableNodesAndTheBuiltInCluster) {
    QFile file(QStringLiteral(ZKR_SHIPPED_CLUSTER_LIST));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << ZKR_SHIPPED_CLUSTER_LIST;
    const QByteArray bytes = file.readAll();
    EXPECT_TRUE(bytes.endsWith("\r\n"));
    EXPECT_EQ(bytes.count("\r\n"), bytes.count('\n'));
    const QList<Row> rows = ClusterList::parse(bytes);
    EXPECT_EQ(rows.size(), bytes.count("\r\n") - 1);
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name.toStdString());
        bool numeric = false;
        EXPECT_GT(row.port.toInt(&numeric), 0);
        EXPECT_TRUE(numeric);
        EXPECT_FALSE(row.name.isEmpty() || row.host.isEmpty());
        EXPECT_FALSE(row.name.contains(',') || row.host.contains(' '));
    }
    const int builtIn = ClusterList::selectedRow(rows, site::DefaultClusterCall);
    ASSERT_GT(builtIn, 0);
    EXPECT_EQ(rows.at(builtIn - 1).host, site::DefaultClusterHost);
    EXPECT_EQ(rows.at(builtIn - 1).port, site::DefaultClusterPort);
}

} // namespace
} // namespace zkr
