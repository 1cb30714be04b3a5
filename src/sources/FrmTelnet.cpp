#include "FrmTelnet.h"

#include "Platform.h"
#include "ProgramState.h"
#include "RunTimeError.h"

#include <QDir>
#include <QFile>
#include <QFontDatabase>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTextCursor>
#include <QVBoxLayout>

namespace zkr {

namespace {

constexpr std::uint32_t Green = 0x00FF00;

QColor fromBgrColour(std::uint32_t bgr) {
    return QColor(static_cast<int>(bgr & 0xFFu), static_cast<int>((bgr >> 8) & 0xFFu),
                  static_cast<int>((bgr >> 16) & 0xFFu));
}

void setBackground(QWidget *widget, const QColor &colour) {
    widget->setAutoFillBackground(true);
    QPalette palette = widget->palette();
    palette.setColor(widget->backgroundRole(), colour);
    palette.setColor(QPalette::Button, colour);
    widget->setPalette(palette);
}

QFont consoleFont() {
    // Cluster output is laid out in columns.
    QFont font = QFontDatabase::hasFamily(QStringLiteral("Courier New"))
                     ? QFont(QStringLiteral("Courier New"))
                     : QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setStyleHint(QFont::TypeWriter);
    font.setFixedPitch(true);
    font.setPointSize(9);
    return font;
}

} // namespace

FrmTelnet::FrmTelnet(ProgramState &state, Platform &platform, Host &host, QWidget *parent)
    : QWidget(parent, Qt::Window), state_(state), platform_(platform), host_(host) {
    setObjectName(QStringLiteral("FrmTelnet"));
    setWindowTitle(QStringLiteral("Telnet"));
    buildControls();
    Form_Load();
}

void FrmTelnet::buildControls() {
    const QFont fixed = consoleFont();
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(6, 6, 6, 6);
    column->setSpacing(4);

    auto makeButton = [this, &fixed](const QString &caption, const char *name) {
        auto *button = new QPushButton(caption, this);
        button->setObjectName(QLatin1String(name));
        button->setFont(fixed);
        button->setAutoDefault(false);
        return button;
    };
    auto makeField = [this](const char *name) {
        auto *field = new QLineEdit(this);
        field->setObjectName(QLatin1String(name));
        return field;
    };
    auto makeLabel = [this](const QString &caption, const char *name) {
        auto *label = new QLabel(caption, this);
        label->setObjectName(QLatin1String(name));
        // Captions may carry network text.
        label->setTextFormat(Qt::PlainText);
        return label;
    };

    auto *commandRow = new QHBoxLayout;
    txtCommand_ = makeField("txtCommand");
    txtCommand_->setFont(fixed);
    txtCommand_->setText(QStringLiteral("SH/FDX/20 on vhf"));
    Command1_ = makeButton(QStringLiteral("SendData"), "Command1");
    commandRow->addWidget(txtCommand_, 1);
    commandRow->addWidget(Command1_);
    column->addLayout(commandRow);

    RichTextBox1_ = new QPlainTextEdit(this);
    RichTextBox1_->setObjectName(QStringLiteral("RichTextBox1"));
    RichTextBox1_->setFont(fixed);
    RichTextBox1_->setReadOnly(true);
    RichTextBox1_->setLineWrapMode(QPlainTextEdit::NoWrap);
    // Bounded in lines and without an undo history: the pane runs for days.
    RichTextBox1_->setUndoRedoEnabled(false);
    RichTextBox1_->setMaximumBlockCount(RecordLineLimit);
    {
        QPalette palette = RichTextBox1_->palette();
        palette.setColor(QPalette::Base, Qt::white);
        palette.setColor(QPalette::Text, Qt::black);
        RichTextBox1_->setPalette(palette);
    }
    column->addWidget(RichTextBox1_, 1);

    auto *toolRow = new QHBoxLayout;
    CMD_Debug_Datei_laden_ =
        makeButton(QStringLiteral("Debug Datei laden"), "CMD_Debug_Datei_laden");
    CMD_Debug_Datei_ = makeButton(QStringLiteral("Debug Datei erstellen"), "CMD_Debug_Datei");
    Connect_Manuell_ = makeButton(QStringLiteral("Connect"), "Connect_Manuell");
    toolRow->addWidget(CMD_Debug_Datei_laden_);
    toolRow->addWidget(CMD_Debug_Datei_);
    toolRow->addWidget(Connect_Manuell_);
    toolRow->addStretch(1);
    column->addLayout(toolRow);

    auto *fieldRow = new QHBoxLayout;
    txthost_ = makeField("txthost");
    txtport_ = makeField("txtport");
    txtdata_ = makeField("txtdata");
    txtport_->setMaximumWidth(txtport_->fontMetrics().horizontalAdvance(QStringLiteral("0")) * 8);
    fieldRow->addWidget(makeLabel(QStringLiteral("Host:"), "Label1"));
    fieldRow->addWidget(txthost_, 2);
    fieldRow->addWidget(makeLabel(QStringLiteral("Port:"), "Label2"));
    fieldRow->addWidget(txtport_);
    fieldRow->addWidget(makeLabel(QStringLiteral("Call"), "Label3"));
    fieldRow->addWidget(txtdata_, 3);
    Label6_ = makeLabel(QString(), "Label6");
    Label6_->setMinimumWidth(
        Label6_->fontMetrics().horizontalAdvance(QStringLiteral("not connected")) + 8);
    fieldRow->addWidget(Label6_);
    Text1_ = makeField("Text1");
    Text1_->setMaximumWidth(txtport_->maximumWidth());
    fieldRow->addWidget(Text1_);
    column->addLayout(fieldRow);

    connect(Command1_, &QPushButton::clicked, this,
            [this] { runHandler([this] { Command1_Click(); }); });
    connect(CMD_Debug_Datei_, &QPushButton::clicked, this,
            [this] { runHandler([this] { CMD_Debug_Datei_Click(); }); });
    connect(CMD_Debug_Datei_laden_, &QPushButton::clicked, this,
            [this] { runHandler([this] { CMD_Debug_Datei_laden_Click(); }); });
    connect(Connect_Manuell_, &QPushButton::clicked, this,
            [this] { runHandler([this] { Connect_Manuell_Click(); }); });

    resize(720, 420);
}

void FrmTelnet::runHandler(const std::function<void()> &handler) {
    try {
        handler();
    } catch (const RunTimeError &error) {
        reportRunTimeError(platform_, error);
    }
}

void FrmTelnet::Form_Load() {
    if (state_.Telnet_Connected) {
        setWindowTitle(QStringLiteral("Connected"));
        setBackground(Label6_, fromBgrColour(Green));
    }
    // The desktop's colour of inactive window borders.
    setBackground(CMD_Debug_Datei_, palette().color(QPalette::Inactive, QPalette::Window));
}

void FrmTelnet::Command1_Click() {
    host_.sendData(txtCommand_->text() + QStringLiteral("\r\n"));
}

void FrmTelnet::CMD_Debug_Datei_Click() {
    const QString path = debugFilePath();
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append)) {
        throw RunTimeError(RunTimeError::FileNotFound,
                           path + QStringLiteral(": ") + file.errorString());
    }
    // Each chunk keeps its own line ends and gets one more; element 0 is
    // the empty line that starts every recording.
    bool written = true;
    for (const QString &chunk : std::as_const(state_.Console_Lines)) {
        written = written && file.write(chunk.toLatin1()) >= 0 && file.write("\r\n", 2) == 2;
    }
    written = written && file.flush();
    if (!written) {
        throw RunTimeError(RunTimeError::FileNotFound,
                           path + QStringLiteral(": ") + file.errorString());
    }
}

void FrmTelnet::CMD_Debug_Datei_laden_Click() {
    CMD_Debug_Datei_laden_->setEnabled(false);
    try {
        state_.RunMode = QStringLiteral("FILE");
        host_.prepareFileReplay();
        host_.Replay_SpotFile();
    } catch (...) {
        CMD_Debug_Datei_laden_->setEnabled(true);
        throw;
    }
    CMD_Debug_Datei_laden_->setEnabled(true);
}

void FrmTelnet::Connect_Manuell_Click() {
    if (state_.RunMode == QLatin1String("WEBCLUSTER")) {
        host_.startWebRefresh();
        host_.Evaluate_SpotPage();
    } else {
        // A file replay is left for the telnet source.
        state_.RunMode = QStringLiteral("TELNETCLUSTER");
    }
    // Connects with the host and port of the settings, not of the fields.
    host_.runStartup();
}

void FrmTelnet::setFields(const QString &host, const QString &port, const QString &call) {
    pendingData_.reset();
    txthost_->setText(host);
    txtport_->setText(port);
    txtdata_->setText(call);
}

void FrmTelnet::setDataField(const QString &text) {
    if (isVisible()) {
        txtdata_->setText(text);
    } else {
        pendingData_ = text;
    }
}

void FrmTelnet::showEvent(QShowEvent *event) {
    if (pendingData_) {
        txtdata_->setText(*pendingData_);
        pendingData_.reset();
    }
    QWidget::showEvent(event);
}

void FrmTelnet::setConnectionState(const QString &caption, std::uint32_t bgrColour) {
    Label6_->setText(caption);
    setBackground(Label6_, fromBgrColour(bgrColour));
}

void FrmTelnet::appendRecord(const QString &chunk) {
    if (chunk.isEmpty()) {
        return;
    }
    // Every kind of line end starts a new line of the pane; other control
    // characters (the node's bells, telnet's NUL) would show as boxes.
    QString text = chunk;
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    text.removeIf([](QChar c) { return c.unicode() < 0x20 && c != u'\n' && c != u'\t'; });
    QScrollBar *bar = RichTextBox1_->verticalScrollBar();
    const bool following = bar->value() >= bar->maximum();
    QTextCharFormat black;
    black.setForeground(Qt::black);
    QTextCursor cursor(RichTextBox1_->document());
    cursor.movePosition(QTextCursor::End);
    cursor.insertText(text, black);
    if (following) {
        bar->setValue(bar->maximum());
    }
}

QString FrmTelnet::debugFilePath() const {
    return QDir(state_.Folders.data).filePath(state_.Telnet_DebugFile);
}

} // namespace zkr
