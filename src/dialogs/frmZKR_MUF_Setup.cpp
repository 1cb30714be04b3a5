#include "frmZKR_MUF_Setup.h"

#include "BgrColour.h"
#include "ClusterList.h"
#include "ClusterListView.h"
#include "IniFile.h"
#include "Locators.h"
#include "MsgBox_Pos.h"
#include "OwnCall.h"
#include "Platform.h"
#include "ProgramState.h"
#include "PskReporterPayload.h"
#include "RunModes.h"
#include "RunTimeError.h"
#include "SettingsFile.h"
#include "SetupDialogHost.h"
#include "SpotLineParsing.h"

#include <QCheckBox>
#include <QDir>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace zkr {

namespace {

const QString NoCallMarker = QStringLiteral("!NOCALL!");
const QString FileMarker = QStringLiteral("!FILE!");

constexpr std::uint32_t White = 0xFFFFFF;
constexpr std::uint32_t Green = 0x00FF00;
constexpr std::uint32_t Blue = 0xFF0000;
constexpr std::uint32_t Black = 0x000000;

const QString ExitCaption = QStringLiteral("&E X I T");

void setBackground(QWidget *widget, std::uint32_t bgr) {
    widget->setAutoFillBackground(true);
    QPalette palette = widget->palette();
    palette.setColor(widget->backgroundRole(), fromBgr(bgr));
    widget->setPalette(palette);
}

} // namespace

frmZKR_MUF_Setup::frmZKR_MUF_Setup(ProgramState &state, Platform &platform, SetupDialogHost &host,
                                   QWidget *parent)
    : QDialog(parent), state_(state), platform_(platform), host_(host),
      updateCheck_(state, platform,
                   [&host](const QString &url, UpdateCheck::Done done) {
                       host.fetchPage(url, std::move(done));
                   }),
      modalSession_([](frmZKR_MUF_Setup &dialog) { dialog.exec(); }) {
    setObjectName(QStringLiteral("frmZKR_MUF_Setup"));
    setWindowTitle(QStringLiteral("ZKR_MUF Setup"));
    buildControls();
    applyColours();
    resetButtons();
    updateCheck_.setFinishedHandler([this] { enableUpdateControls(); });
}

void frmZKR_MUF_Setup::buildControls() {
    auto *outer = new QVBoxLayout(this);
    auto *columns = new QHBoxLayout;
    outer->addLayout(columns);
    // The cluster on the left as it always was, the other sources and the
    // watch on the right: the dialog grows in width, not in height.
    auto *column = new QVBoxLayout;
    auto *right = new QVBoxLayout;
    columns->addLayout(column);
    columns->addLayout(right);

    auto *fields = new QGridLayout;
    auto makeField = [this, fields](const QString &caption, const char *labelName,
                                    const char *fieldName, int row, QLabel *&label) {
        label = new QLabel(caption, this);
        label->setObjectName(QLatin1String(labelName));
        label->setMargin(2);
        auto *field = new QLineEdit(this);
        field->setObjectName(QLatin1String(fieldName));
        label->setBuddy(field);
        fields->addWidget(label, row, 0);
        fields->addWidget(field, row, 1);
        return field;
    };
    text_Call_ = makeField(QStringLiteral("&Call"), "Label12", "text_Call", 0, Label12_);
    text_Locator_ = makeField(QStringLiteral("&Locator"), "Label13", "text_Locator", 1, Label13_);
    column->addLayout(fields);

    Frame2_ = new QGroupBox(QStringLiteral("Telnet DX cluster (click one to use it)"), this);
    Frame2_->setObjectName(QStringLiteral("Frame2"));
    auto *frameColumn = new QVBoxLayout(Frame2_);
    ListView1_ = new QTreeWidget(Frame2_);
    ListView1_->setObjectName(QStringLiteral("ListView1"));
    ListView1_->setRootIsDecorated(false);
    ListView1_->setUniformRowHeights(true);
    ListView1_->setAllColumnsShowFocus(true);
    ListView1_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    ListView1_->setSelectionMode(QAbstractItemView::SingleSelection);
    ListView1_->setHeaderLabels(
        {QStringLiteral("DX-Cluster"), QStringLiteral("Host"), QStringLiteral("Port")});
    // The list's width (7000 twips) until the list file sets it.
    ListView1_->setFixedWidth(467);
    ListView1_->setMinimumHeight(ListView1_->fontMetrics().lineSpacing() * 10);
    frameColumn->addWidget(ListView1_);
    Label_ClusterList_ = new QLabel(Frame2_);
    Label_ClusterList_->setObjectName(QStringLiteral("Label_ClusterList"));
    Label_ClusterList_->setTextFormat(Qt::PlainText); // a path is no markup
    Label_ClusterList_->setWordWrap(true);
    Label_ClusterList_->setVisible(false);
    frameColumn->addWidget(Label_ClusterList_);
    column->addWidget(Frame2_, 1);

    auto *updates = new QHBoxLayout;
    CheckBox_AutoUpdate_ = new QCheckBox(QStringLiteral("Check for &updates at start"), this);
    CheckBox_AutoUpdate_->setObjectName(QStringLiteral("CheckBox_AutoUpdate"));
    CommandButton_Check_for_Updates_ = new QPushButton(QStringLiteral("Check &now"), this);
    CommandButton_Check_for_Updates_->setObjectName(
        QStringLiteral("CommandButton_Check_for_Updates"));
    CommandButton_Check_for_Updates_->setAutoDefault(false);
    updates->addWidget(CheckBox_AutoUpdate_);
    updates->addStretch();
    updates->addWidget(CommandButton_Check_for_Updates_);
    column->addLayout(updates);

    Frame_EsWatch_ = new QGroupBox(QStringLiteral("Es watch alerts"), this);
    Frame_EsWatch_->setObjectName(QStringLiteral("Frame_EsWatch"));
    auto *watchGrid = new QGridLayout(Frame_EsWatch_);
    const std::array<const char *, 7> watchCaptions{
        "6 m (50 MHz)", "4 m (70 MHz)", "2 m (144 MHz)", "rising (FOT >= 100 MHz)",
        "open",         "confirmed",    "sound"};
    for (std::size_t i = 0; i < watchBoxes_.size(); ++i) {
        auto *box = new QCheckBox(QLatin1String(watchCaptions[i]), Frame_EsWatch_);
        box->setObjectName(QStringLiteral("CheckBox_EsWatch%1").arg(i));
        watchGrid->addWidget(box, i < 3 ? 0 : 1, static_cast<int>(i < 3 ? i : i - 3));
        connect(box, &QCheckBox::clicked, this, [this] { markEdited(); });
        watchBoxes_[i] = box;
    }
    right->addWidget(buildSources());
    right->addWidget(Frame_EsWatch_);
    right->addStretch();

    auto *buttons = new QHBoxLayout;
    auto makeButton = [this, buttons](const QString &caption, const char *name) {
        auto *button = new QPushButton(caption, this);
        button->setObjectName(QLatin1String(name));
        // Enter in a field saves nothing by surprise.
        button->setAutoDefault(false);
        // Room for the two-line caption, so that an edit does not move them.
        button->setMinimumSize(150, button->fontMetrics().lineSpacing() * 2 + 14);
        buttons->addWidget(button);
        return button;
    };
    buttons->addStretch();
    Command_SaveConfig_ = makeButton(QStringLiteral("&S a v e"), "Command_SaveConfig");
    Command_ExitwWthoutSave_ = makeButton(ExitCaption, "Command_ExitwWthoutSave");
    outer->addLayout(buttons);

    connect(text_Call_, &QLineEdit::textEdited, this, [this] { text_Call_Change(); });
    connect(text_Locator_, &QLineEdit::textEdited, this, [this] { text_Locator_Change(); });
    connect(ListView1_, &QTreeWidget::itemClicked, this, [this](QTreeWidgetItem *item) {
        runHandler([this, item] { ListView1_ItemClick(item); });
    });
    connect(CheckBox_AutoUpdate_, &QCheckBox::clicked, this,
            [this] { runHandler([this] { CheckBox_AutoUpdate_Click(); }); });
    connect(CommandButton_Check_for_Updates_, &QPushButton::clicked, this,
            [this] { runHandler([this] { CommandButton_Check_for_Updates_Click(); }); });
    connect(Command_ExitwWthoutSave_, &QPushButton::clicked, this,
            [this] { Command_ExitwWthoutSave_Click(); });
    connect(Command_SaveConfig_, &QPushButton::clicked, this,
            [this] { runHandler([this] { Command_SaveConfig_Click(); }); });

    adjustSize();
}

QGroupBox *frmZKR_MUF_Setup::buildSources() {
    Frame_Sources_ = new QGroupBox(QStringLiteral("Sources"), this);
    Frame_Sources_->setObjectName(QStringLiteral("Frame_Sources"));
    auto *grid = new QGridLayout(Frame_Sources_);
    int row = 0;
    auto addStatus = [this, grid, &row](SourceRow source, const char *name) {
        auto *label = new QLabel(Frame_Sources_);
        label->setObjectName(QLatin1String(name));
        label->setTextFormat(Qt::PlainText); // hosts and errors are no markup
        label->setWordWrap(true);
        label->setIndent(16);
        QPalette palette = label->palette();
        palette.setColor(QPalette::WindowText, Qt::darkBlue);
        label->setPalette(palette);
        grid->addWidget(label, row++, 0, 1, 4);
        sourceStatus_[static_cast<std::size_t>(source)] = label;
    };
    auto addField = [this, grid, &row](const QString &caption, QWidget *field, int column,
                                       int span = 1) {
        auto *label = new QLabel(caption, Frame_Sources_);
        label->setBuddy(field);
        grid->addWidget(label, row, column);
        grid->addWidget(field, row, column + 1, 1, span);
    };
    auto lineEdit = [this](const char *name) {
        auto *edit = new QLineEdit(Frame_Sources_);
        edit->setObjectName(QLatin1String(name));
        connect(edit, &QLineEdit::textEdited, this, [this] { markEdited(); });
        return edit;
    };
    auto portBox = [this](const char *name) {
        auto *spin = new QSpinBox(Frame_Sources_);
        spin->setObjectName(QLatin1String(name));
        spin->setRange(1, 65535);
        connect(spin, &QSpinBox::valueChanged, this, [this] { markEdited(); });
        return spin;
    };
    auto checkBox = [this, grid, &row](const QString &caption, const char *name) {
        auto *box = new QCheckBox(caption, Frame_Sources_);
        box->setObjectName(QLatin1String(name));
        connect(box, &QCheckBox::clicked, this, [this] { markEdited(); });
        grid->addWidget(box, row++, 0, 1, 4);
        return box;
    };

    grid->addWidget(new QLabel(QStringLiteral("DX cluster: the list on the left"), Frame_Sources_),
                    row++, 0, 1, 4);
    addStatus(SourceRow::Cluster, "Label_Status_Cluster");

    CheckBox_Wsjtx_ = checkBox(QStringLiteral("WSJT-X / JTDX decodes (UDP, their \"UDP Server\")"),
                               "CheckBox_Wsjtx");
    text_WsjtxAddress_ = lineEdit("text_WsjtxAddress");
    spin_WsjtxPort_ = portBox("spin_WsjtxPort");
    addField(QStringLiteral("Address"), text_WsjtxAddress_, 0);
    addField(QStringLiteral("Port"), spin_WsjtxPort_, 2);
    ++row;
    text_WsjtxGroup_ = lineEdit("text_WsjtxGroup");
    text_WsjtxGroup_->setPlaceholderText(QStringLiteral("none (e.g. 239.255.0.1 to share)"));
    addField(QStringLiteral("Multicast"), text_WsjtxGroup_, 0, 3);
    ++row;
    addStatus(SourceRow::Wsjtx, "Label_Status_Wsjtx");

    CheckBox_PskReporter_ =
        checkBox(QStringLiteral("PSK Reporter live feed (MQTT)"), "CheckBox_PskReporter");
    text_PskHost_ = lineEdit("text_PskHost");
    spin_PskPort_ = portBox("spin_PskPort");
    addField(QStringLiteral("Host"), text_PskHost_, 0);
    addField(QStringLiteral("Port"), spin_PskPort_, 2);
    ++row;
    text_PskBands_ = lineEdit("text_PskBands");
    text_PskBands_->setPlaceholderText(QStringLiteral("6m,4m,2m or all"));
    addField(QStringLiteral("Bands"), text_PskBands_, 0, 3);
    ++row;
    CheckBox_PskAllReports_ = checkBox(
        QStringLiteral("keep every report, also of clouds out of range"), "CheckBox_PskAllReports");
    addStatus(SourceRow::PskReporter, "Label_Status_Psk");
    grid->setColumnStretch(1, 1);
    Frame_Sources_->setMinimumWidth(fontMetrics().horizontalAdvance(QLatin1Char('X')) * 44);
    return Frame_Sources_;
}

void frmZKR_MUF_Setup::applyColours() {
    for (QWidget *widget : std::initializer_list<QWidget *>{this, Frame2_, Label12_, Label13_,
                                                            CheckBox_AutoUpdate_}) {
        setBackground(widget, White);
    }
}

void frmZKR_MUF_Setup::runHandler(const std::function<void()> &handler) {
    try {
        handler();
    } catch (const RunTimeError &error) {
        reportRunTimeError(platform_, error);
    }
}

WatchSettings frmZKR_MUF_Setup::watchSettings() const {
    WatchSettings settings;
    bool *switches[] = {&settings.band50, &settings.band70,    &settings.band144, &settings.rising,
                        &settings.open,   &settings.confirmed, &settings.sound};
    for (std::size_t i = 0; i < watchBoxes_.size(); ++i) {
        *switches[i] = watchBoxes_[i]->isChecked();
    }
    return settings;
}

void frmZKR_MUF_Setup::setWatchSettings(const WatchSettings &settings) {
    const bool switches[] = {settings.band50, settings.band70,    settings.band144, settings.rising,
                             settings.open,   settings.confirmed, settings.sound};
    for (std::size_t i = 0; i < watchBoxes_.size(); ++i) {
        watchBoxes_[i]->setChecked(switches[i]);
    }
}

WsjtxSettings frmZKR_MUF_Setup::wsjtxSettings() const {
    WsjtxSettings settings;
    settings.enabled = CheckBox_Wsjtx_->isChecked();
    settings.address = text_WsjtxAddress_->text().trimmed();
    settings.port = static_cast<quint16>(spin_WsjtxPort_->value());
    settings.multicastGroup = text_WsjtxGroup_->text().trimmed();
    return settings;
}

void frmZKR_MUF_Setup::setWsjtxSettings(const WsjtxSettings &settings) {
    CheckBox_Wsjtx_->setChecked(settings.enabled);
    text_WsjtxAddress_->setText(settings.address);
    spin_WsjtxPort_->setValue(settings.port);
    text_WsjtxGroup_->setText(settings.multicastGroup);
}

PskReporterSettings frmZKR_MUF_Setup::pskReporterSettings() const {
    PskReporterSettings settings;
    settings.enabled = CheckBox_PskReporter_->isChecked();
    // An empty host keeps the default rather than connect nowhere.
    if (const QString host = text_PskHost_->text().trimmed(); !host.isEmpty()) {
        settings.host = host;
    }
    settings.port = static_cast<quint16>(spin_PskPort_->value());
    if (const QStringList bands = pskReporterBands(text_PskBands_->text()); !bands.isEmpty()) {
        settings.bands = bands;
    }
    settings.allReports = CheckBox_PskAllReports_->isChecked();
    return settings;
}

void frmZKR_MUF_Setup::setPskReporterSettings(const PskReporterSettings &settings) {
    CheckBox_PskReporter_->setChecked(settings.enabled);
    text_PskHost_->setText(settings.host);
    spin_PskPort_->setValue(settings.port);
    text_PskBands_->setText(settings.bands.join(QLatin1Char(',')));
    CheckBox_PskAllReports_->setChecked(settings.allReports);
}

void frmZKR_MUF_Setup::setSourceStatus(SourceRow row, const QString &text) {
    sourceStatus_[static_cast<std::size_t>(row)]->setText(text);
    // A status of several lines (a busy port and what to do) makes room for
    // itself rather than be cut.
    layout()->activate();
    if (const int needed = heightForWidth(width()); needed > height()) {
        resize(width(), needed);
    }
}

void frmZKR_MUF_Setup::writeOwnSections() {
    watchSettings().write(state_.IniFilePath);
    wsjtxSettings().write(state_.IniFilePath);
    pskReporterSettings().write(state_.IniFilePath);
}

QString frmZKR_MUF_Setup::clusterListPath() const {
    return state_.Folders.clusterList();
}

// --- Buttons ---

void frmZKR_MUF_Setup::markEdited() {
    Command_ExitwWthoutSave_->setText(ExitCaption + QStringLiteral("\r\n(disregard changes)"));
    Command_SaveConfig_->setEnabled(true);
    for (QPushButton *button : {Command_SaveConfig_, Command_ExitwWthoutSave_}) {
        QPalette palette = button->palette();
        palette.setColor(QPalette::Button, fromBgr(Green));
        button->setPalette(palette);
    }
}

void frmZKR_MUF_Setup::resetButtons() {
    Command_ExitwWthoutSave_->setText(ExitCaption);
    Command_SaveConfig_->setEnabled(false);
    for (QPushButton *button : {Command_SaveConfig_, Command_ExitwWthoutSave_}) {
        QPalette palette = button->palette();
        palette.setColor(QPalette::Button, fromBgr(White));
        button->setPalette(palette);
    }
}

void frmZKR_MUF_Setup::text_Call_Change() {
    markEdited();
}

void frmZKR_MUF_Setup::text_Locator_Change() {
    markEdited();
}

// --- Opening and leaving ---

void frmZKR_MUF_Setup::readSettings() {
    state_.Loading_Settings = true;
    host_.settingsFile().Read_Settings();
    state_.Loading_Settings = false;
}

void frmZKR_MUF_Setup::markClusterRow(bool marked) {
    for (int column = 1; column <= 3; ++column) {
        Format_ListCell(*ListView1_, marked ? Blue : Black, column, state_.Cluster_SelectedRow,
                        marked);
    }
}

void frmZKR_MUF_Setup::loadClusterList() {
    if (state_.RunMode != TelnetMode) {
        return;
    }
    const QString path = clusterListPath();
    QString errorText;
    if (!path.isEmpty()) {
        Load_ClusterList(*ListView1_, path, '|', errorText, state_);
        markClusterRow(true);
    }
    // A missing or empty list is said, with where it was looked for, so
    // that the user knows which file to write.
    QString problem;
    if (path.isEmpty()) {
        problem = QStringLiteral("No cluster list found. Looked for ") +
                  state_.Folders.clusterLists.join(QStringLiteral(", ")) + QLatin1Char('.');
    } else if (!errorText.isEmpty()) {
        problem = errorText;
    } else if (ListView1_->topLevelItemCount() == 0) {
        problem = QStringLiteral("The cluster list ") + path +
                  QStringLiteral(" has no clusters: one \"name|host|port\" line per node after "
                                 "a header line.");
    }
    Label_ClusterList_->setText(problem);
    Label_ClusterList_->setVisible(!problem.isEmpty());
}

void frmZKR_MUF_Setup::enableUpdateControls() {
    const bool configured = updateCheck_.isConfigured();
    const QString why =
        configured ? QString() : QStringLiteral("No download page is configured yet.");
    CheckBox_AutoUpdate_->setEnabled(configured);
    CheckBox_AutoUpdate_->setToolTip(why);
    CommandButton_Check_for_Updates_->setEnabled(configured && !updateCheck_.isRunning());
    CommandButton_Check_for_Updates_->setToolTip(why);
}

void frmZKR_MUF_Setup::Setup_Click() {
    if (inSession_) {
        showInFront();
        return;
    }
    state_.Call_BeforeSetup = state_.OwnCall;
    host_.setRefreshTimer(false);
    readSettings();
    setWatchSettings(WatchSettings::read(state_.IniFilePath));
    setWsjtxSettings(WsjtxSettings::read(state_.IniFilePath));
    setPskReporterSettings(PskReporterSettings::read(state_.IniFilePath));
    centreOver(host_.mainFrame());
    loadClusterList();
    resetButtons();
    enableUpdateControls();
    inSession_ = true;
    modalSession_(*this);
    inSession_ = false;
    if (state_.RunMode == WebMode) {
        host_.setRefreshTimer(true);
    }
}

void frmZKR_MUF_Setup::ListView1_ItemClick(QTreeWidgetItem *item) {
    // Joined and cut again at commas: a comma inside a cell shifts the
    // fields, as it always did.
    const QStringList cells = QStringList{item->text(0), item->text(1), item->text(2)}
                                  .join(QLatin1Char(','))
                                  .split(QLatin1Char(','));
    state_.Telnet_Call = cells.value(0);
    state_.Telnet_Host = cells.value(1);
    state_.Telnet_Port = cells.value(2);
    markClusterRow(false);
    markEdited();
}

void frmZKR_MUF_Setup::CheckBox_AutoUpdate_Click() {
    // Stored at once; the check itself runs at the next start.
    Ini_Write(QStringLiteral("AutoUpdateCheck"), QStringLiteral("UpdateCheck"),
              CheckBox_AutoUpdate_->isChecked() ? QStringLiteral("on") : QStringLiteral("off"),
              state_.IniFilePath);
}

void frmZKR_MUF_Setup::CommandButton_Check_for_Updates_Click() {
    updateCheck_.Check_Update_Interactive();
    enableUpdateControls();
}

void frmZKR_MUF_Setup::Command_ExitwWthoutSave_Click() {
    Command_SaveConfig_->setEnabled(false);
    hide();
}

void frmZKR_MUF_Setup::reject() {
    Command_ExitwWthoutSave_Click();
}

// --- Saving ---

void frmZKR_MUF_Setup::Command_SaveConfig_Click() {
    host_.setRefreshTimer(false);
    state_.Busy = true;

    // A wrong locator stops the save; the timer stays off and Busy set
    // until a save succeeds, so nothing runs on the wrong position.
    state_.OwnLocator = text_Locator_->text().trimmed().toUpper();
    state_.Locator_Invalid = Check_Locator(state_.OwnLocator);
    if (state_.Locator_Invalid) {
        platform_.beep(800, 200);
        MsgBox_Pos(platform_);
        platform_.messageBox(QStringLiteral("Locator is not correct !") + state_.CrLf +
                                 state_.CrLf + locatorProblem(state_.OwnLocator),
                             MsgButtons::OkCancel + MsgButtons::Exclamation, QString());
        text_Locator_->clear();
        return;
    }

    // Only a new call sign is asked for again; the file marker never is.
    state_.OwnCall = text_Call_->text();
    const QString typed = state_.OwnCall.toUpper();
    if (typed != state_.Call_BeforeSetup && typed != FileMarker) {
        text_Call_->setText(Check_OwnCall(state_, platform_, host_.settingsFile(), state_.OwnCall,
                                          state_.Check_OwnCall_Arg));
    }

    state_.RunMode_BeforeSetup = state_.RunMode;
    const QString call = text_Call_->text().toUpper();
    state_.RunMode = call == NoCallMarker ? WebMode : call == FileMarker ? FileMode : TelnetMode;
    if (state_.RunMode != TelnetMode) {
        // A cluster left connected would go on printing into the panes.
        host_.closeTelnetSession();
    }

    if (state_.RunMode == FileMode) {
        // A replay is for this session: the user's call stays the own call,
        // in the window and in the settings, for the next cluster login.
        state_.OwnCall = state_.Call_BeforeSetup;
        text_Call_->setText(state_.OwnCall);
        host_.showOwnCallLabels(QStringLiteral("CALL ") + state_.OwnCall,
                                ownLocatorCaption(state_.OwnLocator));
        Ini_Write(QStringLiteral("Locator"), QStringLiteral("OwnLocator"), state_.OwnLocator,
                  state_.IniFilePath);
        writeOwnSections();
        Q_EMIT settingsSaved();
        hide();
        host_.layoutForRunMode(true);
        host_.Replay_SpotFile();
        // The replay is over when it returns.
        state_.Busy = false;
        return;
    }

    SettingsFile &settings = host_.settingsFile();
    settings.Save_Settings();
    writeOwnSections();
    readSettings();
    Q_EMIT settingsSaved();
    Command_SaveConfig_->setEnabled(true);
    Command_ExitwWthoutSave_->setEnabled(true);
    host_.showOwnCallLabels(QStringLiteral("CALL ") + state_.OwnCall,
                            ownLocatorCaption(state_.OwnLocator));

    platform_.processEvents();
    state_.Web_Offline = false;
    state_.SpotPage_Previous.clear();
    if (state_.RunMode == WebMode) {
        host_.hideConsole();
        host_.layoutForRunMode(true);
        // The next tick fetches the page.
        state_.Refresh_Seconds = 60;
        host_.setRefreshTimer(true);
    } else {
        // Spots of another source go; a new cluster's spots join those of
        // the last one, which are just as current.
        host_.layoutForRunMode(state_.RunMode_BeforeSetup.toUpper() != TelnetMode);
        host_.setRefreshTimer(false);
    }

    state_.Busy = false;
    hide();
    if (state_.RunMode == TelnetMode) {
        host_.Telnet_Connect();
    }
}

// --- SetupDialogLink ---

QString frmZKR_MUF_Setup::callText() const {
    return text_Call_->text();
}

void frmZKR_MUF_Setup::setCallText(const QString &text) {
    text_Call_->setText(text);
}

QString frmZKR_MUF_Setup::locatorText() const {
    return text_Locator_->text();
}

void frmZKR_MUF_Setup::setLocatorText(const QString &text) {
    text_Locator_->setText(text);
}

bool frmZKR_MUF_Setup::isAutoUpdateChecked() const {
    return CheckBox_AutoUpdate_->isChecked();
}

void frmZKR_MUF_Setup::setAutoUpdateChecked(bool checked) {
    CheckBox_AutoUpdate_->setChecked(checked);
}

void frmZKR_MUF_Setup::showInFront() {
    // As fresh as from the Setup button: a first run may have saved in it
    // already.
    if (!isVisible()) {
        loadClusterList();
        resetButtons();
        enableUpdateControls();
    }
    show();
    raise();
    activateWindow();
}

void frmZKR_MUF_Setup::setSaveEnabled(bool enabled) {
    Command_SaveConfig_->setEnabled(enabled);
}

void frmZKR_MUF_Setup::centreOver(const QRect &mainFrame) {
    const QSize own = frameGeometry().size();
    move(mainFrame.left() + mainFrame.width() / 2 - own.width() / 2,
         mainFrame.top() + mainFrame.height() / 2 - own.height() / 2);
    if (!isVisible()) {
        centreTarget_ = mainFrame;
    }
}

void frmZKR_MUF_Setup::showEvent(QShowEvent *event) {
    QDialog::showEvent(event);
    if (centreTarget_) {
        const QRect target = *centreTarget_;
        centreTarget_.reset();
        centreOver(target);
    }
}

void frmZKR_MUF_Setup::unload() {
    hide();
}

} // namespace zkr
