#pragma once

#include <QString>

namespace zkr {

// Upper-cases character by character (simple case mapping), so the result
// always has the length of the input and positions found in it are
// positions in the input. An input that is already upper case is returned
// shared, without a copy.
QString upperCase(const QString &text);
// The same into `target`, reusing its storage: for a text that is taken
// apart in place afterwards.
void upperCaseInto(QStringView text, QString &target);

} // namespace zkr
