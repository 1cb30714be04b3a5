#pragma once

#include "EvaluatedSpot.h"
#include "ResultPanes.h"

#include <QString>

namespace zkr {

// Prints evaluated spots into the four result panes, newest on top: each
// spot's runs go in at the caret of the panes it selects, whose carets then
// go back to the top.
class PaneWriter {
public:
    explicit PaneWriter(const ResultPanes &panes) : panes_(panes) {}

    void writeSpot(const EvaluatedSpot &spot);
    // The cluster's welcome or prompt block, in blue, into the All pane
    // only: the others are for spots.
    void writePrompt(const QString &block);
    // A web page replaces what the panes held.
    void beginPage();
    // "Sorry - no Es-spots found !" into every pane that got no Es result.
    void endPage(unsigned panesWithEs);
    // Within a page the panes are committed once, at its end: committing
    // line by line would move the page's text back and forth every time.
    bool inPage() const { return pageOpen_; }
    // Replaces what every pane holds with one line in black ("The Webserver
    // may be down !").
    void writeNotice(const QString &text);

private:
    ResultPanes panes_;
    // Between beginPage and endPage the spots follow each other downwards,
    // in the page's order, instead of each going on top.
    bool pageOpen_ = false;
};

} // namespace zkr
