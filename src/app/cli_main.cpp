// zkr_muf_cli: evaluates recorded cluster text, a downloaded web spot page or
// a live cluster through the program's own feed and evaluation, and prints
// the four panes (text or JSON) or every spot as a JSON line; the same for
// reception reports (WSJT-X, a decode log, PSK Reporter) and the Reports
// pane. Answers where a call is from the stored call book.

#include "BuildInfo.h"
#include "CallBook.h"
#include "CallBookLocator.h"
#include "CliOptions.h"
#include "CliReplay.h"
#include "HistoryCsv.h"
#include "HistoryDatabase.h"
#include "HistorySettings.h"
#include "IniFile.h"
#include "Locators.h"
#include "PaneOutput.h"
#include "Platform.h"
#include "ProgramFolders.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QSocketNotifier>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <functional>
#include <limits>
#include <span>
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

zkr::ProgramFolders programFolders() {
    return zkr::ProgramFolders::locate(QCoreApplication::applicationDirPath(),
                                       zkr::standardUserFolder);
}

// The history file of --db, else the one the program writes: found as the
// program finds it, its settings file may name another.
QString historyPath(const zkr::CliOptions &options) {
    if (!options.databasePath.isEmpty()) {
        return options.databasePath;
    }
    const zkr::ProgramFolders folders = programFolders();
    return zkr::HistorySettings::read(folders.settingsFile(), folders.history).databasePath;
}

// The country file of --cty, else the first of the usual places; without
// one, said once, calls are located through the call book alone.
void loadCountries(const zkr::CliOptions &options, zkr::CountryFile &countries) {
    QStringList paths{options.countryFile};
    if (options.countryFile.isEmpty()) {
        paths = zkr::CountryFile::candidatePaths(programFolders().data);
        const auto missing = [](const QString &path) { return !QFileInfo(path).isFile(); };
        if (std::all_of(paths.begin(), paths.end(), missing)) {
            printTo(stderr, QStringLiteral("zkr_muf_cli: no country file (%1); calls are located "
                                           "through the call book alone\n")
                                .arg(paths.join(QStringLiteral(", "))));
            return;
        }
        paths.erase(std::remove_if(paths.begin(), paths.end(), missing), paths.end());
    }
    if (!countries.load(paths.front())) {
        printTo(stderr, QStringLiteral("zkr_muf_cli: %1; calls are located through the call "
                                       "book alone\n")
                            .arg(countries.errorString()));
    }
}

// Puts the history's call book into `book`: every entry `wanted` accepts.
// The history is never required: false when it cannot be read.
bool readCallBook(const zkr::CliOptions &options, zkr::CallBook &book,
                  const std::function<bool(const QString &call)> &wanted, QString &error) {
    zkr::HistoryDatabase database;
    if (!database.open(historyPath(options), zkr::HistoryDatabase::Access::Reader)) {
        error = database.errorString();
        return false;
    }
    const bool read = database.readCallBook([&](const zkr::CallBookEntry &entry) {
        if (wanted(entry.call)) {
            book.restore(entry);
        }
        return true;
    });
    if (!read) {
        error = database.errorString();
    }
    return read;
}

// The book as CSV to the file of --callbook-csv ("-": standard output).
int writeCallBook(const zkr::CliOptions &options, const zkr::CallBook &book) {
    QFile out(options.callBookCsv);
    const bool toStdout = options.callBookCsv == QLatin1String("-");
    if (!(toStdout ? out.open(stdout, QIODevice::WriteOnly) : out.open(QIODevice::WriteOnly))) {
        return fail(
            QStringLiteral("cannot write \"%1\": %2").arg(options.callBookCsv, out.errorString()));
    }
    zkr::Write_CallBookCsv(out, book);
    return 0;
}

int callBookCsv(const zkr::CliOptions &options) {
    zkr::CallBook book(std::numeric_limits<qsizetype>::max());
    QString error;
    if (!readCallBook(
            options, book, [](const QString &) { return true; }, error)) {
        printTo(stderr, QStringLiteral("zkr_muf_cli: %1\n").arg(error));
        return 1;
    }
    return writeCallBook(options, book);
}

// One line per call: "DL1ABC JO62QM within 5 km, learned from wsjtx at
// 2024-06-01T14:00:00Z (Fed. Rep. of Germany)", "EA8ZZ IL28BH within 300
// km, the position of its country Canary Islands", "W1XYZ/MM not located".
int where(const zkr::CliOptions &options) {
    zkr::CallBookLocator locator;
    loadCountries(options, locator.countries());
    QSet<QString> calls;
    for (const QString &call : options.whereCalls) {
        calls.insert(zkr::normalisedCall(call));
    }
    QString error;
    if (!readCallBook(
            options, locator.book(),
            [&calls](const QString &call) { return calls.contains(zkr::normalisedCall(call)); },
            error)) {
        printTo(stderr, QStringLiteral("zkr_muf_cli: %1; the call book is not read\n").arg(error));
    }
    int status = 0;
    for (const QString &call : options.whereCalls) {
        const auto at = locator.where(call);
        if (!at) {
            printTo(stdout, zkr::normalisedCall(call) + QStringLiteral(" not located\n"));
            status = 1;
            continue;
        }
        QString line = QStringLiteral("%1 %2 within %3 km, ")
                           .arg(at->call, at->locator)
                           .arg(qRound(at->uncertaintyKm));
        if (at->how == zkr::Located::CallBook) {
            line +=
                QStringLiteral("learned from %1 at %2")
                    .arg(zkr::learnedFromName(at->from), at->learned.toUTC().toString(Qt::ISODate));
            if (!at->country.isEmpty()) {
                line += QStringLiteral(" (%1)").arg(at->country);
            }
        } else {
            line += QStringLiteral("the position of its country ") + at->country;
        }
        printTo(stdout, line + QLatin1Char('\n'));
    }
    return status;
}

// Every run locates spots through the call book: the country file and the
// stored book when there are, what the run learns in any case.
void prepareCallBook(const zkr::CliOptions &options, zkr::CliReplay &run) {
    loadCountries(options, run.callBook().countries());
    QString error;
    readCallBook(
        options, run.callBook().book(), [](const QString &) { return true; }, error);
    run.useCallBook();
}

// The reports' paths are for --locator, else for the program's own station.
QString exportLocator(const zkr::CliOptions &options) {
    if (!options.ownLocator.isEmpty()) {
        return options.ownLocator;
    }
    const std::optional<QString> stored =
        zkr::IniFile::load(programFolders().settingsFile())
            .value(u"Locator", u"OwnLocator");
    const QString locator = stored ? stored->toUpper() : QString();
    return zkr::Check_Locator(locator) ? QString() : locator;
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
        !zkr::exportHistoryCsv(database, options.exportFrom, options.exportTo, out, error,
                               exportLocator(options))) {
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
    if (options.callBookOnly) {
        return callBookCsv(options);
    }
    if (!options.whereCalls.isEmpty()) {
        return where(options);
    }

    QFile out;
    if (!out.open(stdout, QIODevice::WriteOnly)) {
        return fail(QStringLiteral("cannot write to standard output"));
    }
    zkr::CliReplay run(options, options.jsonLines || options.watch ? &out : nullptr);
    prepareCallBook(options, run);
    if (options.live()) {
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
        if (options.reports) {
            run.replayDecodeLog(input);
        } else if (options.webPage) {
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
    const std::array<zkr::NamedPane, 1> reports{zkr::NamedPane{"Reports", &run.reportsPane()}};
    const std::array<zkr::NamedPane, 4> spots = zkr::spotPanes(run.panes());
    const std::span<const zkr::NamedPane> panes =
        options.reports ? std::span<const zkr::NamedPane>(reports) : spots;
    if (options.json) {
        zkr::Write_PanesJson(out, panes, run.messages());
    } else if (!options.jsonLines && !options.watch) {
        zkr::Write_PanesText(out, panes);
    }
    out.close();
    for (const QString &message : run.messages()) {
        printTo(stderr, message + QLatin1Char('\n'));
    }
    return options.callBookCsv.isEmpty() ? 0 : writeCallBook(options, run.callBook().book());
}
