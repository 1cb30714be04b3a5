#include "ClusterListView.h"

#include "BgrColour.h"
#include "ClusterList.h"
#include "ProgramState.h"

#include <QFile>
#include <QTreeWidget>

namespace zkr {

namespace {
// Twips of a pixel at the desktop's standard 96 dots per inch.
constexpr int TwipsPerPixel = 15;
constexpr int ListWidthTwips = 7000;
} // namespace

void Load_ClusterList(QTreeWidget &list, const QString &path, char separator, QString &errorText,
                      ProgramState &state) {
    errorText.clear();
    QFile file(path);
    if (!file.exists() || !file.open(QIODevice::ReadOnly)) {
        errorText = ClusterList::notFoundText(path);
        return;
    }
    const QList<ClusterList::Row> rows = ClusterList::parse(file.readAll(), separator);

    list.setUpdatesEnabled(false);
    list.clear();
    list.setColumnCount(3);
    list.setHeaderLabels(
        {QStringLiteral("DX-Cluster"), QStringLiteral("Host"), QStringLiteral("Port")});
    list.setFixedWidth((ListWidthTwips + TwipsPerPixel / 2) / TwipsPerPixel);
    const std::array<int, 3> widths = ClusterList::columnWidths(list.width() * TwipsPerPixel);
    for (int column = 0; column < 3; ++column) {
        list.setColumnWidth(column, widths.at(static_cast<std::size_t>(column)) / TwipsPerPixel);
    }
    for (const ClusterList::Row &row : rows) {
        auto *item = new QTreeWidgetItem(&list, {row.name, row.host, row.port});
        // Keys of the rows are never purely numeric.
        item->setData(0, Qt::UserRole, QStringLiteral("---%1").arg(row.line));
    }
    state.Cluster_SelectedRow = ClusterList::selectedRow(rows, state.Telnet_Call);
    list.setUpdatesEnabled(true);
}

void Format_ListCell(QTreeWidget &list, std::uint32_t colour, int column, int row, bool bold) {
    QTreeWidgetItem *item = list.topLevelItem(row - 1);
    if (item == nullptr || column < 1 || column > list.columnCount()) {
        return;
    }
    item->setForeground(column - 1, fromBgr(colour));
    QFont font = item->font(column - 1);
    font.setBold(bold);
    item->setFont(column - 1, font);
    list.viewport()->update();
}

} // namespace zkr
