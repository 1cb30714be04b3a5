// A cluster list file, anything at all: the rows must account for every
// line between the header and the text after the last line end (LF, with or
// without CR), and no row keeps an LF.
#include "ClusterList.h"
#include "FuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    ensureApplication();
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const QList<zkr::ClusterList::Row> rows = zkr::ClusterList::parse(bytes);
    const qsizetype lines = bytes.count('\n');
    check(rows.size() == std::max<qsizetype>(lines - 1, 0));
    for (qsizetype i = 0; i < rows.size(); ++i) {
        check(rows[i].line == i + 1 && !rows[i].name.contains(QLatin1Char('|')) &&
              !(rows[i].name + rows[i].host + rows[i].port).contains(QLatin1Char('\n')));
    }
    const int selected =
        zkr::ClusterList::selectedRow(rows, rows.isEmpty() ? QString() : rows.last().name);
    check(selected >= 0 && selected <= rows.size());
    return 0;
}
