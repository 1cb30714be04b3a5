#include "AllTxtReader.h"
#include "AllTxtReplay.h"
#include "QtPrinters.h"
#include "WaitFor.h"
#include "WsjtxDatagrams.h"

#include <QBuffer>
#include <QTemporaryFile>

#include <gtest/gtest.h>

namespace zkr {
namespace {

// The message field of a decode line, padded to its width, and what
// follows it: WSJT-X 2.x puts "?" at the end of 37 characters for a
// low-confidence decode and then the AP marker; JTDX its flag after 26.
QString field(const char *message, int width, const char *after) {
    return QString(message).leftJustified(width) + after;
}

const QString Wsjtx = "230612_183015    50.313 Rx FT8    -12  0.2 1234 ";
const QString Jtdx = "20230612_183015 -12  0.2 1234 ~ ";
const QString Report = "EA7ABC IM76 > DL9OWN JO40 50.314234 FT8 -12 2023-06-12 18:30:15 1915km";

QStringList read(const QByteArray &log, AllTxtReader &reader) {
    QStringList reports;
    const auto connection =
        QObject::connect(&reader, &AllTxtReader::reception, [&](const Reception &r) {
            EXPECT_EQ(r.source, ReportSource::AllTxt);
            EXPECT_EQ(r.received, r.time);
            reports << test::describe(r);
        });
    QBuffer buffer;
    buffer.setData(log);
    buffer.open(QIODevice::ReadOnly);
    AllTxtReader::readAll(buffer, reader);
    QObject::disconnect(connection);
    return reports;
}

TEST(AllTxtReader, LayoutsOfWsjtxAndJtdx) {
    const struct {
        QStringList lines;
        QStringList reports;
    } cases[] = {
        {{Wsjtx + "CQ EA7ABC IM76",
          "230612_183030    50.313 Tx FT8      0  0.0 1500 CQ DL9OWN JO40",
          "230612_183045     0.000 Rx FT8    -12  0.2 1234 CQ EA7ABC IM76",
          Wsjtx + field("CQ EA7ABC IM76", 36, "? a3"), Wsjtx + field("CQ EA7ABC IM76", 38, "a1"),
          Wsjtx + "DL1ABC EA7ABC RR73"},
         {Report, Report, Report}},
        {{Jtdx + "CQ EA7ABC IM76", "20230612_183000  50.313 MHz  FT8", Jtdx + "CQ EA7ABC IM76",
          Jtdx + field("DL1ABC EA7ABC IM76", 26, "*"),
          "20230612_183015.123(0)  Transmitting 50.313 MHz + 1500Hz  FT8:  CQ DL9OWN JO40",
          "20230612_184000  144.174 MHz  FT8 JTDX v2.2.159",
          "20230612_184015 -15  0.1  987 ~ " + field("DL1ABC EA7ABC RR73", 26, "d")},
         {Report, "EA7ABC IM76 > DL9OWN JO40 144.174987 FT8 -15 2023-06-12 18:40:15 1915km"}},
        {{"2018-05-30 18:30  50.313 MHz  FT8", "183015 -12  0.2 1234 ~  CQ EA7ABC IM76",
          "180530_183030  Transmitting 50.313 MHz  FT8:  CQ DL9OWN JO40"},
         {QString(Report).replace("2023-06-12", "2018-05-30")}},
        {{"", "garbage", "230612_1830xx    50.313 Rx FT8    -12  0.2 1234 CQ EA7ABC IM76",
          "231312_183015    50.313 Rx FT8    -12  0.2 1234 CQ EA7ABC IM76",
          "230612_183015    50.313 Rx FT8    -1x  0.2 1234 CQ EA7ABC IM76",
          "183015 -12  0.2 1234 ~  CQ EA7ABC IM76"},
         {}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.lines.join("\n").toStdString());
        AllTxtReader reader;
        reader.setOwnStation("DL9OWN", "JO40");
        // Windows line ends, and a last line without one.
        EXPECT_EQ(read(c.lines.join("\r\n").toLatin1(), reader), c.reports);
    }
}

// The log read a byte at a time, and replayed from a file, gives what it
// gives in one piece; the JTDX dial is kept across pieces.
TEST(AllTxtReader, PiecesAndReplay) {
    const QByteArray log = QStringList({"20230612_183000  50.313 MHz  FT8", Jtdx + "CQ EA7ABC IM76",
                                        Wsjtx + "CQ EA7ABC IM76", Jtdx + "CQ EA7ABC IM76"})
                               .join("\n")
                               .toLatin1();
    AllTxtReader reader;
    reader.setOwnStation("DL9OWN", "JO40");
    const QStringList whole = read(log, reader);
    EXPECT_EQ(whole, QStringList({Report, Report, Report}));
    reader.reset();
    QStringList pieces;
    QObject::connect(&reader, &AllTxtReader::reception,
                     [&](const Reception &r) { pieces << test::describe(r); });
    for (const char byte : log) {
        reader.receive(QByteArrayView(&byte, 1));
    }
    reader.finish();
    EXPECT_EQ(pieces, whole);

    QTemporaryFile file;
    ASSERT_TRUE(file.open());
    file.write(log);
    file.close();
    pieces.clear();
    AllTxtReplay replay;
    bool finished = false;
    QObject::connect(&replay, &AllTxtReplay::finished, [&] { finished = true; });
    ASSERT_TRUE(replay.start(file.fileName(), reader));
    EXPECT_TRUE(test::waitFor([&] { return finished; }));
    EXPECT_EQ(pieces, whole);
}

} // namespace
} // namespace zkr
