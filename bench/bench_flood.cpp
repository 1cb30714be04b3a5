// A flood from a cluster on this machine: a node in a thread of its own sends
// 10,000 spots a second (50 to a write) to the program's window (offscreen).
// Prints how many spots were sent and evaluated, the longest time the event
// loop went without handling a timer (the window's answer time), and memory.
//   bench_flood [SECONDS]   (default 30)
#include "LocalClusterServer.h"
#include "ProcessMemory.h"
#include "ProgramState.h"
#include "ScriptedPlatform.h"
#include "SpotSources.h"
#include "frmZKR_MUF.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTimer>

#include <arpa/inet.h>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

using namespace zkr;

namespace {

QByteArray spot(int number) {
    return QStringLiteral(
               "DX de SP9HWY:     50110.0  F%1      JO62QM JO65 MS                 1712Z\r\n")
        .arg(number, 6, 10, QLatin1Char('0'))
        .toLatin1();
}

// Paced by its own clock, so the flood keeps its rate however busy the
// program is; only TCP's flow control holds it back.
class FloodingNode {
public:
    FloodingNode() {
        listener_ = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        if (listener_ >= 0 &&
            bind(listener_, reinterpret_cast<sockaddr *>(&address), length) == 0 &&
            listen(listener_, 1) == 0 &&
            getsockname(listener_, reinterpret_cast<sockaddr *>(&address), &length) == 0) {
            port_ = ntohs(address.sin_port);
        }
    }
    ~FloodingNode() {
        if (thread_.joinable()) {
            thread_.join();
        }
        close(client_);
        close(listener_);
    }
    quint16 port() const { return port_; }
    int sent() const { return sent_; }
    bool done() const { return done_; }

    void start(int perSecond, int seconds) {
        thread_ = std::thread([=, this] {
            if (logIn()) {
                const auto begin = std::chrono::steady_clock::now();
                const int writes = perSecond / 50 * seconds;
                for (int i = 0; i < writes; ++i) {
                    std::this_thread::sleep_until(
                        begin + std::chrono::microseconds(1000000LL * i / (perSecond / 50)));
                    QByteArray batch;
                    for (int n = i * 50; n < i * 50 + 50; ++n) {
                        batch += spot(n);
                    }
                    if (!send(batch)) {
                        break;
                    }
                    sent_ += 50;
                }
            }
            done_ = true;
        });
    }

private:
    bool send(const QByteArray &bytes) {
        qsizetype done = 0;
        while (done < bytes.size()) {
            const ssize_t n = ::send(client_, bytes.constData() + done,
                                     static_cast<size_t>(bytes.size() - done), MSG_NOSIGNAL);
            if (n <= 0) {
                return false;
            }
            done += n;
        }
        return true;
    }
    bool logIn() {
        pollfd waiting{listener_, POLLIN, 0};
        if (poll(&waiting, 1, 10000) != 1 || (client_ = accept(listener_, nullptr, nullptr)) < 0 ||
            !send("login: ")) {
            return false;
        }
        QByteArray call;
        pollfd reading{client_, POLLIN, 0};
        char c = 0;
        while (!call.endsWith("\r\n") && poll(&reading, 1, 10000) == 1 &&
               recv(client_, &c, 1, 0) == 1) {
            call += c;
        }
        return send(LocalClusterServer::prompt(QStringLiteral("DL1ABC")));
    }

    int listener_ = -1;
    int client_ = -1;
    quint16 port_ = 0;
    std::thread thread_;
    std::atomic<int> sent_{0};
    std::atomic<bool> done_{false};
};

} // namespace

int main(int argc, char **argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const int seconds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 30;
    FloodingNode node;
    QTemporaryDir folder;
    if (node.port() == 0 || !LocalClusterServer::writeSettings(folder.path(), node.port())) {
        std::fprintf(stderr, "no local node or settings file\n");
        return 1;
    }
    ProgramState state;
    ScriptedPlatform platform;
    platform.setApplicationFolder(folder.path());
    frmZKR_MUF window(state, platform);
    long long evaluated = 0;
    QObject::connect(&window.sources().pipeline(), &SpotPipeline::spotEvaluated,
                     [&evaluated](const EvaluatedSpot &) { ++evaluated; });
    window.Form_Load();
    window.show();
    node.start(10000, seconds);
    const long residentBefore = test::residentKiB();

    QElapsedTimer sinceTick;
    sinceTick.start();
    qint64 longestGap = 0;
    QTimer ticks;
    QObject::connect(&ticks, &QTimer::timeout,
                     [&] { longestGap = std::max(longestGap, sinceTick.restart()); });
    ticks.start(10);
    QElapsedTimer clock;
    clock.start();
    // Until the node is done and everything it sent was evaluated (or a
    // minute past the flood's end, when spots were lost).
    while (!(node.done() && evaluated >= node.sent()) &&
           clock.elapsed() < (seconds + 60) * 1000LL) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    }
    std::printf("flood of %d s: %d spots sent, %lld evaluated, %lld in pane All (cap %lld)\n",
                seconds, node.sent(), evaluated,
                static_cast<long long>(window.workingPane(0).lineCount()),
                static_cast<long long>(window.workingPane(0).maxLines()));
    std::printf("longest the event loop went without a 10 ms timer: %lld ms\n",
                static_cast<long long>(longestGap));
    std::printf("resident memory %ld -> %ld KiB; boxes shown %lld\n", residentBefore,
                test::residentKiB(), static_cast<long long>(platform.messages().size()));
    return evaluated == node.sent() ? 0 : 1;
}
