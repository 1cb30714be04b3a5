#include "QtPrinters.h"

QT_BEGIN_NAMESPACE
void PrintTo(const QString &text, std::ostream *out) {
    *out << '"' << text.toStdString() << '"';
}

void PrintTo(const QStringList &list, std::ostream *out) {
    *out << "{\n";
    for (const QString &item : list) {
        *out << "  \"" << item.toStdString() << "\"\n";
    }
    *out << '}';
}
QT_END_NAMESPACE
