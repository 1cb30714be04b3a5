#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>

#include <vector>

namespace zkr::test {

// A generated two-hour sporadic-E opening over Europe, seen from JO62QM:
// three clouds drift east, each with a MUF that rises through 144 MHz and
// falls again: the own MUF for the two clouds above the own horizon, the
// MUF of the spot paths for the one under it. Every two minutes each cloud
// is heard on a 6 m Es spot whose path is chosen (by the real evaluation)
// to give that MUF of the moment; near its peak a 2 m Es spot comes too.
struct EsOpening {
    static inline const QString OwnLocator = "JO62QM";

    struct Cloud {
        QString name;
        double km;           // from the own station, in the middle of its track
        bool underHorizon;   // of the own station: its own MUF is 0
        QStringList squares; // the squares it was heard in, in order
        QString peakSquare;  // where its steered MUF was highest
        double peakMuf = 0;  // as evaluated
    };
    std::vector<Cloud> clouds;
    // DX Spider lines, CR LF, in time order; the first at 1700Z.
    QStringList lines;

    // The opening up to `minutes` after its start (all of it: 120).
    static EsOpening generate(int minutes = 120);
    QByteArray bytes() const;
};

} // namespace zkr::test
