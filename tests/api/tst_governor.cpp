#include "api/RateLimitGovernor.h"
#include "api/RequestCoalescer.h"
#include "platform/Clock.h"
#include "support/AwaitTask.h"
#include "wire/VelmoraAPIError.h"

#include <QTest>

using namespace Qt::StringLiterals;
using VarnisTest::awaitTask;

namespace {

// Failures come back as values, so that a test can compare what was raised.
struct Outcome {
    QByteArray bytes;
    std::optional<VelmoraAPIError> error;
};

QCoro::Task<Outcome> outcomeOf(QCoro::Task<QByteArray> task) {
    try {
        // Awaited on its own line: GCC 12 destroys a value awaited inside a braced initializer twice.
        QByteArray bytes = co_await std::move(task);
        co_return Outcome{std::move(bytes), std::nullopt};
    } catch (const VelmoraAPIError& e) {
        co_return Outcome{{}, e};
    }
}

QCoro::Task<std::optional<VelmoraAPIError>> failureOf(QCoro::Task<> task) {
    try {
        co_await std::move(task);
    } catch (const VelmoraAPIError& e) {
        co_return e;
    }
    co_return std::nullopt;
}

} // namespace

class TestGovernor : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void update_data();
    void update();
    void reserve_data();
    void reserve();
    void coalescesConcurrentCalls_data();
    void coalescesConcurrentCalls();
    void runsAgainAfterCompletion();
    void differentKeysRunSeparately();
};

void TestGovernor::update_data() {
    QTest::addColumn<QString>("header"); // null: header missing
    QTest::addColumn<int>("limit");
    QTest::addColumn<int>("remaining");
    QTest::addColumn<bool>("touched");
    // Every row starts from limit 3600, remaining 3000.
    QTest::newRow("missing") << QString() << 3600 << 3000 << false;
    QTest::newRow("empty text") << u""_s << 3600 << 3000 << true;
    QTest::newRow("both") << u"user-hour-lim:5000;user-hour-rem:4999;"_s << 5000 << 4999 << true;
    QTest::newRow("limit only") << u"user-hour-lim:5000"_s << 5000 << 3000 << true;
    QTest::newRow("blanks") << u" user-hour-lim :\t5000 ; user-hour-rem : 12 ; "_s << 5000 << 12 << true;
    QTest::newRow("non-breaking blank") << u"user-hour-rem:\u00a012"_s << 3600 << 12 << true;
    QTest::newRow("malformed pieces")
        << u"user-hour-lim:abc;junk;a:b:c;user-hour-rem:7;;"_s << 3600 << 7 << true;
    QTest::newRow("empty parts dropped") << u"user-hour-rem::8"_s << 3600 << 8 << true;
    QTest::newRow("later wins") << u"user-hour-rem:5;user-hour-rem:6"_s << 3600 << 6 << true;
    // Only blanks are trimmed; a line end makes the number unreadable.
    QTest::newRow("line end") << u"user-hour-rem:5\n"_s << 3600 << 3000 << true;
    QTest::newRow("other pairs") << u"user-day-lim:99"_s << 3600 << 3000 << true;
}

void TestGovernor::update() {
    QFETCH(QString, header);
    QFETCH(int, limit);
    QFETCH(int, remaining);
    QFETCH(bool, touched);
    auto clock = std::make_shared<ManualClock>();
    RateLimitGovernor governor(clock);
    governor.update(u"user-hour-lim:3600;user-hour-rem:3000"_s);
    const auto before = clock->now();
    clock->advance(10);
    governor.update(header.isNull() ? std::nullopt : std::optional(header));
    QCOMPARE(governor.limit(), limit);
    QCOMPARE(governor.remaining(), remaining);
    QCOMPARE(governor.updatedAt().value(), touched ? clock->now() : before);
}

void TestGovernor::reserve_data() {
    QTest::addColumn<QString>("header"); // null: no response seen yet
    QTest::addColumn<RequestPriority>("priority");
    QTest::addColumn<QString>("outcome"); // "pass", "wait" or "refuse"
    const auto bg = RequestPriority::Background;
    QTest::newRow("at the floor") << u"user-hour-lim:3600;user-hour-rem:540"_s << bg << u"wait"_s;
    QTest::newRow("below the floor") << u"user-hour-lim:3600;user-hour-rem:539"_s << bg << u"refuse"_s;
    QTest::newRow("below the threshold") << u"user-hour-lim:3600;user-hour-rem:1259"_s << bg << u"wait"_s;
    QTest::newRow("at the threshold") << u"user-hour-lim:3600;user-hour-rem:1260"_s << bg << u"pass"_s;
    QTest::newRow("limit 0") << u"user-hour-lim:0;user-hour-rem:0"_s << bg << u"pass"_s;
    QTest::newRow("negative limit") << u"user-hour-lim:-1;user-hour-rem:0"_s << bg << u"pass"_s;
    QTest::newRow("remaining unknown") << u"user-hour-lim:3600"_s << bg << u"pass"_s;
    QTest::newRow("before first response") << QString() << bg << u"pass"_s;
    QTest::newRow("interactive, empty budget")
        << u"user-hour-lim:3600;user-hour-rem:0"_s << RequestPriority::Interactive << u"pass"_s;
}

void TestGovernor::reserve() {
    QFETCH(QString, header);
    QFETCH(RequestPriority, priority);
    QFETCH(QString, outcome);
    auto clock = std::make_shared<ManualClock>();
    clock->setAutoAdvance(true);
    RateLimitGovernor governor(clock);
    if (!header.isNull()) {
        governor.update(header);
    }
    const auto error = awaitTask(failureOf(governor.reserve(priority)));
    QCOMPARE(clock->sleeps(), outcome == u"wait"_s ? QList<double>{2.0} : QList<double>{});
    QCOMPARE(error.has_value(), outcome == u"refuse"_s);
    if (error) {
        QCOMPARE(error->kind(), VelmoraAPIError::Kind::RateLimitBudgetExhausted);
        QCOMPARE(error->remaining(), 539);
        QCOMPARE(error->limit(), 3600);
    }
}

void TestGovernor::coalescesConcurrentCalls_data() {
    QTest::addColumn<bool>("fails");
    QTest::newRow("bytes") << false;
    QTest::newRow("error") << true;
}

void TestGovernor::coalescesConcurrentCalls() {
    QFETCH(bool, fails);
    ManualClock clock;
    RequestCoalescer coalescer;
    int runs = 0;
    // The call stays in flight until the test moves the clock.
    const RequestCoalescer::Operation operation = [&]() -> QCoro::Task<QByteArray> {
        ++runs;
        co_await clock.sleep(1);
        if (fails) {
            throw VelmoraAPIError::http(503, u"r1"_s, {});
        }
        co_return "payload"_ba;
    };
    const auto key = APIRequest::get(u"/v1/apps"_s).coalescingKey();
    auto first = outcomeOf(coalescer.data(key, operation));
    auto second = outcomeOf(coalescer.data(key, operation));
    QCOMPARE(runs, 1);
    QCOMPARE(coalescer.inFlightCount(), 1);
    clock.advance(1);
    const auto a = awaitTask(std::move(first));
    const auto b = awaitTask(std::move(second));
    QCOMPARE(runs, 1);
    QCOMPARE(coalescer.inFlightCount(), 0);
    for (const auto& outcome : {a, b}) {
        QCOMPARE(outcome.error.has_value(), fails);
        if (fails) {
            QCOMPARE(outcome.error->status(), 503);
            QCOMPARE(outcome.error->requestID().value(), u"r1"_s);
        } else {
            QCOMPARE(outcome.bytes, "payload"_ba);
        }
    }
}

void TestGovernor::runsAgainAfterCompletion() {
    RequestCoalescer coalescer;
    int runs = 0;
    const RequestCoalescer::Operation operation = [&]() -> QCoro::Task<QByteArray> {
        co_return QByteArray::number(++runs);
    };
    QCOMPARE(awaitTask(coalescer.data(u"k"_s, operation)), "1"_ba);
    QCOMPARE(awaitTask(coalescer.data(u"k"_s, operation)), "2"_ba);
}

void TestGovernor::differentKeysRunSeparately() {
    ManualClock clock;
    RequestCoalescer coalescer;
    QStringList started;
    const auto operationFor = [&](QString key) -> RequestCoalescer::Operation {
        return [&, key]() -> QCoro::Task<QByteArray> {
            started.append(key);
            co_await clock.sleep(1);
            co_return key.toUtf8();
        };
    };
    const auto apps = APIRequest::get(u"/v1/apps"_s, {{u"limit"_s, u"1"_s}}).coalescingKey();
    const auto builds = APIRequest::get(u"/v1/apps"_s, {{u"limit"_s, u"2"_s}}).coalescingKey();
    auto first = outcomeOf(coalescer.data(apps, operationFor(apps)));
    auto second = outcomeOf(coalescer.data(builds, operationFor(builds)));
    QCOMPARE(started, (QStringList{apps, builds}));
    QCOMPARE(coalescer.inFlightCount(), 2);
    clock.advance(1);
    QCOMPARE(awaitTask(std::move(first)).bytes, apps.toUtf8());
    QCOMPARE(awaitTask(std::move(second)).bytes, builds.toUtf8());
}

QTEST_GUILESS_MAIN(TestGovernor)
#include "tst_governor.moc"
