#pragma once

#include <QByteArray>
#include <QCoro/QCoroTask>
#include <QHash>
#include <QString>

#include <functional>
#include <memory>

// Merges identical GETs that run at the same moment into one network call. Nothing is kept
// after the call ends: a later request goes out again.
class RequestCoalescer {
public:
    using Operation = std::function<QCoro::Task<QByteArray>()>;

    QCoro::Task<QByteArray> data(QString key, Operation operation);

    int inFlightCount() const { return int(m_inFlight.size()); }

    struct Flight;

private:
    QHash<QString, std::shared_ptr<Flight>> m_inFlight;
};
