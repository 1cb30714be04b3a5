#include "BuildInfo.h"
#include "ProgramState.h"
#include "QtPlatform.h"
#include "ReportSources.h"
#include "RunTimeError.h"
#include "SpotSources.h"
#include "frmZKR_MUF.h"

#include <QApplication>
#include <QIcon>

#include <cstdio>
#include <cstring>

namespace {

constexpr char Usage[] =
    "Usage: zkr_muf [OPTION]\n"
    "\n"
    "Shows DX-cluster spots with the sporadic-E MUF and FOT for the own station.\n"
    "One option chooses the spot source for this run:\n"
    "\n"
    "  (none)                         the configured telnet cluster\n"
    "  /WEBCLUSTER                    the web spot list\n"
    "  /TELNETCLUSTER, /DXSPIDER      the built-in telnet cluster (GB7DJK)\n"
    "  /DB0SUE                        the DB0SUE cluster\n"
    "  /FILE                          a recorded spot file\n"
    "\n"
    "  --help                         print this help and exit\n"
    "  --version                      print the version and exit\n";

// --version and --help answer on the terminal before any window system is
// needed, so they work without a display. Returns true when one was given.
bool answerInformationOption(int argc, char *argv[]) {
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--version") == 0) {
            std::printf("zkr_muf %s\n", zkr::build::Version);
            return true;
        }
        if (std::strcmp(argv[i], "--help") == 0 || std::strcmp(argv[i], "-h") == 0) {
            std::fputs(Usage, stdout);
            return true;
        }
    }
    return false;
}

} // namespace

int main(int argc, char *argv[]) {
    if (answerInformationOption(argc, argv)) {
        return 0;
    }
    QApplication app(argc, argv);
    // The name makes the per-user folders (~/.config/zkr_muf). No display
    // name: Qt would append it to every window title.
    QApplication::setApplicationName(QStringLiteral("zkr_muf"));
    QApplication::setApplicationVersion(QLatin1String(zkr::build::Version));
    // Lets Wayland compositors and task bars match the window to the
    // installed menu entry and its icon.
    QGuiApplication::setDesktopFileName(QLatin1String(zkr::build::AppId));
    QIcon icon;
    for (const int size : {16, 32, 48, 256}) {
        icon.addFile(QStringLiteral(":/icons/zkr_muf-%1.png").arg(size), QSize(size, size));
    }
    QApplication::setWindowIcon(icon);

    zkr::ProgramState state;
    zkr::QtPlatform platform;
    zkr::frmZKR_MUF window(state, platform);
    window.sources().enableHistory();
    window.reports().enableLive();
    try {
        window.Form_Load();
    } catch (const zkr::RunTimeError &error) {
        // A fault abandons the rest of start-up; the window still opens so
        // that the user can correct the setup.
        zkr::reportRunTimeError(platform, error);
    }
    window.show();
    return QApplication::exec();
}
