#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QIODevice>
#include <QObject>
#include <QPointer>
#include <QString>

#include <functional>
#include <memory>

class QFile;
class QTimer;

namespace zkr {

// Feeds a recorded file into whatever reads it (a cluster feed, a decode log
// reader: a QObject with reset(), receive(QByteArrayView) and finish()),
// byte for byte as it was recorded, so a replay shows what the live source
// showed.
class FileReplay : public QObject {
    Q_OBJECT
public:
    // Bytes handed on per event-loop turn in a background replay.
    static constexpr qint64 SliceBytes = 64 * 1024;

    explicit FileReplay(QObject *parent = nullptr);
    ~FileReplay() override;

    // Reads everything from `input` into `reader` (reset first, as on a new
    // connection), then finishes it. Returns the bytes read.
    template <class Reader> static qint64 replayAll(QIODevice &input, Reader &reader) {
        reader.reset();
        QByteArray buffer(SliceBytes, Qt::Uninitialized);
        qint64 total = 0;
        for (qint64 got = input.read(buffer.data(), buffer.size()); got > 0;
             got = input.read(buffer.data(), buffer.size())) {
            reader.receive(QByteArrayView(buffer.constData(), got));
            total += got;
        }
        reader.finish();
        return total;
    }

    // Replays the file a slice per event-loop turn, so the window keeps
    // answering; finished() follows the last slice. A replay under way is
    // cancelled first, then the reader is reset. Returns false (and replays
    // nothing) when the file cannot be opened; errorString() says why.
    template <class Reader> bool start(const QString &fileName, Reader &reader) {
        if (!open(fileName)) {
            return false;
        }
        // A recording starts a new stream, as a new connection does.
        reader.reset();
        begin(
            reader, [&reader](QByteArrayView bytes) { reader.receive(bytes); },
            [&reader] { reader.finish(); });
        return true;
    }
    void cancel();
    bool isRunning() const;
    QString errorString() const { return error_; }

Q_SIGNALS:
    void finished();

private:
    bool open(const QString &fileName);
    void begin(QObject &reader, std::function<void(QByteArrayView)> receive,
               std::function<void()> finish);
    void readSlice();

    std::unique_ptr<QFile> file_;
    QPointer<QObject> reader_; // null when the reader went away under a replay
    std::function<void(QByteArrayView)> receive_;
    std::function<void()> finish_;
    QTimer *timer_;
    QString error_;
};

} // namespace zkr
