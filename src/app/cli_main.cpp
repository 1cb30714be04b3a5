// zkr_muf_cli: evaluates recorded cluster text, a downloaded web spot page or
// a live cluster through the program's own feed and evaluation, and prints
// the four panes (text or JSON) or every spot as a JSON line.

#include "BuildInfo.h"
#include "CliOptions.h"
#include "CliReplay.h"
#include "HistoryCsv.h"
#include "HistoryDatabase.h"
#include "HistorySettings.h"
#include "PaneOutput.h"
#include "Platform.h"
#include "ProgramFolders.h"

#include <QCoreApplication>
#include <QFile>
#include <QSocketNotifier>

#include <csignal>
#include <cstdio>
#include <unistd.h>
#include <variant>

namespace {

constexpr int BadArguments = 2;

int signalPipe[2] = {-1, -1};

void onSignal(int) {
    const char byte = 1;
    // Only async-signal-safe work here: the event loop reads the pipe.
    [[maybe_unused]] const ssize_t written = ::write(signalPipe[1], &byte, 1);
}

void printTo(std::FILE *stream, const QString &text) {
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
}

int fail(const QString &message) {
    printTo(stderr, QStringLiteral("zkr_muf_cli: ") + message +
                        QStringLiteral("\nTry 'zkr_muf_cli --help' for more information.\n"));
    return BadArguments;
}

// SIGINT and SIGTERM end a live run the ordinary way: panes printed.
void stopOnSignals(zkr::CliReplay &run, QObject *owner) {
    if (::pipe(signalPipe) != 0) {
        return;
    }
    auto *notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, owner);
    QObject::connect(notifier, &QSocketNotifier::activated, owner, [&run] {
        char byte = 0;
        [[maybe_unused]] const ssize_t got = ::read(signalPipe[0], &byte, 1);
        run.stopLive();
    });
    struct sigaction action {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

// The history file of --db, else the one the program writes: found as the
// program finds it, its settings file may name another.
QString historyPath(const zkr::CliOptions &options) {
    if (!options.databasePath.isEmpty()) {
        return options.databasePath;
    }
    const zkr::ProgramFolders folders = zkr::ProgramFolders::locate(
        QCoreApplication::applicationDirPath(), zkr::standardUserFolder);
    return zkr::HistorySettings::read(folders.settingsFile(), folders.history).databasePath;
}

int exportCsv(const zkr::CliOptions &options) {
    zkr::HistoryDatabase database;
    const QString path = historyPath(options);
    if (!database.open(path, zkr::HistoryDatabase::Access::Reader)) {
        printTo(stderr, QStringLiteral("zkr_muf_cli: %1\n").arg(database.errorString()));
        return 1;
    }
    QFile out;
    QString error;
    if (!out.open(stdout, QIODevice::WriteOnly) ||
        !zkr::exportHistoryCsv(database, options.exportFrom, options.exportTo, out, error)) {
        printTo(stderr, QStringLiteral("zkr_muf_cli: export failed: %1\n").arg(error));
        return 1;
    }
    return 0;
}

} // namespace

int main(int argc, char *argv[]) {
    QCoreApplication app(argc, argv);
    const auto parsed = zkr::parseCliOptions(QCoreApplication::arguments());
    if (const QString *error = std::get_if<QString>(&parsed)) {
        return fail(*error);
    }
    const zkr::CliOptions &options = std::get<zkr::CliOptions>(parsed);
    if (options.help) {
        printTo(stdout, zkr::cliUsage());
        return 0;
    }
    if (options.version) {
        printTo(stdout, QStringLiteral("zkr_muf_cli %1\n").arg(QLatin1String(zkr::build::Version)));
        return 0;
    }
    if (options.exportCsv) {
        return exportCsv(options);
    }

    QFile out;
    if (!out.open(stdout, QIODevice::WriteOnly)) {
        return fail(QStringLiteral("cannot write to standard output"));
    }
    const bool live = !options.clusterHost.isEmpty();
    zkr::CliReplay run(options, options.jsonLines || options.watch ? &out : nullptr);
    if (live) {
        stopOnSignals(run, &app);
        run.runLive(options.seconds);
    } else {
        QFile input;
        const bool opened = options.fileName.isEmpty() ? input.open(stdin, QIODevice::ReadOnly)
                                                       : (input.setFileName(options.fileName),
                                                          input.open(QIODevice::ReadOnly));
        if (!opened) {
            return fail(QStringLiteral("cannot read \"%1\": %2")
                            .arg(options.fileName.isEmpty() ? QStringLiteral("standard input")
                                                            : options.fileName,
                                 input.errorString()));
        }
        if (options.webPage) {
            run.evaluateSpotPage(input);
        } else {
            run.replayClusterText(input);
        }
        if (input.error() != QFileDevice::NoError) {
            return fail(QStringLiteral("reading \"%1\" failed: %2")
                            .arg(options.fileName, input.errorString()));
        }
    }
    run.refreshDisplay();
    if (options.json) {
        zkr::Write_PanesJson(out, run.panes(), run.messages());
    } else if (!options.jsonLines && !options.watch) {
        zkr::Write_PanesText(out, run.panes());
    }
    out.close();
    for (const QString &message : run.messages()) {
        printTo(stderr, message + QLatin1Char('\n'));
    }
    return 0;
}
