#pragma once

#include "Pane.h"
#include "QtPrinters.h"

#include <QString>

#include <algorithm>
#include <cstdint>
#include <ostream>
#include <vector>

// A pane for tests: keeps the text and the colour of every character, with
// the caret of a rich-text pane, and hands the content back as runs.
class RecordingPane : public zkr::Pane {
public:
    struct Run {
        QString text;
        std::uint32_t colour = 0;
        bool operator==(const Run &other) const = default;
        friend void PrintTo(const Run &run, std::ostream *out) {
            PrintTo(run.text, out);
            *out << " in " << std::hex << run.colour << std::dec;
        }
    };

    void insertColored(QStringView text, std::uint32_t colour) override {
        text_.insert(caret_, text);
        colours_.insert(colours_.begin() + caret_, static_cast<std::size_t>(text.size()), colour);
        caret_ += static_cast<int>(text.size());
    }
    int caret() const override { return caret_; }
    void setCaret(int position) override {
        caret_ = std::clamp(position, 0, static_cast<int>(text_.size()));
    }
    void clear() override { *this = RecordingPane(); }

    const QString &text() const { return text_; }
    // Adjacent characters of one colour form one run.
    std::vector<Run> runs() const {
        std::vector<Run> result;
        for (qsizetype i = 0; i < text_.size(); ++i) {
            const std::uint32_t colour = colours_[static_cast<std::size_t>(i)];
            if (result.empty() || result.back().colour != colour) {
                result.push_back(Run{QString(), colour});
            }
            result.back().text += text_[i];
        }
        return result;
    }

private:
    QString text_;
    std::vector<std::uint32_t> colours_;
    int caret_ = 0;
};
