#include "PaneWriter.h"

#include "Pane.h"
#include "ResultOutput.h"

namespace zkr {

namespace {

const QString LineEnd = QStringLiteral("\r\n");

} // namespace

void PaneWriter::writeSpot(const EvaluatedSpot &spot) {
    for (std::size_t i = 0; i < panes_.size(); ++i) {
        if ((spot.panes & (1U << i)) == 0) {
            continue;
        }
        Pane &pane = *panes_[i];
        for (const TextRun &run : spot.runs) {
            pane.insertColored(run.text, run.colour);
        }
        if (!pageOpen_) {
            pane.setCaret(0);
        }
    }
}

void PaneWriter::writePrompt(const QString &block) {
    Pane &all = *panes_[0];
    all.insertColored(block, Color_Blue);
    all.setCaret(0);
}

void PaneWriter::beginPage() {
    for (Pane *pane : panes_) {
        pane->clear();
    }
    pageOpen_ = true;
}

void PaneWriter::endPage(unsigned panesWithEs) {
    for (std::size_t i = 0; i < panes_.size(); ++i) {
        if ((panesWithEs & (1U << i)) == 0) {
            panes_[i]->insertColored(NoEsSpotsText, Color_Black);
            panes_[i]->insertColored(LineEnd, Color_Black);
        }
    }
    pageOpen_ = false;
}

void PaneWriter::writeNotice(const QString &text) {
    for (Pane *pane : panes_) {
        pane->clear();
        pane->insertColored(text, Color_Black);
    }
}

} // namespace zkr
