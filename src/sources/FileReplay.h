#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

#include <memory>

class QFile;
class QIODevice;
class QTimer;

namespace zkr {

class ClusterFeed;

// Feeds a recorded session into a cluster feed, byte for byte as it was
// received, so a replay shows what the live session showed.
class FileReplay : public QObject {
    Q_OBJECT
public:
    // Bytes handed to the feed per event-loop turn in a background replay.
    static constexpr qint64 SliceBytes = 32 * 1024;

    explicit FileReplay(QObject *parent = nullptr);
    ~FileReplay() override;

    // Reads everything from `input` into `feed` (reset first, as on a new
    // connection), then finishes the feed. Returns the bytes read.
    static qint64 replayAll(QIODevice &input, ClusterFeed &feed);

    // Replays the file a slice per event-loop turn, so the window keeps
    // answering; finished() follows the last slice. A replay under way is
    // cancelled first, then the feed is reset. Returns false (and replays
    // nothing) when the file cannot be opened; errorString() says why.
    bool start(const QString &fileName, ClusterFeed &feed);
    void cancel();
    bool isRunning() const;
    QString errorString() const { return error_; }

Q_SIGNALS:
    void finished();

private:
    void readSlice();

    std::unique_ptr<QFile> file_;
    QPointer<ClusterFeed> feed_; // null when the feed went away under a replay
    QTimer *timer_;
    QString error_;
};

} // namespace zkr
