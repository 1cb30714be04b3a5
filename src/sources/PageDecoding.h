#pragma once

#include <QByteArrayView>
#include <QString>

namespace zkr {

// How a downloaded page's bytes become text, the same for the window and the
// headless tool. A byte order mark decides first, then the charset of the
// HTTP Content-Type (empty for a saved page), then a <meta charset> or
// http-equiv tag near the top. UTF-8 is honoured; everything else is read as
// Windows-1252, the code page the pages were written for: it is ISO-8859-1
// except for "€", "“", "”" and the other printable characters at 0x80-0x9F.
QString decodeWebPage(QByteArrayView body, QByteArrayView contentType = {});

QString decodeWindows1252(QByteArrayView bytes);

} // namespace zkr
