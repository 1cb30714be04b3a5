#include "FileReplay.h"

#include <QFile>
#include <QTimer>

namespace zkr {

FileReplay::FileReplay(QObject *parent) : QObject(parent), timer_(new QTimer(this)) {
    timer_->setInterval(0);
    connect(timer_, &QTimer::timeout, this, &FileReplay::readSlice);
}

FileReplay::~FileReplay() = default;

bool FileReplay::open(const QString &fileName) {
    cancel();
    auto file = std::make_unique<QFile>(fileName);
    if (!file->open(QIODevice::ReadOnly)) {
        error_ = file->errorString();
        return false;
    }
    error_.clear();
    file_ = std::move(file);
    return true;
}

void FileReplay::begin(QObject &reader, std::function<void(QByteArrayView)> receive,
                       std::function<void()> finish) {
    reader_ = &reader;
    receive_ = std::move(receive);
    finish_ = std::move(finish);
    timer_->start();
}

void FileReplay::cancel() {
    timer_->stop();
    file_.reset();
    reader_ = nullptr;
    receive_ = nullptr;
    finish_ = nullptr;
}

bool FileReplay::isRunning() const {
    return timer_->isActive();
}

void FileReplay::readSlice() {
    if (!file_ || !reader_) {
        // The reader went away under the replay.
        cancel();
        return;
    }
    const QByteArray slice = file_->read(SliceBytes);
    if (!slice.isEmpty()) {
        // A receiver of the reader may cancel or restart the replay; the
        // slice is read either way, the rest is decided next turn.
        const auto receive = receive_;
        receive(slice);
        return;
    }
    if (file_->error() != QFileDevice::NoError) {
        error_ = file_->errorString();
    }
    const auto finish = std::move(finish_);
    cancel();
    finish();
    Q_EMIT finished();
}

} // namespace zkr
