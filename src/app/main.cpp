#include "ProgramState.h"
#include "QtPlatform.h"
#include "RunTimeError.h"
#include "SpotSources.h"
#include "frmZKR_MUF.h"

#include <QApplication>

int main(int argc, char *argv[]) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("ZKR_MUF"));

    zkr::ProgramState state;
    zkr::QtPlatform platform;
    zkr::frmZKR_MUF window(state, platform);
    window.sources().enableHistory();
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
