#include <QCoreApplication>
#include <QTextStream>

namespace {

const char *const Usage =
    "Usage: zkr_muf_cli --locator LOC [--call CALL] [--es-only] [--over144] [--eval-all]\n"
    "                   [--web] [--json] [FILE]\n"
    "Replays recorded DX-cluster spots (FILE, or standard input) and prints the\n"
    "evaluated spots of the panes All, VHF, 2m and Es, newest first.\n";

} // namespace

int main(int argc, char *argv[]) {
    QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    QTextStream out(stdout);
    QTextStream err(stderr);
    if (arguments.size() == 2 &&
        (arguments.at(1) == QLatin1String("--help") || arguments.at(1) == QLatin1String("-h"))) {
        out << Usage;
        return 0;
    }
    err << Usage << "zkr_muf_cli: replay is not available in this build yet\n";
    return 2;
}
