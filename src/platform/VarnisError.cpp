#include "platform/VarnisError.h"

#include "platform/HttpTransport.h"

using namespace Qt::StringLiterals;

const char* VarnisError::what() const noexcept {
    m_what = errorDescription().toUtf8();
    return m_what.constData();
}

QString describeError(const std::exception& error) {
    if (const auto* known = dynamic_cast<const VarnisError*>(&error)) {
        return known->errorDescription();
    }
    if (const auto* transport = dynamic_cast<const TransportError*>(&error)) {
        return transport->description();
    }
    return u"Unerwarteter Fehler."_s;
}
