#include "PskReporterBroker.h"

#include <QFile>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>

#include <mosquitto.h>

namespace zkr::test {

LocalBroker::LocalBroker(const QByteArray &extraConfig) {
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost);
    port_ = probe.serverPort();
    QFile config(folder_.filePath("mosquitto.conf"));
    config.open(QIODevice::WriteOnly);
    config.write("listener " + QByteArray::number(port_) + " 127.0.0.1\nallow_anonymous true\n" +
                 "persistence false\nlog_dest none\n" + extraConfig);
    config.close();
    process_.setProgram("/usr/sbin/mosquitto");
    process_.setArguments({"-c", config.fileName()});
    process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
}

LocalBroker::~LocalBroker() {
    kill();
}

bool LocalBroker::start() {
    process_.start();
    // Ready once it accepts a connection; a refusal comes back at once.
    for (int i = 0; i < 100 && process_.waitForStarted(5000); ++i) {
        QTcpSocket socket;
        socket.connectToHost(QHostAddress::LocalHost, port_);
        if (socket.waitForConnected(100)) {
            return true;
        }
        QThread::msleep(50);
    }
    return false;
}

void LocalBroker::kill() {
    process_.kill();
    process_.waitForFinished(5000);
}

Publisher::Publisher(quint16 port) {
    mosquitto_lib_init();
    handle_ = mosquitto_new(nullptr, true, nullptr);
    connected_ = mosquitto_connect(handle_, "127.0.0.1", port, 60) == MOSQ_ERR_SUCCESS &&
                 mosquitto_loop_start(handle_) == MOSQ_ERR_SUCCESS;
}

Publisher::~Publisher() {
    mosquitto_disconnect(handle_);
    mosquitto_loop_stop(handle_, false);
    mosquitto_destroy(handle_);
}

bool Publisher::publish(const QByteArray &topic, const QByteArray &payload) {
    return mosquitto_publish(handle_, nullptr, topic.constData(), static_cast<int>(payload.size()),
                             payload.constData(), 0, false) == MOSQ_ERR_SUCCESS;
}

} // namespace zkr::test
