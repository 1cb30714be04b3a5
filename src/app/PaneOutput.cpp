#include "PaneOutput.h"

#include <QIODevice>

#include <algorithm>
#include <vector>

namespace zkr {

namespace {

// Collects output and hands it to the device in large pieces, so that a
// pane of a hundred thousand lines is neither built whole nor written line
// by line.
class ChunkedWriter {
public:
    explicit ChunkedWriter(QIODevice &out) : out_(out) { buffer_.reserve(2 * FlushSize); }
    ChunkedWriter(const ChunkedWriter &) = delete;
    ChunkedWriter &operator=(const ChunkedWriter &) = delete;
    ~ChunkedWriter() { out_.write(buffer_); }

    QByteArray &buffer() { return buffer_; }
    // Called between pieces of output.
    void flushIfFull() {
        if (buffer_.size() >= FlushSize) {
            out_.write(buffer_);
            buffer_.clear();
        }
    }

private:
    static constexpr qsizetype FlushSize = 1 << 16;
    QIODevice &out_;
    QByteArray buffer_;
};

// Appends `text` as a JSON string in UTF-8. Written straight into the
// buffer: the output of a long replay is tens of megabytes.
void appendJsonString(QByteArray &out, QStringView text) {
    static constexpr char Hex[] = "0123456789abcdef";
    const qsizetype start = out.size();
    // At most six bytes per character ("\u001f"), and the two quotes.
    out.resize(start + 6 * text.size() + 2);
    char *p = out.data() + start;
    *p++ = '"';
    for (qsizetype i = 0; i < text.size(); ++i) {
        char32_t u = text[i].unicode();
        if (u >= 0x20 && u < 0x80) {
            if (u == U'"' || u == U'\\') {
                *p++ = '\\';
            }
            *p++ = static_cast<char>(u);
        } else if (u < 0x20) {
            *p++ = '\\';
            switch (u) {
            case U'\n':
                *p++ = 'n';
                break;
            case U'\r':
                *p++ = 'r';
                break;
            case U'\t':
                *p++ = 't';
                break;
            default:
                *p++ = 'u';
                *p++ = '0';
                *p++ = '0';
                *p++ = Hex[u >> 4];
                *p++ = Hex[u & 0xF];
            }
        } else if (u < 0x800) {
            *p++ = static_cast<char>(0xC0 | (u >> 6));
            *p++ = static_cast<char>(0x80 | (u & 0x3F));
        } else {
            if (QChar::isHighSurrogate(u) && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
                u = QChar::surrogateToUcs4(text[i].unicode(), text[i + 1].unicode());
                ++i;
                *p++ = static_cast<char>(0xF0 | (u >> 18));
                *p++ = static_cast<char>(0x80 | ((u >> 12) & 0x3F));
            } else {
                if (QChar::isSurrogate(u)) {
                    u = QChar::ReplacementCharacter;
                }
                *p++ = static_cast<char>(0xE0 | (u >> 12));
            }
            *p++ = static_cast<char>(0x80 | ((u >> 6) & 0x3F));
            *p++ = static_cast<char>(0x80 | (u & 0x3F));
        }
    }
    *p++ = '"';
    out.resize(p - out.constData());
}

// A &H00BBGGRR colour as "#RRGGBB".
void appendHtmlColour(QByteArray &out, std::uint32_t bgr) {
    static constexpr char Hex[] = "0123456789ABCDEF";
    const std::uint32_t bytes[] = {bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF};
    out += '#';
    for (const std::uint32_t byte : bytes) {
        out += Hex[byte >> 4];
        out += Hex[byte & 0xF];
    }
}

struct Segment {
    qsizetype start;
    qsizetype length;
    std::uint32_t colour;
};

// The line's runs as segments: empty ones dropped, equal colours joined.
void lineSegments(const PaneLine &line, std::vector<Segment> &segments) {
    segments.clear();
    qsizetype offset = 0;
    for (const ColourRun &run : line.runs) {
        const qsizetype length = std::min<qsizetype>(run.length, line.text.size() - offset);
        if (length <= 0) {
            continue;
        }
        if (!segments.empty() && segments.back().colour == run.colour) {
            segments.back().length += length;
        } else {
            segments.push_back({offset, length, run.colour});
        }
        offset += length;
    }
}

} // namespace

void Write_PanesText(QIODevice &out, const std::array<MemoryPane, 4> &panes) {
    ChunkedWriter writer(out);
    QByteArray &buffer = writer.buffer();
    for (std::size_t p = 0; p < panes.size(); ++p) {
        buffer += QByteArrayLiteral("== ") + PaneNames[p] + QByteArrayLiteral(" ==\n");
        const MemoryPane &pane = panes[p];
        for (std::int64_t i = 0; i < pane.lineCount(); ++i) {
            buffer += pane.line(i).text.toUtf8();
            buffer += '\n';
            writer.flushIfFull();
        }
    }
}

void Write_PanesJson(QIODevice &out, const std::array<MemoryPane, 4> &panes,
                     const QStringList &messages) {
    ChunkedWriter writer(out);
    QByteArray &buffer = writer.buffer();
    std::vector<Segment> segments;
    buffer += "{\"panes\":[";
    for (std::size_t p = 0; p < panes.size(); ++p) {
        buffer += p > 0 ? ",{\"name\":\"" : "{\"name\":\"";
        buffer += PaneNames[p];
        buffer += "\",\"lines\":[";
        const MemoryPane &pane = panes[p];
        for (std::int64_t i = 0; i < pane.lineCount(); ++i) {
            const PaneLine &line = pane.line(i);
            buffer += i > 0 ? ",\n[" : "\n[";
            lineSegments(line, segments);
            for (std::size_t s = 0; s < segments.size(); ++s) {
                buffer += s > 0 ? ",[" : "[";
                appendJsonString(buffer,
                                 QStringView(line.text).mid(segments[s].start, segments[s].length));
                buffer += ",\"";
                appendHtmlColour(buffer, segments[s].colour);
                buffer += "\"]";
            }
            buffer += ']';
            writer.flushIfFull();
        }
        buffer += "]}";
    }
    buffer += "],\n\"messages\":[";
    for (qsizetype i = 0; i < messages.size(); ++i) {
        if (i > 0) {
            buffer += ',';
        }
        appendJsonString(buffer, messages.at(i));
    }
    buffer += "]}\n";
}

} // namespace zkr
