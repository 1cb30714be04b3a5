#pragma once

#include <QString>

namespace zkr {

// What the evaluation cycle needs of the windows around it.
class EvaluationView {
public:
    virtual ~EvaluationView() = default;

    // The work label ("CALCULATING"), shown.
    virtual void showWorkLabel(const QString &caption) = 0;
    virtual void hideWorkLabel() = 0;
    virtual void processEvents() = 0;
    // The two filter check boxes, read afresh for every spot.
    virtual bool over144Only() = 0;
    virtual bool esSpotsOnly() = 0;
    // Makes what the working panes hold now visible in the display panes.
    virtual void refreshDisplay() = 0;
    // The telnet console's data field.
    virtual void setConsoleData(const QString &line) = 0;
};

} // namespace zkr
