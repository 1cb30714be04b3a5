#include "CliReplay.h"

#include "AllTxtReader.h"
#include "CliOptions.h"
#include "ClusterSession.h"
#include "FileReplay.h"
#include "PageDecoding.h"
#include "PaneOutput.h"
#include "PskReporterClient.h"
#include "ReportOutput.h"
#include "RunModes.h"
#include "SpotLineParsing.h"
#include "SpotPage.h"
#include "WsjtxListener.h"

#include <QEventLoop>
#include <QFileDevice>
#include <QHostAddress>
#include <QIODevice>
#include <QTimer>

#include <cstdio>
#include <memory>
#include <utility>

namespace zkr {

namespace {

// A live source's state, on standard error: standard output is the data's.
void printStatus(const QString &text) {
    const QByteArray bytes = text.toUtf8() + '\n';
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stderr);
}

} // namespace

CliReplay::CliReplay(const CliOptions &options, QFileDevice *spotsOut)
    : options_(options), spotsOut_(spotsOut),
      writer_({&panes_[0], &panes_[1], &panes_[2], &panes_[3]}) {
    AnalysisSettings settings;
    settings.ownLocator = options.ownLocator;
    settings.columns = Load_ColumnTable(options.webPage ? WebMode : FileMode);
    settings.evalAll = options.evalAll;
    settings.over144Only = options.over144Only;
    settings.esSpotsOnly = options.esSpotsOnly;
    pipeline_.setSettings(settings);

    connectFeed(feed_);
    connect(&pipeline_, &SpotPipeline::spotEvaluated, this, &CliReplay::onSpot);
    if (options.watch) {
        watch_ = std::make_unique<EsWatch>();
        WatchSettings watching;
        watching.band50 = options.watchBands.contains(50);
        watching.band70 = options.watchBands.contains(70);
        watching.band144 = options.watchBands.contains(144);
        watch_->setSettings(watching);
        connect(&pipeline_, &SpotPipeline::spotEvaluated, watch_.get(), &EsWatch::addSpot);
        connect(watch_.get(), &EsWatch::levelReached, this,
                [this](const WatchCloud &, WatchLevel, const QString &text) {
                    if (spotsOut_ == nullptr) {
                        return;
                    }
                    const QString time = watch_->now().toString(QStringLiteral("HHmm"));
                    spotsOut_->write((time + QStringLiteral("Z ") + text).toUtf8() + '\n');
                    spotsOut_->flush(); // a script waits for it
                });
    }
    connect(&pipeline_, &SpotPipeline::pageStarted, this, [this] { writer_.beginPage(); });
    connect(&pipeline_, &SpotPipeline::pageFinished, this, [this](unsigned panesWithEs) {
        writer_.endPage(panesWithEs);
        refreshDisplay();
    });
}

CliReplay::~CliReplay() = default;

void CliReplay::connectFeed(ClusterFeed &feed) {
    const SpotSource source = &feed == &feed_ ? SpotSource::File : SpotSource::Cluster;
    connect(&feed, &ClusterFeed::spotLine, &pipeline_,
            [this, source](const QString &line, bool utf8) {
                pipeline_.evaluateClusterLine(line, utf8, source);
            });
    connect(&feed, &ClusterFeed::promptBlock, this, [this](const QString &block) {
        writer_.writePrompt(block);
        refreshDisplay();
    });
}

void CliReplay::onSpot(const EvaluatedSpot &spot) {
    writer_.writeSpot(spot);
    // Committed spot by spot: a pane's new text is built at its top.
    if (!writer_.inPage()) {
        refreshDisplay();
    }
    if (!spot.error.isEmpty() && !messages_.contains(spot.error)) {
        messages_.append(spot.error);
    }
    if (spotsOut_ != nullptr && !options_.watch) {
        QByteArray &line = line_;
        line.truncate(0); // its room is kept for the next
        Write_SpotJson(line, spot);
        line += '\n';
        spotsOut_->write(line);
        if (live_) {
            spotsOut_->flush(); // a live spot is news: hand it on at once
        }
    }
}

void CliReplay::useCallBook() {
    pipeline_.setLocator(&callBook_);
    learning_ = true;
    if (!options_.ownCall.isEmpty()) {
        callBook_.learnOwn(options_.ownCall, options_.ownLocator, QDateTime::currentDateTimeUtc());
    }
}

void CliReplay::takeReport(const Reception &report) {
    if (learning_) {
        callBook_.learn(report); // also from reports not kept: the call book wants them all
    }
    if (!options_.allReports && !Is_ReportInRange(report)) {
        return;
    }
    if (watch_ != nullptr) {
        watch_->addReport(report);
    } else if (spotsOut_ != nullptr) {
        QByteArray &line = line_;
        line.truncate(0);
        Write_ReportJson(line, report);
        line += '\n';
        spotsOut_->write(line);
        if (live_) {
            spotsOut_->flush();
        }
    } else {
        for (const TextRun &run : Report_Runs(report)) {
            reportsPane_.insertColored(run.text, run.colour);
        }
        reportsPane_.setCaret(0);
        reportsPane_.commit();
    }
}

qint64 CliReplay::replayDecodeLog(QIODevice &input) {
    AllTxtReader reader;
    reader.setOwnStation(options_.ownCall, options_.ownLocator);
    connect(&reader, &AllTxtReader::reception, this, &CliReplay::takeReport);
    return FileReplay::replayAll(input, reader);
}

void CliReplay::refreshDisplay() {
    for (MemoryPane &pane : panes_) {
        pane.commit();
    }
}

qint64 CliReplay::replayClusterText(QIODevice &input) {
    return FileReplay::replayAll(input, feed_);
}

void CliReplay::evaluateSpotPage(QIODevice &input) {
    const QString page = decodeWebPage(input.readAll());
    if (Is_ErrorPage(page)) {
        writer_.writeNotice(QStringLiteral("The Webserver may be down !"));
        refreshDisplay();
        return;
    }
    pipeline_.evaluatePage(Split_SpotPage(Strip_Tags(page)));
}

void CliReplay::startLive(std::unique_ptr<QObject> &source) {
    if (options_.reports == ReportSource::Wsjtx) {
        auto *listener = new WsjtxListener;
        source.reset(listener);
        listener->setOwnStation(options_.ownCall, options_.ownLocator);
        connect(listener, &WsjtxListener::reception, this, &CliReplay::takeReport);
        connect(listener, &WsjtxListener::statusChanged, this, &printStatus);
        WsjtxSettings settings;
        const bool group = QHostAddress(options_.reportHost).isMulticast();
        (group ? settings.multicastGroup : settings.address) = options_.reportHost;
        settings.port = options_.reportPort;
        listener->start(settings);
        return;
    }
    if (options_.reports == ReportSource::PskReporter) {
        auto *client = new PskReporterClient;
        source.reset(client);
        connect(client, &PskReporterClient::reception, this, &CliReplay::takeReport);
        // Once per state, not the countdown of a wait every second.
        auto state = std::make_shared<PskReporterClient::State>(PskReporterClient::State::Idle);
        connect(client, &PskReporterClient::statusChanged, this, [client, state] {
            if (std::exchange(*state, client->state()) != client->state()) {
                printStatus(client->statusText());
            }
        });
        client->start(options_.reportHost, options_.reportPort, options_.bands, options_.ownCall,
                      options_.ownLocator, options_.allReports);
        return;
    }
    auto *session = new ClusterSession;
    source.reset(session);
    session_ = session;
    connectFeed(session->feed());
    // Once per change: not a wait's countdown every second, not the same
    // text for connecting and connected twice.
    auto last = std::make_shared<std::pair<ClusterSession::State, QString>>(
        ClusterSession::State::Idle, QString());
    connect(session, &ClusterSession::statusChanged, this,
            [last](ClusterSession::State state, const QString &text) {
                const QString line = text.trimmed();
                if (state != std::exchange(last->first, state) && line != last->second) {
                    last->second = line;
                    printStatus(line);
                }
            });
    // The node has no name but its address.
    session->start(QString(), options_.clusterHost, options_.clusterPort, options_.ownCall);
}

void CliReplay::runLive(int seconds) {
    QEventLoop loop;
    liveLoop_ = &loop;
    live_ = true;
    QTimer aging;
    if (watch_ != nullptr) {
        // Live spots run on the wall clock; clouds age without spots too.
        watch_->setWallClock([] { return QDateTime::currentDateTimeUtc(); });
        connect(&aging, &QTimer::timeout, watch_.get(), &EsWatch::refresh);
        aging.start(30 * 1000);
    }
    if (seconds > 0) {
        QTimer::singleShot(seconds * 1000, &loop, &QEventLoop::quit);
    }
    std::unique_ptr<QObject> source;
    startLive(source);
    loop.exec();
    // The time is up or the tool was asked to end: no failure to report.
    source->disconnect(this);
    if (session_ != nullptr) {
        session_->stop();
        session_ = nullptr;
    }
    source.reset();
    liveLoop_ = nullptr;
    live_ = false;
}

void CliReplay::stopLive() {
    if (liveLoop_ != nullptr) {
        liveLoop_->quit();
    }
}

} // namespace zkr
