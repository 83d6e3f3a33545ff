#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

#include <exception>
#include <optional>

// One kind of work of a presentation model (loading, saving, …): it owns the busy flag, the
// published German error text and a generation counter. Each start hands out a `Run`; a newer
// start makes every older run stale, so that a late answer of an abandoned load is dropped
// instead of overwriting what the user chose since. A run that ends without finishing (an early
// return, a superseded answer, the model gone) leaves the flags as the newest run has them.
//
//     auto run = m_loading.start();
//     auto value = co_await service.fetch(...);
//     if (!run) co_return;          // the model is gone, or a newer load was started
//     ...publish value...
//     run.succeed();
class ModelOperation : public QObject {
    Q_OBJECT
public:
    class Run {
    public:
        Run() = default;
        Run(Run&& other) noexcept;
        Run& operator=(Run&& other) noexcept;
        Run(const Run&) = delete;
        Run& operator=(const Run&) = delete;
        ~Run();

        // True while the operation (and so its model) still exists and no newer run started.
        bool isCurrent() const;
        explicit operator bool() const { return isCurrent(); }
        // Ends the run; its error text is cleared.
        void succeed();
        // Ends the run with this German text published as the error.
        void fail(const QString& message);
        // Ends the run with the German description of whatever was raised.
        void fail(const std::exception& error);
        // The same behind a lead-in that says what failed: "Versionen konnten nicht geladen werden
        // (HTTP 404): …", the status only where Apple answered.
        void fail(const QString& leadIn, const std::exception& error);

    private:
        friend class ModelOperation;
        Run(ModelOperation* operation, quint64 generation)
            : m_operation(operation), m_generation(generation) {}
        void end(const QString& error);

        QPointer<ModelOperation> m_operation;
        quint64 m_generation = 0;
    };

    explicit ModelOperation(QObject* parent = nullptr) : QObject(parent) {}

    // Starts a run: busy, error cleared, every earlier run stale.
    [[nodiscard]] Run start();
    // Makes every run stale without starting one (another app or account was chosen).
    void abandon();
    // Publishes an error that does not come from a run (a check before anything started).
    void setError(const QString& message);
    void clearError() { setError(QString()); }

    // "lead-in (HTTP n): description" for an answer from Apple, "lead-in: description" otherwise.
    static QString failureText(const QString& leadIn, const std::exception& error);

    bool isBusy() const { return m_busy; }
    const QString& errorText() const { return m_error; }
    bool hasError() const { return !m_error.isEmpty(); }
    // The error text, or nothing while there is none.
    std::optional<QString> error() const {
        return hasError() ? std::optional<QString>(m_error) : std::nullopt;
    }
    quint64 generation() const { return m_generation; }

Q_SIGNALS:
    void busyChanged();
    void errorChanged();

private:
    void setBusy(bool busy);

    quint64 m_generation = 0;
    bool m_busy = false;
    QString m_error;
};
