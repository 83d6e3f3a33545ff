#include "platform/BackgroundFileWriter.h"

#include "platform/FileErrorText.h"

#include <QCoro/QCoroFuture>
#include <QFileInfo>
#include <QFuture>
#include <QMetaObject>
#include <QPromise>
#include <QSaveFile>

#include <cerrno>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

struct BackgroundFileWriter::State {
    QString path;
    QObject* context;
    std::function<void()> onDrained;

    std::mutex mutex;
    std::condition_variable wake;
    std::deque<QByteArray> pieces;
    qint64 queued = 0;
    // isFull() said yes: the other side waits for onDrained.
    bool waiting = false;
    bool committing = false;
    bool stopping = false;
    std::optional<QString> failure;
    QPromise<std::optional<QString>> committed;
    std::thread thread;

    void run();
    // With the mutex held.
    void drained() {
        if (waiting && (queued <= lowWaterBytes || failure)) {
            waiting = false;
            QMetaObject::invokeMethod(context, onDrained, Qt::QueuedConnection);
        }
    }
};

void BackgroundFileWriter::State::run() {
    // Made and destroyed on this thread, which is the only one that touches it. Without a
    // commit its destructor removes what was written.
    QSaveFile file(path);
    errno = QFileInfo(path).isDir() ? EISDIR : 0;
    if (errno != 0 || !file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        const QString reason = germanFileError(errno);
        const std::lock_guard lock(mutex);
        failure = reason;
    }
    std::unique_lock lock(mutex);
    for (;;) {
        wake.wait(lock, [this] { return stopping || committing || !pieces.empty(); });
        if (stopping) {
            return;
        }
        if (!pieces.empty()) {
            QByteArray piece = std::move(pieces.front());
            pieces.pop_front();
            const bool skip = failure.has_value();
            lock.unlock();
            std::optional<QString> error;
            errno = 0;
            if (!skip && file.write(piece) != piece.size()) {
                error = germanFileError(errno);
            }
            const qint64 size = piece.size();
            piece = QByteArray();
            lock.lock();
            if (error && !failure) {
                failure = error;
            }
            queued -= size;
            drained();
            continue;
        }
        std::optional<QString> result = failure;
        lock.unlock();
        errno = 0;
        if (!result && !file.commit()) {
            result = germanFileError(errno);
        }
        committed.addResult(result);
        committed.finish();
        return;
    }
}

BackgroundFileWriter::BackgroundFileWriter(QString path, QObject* context, std::function<void()> onDrained)
    : m_state(std::make_shared<State>()) {
    m_state->path = std::move(path);
    m_state->context = context;
    m_state->onDrained = std::move(onDrained);
    m_state->committed.start();
    m_state->thread = std::thread([state = m_state.get()] { state->run(); });
}

BackgroundFileWriter::~BackgroundFileWriter() {
    {
        const std::lock_guard lock(m_state->mutex);
        m_state->stopping = true;
    }
    m_state->wake.notify_one();
    m_state->thread.join();
}

void BackgroundFileWriter::append(QByteArray piece) {
    if (piece.isEmpty()) {
        return;
    }
    {
        const std::lock_guard lock(m_state->mutex);
        m_state->queued += piece.size();
        m_state->pieces.push_back(std::move(piece));
    }
    m_state->wake.notify_one();
}

bool BackgroundFileWriter::isFull() const {
    const std::lock_guard lock(m_state->mutex);
    if (m_state->queued > highWaterBytes && !m_state->failure) {
        m_state->waiting = true;
        return true;
    }
    return false;
}

std::optional<QString> BackgroundFileWriter::failure() const {
    const std::lock_guard lock(m_state->mutex);
    return m_state->failure;
}

QCoro::Task<std::optional<QString>> BackgroundFileWriter::commit() {
    const std::shared_ptr<State> state = m_state;
    QFuture<std::optional<QString>> done = state->committed.future();
    {
        const std::lock_guard lock(state->mutex);
        state->committing = true;
    }
    state->wake.notify_one();
    std::optional<QString> result = co_await done;
    co_return result;
}
