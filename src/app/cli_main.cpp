// zkr_muf_cli: replays recorded cluster text (or a downloaded web spot page)
// through the program's own evaluation and prints the four panes.

#include "CliOptions.h"
#include "CliReplay.h"
#include "PaneOutput.h"

#include <QCoreApplication>
#include <QFile>

#include <cstdio>
#include <variant>

namespace {

constexpr int BadArguments = 2;

void printTo(std::FILE *stream, const QString &text) {
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
}

int fail(const QString &message) {
    printTo(stderr, QStringLiteral("zkr_muf_cli: ") + message +
                        QStringLiteral("\nTry 'zkr_muf_cli --help' for more information.\n"));
    return BadArguments;
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

    zkr::CliReplay run(options);
    if (options.webPage) {
        run.evaluateSpotPage(input);
    } else {
        run.replayClusterText(input);
    }
    if (input.error() != QFileDevice::NoError) {
        return fail(
            QStringLiteral("reading \"%1\" failed: %2").arg(options.fileName, input.errorString()));
    }
    // What went into the panes after the last refresh shows as well.
    run.refreshDisplay();

    QFile out;
    if (!out.open(stdout, QIODevice::WriteOnly)) {
        return fail(QStringLiteral("cannot write to standard output"));
    }
    if (options.json) {
        zkr::Write_PanesJson(out, run.panes(), run.messages());
    } else {
        zkr::Write_PanesText(out, run.panes());
    }
    out.close();
    for (const QString &message : run.messages()) {
        printTo(stderr, message + QLatin1Char('\n'));
    }
    return 0;
}
