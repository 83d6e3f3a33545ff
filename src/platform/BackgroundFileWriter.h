#pragma once

#include <QByteArray>
#include <QCoro/QCoroTask>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

class QObject;

// Writes one file on a thread of its own. The thread that receives a download hands the pieces
// over and goes on receiving while the disk catches up, and neither a slow disk nor the final
// flush and rename stall the window. The file appears under its name only on commit(); a writer
// dropped before that leaves nothing behind.
//
// The hand-over is bounded: above `highWaterBytes` not yet written, isFull() says to stop
// handing over; once the writer has caught up to `lowWaterBytes`, `onDrained` runs on the
// thread of `context` (never after the writer is gone, as long as `context` outlives it).
class BackgroundFileWriter {
public:
    static constexpr qint64 highWaterBytes = 8 * 1024 * 1024;
    static constexpr qint64 lowWaterBytes = 2 * 1024 * 1024;

    BackgroundFileWriter(QString path, QObject* context, std::function<void()> onDrained);
    ~BackgroundFileWriter();
    BackgroundFileWriter(const BackgroundFileWriter&) = delete;
    BackgroundFileWriter& operator=(const BackgroundFileWriter&) = delete;

    void append(QByteArray piece);
    bool isFull() const;
    // Why the file cannot be written, in German, once that is known.
    std::optional<QString> failure() const;
    // Waits until every piece is written, then gives the file its name. Returns the failure, if
    // there was one; the file is then not there. Call it once.
    QCoro::Task<std::optional<QString>> commit();

private:
    struct State;
    std::shared_ptr<State> m_state;
};
