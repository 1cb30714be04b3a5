#pragma once

#include <QString>
#include <QStringList>

namespace zkr {

// Removes every part from a "<" to the next ">". A "<" without a ">" after
// it ends the work: the text is returned as it stands then.
QString Strip_Tags(QString text);

// Cuts a tag-free spot page into its lines: the service's redirect script
// (the first 79 characters) is dropped, the rest split at every line feed.
QStringList Split_SpotPage(const QString &strippedPage);

// True for the service's own error pages.
bool Is_ErrorPage(const QString &page);

} // namespace zkr
