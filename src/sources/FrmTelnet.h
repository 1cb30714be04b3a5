#pragma once

#include <QWidget>

#include <cstdint>
#include <functional>
#include <optional>

class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace zkr {

struct ProgramState;
class Platform;

// The telnet console: the raw stream of the cluster session, a command line
// to the cluster, recording of everything received into the debug file,
// replay of a file and a connect by hand. The session, the record of
// received chunks and the replay belong to the main window; the console
// only shows and triggers them. It lives until the program ends: closing
// it only hides it.
class FrmTelnet : public QWidget {
    Q_OBJECT
public:
    // What the console's buttons start on the main window.
    class Host {
    public:
        virtual ~Host() = default;

        // Sends text on the session; quietly nothing when none is open.
        virtual void sendData(const QString &text) = 0;
        // Timer1 off, work label hidden, both filter boxes off and hidden.
        virtual void prepareFileReplay() = 0;
        // Asks for a file and replays it; reports its own failures.
        virtual void Replay_SpotFile() = 0;
        // Timer1 on, then one web evaluation.
        virtual void startWebRefresh() = 0;
        virtual void Evaluate_SpotPage() = 0;
        // The main window's start-up procedure, run once more.
        virtual void runStartup() = 0;
    };

    // Most lines the record pane keeps; older ones scroll away, so that a
    // chunk costs the same after days of running.
    static constexpr int RecordLineLimit = 3000;

    FrmTelnet(ProgramState &state, Platform &platform, Host &host, QWidget *parent = nullptr);

    // Event handlers, public so that the main window and tests can run them.
    void Form_Load();
    void Command1_Click();
    void CMD_Debug_Datei_Click();
    void CMD_Debug_Datei_laden_Click();
    void Connect_Manuell_Click();

    // The host, port and call fields (display only).
    void setFields(const QString &host, const QString &port, const QString &call);
    // The data field, which also shows the last evaluated spot line. While
    // the console is hidden the field is filled when it is shown: this runs
    // for every spot.
    void setDataField(const QString &text);
    // Label6: caption on an &H00BBGGRR background.
    void setConnectionState(const QString &caption, std::uint32_t bgrColour);
    // Appends a received chunk to the record pane, in black.
    void appendRecord(const QString &chunk);
    // The debug file beside the program.
    QString debugFilePath() const;

protected:
    void showEvent(QShowEvent *event) override;

private:
    void buildControls();
    // Runs a handler started by a button; a run-time error ends it and is
    // reported, the program goes on.
    void runHandler(const std::function<void()> &handler);

    ProgramState &state_;
    Platform &platform_;
    Host &host_;

    QLineEdit *txtCommand_ = nullptr;
    QPushButton *Command1_ = nullptr;
    QPlainTextEdit *RichTextBox1_ = nullptr;
    QPushButton *CMD_Debug_Datei_laden_ = nullptr;
    QPushButton *CMD_Debug_Datei_ = nullptr;
    QPushButton *Connect_Manuell_ = nullptr;
    QLineEdit *txthost_ = nullptr;
    QLineEdit *txtport_ = nullptr;
    QLineEdit *txtdata_ = nullptr;
    QLabel *Label6_ = nullptr;
    QLineEdit *Text1_ = nullptr;
    std::optional<QString> pendingData_;
};

} // namespace zkr
