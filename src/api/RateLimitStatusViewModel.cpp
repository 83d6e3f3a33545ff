#include "api/RateLimitStatusViewModel.h"

#include "api/RateLimitGovernor.h"
#include "platform/Clock.h"

#include <algorithm>

using namespace Qt::StringLiterals;

RateLimitStatusViewModel::RateLimitStatusViewModel(RateLimitGovernor& governor, std::shared_ptr<Clock> clock,
                                                   QObject* parent)
    : QObject(parent), m_governor(&governor), m_clock(std::move(clock)) {
    connect(&governor, &RateLimitGovernor::changed, this, &RateLimitStatusViewModel::governorChanged);
}

void RateLimitStatusViewModel::governorChanged() {
    // A new header can move any of the figures; working out which would cost more than the repaint.
    Q_EMIT hasDataChanged();
    Q_EMIT remainingTextChanged();
    Q_EMIT fractionChanged();
    Q_EMIT updatedAtTextChanged();
}

bool RateLimitStatusViewModel::hasData() const {
    return m_governor && m_governor->limit() && m_governor->remaining();
}

QString RateLimitStatusViewModel::remainingText() const {
    if (!hasData()) {
        return {};
    }
    return QString::number(*m_governor->remaining()) + u" von "_s + QString::number(*m_governor->limit()) +
           u" Anfragen übrig"_s;
}

double RateLimitStatusViewModel::fraction() const {
    if (!hasData() || *m_governor->limit() < 1) {
        return 0;
    }
    return std::clamp(double(*m_governor->remaining()) / double(*m_governor->limit()), 0.0, 1.0);
}

QString RateLimitStatusViewModel::updatedAtText() const {
    if (!hasData() || !m_governor->updatedAt()) {
        return {};
    }
    const QDateTime updated = m_governor->updatedAt()->toLocalTime();
    // A session can run past midnight; then the time alone would point at the wrong day.
    const bool today = !m_clock || updated.date() == m_clock->now().toLocalTime().date();
    return u"Stand: "_s + updated.toString(today ? u"HH:mm"_s : u"dd.MM., HH:mm"_s);
}

QString RateLimitStatusViewModel::emptyText() const {
    return u"Apple meldet den Stand erst nach der ersten Anfrage dieser Sitzung."_s;
}

QString RateLimitStatusViewModel::explanation() const {
    return u"Varnis bremst Hintergrundarbeit, sobald weniger als ein Drittel übrig ist, und stellt sie unter "
           u"15 % ganz ein – damit für das, was du gerade tust, etwas bleibt."_s;
}
