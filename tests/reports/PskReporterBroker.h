#pragma once

#include <QProcess>
#include <QTemporaryDir>

struct mosquitto;

namespace zkr::test {

// Debian's mosquitto on 127.0.0.1 at a free port, anonymous, for as long as
// this object lives; kill() and start() again keep the port.
class LocalBroker {
public:
    explicit LocalBroker(const QByteArray &extraConfig = {});
    ~LocalBroker();
    bool start(); // true once the broker accepts connections
    void kill();
    quint16 port() const { return port_; }

private:
    QTemporaryDir folder_;
    QProcess process_;
    quint16 port_ = 0;
};

// Publishes at QoS 0 from a libmosquitto thread of its own.
class Publisher {
public:
    explicit Publisher(quint16 port);
    ~Publisher();
    bool isConnected() const { return connected_; }
    bool publish(const QByteArray &topic, const QByteArray &payload);

private:
    mosquitto *handle_ = nullptr;
    bool connected_ = false;
};

} // namespace zkr::test
