#pragma once

#include <QStringView>

#include <cstdint>

namespace zkr {

// One output pane as the analysis sees it: a text with a caret into which
// coloured text is inserted. Colours are &H00BBGGRR values.
class Pane {
public:
    virtual ~Pane() = default;

    // Inserts `text` at the caret in `colour`; the caret ends behind it.
    virtual void insertColored(QStringView text, std::uint32_t colour) = 0;
    virtual int caret() const = 0;
    virtual void setCaret(int position) = 0;
    // Empties the pane; the caret goes to 0.
    virtual void clear() = 0;
};

} // namespace zkr
