#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>

#include <optional>
#include <vector>

namespace zkr {

// An INI file edited line by line the way the Windows profile functions do
// it: sections and keys match without regard to case, a written key replaces
// its own line or is added after the last entry of its section, a missing
// section is added at the end, and every other line keeps its bytes and its
// line end. Text is ANSI; it is read as Latin-1 so that any byte survives.
class IniFile {
public:
    IniFile() = default;
    explicit IniFile(const QByteArray &content);

    // A missing or unreadable file reads as an empty one.
    static IniFile load(const QString &path);

    // The value of the first matching key of the first matching section,
    // with blanks and tabs around it removed; nullopt when there is none.
    std::optional<QString> value(QStringView section, QStringView key) const;
    // Writes `key=value`. Line breaks inside the value start new lines, so
    // a value ending in CR LF leaves an empty line behind its key.
    void setValue(const QString &section, const QString &key, const QString &value);

    QByteArray content() const;
    // Replaces the file through a temporary file and a rename, so that the
    // old file stays whole when anything goes wrong.
    bool save(const QString &path) const;

private:
    struct Line {
        QByteArray text;
        QByteArray end; // "\r\n", "\n" or "" for a last line without one
    };
    struct Span {
        std::size_t header;    // index of the section's header line
        std::size_t lastEntry; // last entry line, or the header
        std::size_t end;       // one past the section's last line
    };

    std::optional<Span> findSection(QStringView section) const;
    std::optional<std::size_t> findKey(const Span &span, QStringView key) const;
    static std::vector<QByteArray> splitValueLines(const QString &text);

    std::vector<Line> lines_;
};

// Writes one key into the file, creating file and section as needed.
// Returns "1" on success and "0" when the file could not be written (the old
// file is then unchanged).
QString Ini_Write(const QString &section, const QString &key, const QString &value,
                  const QString &path);

} // namespace zkr
