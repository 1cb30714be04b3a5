// PSK Reporter's feed under load: a local mosquitto, a publisher in a thread
// of its own sending RATE payloads a second at QoS 0 (as PSK Reporter does)
// on the 6 m and 2 m filter topics, half of them with a cloud near the own
// station, and the client on this thread's event loop. Prints what was
// published and what arrived before the filter, the longest time the event
// loop went without handling a 10 ms timer, and the resident memory every
// 10 s. With --window the reports go through the program's window
// (offscreen: the call book, the watch, the Reports pane), and the loop
// measured is the window's.
//   bench_pskreporter [--window] [SECONDS [RATE ["broker config line"]]]  (60, 2000)
#include "IniFile.h"
#include "ProcessMemory.h"
#include "ProgramState.h"
#include "PskReporterBroker.h"
#include "PskReporterClient.h"
#include "ReportSources.h"
#include "ScriptedPlatform.h"
#include "frmZKR_MUF.h"

#include <QApplication>
#include <QTemporaryDir>
#include <QElapsedTimer>
#include <QTimer>

#include <mosquitto.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <memory>
#include <tuple>
#include <thread>
#include <time.h>
#include <utility>

using namespace zkr;

namespace {

QByteArray payload(long long n) {
    const bool near = n % 2 == 0;
    return QStringLiteral("{\"sq\":%1,\"f\":%2,\"md\":\"FT8\",\"rp\":%3,\"t\":%4,\"t_tx\":%4,"
                          "\"sc\":\"G%5\",\"sl\":\"%6\",\"rc\":\"SP%5\",\"rl\":\"%7\","
                          "\"sa\":223,\"ra\":269,\"b\":\"%8\"}")
        .arg(n)
        .arg(n % 4 < 2 ? 50313500 : 144174000)
        .arg(-20 + n % 30)
        .arg(1718035200 + n / 2000)
        .arg(n % 100000, 5, 10, QLatin1Char('0'))
        .arg(near ? QStringLiteral("IO91wm") : QStringLiteral("PM95ab12"),
             near ? QStringLiteral("KO85ts") : QStringLiteral("PM96"),
             n % 4 < 2 ? QStringLiteral("6m") : QStringLiteral("2m"))
        .toUtf8();
}

// Publishes at QoS 0 from libmosquitto's own thread, as fast as asked.
class Publisher {
public:
    explicit Publisher(quint16 port) : handle_(mosquitto_new(nullptr, true, nullptr)) {
        connected_ = mosquitto_connect(handle_, "127.0.0.1", port, 60) == MOSQ_ERR_SUCCESS &&
                     mosquitto_loop_start(handle_) == MOSQ_ERR_SUCCESS;
    }
    ~Publisher() {
        mosquitto_disconnect(handle_);
        mosquitto_loop_stop(handle_, false);
        mosquitto_destroy(handle_);
    }
    bool isConnected() const { return connected_; }
    bool publish(const QByteArray &topic, const QByteArray &payload) {
        return mosquitto_publish(handle_, nullptr, topic.constData(),
                                 static_cast<int>(payload.size()), payload.constData(), 0,
                                 false) == MOSQ_ERR_SUCCESS;
    }

private:
    mosquitto *handle_;
    bool connected_ = false;
};

} // namespace

int main(int argc, char **argv) {
    const bool throughWindow = argc > 1 && std::strcmp(argv[1], "--window") == 0;
    if (throughWindow) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        --argc;
        ++argv;
    }
    QApplication app(argc, argv);
    mosquitto_lib_init();
    const int seconds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 60;
    const int rate = argc > 2 ? std::max(100, std::atoi(argv[2])) : 2000;
    test::LocalBroker broker(argc > 3 ? QByteArray(argv[3]) + '\n' : QByteArray());
    if (!broker.start()) {
        std::fprintf(stderr, "mosquitto did not start\n");
        return 1;
    }
    // The program in a folder of its own: replaying no file, PSK Reporter
    // from the broker on this machine, WSJT-X off.
    QTemporaryDir folder;
    ProgramState state;
    ScriptedPlatform platform;
    std::unique_ptr<frmZKR_MUF> window;
    PskReporterClient ownClient;
    PskReporterClient *feed = &ownClient;
    if (throughWindow) {
        const QString ini = folder.filePath(QStringLiteral("zkr_muf.ini"));
        const QString port = QString::number(broker.port());
        for (const auto &[section, key, value] :
             {std::tuple{"Version", "Version", QStringLiteral("1.30")},
              {"Call", "OwnCall", QStringLiteral("DL9OWN")},
              {"Locator", "OwnLocator", QStringLiteral("JO62QM")},
              {"AutoUpdateCheck", "UpdateCheck", QStringLiteral("off")},
              {"WSJTX", "Enabled", QStringLiteral("off")},
              {"PSKReporter", "Host", QStringLiteral("127.0.0.1")},
              {"PSKReporter", "Port", port},
              {"PSKReporter", "Bands", QStringLiteral("6m,2m")}}) {
            Ini_Write(QLatin1String(section), QLatin1String(key), value, ini);
        }
        platform.setApplicationFolder(folder.path());
        platform.setCommandLine(QStringLiteral("/FILE"));
        window = std::make_unique<frmZKR_MUF>(state, platform);
        window->reports().enableLive();
        window->Form_Load();
        feed = &window->reports().pskReporter();
    } else {
        ownClient.start(QStringLiteral("127.0.0.1"), broker.port(),
                        {QStringLiteral("6m"), QStringLiteral("2m")}, QStringLiteral("DL9OWN"),
                        QStringLiteral("JO62QM"), false);
    }
    PskReporterClient &client = *feed;
    QElapsedTimer clock;
    clock.start();
    while (client.state() != PskReporterClient::State::Subscribed && clock.elapsed() < 10000) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    }
    Publisher publisher(broker.port());
    if (client.state() != PskReporterClient::State::Subscribed || !publisher.isConnected()) {
        std::fprintf(stderr, "no subscription or no publisher\n");
        return 1;
    }

    // Paced by its own clock, 1/100 s worth at a time.
    std::atomic<long long> published{0};
    std::atomic<bool> done{false};
    std::thread sender([&] {
        const auto begin = std::chrono::steady_clock::now();
        const long long total = static_cast<long long>(rate) * seconds;
        for (long long n = 0; n < total;) {
            std::this_thread::sleep_until(begin + std::chrono::microseconds(n * 1000000 / rate));
            for (const long long end = std::min(total, n + rate / 100); n < end; ++n) {
                const QByteArray band = n % 4 < 2 ? "6m" : "2m";
                if (publisher.publish("pskr/filter/v2/" + band + "/FT8/G/SP/IO91/KO85/223/269",
                                      payload(n))) {
                    ++published;
                }
            }
        }
        done = true;
    });

    // The longest gap between two ticks, and how much of it this thread
    // actually ran: on a loaded machine a gap can be the scheduler's, not ours.
    const auto threadCpuMs = [] {
        timespec now{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
        return now.tv_sec * 1000.0 + now.tv_nsec / 1e6;
    };
    QElapsedTimer sinceTick;
    double cpuAtTick = threadCpuMs();
    qint64 longestGap = 0, longestGapAt = 0, gapsOver50 = 0;
    double longestGapCpu = 0, longestCpu = 0;
    QTimer ticks;
    QObject::connect(&ticks, &QTimer::timeout, [&] {
        const qint64 gap = sinceTick.restart();
        const double cpu = threadCpuMs() - std::exchange(cpuAtTick, threadCpuMs());
        if (gap > longestGap) {
            longestGap = gap;
            longestGapCpu = cpu;
            longestGapAt = clock.elapsed();
        }
        gapsOver50 += gap > 50 ? 1 : 0;
        longestCpu = std::max(longestCpu, cpu);
    });
    ticks.setTimerType(Qt::PreciseTimer);
    ticks.start(10);
    sinceTick.start();
    QTimer memory;
    QObject::connect(&memory, &QTimer::timeout, [&] {
        std::printf("%4lld s: published %lld, received %llu, resident %ld KiB\n",
                    clock.elapsed() / 1000, published.load(),
                    static_cast<unsigned long long>(client.counters().received),
                    test::residentKiB());
        std::fflush(stdout);
    });
    clock.restart();
    memory.start(10000);
    std::printf("   0 s: resident %ld KiB\n", test::residentKiB());
    // Until everything published arrived, or 10 s past the end when some was lost.
    QElapsedTimer sinceDone;
    for (;;) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
        if (done && !sinceDone.isValid()) {
            sinceDone.start();
        }
        if (done && (client.counters().received >= static_cast<quint64>(published.load()) ||
                     sinceDone.elapsed() > 10000)) {
            break;
        }
    }
    sender.join();
    const PskReporterCounters &n = client.counters();
    std::printf("%d reports/s for %d s: published %lld, received %llu (lost %lld), kept %llu, "
                "filtered %llu, dropped %llu\n",
                rate, seconds, published.load(), static_cast<unsigned long long>(n.received),
                published.load() - static_cast<long long>(n.received),
                static_cast<unsigned long long>(n.kept),
                static_cast<unsigned long long>(n.filtered),
                static_cast<unsigned long long>(n.badPayload + n.noLocator));
    std::printf("longest the event loop went without a 10 ms timer: %lld ms (this thread ran "
                "%.1f ms of it) at %.1f s; most CPU between two ticks: %.1f ms; gaps over 50 ms: "
                "%lld\n",
                static_cast<long long>(longestGap), longestGapCpu, longestGapAt / 1000.0,
                longestCpu, static_cast<long long>(gapsOver50));
    std::printf("resident memory at the end: %ld KiB\n", test::residentKiB());
    return n.received == static_cast<quint64>(published.load()) ? 0 : 1;
}
