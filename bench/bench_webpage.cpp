// A large web spot page end to end, in the headless tool's road (bytes,
// decoding, tag removal, lines, evaluation, panes) and in the window's (a
// local server, the fetch, the same road, the panes refreshed and painted),
// at 1, 2.5 and 5 MB: the cost per megabyte stays flat when the work grows
// with the page and no faster. Prints its figures.
//
//   bench_webpage                 the figures
//   bench_webpage --write FILE MB writes the page of that size, for timing
//                                 zkr_muf_cli --web FILE
#include "CliOptions.h"
#include "CliReplay.h"
#include "LocalHttpServer.h"
#include "PaneView.h"
#include "ProgramState.h"
#include "ScriptedPlatform.h"
#include "SiteDefaults.h"
#include "SpotSources.h"
#include "frmZKR_MUF.h"

#include <QApplication>
#include <QBuffer>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>
#include <random>

using namespace zkr;

namespace {

// The service's page, `bytes` long: redirect script, then rows of spots in
// the web columns, each call in a link, Es and other comments, some with
// Windows-1252 quotes.
QByteArray makePage(qsizetype bytes) {
    const char *comments[] = {"JO90JR &lt;ES&gt; KP20", "JO62QM JO65 MS",   "IO91 JN45 es",
                              "CQ CQ \x93up 5\x94",     "IM98 JO62QM ES",   "KP20 JO62 TR",
                              "599 in FT8 \x80",        "JN25 KO05 ES tnx", "JO62QM IM98 es"};
    const char *frequencies[] = {"50110.0", "144300.0", "70150.0",
                                 "14074.0", "50313.0",  "144174.0"};
    std::mt19937 random(11);
    // The script's text is the 79 characters the page's clean-up cuts off.
    const QByteArray script =
        "setTimeout(function(){window.location.href = 'http://127.0.0.1/';},180000);";
    QByteArray page =
        "<html><head><script>" + script.leftJustified(79) + "</script></head><body><table>";
    page.reserve(bytes + 512);
    int n = 0;
    while (page.size() < bytes) {
        const QByteArray call = "OH" + QByteArray::number(n % 10) + "XYZ";
        page += "<tr><td><a href=\"/dx/" + call + "\">" + QByteArray("DL1ABC").leftJustified(11) +
                "</a> " +
                QByteArray(frequencies[random() % std::size(frequencies)]).rightJustified(10) +
                " " + call.leftJustified(12) + " " +
                QByteArray(comments[random() % std::size(comments)]).leftJustified(34) + " " +
                QByteArray::number(1000 + n % 1400) + "</td></tr>\n";
        ++n;
    }
    return page + "</table></body></html>\n";
}

struct Sizes {
    const char *name;
    qsizetype bytes;
};
constexpr Sizes PageSizes[] = {{"1 MB", 1 << 20}, {"2.5 MB", 5 << 19}, {"5 MB", 5 << 20}};

double megabytes(qsizetype bytes) {
    return static_cast<double>(bytes) / (1 << 20);
}

// The headless tool's road, in this process.
double toolSeconds(const QByteArray &page, qint64 &lines) {
    CliOptions options;
    options.ownLocator = QStringLiteral("JO62QM");
    options.webPage = true;
    CliReplay tool(options);
    QBuffer input;
    input.setData(page);
    input.open(QIODevice::ReadOnly);
    QElapsedTimer clock;
    clock.start();
    tool.evaluateSpotPage(input);
    tool.refreshDisplay();
    const double seconds = static_cast<double>(clock.nsecsElapsed()) / 1e9;
    lines = tool.panes()[0].lineCount();
    return seconds;
}

struct WindowFigures {
    double total = 0;      // fetch asked for until the panes are painted
    double evaluation = 0; // the lines' evaluation until then
    qint64 lines = 0;
};

// The window's road: the page from a server on this machine.
WindowFigures windowSeconds(const QByteArray &page) {
    QTemporaryDir folder;
    LocalHttpServer server;
    LocalHttpServer::Response response;
    response.body = page;
    response.contentType = "text/html";
    server.setResponse(QStringLiteral("/DxSpots.aspx"), response);
    QFile ini(folder.filePath(QStringLiteral("zkr_muf.ini")));
    ini.open(QIODevice::WriteOnly);
    ini.write("[Version]\r\nVersion=1.30\r\n[Call]\r\nOwnCall=!NOCALL!\r\n[Locator]\r\n"
              "OwnLocator=JO62QM\r\n[AutoUpdateCheck]\r\nUpdateCheck=off\r\n");
    ini.close();
    ProgramState state;
    ScriptedPlatform platform;
    platform.setApplicationFolder(folder.path());
    platform.setEnvironmentValue(site::WebClusterUrlVariable,
                                 server.url(QStringLiteral("/DxSpots.aspx")));
    frmZKR_MUF window(state, platform);
    window.show();

    QElapsedTimer clock;
    qint64 startedAt = -1;
    bool done = false;
    // The window's own handlers run first: when these run, the page's lines
    // are about to be evaluated, or they are and the panes are refreshed.
    QObject::connect(&window.sources().pipeline(), &SpotPipeline::pageStarted,
                     [&] { startedAt = clock.nsecsElapsed(); });
    QObject::connect(&window.sources().pipeline(), &SpotPipeline::pageFinished,
                     [&](unsigned) { done = true; });
    clock.start();
    window.Form_Load(); // web mode: fetches at once
    while (!done) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    }
    QCoreApplication::processEvents(); // the visible pane painted
    WindowFigures figures;
    const qint64 end = clock.nsecsElapsed();
    figures.total = static_cast<double>(end) / 1e9;
    figures.evaluation = static_cast<double>(end - startedAt) / 1e9;
    figures.lines = window.workingPane(0).lineCount();
    return figures;
}

} // namespace

int main(int argc, char **argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // The offscreen platform's notes would only hide the figures.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    QApplication app(argc, argv);
    if (argc == 4 && qstrcmp(argv[1], "--write") == 0) {
        QFile out(QString::fromLocal8Bit(argv[2]));
        const QByteArray page = makePage(static_cast<qsizetype>(std::atof(argv[3]) * (1 << 20)));
        return out.open(QIODevice::WriteOnly) && out.write(page) == page.size() ? 0 : 1;
    }
    std::printf("%-7s %10s %12s %10s %14s %12s %10s\n", "page", "lines", "tool s", "tool s/MB",
                "window s", "window s/MB", "evaluation s");
    for (const Sizes &size : PageSizes) {
        const QByteArray page = makePage(size.bytes);
        qint64 toolLines = 0;
        const double tool = toolSeconds(page, toolLines);
        const WindowFigures window = windowSeconds(page);
        std::printf("%-7s %10lld %12.3f %10.3f %14.3f %12.3f %10.3f\n", size.name,
                    static_cast<long long>(toolLines), tool, tool / megabytes(page.size()),
                    window.total, window.total / megabytes(page.size()), window.evaluation);
        if (window.lines != toolLines) {
            std::printf("  the window shows %lld lines, the tool %lld\n",
                        static_cast<long long>(window.lines), static_cast<long long>(toolLines));
        }
    }
    return 0;
}
