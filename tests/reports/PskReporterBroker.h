#pragma once

#include <QFile>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QThread>

namespace zkr::test {

// Debian's mosquitto on 127.0.0.1 at a free port, anonymous, while this
// object lives; kill() and start() again keep the port.
class LocalBroker {
public:
    explicit LocalBroker(const QByteArray &extraConfig = {}) {
        QTcpServer probe;
        probe.listen(QHostAddress::LocalHost);
        port_ = probe.serverPort();
        QFile config(folder_.filePath("mosquitto.conf"));
        config.open(QIODevice::WriteOnly);
        config.write("listener " + QByteArray::number(port_) +
                     " 127.0.0.1\nallow_anonymous true\npersistence false\nlog_dest none\n" +
                     extraConfig);
    }
    ~LocalBroker() { kill(); }
    quint16 port() const { return port_; }

    // True once the broker accepts connections (a refusal comes back at once).
    bool start() {
        process_.start("/usr/sbin/mosquitto", {"-c", folder_.filePath("mosquitto.conf")});
        for (int i = 0; i < 100 && process_.waitForStarted(5000); ++i, QThread::msleep(50)) {
            QTcpSocket socket;
            socket.connectToHost(QHostAddress::LocalHost, port_);
            if (socket.waitForConnected(100)) {
                return true;
            }
        }
        return false;
    }
    void kill() {
        process_.kill();
        process_.waitForFinished(5000);
    }
    // At QoS 0, through mosquitto_pub, which returns once the message is out.
    bool publish(const QByteArray &topic, const QByteArray &payload) const {
        return QProcess::execute("mosquitto_pub", {"-h", "127.0.0.1", "-p", QString::number(port_),
                                                   "-t", topic, "-m", payload}) == 0;
    }

private:
    QTemporaryDir folder_;
    QProcess process_;
    quint16 port_ = 0;
};

} // namespace zkr::test
