#include "IniFile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace zkr {

namespace {

const QByteArray CrLf = QByteArrayLiteral("\r\n");

QByteArray trimmedBlanksAndTabs(QByteArrayView text) {
    qsizetype first = 0;
    qsizetype last = text.size();
    while (first < last && (text[first] == ' ' || text[first] == '\t')) {
        ++first;
    }
    while (last > first && (text[last - 1] == ' ' || text[last - 1] == '\t')) {
        --last;
    }
    return text.sliced(first, last - first).toByteArray();
}

bool isHeader(const QByteArray &trimmed) {
    return trimmed.startsWith('[');
}

QString headerName(const QByteArray &trimmed) {
    QByteArray name = trimmed.mid(1);
    const qsizetype close = name.indexOf(']');
    if (close >= 0) {
        name.truncate(close);
    }
    return QString::fromLatin1(trimmedBlanksAndTabs(name));
}

// A line that belongs to its section's entries: not blank, not a comment.
bool isEntry(const QByteArray &trimmed) {
    return !trimmed.isEmpty() && !trimmed.startsWith(';') && !isHeader(trimmed);
}

bool sameName(QStringView a, QStringView b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

} // namespace

IniFile::IniFile(const QByteArray &content) {
    qsizetype start = 0;
    while (start < content.size()) {
        const qsizetype newline = content.indexOf('\n', start);
        if (newline < 0) {
            lines_.push_back(Line{content.mid(start), QByteArray()});
            break;
        }
        qsizetype textEnd = newline;
        if (textEnd > start && content[textEnd - 1] == '\r') {
            --textEnd;
        }
        lines_.push_back(
            Line{content.mid(start, textEnd - start), content.mid(textEnd, newline + 1 - textEnd)});
        start = newline + 1;
    }
}

IniFile IniFile::load(const QString &path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return IniFile();
    }
    return IniFile(file.readAll());
}

std::optional<IniFile::Span> IniFile::findSection(QStringView section) const {
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        const QByteArray trimmed = trimmedBlanksAndTabs(lines_[i].text);
        if (!isHeader(trimmed) || !sameName(headerName(trimmed), section)) {
            continue;
        }
        Span span{i, i, lines_.size()};
        for (std::size_t j = i + 1; j < lines_.size(); ++j) {
            const QByteArray entry = trimmedBlanksAndTabs(lines_[j].text);
            if (isHeader(entry)) {
                span.end = j;
                break;
            }
            if (isEntry(entry)) {
                span.lastEntry = j;
            }
        }
        return span;
    }
    return std::nullopt;
}

std::optional<std::size_t> IniFile::findKey(const Span &span, QStringView key) const {
    for (std::size_t i = span.header + 1; i < span.end; ++i) {
        const QByteArray trimmed = trimmedBlanksAndTabs(lines_[i].text);
        const qsizetype equals = trimmed.indexOf('=');
        if (!isEntry(trimmed) || equals < 0) {
            continue;
        }
        if (sameName(QString::fromLatin1(trimmedBlanksAndTabs(trimmed.first(equals))), key)) {
            return i;
        }
    }
    return std::nullopt;
}

std::optional<QString> IniFile::value(QStringView section, QStringView key) const {
    const std::optional<Span> span = findSection(section);
    if (!span) {
        return std::nullopt;
    }
    const std::optional<std::size_t> line = findKey(*span, key);
    if (!line) {
        return std::nullopt;
    }
    const QByteArray &text = lines_[*line].text;
    return QString::fromLatin1(trimmedBlanksAndTabs(text.mid(text.indexOf('=') + 1)));
}

std::vector<QByteArray> IniFile::splitValueLines(const QString &text) {
    const QByteArray bytes = text.toLatin1();
    std::vector<QByteArray> pieces;
    QByteArray current;
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const char c = bytes[i];
        if (c == '\r' || c == '\n') {
            pieces.push_back(current);
            current.clear();
            if (c == '\r' && i + 1 < bytes.size() && bytes[i + 1] == '\n') {
                ++i;
            }
        } else {
            current.append(c);
        }
    }
    pieces.push_back(current);
    return pieces;
}

void IniFile::setValue(const QString &section, const QString &key, const QString &value) {
    const std::vector<QByteArray> pieces = splitValueLines(key + QLatin1Char('=') + value);
    std::vector<Line> added;
    for (const QByteArray &piece : pieces) {
        added.push_back(Line{piece, CrLf});
    }

    const std::optional<Span> span = findSection(section);
    const std::optional<std::size_t> keyLine = span ? findKey(*span, key) : std::nullopt;
    if (keyLine) {
        // The replaced line keeps its own line end.
        added.back().end = lines_[*keyLine].end;
        lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(*keyLine));
        lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(*keyLine), added.begin(),
                      added.end());
    } else if (span) {
        Line &after = lines_[span->lastEntry];
        if (after.end.isEmpty()) {
            after.end = CrLf;
        }
        lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(span->lastEntry + 1),
                      added.begin(), added.end());
    } else {
        if (!lines_.empty() && lines_.back().end.isEmpty()) {
            lines_.back().end = CrLf;
        }
        lines_.push_back(Line{'[' + section.toLatin1() + ']', CrLf});
        lines_.insert(lines_.end(), added.begin(), added.end());
    }
    // A value without a line end on the last line leaves an empty piece.
    while (!lines_.empty() && lines_.back().text.isEmpty() && lines_.back().end.isEmpty()) {
        lines_.pop_back();
    }
}

QByteArray IniFile::content() const {
    QByteArray out;
    for (const Line &line : lines_) {
        out += line.text;
        out += line.end;
    }
    return out;
}

bool IniFile::save(const QString &path) const {
    // A file marked read-only is left alone, as the profile functions do,
    // even for a user (root) whom the system would let write it.
    const QFileInfo existing(path);
    if (existing.exists() && !existing.permissions().testFlag(QFileDevice::WriteOwner)) {
        return false;
    }
    QSaveFile file(path);
    // In a folder we may not create files in, a writable file is still
    // rewritten in place, as the profile functions do.
    file.setDirectWriteFallback(true);
    // Unbuffered, so that a short write (a full disk) shows in write()'s
    // result: with a buffer, an error while flushing at commit can go
    // unnoticed and the cut temporary file would replace the old one.
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        return false;
    }
    const QByteArray bytes = content();
    if (file.write(bytes) != bytes.size()) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}

QString Ini_Write(const QString &section, const QString &key, const QString &value,
                  const QString &path) {
    QFile existing(path);
    if (QFileInfo::exists(path) && !existing.open(QIODevice::ReadOnly)) {
        // Rewriting a file we cannot read would lose its other lines.
        return QStringLiteral("0");
    }
    IniFile ini(existing.isOpen() ? existing.readAll() : QByteArray());
    existing.close();
    ini.setValue(section, key, value);
    return ini.save(path) ? QStringLiteral("1") : QStringLiteral("0");
}

} // namespace zkr
