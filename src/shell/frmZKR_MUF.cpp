#include "frmZKR_MUF.h"

#include "PaneView.h"

#include "BgrColour.h"
#include "EsWatchLink.h"
#include "Int16Arithmetic.h"
#include "OwnCall.h"
#include "Platform.h"
#include "ProgramState.h"
#include "ReportSources.h"
#include "RunModes.h"
#include "RunTimeError.h"
#include "SiteDefaults.h"
#include "SpotSources.h"
#include "Startup.h"
#include "frmInfo.h"
#include "frmZKR_MUF_Setup.h"

#include <QAction>
#include <QCheckBox>
#include <QCloseEvent>
#include <QDateTime>
#include <QFontDatabase>
#include <QGridLayout>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMouseEvent>
#include <QPushButton>
#include <QScreen>
#include <QStatusBar>
#include <QTabWidget>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

namespace zkr {

namespace {

constexpr std::uint32_t White = 0xFFFFFF;
constexpr std::uint32_t Black = 0x000000;
constexpr std::uint32_t Teal = 0xC0C000;
constexpr std::uint32_t LightYellow = 0xC0FFFF;
constexpr std::uint32_t Yellow = 0x00FFFF;
constexpr std::uint32_t Red = 0x0000FF;

void setBackground(QWidget *widget, const QColor &colour) {
    widget->setAutoFillBackground(true);
    QPalette palette = widget->palette();
    palette.setColor(widget->backgroundRole(), colour);
    widget->setPalette(palette);
}

void setForeground(QWidget *widget, const QColor &colour) {
    QPalette palette = widget->palette();
    palette.setColor(widget->foregroundRole(), colour);
    widget->setPalette(palette);
}

QPoint centredOver(const QRect &main, QSize own) {
    return QPoint(main.left() + main.width() / 2 - own.width() / 2,
                  main.top() + main.height() / 2 - own.height() / 2);
}

} // namespace

frmZKR_MUF::frmZKR_MUF(ProgramState &state, Platform &platform, QWidget *parent)
    : QMainWindow(parent), state_(state), platform_(platform),
      setup_(new frmZKR_MUF_Setup(state, platform, *this, this)), setupDialog_(setup_),
      settings_(state, platform, *this, *setupDialog_) {
    setObjectName(QStringLiteral("frmZKR_MUF"));
    buildControls();
    applyColours();
    sources_ = std::make_unique<SpotSources>(state_, platform_, *this);
    // The strip between the buttons and the tabs; the map after the panes.
    watchLink_ = new EsWatchLink(state_, platform_, sources_->pipeline(), *this);
    column_->insertWidget(1, &watchLink_->strip());
    SSTab1_->addTab(&watchLink_->map(), QStringLiteral("Map"));
    connect(setup_, &frmZKR_MUF_Setup::settingsSaved, watchLink_, &EsWatchLink::readSettings);
    // The reports after the map: a saved tab index keeps its meaning.
    auto *reportsPage = new QWidget(SSTab1_);
    auto *reportsStack = new QGridLayout(reportsPage);
    reportsStack->setContentsMargins(0, 0, 0, 0);
    reportsView_ = createPane(reportsPage, reportsWorking_);
    reportsView_->setObjectName(QStringLiteral("ReportsPane"));
    reportsView_->removeAction(exportAction_); // the export is of spots
    reportsStack->addWidget(reportsView_, 0, 0);
    SSTab1_->addTab(reportsPage, QStringLiteral("Reports"));
    reports_ = std::make_unique<ReportSources>(state_, platform_, sources_->pipeline(), *watchLink_,
                                               reportsWorking_, *reportsView_);
    connect(setup_, &frmZKR_MUF_Setup::settingsSaved, reports_.get(),
            &ReportSources::applySettings);
    connect(reports_.get(), &ReportSources::statusChanged, this,
            [this](ReportSources::Source source, const QString &text) {
                const bool wsjtx = source == ReportSources::Source::Wsjtx;
                (wsjtx ? Label_WsjtxStatus_ : Label_PskStatus_)->setFullText(text);
                setup_->setSourceStatus(wsjtx ? frmZKR_MUF_Setup::SourceRow::Wsjtx
                                              : frmZKR_MUF_Setup::SourceRow::PskReporter,
                                        text);
            });
    connect(reports_.get(), &ReportSources::notice, this,
            [this](const QString &text) { Label_ReportNotice_->setFullText(text); });
    Label_WsjtxStatus_->setFullText(reports_->status(ReportSources::Source::Wsjtx));
    Label_PskStatus_->setFullText(reports_->status(ReportSources::Source::PskReporter));
    // Spots restored from the history put their clouds back on the map.
    SpotHistory &history = sources_->history();
    connect(&history, &SpotHistory::restored, watchLink_, &EsWatchLink::addRestored);
    // Reports and the call book live in the history too.
    connect(reports_.get(), &ReportSources::reportEvaluated, &history, &SpotHistory::recordReport);
    connect(&history, &SpotHistory::restoredReports, reports_.get(),
            &ReportSources::restoreReports);
    connect(&history, &SpotHistory::reportsRestoreFinished, reports_.get(),
            &ReportSources::releaseLiveReports);
    connect(&history, &SpotHistory::callBookRestored, reports_.get(),
            &ReportSources::restoreCallBook);
    connect(setup_, &frmZKR_MUF_Setup::settingsSaved, this,
            [this] { sources_->history().setOwnLocator(usableOwnLocator(state_.OwnLocator)); });
    // What the call book learns goes to disk now and then, not at every
    // report: a busy band teaches many calls a second.
    auto *bookSaving = new QTimer(this);
    connect(bookSaving, &QTimer::timeout, this, &frmZKR_MUF::saveCallBook);
    bookSaving->start(CallBookSavingMs);
}

void frmZKR_MUF::closeHistory() {
    saveCallBook();
    sources_->closeHistory();
}

void frmZKR_MUF::saveCallBook() {
    const QList<CallBookEntry> changes = reports_->takeCallBookChanges();
    if (!changes.isEmpty()) {
        sources_->history().recordCallBook(changes);
    }
}

frmZKR_MUF::~frmZKR_MUF() = default;

void frmZKR_MUF::buildControls() {
    auto *central = new QWidget(this);
    auto *column = new QVBoxLayout(central);
    column_ = column;
    column->setContentsMargins(6, 6, 6, 6);
    column->setSpacing(4);

    auto *top = new QHBoxLayout;
    top->setSpacing(6);
    auto makeLabel = [central](const char *name) {
        auto *label = new QLabel(central);
        label->setObjectName(QLatin1String(name));
        // Captions carry network text (cluster names, hosts).
        label->setTextFormat(Qt::PlainText);
        label->setMargin(3);
        return label;
    };
    Label_OwnCall_ = makeLabel("Label_OwnCall");
    Label_OwnLocator_ = makeLabel("Label_OwnLocator");
    // The status gives up width rather than widen the window.
    Label_Telnet_Status_ = new ElidedLabel(central);
    Label_Telnet_Status_->setObjectName(QStringLiteral("Label_Telnet_Status"));
    Label_Telnet_Status_->setMargin(3);
    Label2_ = makeLabel("Label2");
    Label_LastSpot_ = makeLabel("Label_LastSpot");
    Label_LastSpot_->setToolTip(QStringLiteral("When the last spot came in (UTC)"));
    Label_LastSpot_->setFixedWidth(
        Label_LastSpot_->fontMetrics().horizontalAdvance(QStringLiteral("last spot 00:00:00Z")) +
        8);
    Label_LastSpot_->setVisible(false); // its room goes to the status until a spot came
    Label_OwnCall_->setVisible(false);
    Label_OwnLocator_->setVisible(false);
    Label_Telnet_Status_->setVisible(false);
    Label2_->setVisible(false);
    // The work label comes and goes with every spot: it keeps its place, so
    // that showing it never lays the window out again.
    {
        QSizePolicy policy = Label2_->sizePolicy();
        policy.setRetainSizeWhenHidden(true);
        Label2_->setSizePolicy(policy);
        Label2_->setFixedWidth(
            Label2_->fontMetrics().horizontalAdvance(QStringLiteral("trying to connect")) + 12);
    }
    Label_Telnet_Status_->setCursor(Qt::PointingHandCursor);
    Label_Telnet_Status_->installEventFilter(this);
    top->addWidget(Label_OwnCall_);
    top->addWidget(Label_OwnLocator_);
    top->addWidget(Label_Telnet_Status_, 1);
    top->addWidget(Label2_);
    top->addWidget(Label_LastSpot_);

    Check_Over144MHZOnly_ = new QCheckBox(QStringLiteral("only spots >= 144&MHz"), central);
    Check_Over144MHZOnly_->setObjectName(QStringLiteral("Check_Over144MHZOnly"));
    Check_EsSpotsOnly_ = new QCheckBox(QStringLiteral("only Es-spo&ts"), central);
    Check_EsSpotsOnly_->setObjectName(QStringLiteral("Check_EsSpotsOnly"));
    top->addWidget(Check_Over144MHZOnly_);
    top->addWidget(Check_EsSpotsOnly_);
    top->addStretch(0);

    auto makeButton = [central, top](const QString &caption, const char *name) {
        auto *button = new QPushButton(caption, central);
        button->setObjectName(QLatin1String(name));
        button->setAutoDefault(false);
        top->addWidget(button);
        return button;
    };
    // The console is where a user sends cluster commands and records a
    // debug file.
    Command_Telnet_ = makeButton(QStringLiteral("Telnet"), "Command_Telnet");
    Setup_ = makeButton(QStringLiteral("&Setup"), "Setup");
    About_ = makeButton(QStringLiteral("&About"), "About");
    Command_End_ = makeButton(QStringLiteral("&EXIT"), "Command_End");
    column->addLayout(top);

    buildMenuAndStatusBar();

    copyAction_ = new QAction(QStringLiteral("&Copy"), this);
    copyAction_->setObjectName(QStringLiteral("copyAction"));
    copyAction_->setShortcut(QKeySequence::Copy);
    copyAction_->setShortcutContext(Qt::WindowShortcut);
    addAction(copyAction_);

    // The spot history goes out as CSV from the panes' context menu.
    exportAction_ = new QAction(QStringLiteral("Export spot history (CSV)"), this);
    exportAction_->setObjectName(QStringLiteral("exportAction"));
    auto *ranges = new QMenu(this);
    for (const auto &[caption, hours] : {std::pair{"last hour...", 1},
                                         {"last 24 hours...", 24},
                                         {"last 7 days...", 24 * 7},
                                         {"everything...", 0}}) {
        QAction *range = ranges->addAction(QLatin1String(caption));
        range->setObjectName(QStringLiteral("exportHours%1").arg(hours));
        connect(range, &QAction::triggered, this, [this, hours = hours] {
            runHandler([this, hours] { sources_->exportHistory(hours); });
        });
    }
    exportAction_->setMenu(ranges);

    SSTab1_ = new QTabWidget(central);
    SSTab1_->setObjectName(QStringLiteral("SSTab1"));
    const std::array<const char *, PaneCount> captions{"All", "VHF", "2m", "Es"};
    for (int i = 0; i < PaneCount; ++i) {
        auto *page = new QWidget(SSTab1_);
        auto *stack = new QGridLayout(page);
        stack->setContentsMargins(0, 0, 0, 0);
        // The visible pane shows what the evaluation committed to the
        // working pane, so it never shows a half-printed spot.
        RichTextBox1_[static_cast<std::size_t>(i)] =
            createPane(page, RichTextBox2_[static_cast<std::size_t>(i)]);
        RichTextBox1_[static_cast<std::size_t>(i)]->setObjectName(
            QStringLiteral("RichTextBox1_%1").arg(i));
        stack->addWidget(RichTextBox1_[static_cast<std::size_t>(i)], 0, 0);
        SSTab1_->addTab(page, QLatin1String(captions[static_cast<std::size_t>(i)]));
    }
    column->addWidget(SSTab1_, 1);
    setCentralWidget(central);

    setTabOrder(SSTab1_, Command_Telnet_);
    setTabOrder(Command_Telnet_, Setup_);
    setTabOrder(Setup_, About_);
    setTabOrder(About_, Command_End_);

    Timer1_ = new QTimer(this);
    Timer1_->setObjectName(QStringLiteral("Timer1"));
    transientTimer_ = new QTimer(this);
    transientTimer_->setSingleShot(true);
    connect(transientTimer_, &QTimer::timeout, this,
            [this] { Label_Telnet_Status_->setFullText(regularStatus_); });

    connect(Timer1_, &QTimer::timeout, this, [this] { runHandler([this] { Timer1_Timer(); }); });
    connect(Check_EsSpotsOnly_, &QCheckBox::clicked, this,
            [this] { runHandler([this] { Check_EsSpotsOnly_Click(); }); });
    connect(Check_Over144MHZOnly_, &QCheckBox::clicked, this,
            [this] { runHandler([this] { Check_Over144MHZOnly_Click(); }); });
    connect(Command_End_, &QPushButton::clicked, this, [this] { Command_End_Click(); });
    connect(About_, &QPushButton::clicked, this, [this] { runHandler([this] { About_Click(); }); });
    connect(Setup_, &QPushButton::clicked, this, [this] { runHandler([this] { Setup_Click(); }); });
    connect(Command_Telnet_, &QPushButton::clicked, this, [this] { Command_Telnet_Click(); });
    connect(copyAction_, &QAction::triggered, this, [this] { Copy_Click(); });

    // Room for panes of 15100 x 6840 twips (about 1007 x 456 pixels).
    resize(1024, 540);
}

void frmZKR_MUF::buildMenuAndStatusBar() {
    QMenu *file = menuBar()->addMenu(QStringLiteral("&File"));
    file->setObjectName(QStringLiteral("fileMenu"));
    QAction *openLog = file->addAction(QStringLiteral("Open &decode log (ALL.TXT)..."));
    openLog->setObjectName(QStringLiteral("openDecodeLogAction"));
    connect(openLog, &QAction::triggered, this,
            [this] { runHandler([this] { OpenDecodeLog_Click(); }); });
    QAction *replay = file->addAction(QStringLiteral("&Replay a recorded cluster file..."));
    replay->setObjectName(QStringLiteral("replaySpotFileAction"));
    connect(replay, &QAction::triggered, this,
            [this] { runHandler([this] { ReplaySpotFile_Click(); }); });
    file->addSeparator();
    QAction *exit = file->addAction(QStringLiteral("E&xit"));
    connect(exit, &QAction::triggered, this, [this] { Command_End_Click(); });

    // The where box sits in the menu bar's free room, so it costs no height.
    auto *where = new QWidget(menuBar());
    auto *row = new QHBoxLayout(where);
    row->setContentsMargins(4, 1, 4, 1);
    row->setSpacing(4);
    auto *caption = new QLabel(QStringLiteral("&Where is"), where);
    text_WhereCall_ = new QLineEdit(where);
    text_WhereCall_->setObjectName(QStringLiteral("text_WhereCall"));
    text_WhereCall_->setPlaceholderText(QStringLiteral("call, Enter"));
    text_WhereCall_->setMaxLength(20);
    text_WhereCall_->setFixedWidth(
        text_WhereCall_->fontMetrics().horizontalAdvance(QStringLiteral("VP2E/DL1ABC/P")) + 16);
    caption->setBuddy(text_WhereCall_);
    Label_WhereAnswer_ = new ElidedLabel(where);
    Label_WhereAnswer_->setObjectName(QStringLiteral("Label_WhereAnswer"));
    Label_WhereAnswer_->setMinimumWidth(
        Label_WhereAnswer_->fontMetrics().horizontalAdvance(QLatin1Char('X')) * 60);
    row->addWidget(caption);
    row->addWidget(text_WhereCall_);
    row->addWidget(Label_WhereAnswer_, 1);
    menuBar()->setCornerWidget(where, Qt::TopRightCorner);
    connect(text_WhereCall_, &QLineEdit::returnPressed, this, &frmZKR_MUF::WhereCall_Enter);

    // The report sources say how they are below the tabs; the cluster keeps
    // the status at the top.
    Label_WsjtxStatus_ = new ElidedLabel(this);
    Label_WsjtxStatus_->setObjectName(QStringLiteral("Label_WsjtxStatus"));
    Label_PskStatus_ = new ElidedLabel(this);
    Label_PskStatus_->setObjectName(QStringLiteral("Label_PskStatus"));
    // What the sources had to say once (a missing country file, a replay's
    // result) stays until the next such word.
    Label_ReportNotice_ = new ElidedLabel(this);
    Label_ReportNotice_->setObjectName(QStringLiteral("Label_ReportNotice"));
    statusBar()->addWidget(Label_ReportNotice_, 1);
    statusBar()->addPermanentWidget(Label_WsjtxStatus_, 1);
    statusBar()->addPermanentWidget(Label_PskStatus_, 1);
}

PaneView *frmZKR_MUF::createPane(QWidget *parent, MemoryPane &source) {
    auto *pane = new PaneView(parent);
    pane->setFont(paneFont(10));
    pane->setSource(&source);
    pane->setContextMenuPolicy(Qt::ActionsContextMenu);
    pane->addAction(copyAction_);
    pane->addAction(exportAction_);
    return pane;
}

QFont frmZKR_MUF::paneFont(int pointSize) {
    // Columns of the output only line up in a fixed-pitch font.
    QFont font = QFontDatabase::hasFamily(QStringLiteral("Courier New"))
                     ? QFont(QStringLiteral("Courier New"))
                     : QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setStyleHint(QFont::TypeWriter);
    font.setFixedPitch(true);
    font.setPointSize(pointSize);
    return font;
}

PaneView *frmZKR_MUF::displayPane(int index) const {
    return RichTextBox1_.at(static_cast<std::size_t>(index));
}

MemoryPane &frmZKR_MUF::workingPane(int index) {
    return RichTextBox2_.at(static_cast<std::size_t>(index));
}

void frmZKR_MUF::refreshPanes() {
    for (int i = 0; i < PaneCount; ++i) {
        workingPane(i).commit();
        displayPane(i)->refresh();
    }
}

void frmZKR_MUF::setStatusLabel(const QString &caption, std::uint32_t bgrColour) {
    showStatusText(caption);
    setBackground(Label_Telnet_Status_, fromBgr(bgrColour));
    Label_Telnet_Status_->setEnabled(true);
    Label_Telnet_Status_->setVisible(true);
}

void frmZKR_MUF::showStatusText(const QString &caption) {
    regularStatus_ = caption;
    setup_->setSourceStatus(frmZKR_MUF_Setup::SourceRow::Cluster, caption);
    if (!transientTimer_->isActive()) {
        Label_Telnet_Status_->setFullText(caption);
    }
}

void frmZKR_MUF::showTransientStatus(const QString &caption, int milliseconds) {
    Label_Telnet_Status_->setFullText(caption);
    Label_Telnet_Status_->setVisible(true);
    transientTimer_->start(milliseconds);
}

void frmZKR_MUF::showLastSpot(const QDateTime &received) {
    // Formatted once a second at most, however fast the spots come.
    const qint64 second = received.toSecsSinceEpoch();
    if (second == lastSpotSecond_) {
        return;
    }
    lastSpotSecond_ = second;
    Label_LastSpot_->setText(QStringLiteral("last spot ") +
                             received.toUTC().toString(QStringLiteral("HH:mm:ss")) +
                             QLatin1Char('Z'));
    Label_LastSpot_->setVisible(true);
}

void frmZKR_MUF::showWorkLabel(const QString &caption) {
    Label2_->setText(caption);
    Label2_->setVisible(true);
}

void frmZKR_MUF::hideWorkLabel() {
    Label2_->setVisible(false);
}

bool frmZKR_MUF::over144Only() const {
    return Check_Over144MHZOnly_->isChecked();
}

bool frmZKR_MUF::esSpotsOnly() const {
    return Check_EsSpotsOnly_->isChecked();
}

void frmZKR_MUF::disableFilters() {
    for (QCheckBox *filter : {Check_Over144MHZOnly_, Check_EsSpotsOnly_}) {
        filter->setEnabled(false);
        filter->setVisible(false);
        filter->setChecked(false);
    }
}

frmInfo &frmZKR_MUF::aboutWindow() {
    if (info_ == nullptr) {
        info_ = new frmInfo(state_, platform_, this);
    }
    return *info_;
}

void frmZKR_MUF::runHandler(const std::function<void()> &handler) {
    try {
        handler();
    } catch (const RunTimeError &error) {
        reportRunTimeError(platform_, error);
    }
}

void frmZKR_MUF::Form_Load() {
    zkr::Form_Load(state_, platform_, *this);
}

// --- Layout passes ---

void frmZKR_MUF::applyColours() {
    setBackground(Label_Telnet_Status_, fromBgr(White));
    setForeground(Label_Telnet_Status_, fromBgr(Black));
    Label_Telnet_Status_->setVisible(false);
    setBackground(Check_Over144MHZOnly_, fromBgr(Teal));
    setBackground(Check_EsSpotsOnly_, fromBgr(Teal));
    setBackground(Label_OwnCall_, fromBgr(Teal));
    // Red while there is no own locator to compute with.
    setBackground(Label_OwnLocator_, fromBgr(isOwnLocatorSet(state_.OwnLocator) ? Teal : Red));
    // The desktop's colour of inactive window borders.
    setBackground(Command_End_, palette().color(QPalette::Inactive, QPalette::Window));
    setBackground(Label2_, fromBgr(LightYellow));
}

void frmZKR_MUF::layoutInitial() {
    applyColours();
    settings_.Read_Position();
    const QSize screen = platform_.screenSize();
    try {
        moveMainWindow(
            Main_WindowPosition(state_.Pos_Left, state_.Pos_Top, screen, mainWindowSize()));
    } catch (const RunTimeError &) {
        // Reported when start-up places the window once more.
        moveMainWindow(Main_WindowPosition(QString(), QString(), screen, mainWindowSize()));
    }
    centreDialogsOverMain();
    // The panes fill their tab (see buildControls).
    applyModeSettings(false);
}

void frmZKR_MUF::layoutByMode() {
    // Before the source starts, so that restored spots lie below live ones.
    sources_->startHistory();
    if (sources_->history().isRestoringReports()) {
        reports_->holdLiveReports();
    }
    // The own station and the country file before the first spot.
    reports_->start();
    applyColours();
    applyModeSettings(true);
    // A first run has shown the setup already, while creating the settings.
    state_.Settings_Created = false;
}

void frmZKR_MUF::applyModeSettings(bool secondPass) {
    const QString mode = state_.RunMode.toUpper();
    const bool web = mode == WebMode;
    if (!web && mode != TelnetMode && mode != FileMode) {
        return;
    }
    const QFont font = paneFont(web ? 8 : 10);
    for (int i = 0; i < PaneCount; ++i) {
        displayPane(i)->setFont(font);
    }
    reportsView_->setFont(font);
    if (web) {
        clearPanes();
    }
    for (int i = PaneCount - 1; i >= 0; --i) {
        SSTab1_->setTabEnabled(i, true);
    }
    // The two filters are not offered in this version.
    disableFilters();
    if (web) {
        showStatusText(QStringLiteral("Listen to ") + site::WebClusterBase);
        setBackground(Label_Telnet_Status_, fromBgr(Yellow));
        Label_Telnet_Status_->setVisible(true);
        if (secondPass) {
            Timer1_->start();
        }
    } else {
        Timer1_->stop();
        Label2_->setVisible(false);
        SSTab1_->setCurrentIndex(0);
        if (mode == FileMode) {
            state_.FileMode_Active = true;
            state_.Web_Offline = false;
        }
    }
    if (web && secondPass) {
        sources_->Evaluate_SpotPage();
    }
}

void frmZKR_MUF::clearPanes() {
    for (int i = 0; i < PaneCount; ++i) {
        workingPane(i).clear();
        displayPane(i)->refresh();
    }
}

// --- StartupWindow ---

void frmZKR_MUF::setMainCaption(const QString &caption) {
    setWindowTitle(caption);
}

void frmZKR_MUF::setTimerInterval(int milliseconds) {
    Timer1_->setInterval(milliseconds);
}

void frmZKR_MUF::setTimerEnabled(bool enabled) {
    if (enabled) {
        Timer1_->start();
    } else {
        Timer1_->stop();
    }
}

void frmZKR_MUF::checkSettingsFile() {
    settings_.Check_SettingsFile();
}

void frmZKR_MUF::showOwnCallLabels(const QString &callCaption, const QString &locatorCaption) {
    Label_OwnCall_->setText(callCaption);
    Label_OwnCall_->setVisible(true);
    Label_OwnLocator_->setText(locatorCaption);
    Label_OwnLocator_->setVisible(true);
    const bool set = isOwnLocatorSet(state_.OwnLocator);
    setBackground(Label_OwnLocator_, fromBgr(set ? Teal : Red));
    Label_OwnLocator_->setToolTip(
        set ? QString() : QStringLiteral("Spots show no Es results until Setup has your locator"));
}

void frmZKR_MUF::selectTab(int index) {
    if (index >= 0 && index < SSTab1_->count()) {
        SSTab1_->setCurrentIndex(index);
    }
}

void frmZKR_MUF::setSetupSaveEnabled(bool enabled) {
    setupDialog_->setSaveEnabled(enabled);
}

QSize frmZKR_MUF::mainWindowSize() {
    return frameGeometry().size();
}

void frmZKR_MUF::moveMainWindow(QPoint topLeft) {
    // The saved place is the inside of the window (its frame is not known
    // before the first show, and differs between desktops): read and
    // written the same way it does not creep. A place on a screen that is
    // gone (a laptop away from its monitor) is brought back to the main one.
    QRect wanted(topLeft, size());
    const QRect grip(wanted.topLeft(), QSize(std::min(wanted.width(), 120), 30));
    bool reachable = false;
    for (const QScreen *screen : QGuiApplication::screens()) {
        reachable = reachable || screen->availableGeometry().contains(grip);
    }
    const QScreen *primary = QGuiApplication::primaryScreen();
    if (!reachable && primary != nullptr) {
        const QRect area = primary->availableGeometry();
        wanted.moveCenter(area.center());
        wanted.moveTopLeft(
            QPoint(std::max(wanted.left(), area.left()), std::max(wanted.top(), area.top())));
    }
    setGeometry(wanted);
}

void frmZKR_MUF::centreDialogsOverMain() {
    const QRect main = frameGeometry();
    setupDialog_->centreOver(main);
    frmInfo &info = aboutWindow();
    info.move(centredOver(main, info.frameGeometry().size()));
}

void frmZKR_MUF::prepareDeveloperConsole() {
    FrmTelnet &console = sources_->console();
    console.setFields(state_.Telnet_Host, state_.Telnet_Port, state_.OwnCall);
    console.showMinimized();
    platform_.processEvents();
}

void frmZKR_MUF::telnetConnect() {
    sources_->Telnet_Connect();
}

void frmZKR_MUF::replaySpotFile() {
    sources_->Replay_SpotFile();
}

// --- MainWindowLink and MainStatusLabel ---

int frmZKR_MUF::windowLeft() const {
    return geometry().x();
}

int frmZKR_MUF::windowTop() const {
    return geometry().y();
}

bool frmZKR_MUF::isWindowMinimized() const {
    return isMinimized();
}

int frmZKR_MUF::selectedTab() const {
    return SSTab1_->currentIndex();
}

void frmZKR_MUF::Winsock_Close() {
    sources_->closeSession();
    setStatusLabel(SpotSources::NotConnectedText, Red);
}

void frmZKR_MUF::unloadAllWindows() {
    unloading_ = true;
    setupDialog_->unload();
    if (info_ != nullptr) {
        info_->close();
    }
    sources_->unloadConsole();
    // The process ends right after: the last spots go to disk now.
    closeHistory();
    close();
}

void frmZKR_MUF::showStatusCaption(const QString &caption) {
    showStatusText(caption);
    Label_Telnet_Status_->setVisible(true);
}

// --- SetupDialogHost ---

void frmZKR_MUF::setRefreshTimer(bool enabled) {
    if (enabled) {
        Timer1_->start(1000);
    } else {
        Timer1_->stop();
    }
}

void frmZKR_MUF::layoutForRunMode(bool emptyPanes) {
    applyColours();
    applyModeSettings(false);
    if (emptyPanes) {
        clearPanes();
    }
}

void frmZKR_MUF::hideConsole() {
    sources_->hideConsole();
}

void frmZKR_MUF::closeTelnetSession() {
    sources_->closeSession();
}

void frmZKR_MUF::Telnet_Connect() {
    sources_->Telnet_Connect();
}

void frmZKR_MUF::Replay_SpotFile() {
    sources_->Replay_SpotFile();
}

void frmZKR_MUF::fetchPage(const QString &url, std::function<void(std::optional<QString>)> done) {
    sources_->fetchUpdatePage(url, std::move(done));
}

// --- Event handlers ---

void frmZKR_MUF::Timer1_Timer() {
    state_.Refresh_Seconds = add16(state_.Refresh_Seconds, 1);
    if (state_.Refresh_Seconds >= 60) {
        state_.Refresh_Seconds = 0;
        sources_->Evaluate_SpotPage();
    }
}

void frmZKR_MUF::Check_EsSpotsOnly_Click() {
    filterClicked(state_.EsSpotsOnly_Changed);
}

void frmZKR_MUF::Check_Over144MHZOnly_Click() {
    filterClicked(state_.Over144_Changed);
}

void frmZKR_MUF::filterClicked(bool &changedFlag) {
    if (state_.Loading_Settings) {
        return;
    }
    changedFlag = true;
    state_.SpotPage_Previous.clear();
    if (state_.RunMode == WebMode) {
        sources_->Evaluate_SpotPage();
        state_.Refresh_Seconds = 0;
    } else if (state_.RunMode == TelnetMode && state_.Telnet_Connected) {
        sources_->reevaluateRecent();
    }
}

void frmZKR_MUF::Label_Telnet_Status_Click() {
    if (state_.RunMode != WebMode) {
        state_.RunMode = TelnetMode;
        if (state_.Telnet_Connected) {
            return;
        }
        // A session waiting for its next try connects at once; a closed one
        // needs the setup looked at, as the status says.
        if (sources_->session().state() == ClusterSession::State::Idle) {
            Setup_Click();
        } else {
            sources_->session().retryNow();
        }
    } else {
        Timer1_->start();
        sources_->Evaluate_SpotPage();
    }
}

void frmZKR_MUF::Command_End_Click() {
    state_.Busy = true;
    settings_.shutDown();
}

void frmZKR_MUF::About_Click() {
    Timer1_->stop();
    frmInfo &info = aboutWindow();
    info.move(centredOver(frameGeometry(), info.frameGeometry().size()));
    info.show();
    // Its frame is only known once shown the first time.
    info.move(centredOver(frameGeometry(), info.frameGeometry().size()));
    info.raise();
    info.activateWindow();
    if (state_.RunMode == WebMode) {
        Timer1_->start();
    }
}

void frmZKR_MUF::Setup_Click() {
    setupDialog_->Setup_Click();
}

void frmZKR_MUF::Command_Telnet_Click() {
    sources_->showConsole();
}

void frmZKR_MUF::Copy_Click() {
    const int tab = SSTab1_->currentIndex();
    if (tab == MapTab) {
        return; // the map has no text
    }
    const QString text = tab == ReportsTab ? reportsView_->text() : displayPane(tab)->text();
    platform_.clearClipboard();
    platform_.setClipboardText(text);
}

void frmZKR_MUF::OpenDecodeLog_Click() {
    reports_->openDecodeLog();
}

void frmZKR_MUF::ReplaySpotFile_Click() {
    // As the console's button does: the file replaces the cluster's spots.
    state_.RunMode = FileMode;
    sources_->prepareFileReplay();
    sources_->Replay_SpotFile();
}

void frmZKR_MUF::WhereCall_Enter() {
    Label_WhereAnswer_->setFullText(reports_->whereIs(text_WhereCall_->text()));
}

// --- Qt events ---

void frmZKR_MUF::closeEvent(QCloseEvent *event) {
    if (unloading_) {
        event->accept();
        return;
    }
    // Closing by the frame ends the program like EXIT, position saved.
    event->ignore();
    Command_End_Click();
}

void frmZKR_MUF::showEvent(QShowEvent *event) {
    QMainWindow::showEvent(event);
    if (!shownOnce_) {
        shownOnce_ = true;
        QTimer::singleShot(0, this, [this] { afterFirstShow(); });
    }
}

void frmZKR_MUF::afterFirstShow() {
    showTransientStatus(QStringLiteral("Settings in ") + state_.IniFilePath);
    UpdateCheck &check = setup_->updateCheck();
    if (setupDialog_->isAutoUpdateChecked() && check.isConfigured()) {
        check.checkInBackground([this](const QString &text) { showTransientStatus(text); });
    }
}

bool frmZKR_MUF::eventFilter(QObject *watched, QEvent *event) {
    if (watched == Label_Telnet_Status_ && event->type() == QEvent::MouseButtonRelease &&
        static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton) {
        runHandler([this] { Label_Telnet_Status_Click(); });
        return true;
    }
    return QMainWindow::eventFilter(watched, event);
}

} // namespace zkr
