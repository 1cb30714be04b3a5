#pragma once

#include <QByteArray>
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

// One line of cluster text: UTF-8 when it is valid UTF-8 (today's nodes pass
// on what users type in UTF-8), otherwise Windows-1252. `utf8` tells whether
// UTF-8 was used for a line that is not pure ASCII (false for ASCII, where
// both read alike).
QString decodeClusterLine(QByteArrayView line, bool *utf8 = nullptr);

// Cluster text for display as it arrives, a read at a time: each line as
// decodeClusterLine reads it, and a UTF-8 character cut by the end of a read
// kept for the next one instead of being garbled.
class StreamDecoder {
public:
    QString decode(QByteArrayView bytes);
    void reset() { held_.clear(); }

private:
    QByteArray held_;
};

} // namespace zkr
