#pragma once

#include <QObject>
#include <QPointer>

#include <memory>

class Clock;
class RateLimitGovernor;

// The hourly budget as Apple last reported it, for the account's status page. One governor
// serves every account, so the figures are those of whichever account spoke last.
class RateLimitStatusViewModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool hasData READ hasData NOTIFY hasDataChanged)
    Q_PROPERTY(QString remainingText READ remainingText NOTIFY remainingTextChanged)
    Q_PROPERTY(double fraction READ fraction NOTIFY fractionChanged)
    Q_PROPERTY(QString updatedAtText READ updatedAtText NOTIFY updatedAtTextChanged)
    Q_PROPERTY(QString emptyText READ emptyText CONSTANT)
    Q_PROPERTY(QString explanation READ explanation CONSTANT)

public:
    RateLimitStatusViewModel(RateLimitGovernor& governor, std::shared_ptr<Clock> clock,
                             QObject* parent = nullptr);

    // Both figures are known; a header without them only moved the time.
    bool hasData() const;
    QString remainingText() const;
    // Remaining over limit, 0 to 1, for the bar.
    double fraction() const;
    QString updatedAtText() const;
    QString emptyText() const;
    QString explanation() const;

Q_SIGNALS:
    void hasDataChanged();
    void remainingTextChanged();
    void fractionChanged();
    void updatedAtTextChanged();

private:
    void governorChanged();

    QPointer<RateLimitGovernor> m_governor;
    std::shared_ptr<Clock> m_clock;
};
