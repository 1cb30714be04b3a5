#include "FileReplay.h"

#include "ClusterFeed.h"

#include <QFile>
#include <QTimer>

namespace zkr {

FileReplay::FileReplay(QObject *parent) : QObject(parent), timer_(new QTimer(this)) {
    timer_->setInterval(0);
    connect(timer_, &QTimer::timeout, this, &FileReplay::readSlice);
}

FileReplay::~FileReplay() = default;

qint64 FileReplay::replayAll(QIODevice &input, ClusterFeed &feed) {
    // A recording starts a new stream, as a new connection does.
    feed.reset();
    QByteArray buffer(64 * 1024, Qt::Uninitialized);
    qint64 total = 0;
    for (qint64 got = input.read(buffer.data(), buffer.size()); got > 0;
         got = input.read(buffer.data(), buffer.size())) {
        feed.receive(QByteArrayView(buffer.constData(), got));
        total += got;
    }
    feed.finish();
    return total;
}

bool FileReplay::start(const QString &fileName, ClusterFeed &feed) {
    cancel();
    auto file = std::make_unique<QFile>(fileName);
    if (!file->open(QIODevice::ReadOnly)) {
        error_ = file->errorString();
        return false;
    }
    error_.clear();
    file_ = std::move(file);
    feed_ = &feed;
    feed.reset();
    timer_->start();
    return true;
}

void FileReplay::cancel() {
    timer_->stop();
    file_.reset();
    feed_ = nullptr;
}

bool FileReplay::isRunning() const {
    return timer_->isActive();
}

void FileReplay::readSlice() {
    if (!file_ || !feed_) {
        // The feed went away under the replay.
        cancel();
        return;
    }
    const QByteArray slice = file_->read(SliceBytes);
    if (!slice.isEmpty()) {
        // A receiver of the feed may cancel or restart the replay; the
        // slice is ours either way, the rest is decided next turn.
        feed_->receive(slice);
        return;
    }
    if (file_->error() != QFileDevice::NoError) {
        error_ = file_->errorString();
    }
    ClusterFeed *feed = feed_;
    cancel();
    feed->finish();
    Q_EMIT finished();
}

} // namespace zkr
