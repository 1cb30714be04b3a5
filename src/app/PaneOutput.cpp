#include "PaneOutput.h"

#include "Reception.h"

#include <QIODevice>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
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

// `value` rounded to `decimals` places (at most 6), printed without trailing
// zeros. In whole numbers of the last place: the general double printer
// was the largest cost of a long log's JSON lines.
void appendNumber(QByteArray &out, double value, int decimals) {
    static constexpr std::int64_t Scales[] = {1, 10, 100, 1000, 10000, 100000, 1000000};
    const std::int64_t scale = Scales[decimals];
    const double scaled = std::round(value * static_cast<double>(scale));
    if (!(std::abs(scaled) < 1e15)) { // beyond exact whole numbers (or not a number)
        out += QByteArray::number(scaled / static_cast<double>(scale), 'g', 15);
        return;
    }
    auto units = static_cast<std::int64_t>(scaled);
    if (units < 0) {
        out += '-';
        units = -units;
    }
    out += QByteArray::number(units / scale);
    std::int64_t fraction = units % scale;
    if (fraction == 0) {
        return;
    }
    int digits = decimals;
    for (; fraction % 10 == 0; fraction /= 10) {
        --digits;
    }
    out += '.';
    out += QByteArray::number(fraction).rightJustified(digits, '0');
}

void appendField(QByteArray &out, const char *name, QStringView text) {
    out += ",\"";
    out += name;
    out += "\":";
    appendJsonString(out, text);
}

void appendNumberField(QByteArray &out, const char *name, double value, int decimals) {
    out += ",\"";
    out += name;
    out += "\":";
    appendNumber(out, value, decimals);
}

// The path's fields after an opening "{", without the closing one.
void appendEsFields(QByteArray &out, const EsPath &es) {
    out += "{\"cloud\":";
    appendJsonString(out, es.cloud);
    appendNumberField(out, "muf_mhz", es.muf, 1);
    appendNumberField(out, "critical_mhz", es.critical, 1);
    appendNumberField(out, "own_muf_mhz", es.ownMuf, 1);
    appendNumberField(out, "azimuth", es.azimuth, 1);
    appendNumberField(out, "elevation", es.elevation, 1);
    appendField(out, "far", es.far);
    appendNumberField(out, "path_km", es.pathKm, 0);
    appendNumberField(out, "own_km", es.ownKm, 0);
}

// One end of an approximate path: where it was put and how it was found.
void appendEnd(QByteArray &out, const char *name, QStringView locator, Located how) {
    out += ",\"";
    out += name;
    out += "\":{\"locator\":";
    appendJsonString(out, locator);
    out += ",\"located\":\"";
    out += locatedName(how);
    out += "\"}";
}

// The text, or null for none.
void appendTextOrNull(QByteArray &out, const QString &text) {
    if (text.isEmpty()) {
        out += "null";
    } else {
        appendJsonString(out, text);
    }
}

// A report's station: its call and locator, null for either unknown.
void appendStation(QByteArray &out, const char *name, const ReportStation &station) {
    out += ",\"";
    out += name;
    out += "\":{\"call\":";
    appendTextOrNull(out, station.call);
    out += ",\"locator\":";
    appendTextOrNull(out, station.locator);
    out += '}';
}

// "2022-06-01T00:00:00Z", without QDateTime's formatter: a long log has a
// million of them.
void appendIsoTime(QByteArray &out, const QDateTime &time) {
    const QDateTime utc = time.toUTC();
    const QDate date = utc.date();
    const QTime clock = utc.time();
    char text[64];
    const int length =
        std::snprintf(text, sizeof text, "\"%04d-%02d-%02dT%02d:%02d:%02dZ\"", date.year(),
                      date.month(), date.day(), clock.hour(), clock.minute(), clock.second());
    out.append(text, length);
}

} // namespace

void Write_ReportJson(QByteArray &out, const Reception &report) {
    const QLatin1StringView source = reportSourceName(report.source);
    out += "{\"source\":\"";
    out.append(source.data(), source.size());
    out += "\",\"time\":";
    if (report.time.isValid()) {
        appendIsoTime(out, report.time);
    } else {
        out += "null";
    }
    appendNumberField(out, "frequency_mhz", report.frequencyMhz, 6);
    appendField(out, "mode", report.mode);
    out += ",\"snr\":";
    if (report.snr) {
        out += QByteArray::number(*report.snr);
    } else {
        out += "null";
    }
    appendStation(out, "tx", report.tx);
    appendStation(out, "rx", report.rx);
    out += ",\"es\":";
    if (report.es) {
        appendEsFields(out, *report.es);
        out += '}';
    } else {
        out += "null";
    }
    out += '}';
}

void Write_SpotJson(QByteArray &out, const EvaluatedSpot &spot) {
    out += "{\"source\":\"";
    out += spotSourceName(spot.source);
    out += "\",\"time\":";
    appendJsonString(out, spot.time);
    QStringView spotter(spot.spotter);
    if (spotter.endsWith(QLatin1Char(':'))) {
        spotter.chop(1); // the cluster's separator, not part of the call
    }
    appendField(out, "spotter", spotter);
    appendNumberField(out, "frequency_mhz", spot.frequencyMhz, 4);
    appendField(out, "dx", spot.dxCall);
    appendField(out, "comment", spot.comment);
    appendField(out, "mode", spot.mode);
    out += ",\"locators\":[";
    bool first = true;
    for (const QString *locator : {&spot.locator1, &spot.locator2}) {
        if (!locator->isEmpty()) {
            out += first ? "" : ",";
            appendJsonString(out, *locator);
            first = false;
        }
    }
    out += "],\"es\":";
    if (spot.es) {
        appendEsFields(out, *spot.es);
        out += '}';
    } else {
        out += "null";
    }
    if (spot.approximate) {
        const ApproximatePath &path = *spot.approximate;
        out += ",\"approximate\":true,\"approximate_path\":";
        appendEsFields(out, path.es);
        appendNumberField(out, "uncertainty_km", path.uncertaintyKm, 0);
        appendEnd(out, "spotter", path.spotterLocator, path.spotter);
        appendEnd(out, "dx", path.dxLocator, path.dx);
        out += '}';
    }
    out += ",\"panes\":[";
    first = true;
    for (std::size_t i = 0; i < PaneNames.size(); ++i) {
        if ((spot.panes & (1U << i)) != 0) {
            out += first ? "\"" : ",\"";
            out += PaneNames[i];
            out += '"';
            first = false;
        }
    }
    out += "],\"runs\":[";
    first = true;
    for (const TextRun &run : spot.runs) {
        if (run.text.isEmpty() || run.text == QLatin1String("\r\n")) {
            continue;
        }
        out += first ? "[" : ",[";
        appendJsonString(out, run.text);
        out += ",\"";
        appendHtmlColour(out, run.colour);
        out += "\"]";
        first = false;
    }
    out += ']';
    if (!spot.error.isEmpty()) {
        appendField(out, "error", spot.error);
    }
    out += '}';
}

std::array<NamedPane, 4> spotPanes(const std::array<MemoryPane, 4> &panes) {
    return {NamedPane{PaneNames[0], &panes[0]}, NamedPane{PaneNames[1], &panes[1]},
            NamedPane{PaneNames[2], &panes[2]}, NamedPane{PaneNames[3], &panes[3]}};
}

void Write_PanesText(QIODevice &out, const std::array<MemoryPane, 4> &panes) {
    Write_PanesText(out, spotPanes(panes));
}

void Write_PanesJson(QIODevice &out, const std::array<MemoryPane, 4> &panes,
                     const QStringList &messages) {
    Write_PanesJson(out, spotPanes(panes), messages);
}

void Write_PanesText(QIODevice &out, std::span<const NamedPane> panes) {
    ChunkedWriter writer(out);
    QByteArray &buffer = writer.buffer();
    for (const NamedPane &named : panes) {
        buffer += QByteArrayLiteral("== ") + named.name + QByteArrayLiteral(" ==\n");
        const MemoryPane &pane = *named.pane;
        for (std::int64_t i = 0; i < pane.lineCount(); ++i) {
            buffer += pane.line(i).text.toUtf8();
            buffer += '\n';
            writer.flushIfFull();
        }
    }
}

void Write_PanesJson(QIODevice &out, std::span<const NamedPane> panes,
                     const QStringList &messages) {
    ChunkedWriter writer(out);
    QByteArray &buffer = writer.buffer();
    std::vector<Segment> segments;
    buffer += "{\"panes\":[";
    for (std::size_t p = 0; p < panes.size(); ++p) {
        buffer += p > 0 ? ",{\"name\":\"" : "{\"name\":\"";
        buffer += panes[p].name;
        buffer += "\",\"lines\":[";
        const MemoryPane &pane = *panes[p].pane;
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
