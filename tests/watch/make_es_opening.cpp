// Writes the generated Es opening (see EsOpening.h) as a spot file, for
// replays of the window: make_es_opening FILE [MINUTES]
#include "EsOpening.h"

#include <QFile>

#include <cstdio>

int main(int argc, char *argv[]) {
    if (argc < 2) {
        std::fputs("usage: make_es_opening FILE [MINUTES]\n", stderr);
        return 2;
    }
    const int minutes = argc > 2 ? std::atoi(argv[2]) : 120;
    const zkr::test::EsOpening opening = zkr::test::EsOpening::generate(minutes);
    QFile file(QString::fromLocal8Bit(argv[1]));
    if (!file.open(QIODevice::WriteOnly) || file.write(opening.bytes()) < 0) {
        std::fputs("cannot write the file\n", stderr);
        return 1;
    }
    for (const auto &cloud : opening.clouds) {
        std::printf("%s %.0f km: %s peak %.0f MHz in %s\n", qPrintable(cloud.name), cloud.km,
                    qPrintable(cloud.squares.join(" ")), cloud.peakMuf,
                    qPrintable(cloud.peakSquare));
    }
    return 0;
}
