#pragma once

#include "Pane.h"

#include <QString>

#include <cstdint>
#include <ostream>
#include <vector>

// A pane for tests: keeps the text and the colour of every character, with
// the caret behaviour of a rich-text pane, and hands the content back as
// runs of one colour.
class RecordingPane : public zkr::Pane {
public:
    struct Run {
        QString text;
        std::uint32_t colour = 0;
        bool operator==(const Run &other) const = default;
    };

    void insertColored(QStringView text, std::uint32_t colour) override;
    int caret() const override { return caret_; }
    void setCaret(int position) override;
    void clear() override;

    const QString &text() const { return text_; }
    // Adjacent characters of one colour form one run.
    std::vector<Run> runs() const;

private:
    QString text_;
    std::vector<std::uint32_t> colours_;
    int caret_ = 0;
};

void PrintTo(const RecordingPane::Run &run, std::ostream *out);
