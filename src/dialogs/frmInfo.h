#pragma once

#include <QDialog>

class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace zkr {

struct ProgramState;
class Platform;

// The About window: program name, version and date, and two links, to the
// home page and to a new e-mail, opened by the desktop.
class frmInfo : public QDialog {
    Q_OBJECT
public:
    frmInfo(const ProgramState &state, Platform &platform, QWidget *parent = nullptr);

    // The text of the window, lines ending in CR LF.
    static QString aboutText(const ProgramState &state);

    // Open the link's target; a click acts only after the pointer was over
    // a link, as with the mouse it always is.
    void lblHyperlink_Click();
    void lblEmaillink_Click();
    bool isLinkHovered(const QLabel *label) const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;

private:
    void Form_MouseMove();
    void setHovered(QLabel *label, bool hovered);
    void openTarget(const QString &target, const QString &failureText);

    const ProgramState &state_;
    Platform &platform_;
    QPlainTextEdit *Text1_ = nullptr;
    QLabel *lblHyperlink_ = nullptr;
    QLabel *lblEmaillink_ = nullptr;
    QPushButton *Command1_ = nullptr;
    bool linkActive_ = false;
};

} // namespace zkr
