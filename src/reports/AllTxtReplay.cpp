#include "AllTxtReplay.h"

#include "AllTxtReader.h"

#include <QFile>
#include <QTimer>

namespace zkr {

AllTxtReplay::AllTxtReplay(QObject *parent) : QObject(parent), timer_(new QTimer(this)) {
    timer_->setInterval(0);
    connect(timer_, &QTimer::timeout, this, &AllTxtReplay::readSlice);
}

AllTxtReplay::~AllTxtReplay() = default;

bool AllTxtReplay::start(const QString &fileName, AllTxtReader &reader) {
    cancel();
    auto file = std::make_unique<QFile>(fileName);
    if (!file->open(QIODevice::ReadOnly)) {
        error_ = file->errorString();
        return false;
    }
    error_.clear();
    file_ = std::move(file);
    reader_ = &reader;
    reader.reset();
    timer_->start();
    return true;
}

void AllTxtReplay::cancel() {
    timer_->stop();
    file_.reset();
    reader_ = nullptr;
}

bool AllTxtReplay::isRunning() const {
    return timer_->isActive();
}

void AllTxtReplay::readSlice() {
    if (!file_ || !reader_) {
        cancel();
        return;
    }
    const QByteArray slice = file_->read(SliceBytes);
    if (!slice.isEmpty()) {
        // A receiver of the reader may cancel or restart the replay; the
        // slice is read either way, the rest is decided next turn.
        reader_->receive(slice);
        return;
    }
    if (file_->error() != QFileDevice::NoError) {
        error_ = file_->errorString();
    }
    AllTxtReader *reader = reader_;
    cancel();
    reader->finish();
    Q_EMIT finished();
}

} // namespace zkr
