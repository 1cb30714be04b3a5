#pragma once

// A generated decode log of 1,000,000 lines, half in WSJT-X 2.x's layout and
// half in JTDX's (band headers now and then): an Es opening on 6 m and 2 m,
// CQs with grids, replies with reports, RR73 and grids again. Shared by the
// log benchmarks, so that they time the same log.

#include <QByteArray>
#include <QByteArrayList>

#include <random>
#include <vector>

namespace zkr::bench {

inline constexpr int LineCount = 1'000'000;
inline constexpr int StationCount = 5000;

inline QByteArray makeLog() {
    std::mt19937 random(2237);
    const auto below = [&random](int n) {
        return std::uniform_int_distribution<int>(0, n - 1)(random);
    };
    std::vector<QByteArray> calls;
    std::vector<QByteArray> grids;
    for (int i = 0; i < StationCount; ++i) {
        const QByteArray prefix =
            QByteArrayList{"DL", "EA", "G", "I", "F", "OH", "SP", "9A"}[below(8)];
        calls.push_back(prefix + QByteArray::number(below(10)) + char('A' + below(26)) +
                        char('A' + below(26)) + char('A' + below(26)));
        const char grid[] = {char('I' + below(3)), char('L' + below(5)), char('0' + below(10)),
                             char('0' + below(10))};
        grids.emplace_back(grid, 4);
    }
    QByteArray log;
    log.reserve(LineCount * 64);
    for (int i = 0; i < LineCount; ++i) {
        const int a = below(StationCount);
        const int b = below(StationCount);
        QByteArray message;
        switch (below(4)) {
        case 0:
            message = "CQ " + calls[a] + ' ' + grids[a];
            break;
        case 1:
            message = calls[b] + ' ' + calls[a] + ' ' + grids[a];
            break;
        case 2:
            message = calls[b] + ' ' + calls[a] + " R-" + QByteArray::number(below(20));
            break;
        default:
            message = calls[b] + ' ' + calls[a] + " RR73";
        }
        const int seconds = i % 86400;
        const QByteArray time =
            QByteArray::number(seconds / 3600 * 10000 + seconds / 60 % 60 * 100 + seconds % 60)
                .rightJustified(6, '0');
        const QByteArray snr = QByteArray::number(below(40) - 24).rightJustified(4);
        const QByteArray audio = QByteArray::number(200 + below(2800)).rightJustified(5);
        if (i % 2 == 0) {
            log += "230612_" + time + (i % 4 == 0 ? "    50.313" : "   144.174") + " Rx FT8    " +
                   snr + "  0.2" + audio + ' ' + message + '\n';
        } else {
            if (i % 101 == 1) {
                log +=
                    "20230612_" + time + (i % 202 == 1 ? "  50.313" : "  144.174") + " MHz  FT8\n";
            }
            log += "20230612_" + time + snr + "  0.1" + audio + " ~ " + message.leftJustified(26) +
                   '\n';
        }
    }
    return log;
}
} // namespace zkr::bench
