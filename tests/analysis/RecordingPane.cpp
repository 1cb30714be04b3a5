#include "RecordingPane.h"

#include "QtPrinters.h"

#include <algorithm>

void RecordingPane::insertColored(QStringView text, std::uint32_t colour) {
    text_.insert(caret_, text);
    colours_.insert(colours_.begin() + caret_, static_cast<std::size_t>(text.size()), colour);
    caret_ += static_cast<int>(text.size());
}

void RecordingPane::setCaret(int position) {
    caret_ = std::clamp(position, 0, static_cast<int>(text_.size()));
}

void RecordingPane::clear() {
    text_.clear();
    colours_.clear();
    caret_ = 0;
}

std::vector<RecordingPane::Run> RecordingPane::runs() const {
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

void PrintTo(const RecordingPane::Run &run, std::ostream *out) {
    *out << '{';
    PrintTo(run.text, out);
    *out << ", 0x" << std::hex << run.colour << std::dec << '}';
}
