#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

#include <memory>

class QFile;
class QTimer;

namespace zkr {

class AllTxtReader;

// Replays a decode log into a reader a slice per event-loop turn, so the
// window keeps answering; finished() follows the last slice.
class AllTxtReplay : public QObject {
    Q_OBJECT
public:
    static constexpr qint64 SliceBytes = 64 * 1024;

    explicit AllTxtReplay(QObject *parent = nullptr);
    ~AllTxtReplay() override;

    // A replay under way is cancelled first, then the reader is reset.
    // False (and nothing replayed) when the file cannot be opened;
    // errorString() says why.
    bool start(const QString &fileName, AllTxtReader &reader);
    void cancel();
    bool isRunning() const;
    QString errorString() const { return error_; }

Q_SIGNALS:
    void finished();

private:
    void readSlice();

    std::unique_ptr<QFile> file_;
    QPointer<AllTxtReader> reader_; // null when the reader went away under a replay
    QTimer *timer_;
    QString error_;
};

} // namespace zkr
