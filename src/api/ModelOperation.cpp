#include "api/ModelOperation.h"

#include "platform/VarnisError.h"
#include "wire/VelmoraAPIError.h"

#include <utility>

ModelOperation::Run::Run(Run&& other) noexcept
    : m_operation(std::move(other.m_operation)), m_generation(std::exchange(other.m_generation, 0)) {
    other.m_operation.clear();
}

ModelOperation::Run& ModelOperation::Run::operator=(Run&& other) noexcept {
    if (this != &other) {
        // The run given up here ends as an early return would.
        if (isCurrent()) {
            m_operation->setBusy(false);
        }
        m_operation = std::move(other.m_operation);
        other.m_operation.clear();
        m_generation = std::exchange(other.m_generation, 0);
    }
    return *this;
}

ModelOperation::Run::~Run() {
    // A run that ends without a result (early return, an exception on its way out) must not
    // leave the screen busy forever.
    if (isCurrent()) {
        m_operation->setBusy(false);
    }
}

bool ModelOperation::Run::isCurrent() const {
    return m_operation && m_generation != 0 && m_operation->m_generation == m_generation;
}

void ModelOperation::Run::succeed() {
    end(QString());
}

void ModelOperation::Run::fail(const QString& message) {
    end(message);
}

void ModelOperation::Run::fail(const std::exception& error) {
    end(describeError(error));
}

void ModelOperation::Run::fail(const QString& leadIn, const std::exception& error) {
    end(failureText(leadIn, error));
}

QString ModelOperation::failureText(const QString& leadIn, const std::exception& error) {
    const auto* apiError = dynamic_cast<const VelmoraAPIError*>(&error);
    const bool answered = apiError && apiError->status() > 0;
    return leadIn + (answered ? QStringLiteral(" (HTTP %1)").arg(apiError->status()) : QString()) +
           QStringLiteral(": ") + describeError(error);
}

void ModelOperation::Run::end(const QString& error) {
    if (!isCurrent()) {
        return;
    }
    ModelOperation* operation = m_operation;
    m_operation.clear();
    operation->setError(error);
    operation->setBusy(false);
}

ModelOperation::Run ModelOperation::start() {
    ++m_generation;
    setError(QString());
    setBusy(true);
    return Run(this, m_generation);
}

void ModelOperation::abandon() {
    ++m_generation;
    setBusy(false);
}

void ModelOperation::setError(const QString& message) {
    if (m_error == message) {
        return;
    }
    m_error = message;
    Q_EMIT errorChanged();
}

void ModelOperation::setBusy(bool busy) {
    if (m_busy == busy) {
        return;
    }
    m_busy = busy;
    Q_EMIT busyChanged();
}
