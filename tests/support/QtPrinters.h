#pragma once

#include <QString>
#include <QStringList>

#include <ostream>

// Lets GoogleTest print Qt texts in failure messages.
QT_BEGIN_NAMESPACE
void PrintTo(const QString &text, std::ostream *out);
void PrintTo(const QStringList &list, std::ostream *out);
QT_END_NAMESPACE
