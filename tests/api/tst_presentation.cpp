#include "api/AccountSettingsViewModel.h"
#include "api/AddAccountViewModel.h"
#include "api/ChangeLogViewModel.h"
#include "api/ModelOperation.h"
#include "api/RateLimitStatusViewModel.h"
#include "api/RowListModel.h"
#include "api/TaskListModel.h"
#include "api/WriteConfirmationViewModel.h"
#include "metadata/MetadataViewModel.h"
#include "release/VersionsListViewModel.h"
#include "reports/AnalyticsViewModel.h"
#include "reports/PerformanceViewModel.h"
#include "testflight/BetaAppInfoViewModel.h"
#include "testflight/BetaBuildDetailViewModel.h"
#include "testflight/BetaFeedbackViewModel.h"
#include "testflight/TestFlightViewModel.h"
#include "wire/VelmoraAPIError.h"
#include "workspace/AppWindowViewModel.h"
#include "workspace/BackgroundSettingsViewModel.h"
#include "workspace/OverviewViewModel.h"
#include "workspace/SectionHost.h"
#include "workspace/WorkspaceViewModel.h"

#include <QAbstractItemModelTester>
#include <QMetaProperty>
#include <QSignalSpy>
#include <QTest>

Q_DECLARE_METATYPE(const QMetaObject*)

using namespace Qt::StringLiterals;

namespace {
QList<RowListModel::Row> rowsOf(const QString& text) {
    // "a1 b1 c2": key a with value 1, …
    QList<RowListModel::Row> rows;
    for (const QString& entry : text.split(u' ', Qt::SkipEmptyParts)) {
        rows.append({entry.left(1), entry.mid(1)});
    }
    return rows;
}
} // namespace

// The two pieces every presentation model stands on: a list that changes in place, and an
// operation that drops the answers of superseded runs.
class PresentationTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void rowsChangeInPlace_data() {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::addColumn<int>("changedRows");
        QTest::newRow("same") << u"a1 b1 c1"_s << u"a1 b1 c1"_s << 0;
        QTest::newRow("one value") << u"a1 b1 c1"_s << u"a1 b2 c1"_s << 1;
        QTest::newRow("insert in the middle") << u"a1 c1"_s << u"a1 b1 c1"_s << 0;
        QTest::newRow("remove runs") << u"a1 b1 c1 d1 e1"_s << u"a1 e1"_s << 0;
        QTest::newRow("move up") << u"a1 b1 c1"_s << u"c1 a1 b1"_s << 0;
        QTest::newRow("move down and change") << u"a1 b1 c1"_s << u"b1 c1 a2"_s << 1;
        QTest::newRow("everything new") << u"a1 b1"_s << u"x1 y1 z1"_s << 0;
        QTest::newRow("to empty") << u"a1 b1"_s << QString() << 0;
        QTest::newRow("from empty") << QString() << u"a1 b1"_s << 0;
        QTest::newRow("repeated key") << u"a1 a2"_s << u"a2 a1 a3"_s << 2;
    }

    void rowsChangeInPlace() {
        QFETCH(QString, from);
        QFETCH(QString, to);
        QFETCH(int, changedRows);
        RowListModel model({"key", "value"});
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setRows(rowsOf(from));
        QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
        QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
        QSignalSpy counts(&model, &RowListModel::countChanged);
        model.setRows(rowsOf(to));
        QCOMPARE(model.rows(), rowsOf(to));
        QCOMPARE(resets.size(), 0);
        QCOMPARE(changes.size(), changedRows);
        QCOMPARE(counts.size(), rowsOf(from).size() == rowsOf(to).size() ? 0 : 1);
        QCOMPARE(model.data(model.index(0), RowListModel::FirstRole + 1),
                 rowsOf(to).isEmpty() ? QVariant() : rowsOf(to).first().at(1));
    }

    // The row under the user's cursor keeps its place in the view: only the role that changed is
    // reported.
    void changedRolesOnly() {
        RowListModel model({"key", "text", "count"});
        model.setRows({{u"k"_s, u"ab"_s, 2}});
        QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
        model.setRows({{u"k"_s, u"ab"_s, 3}});
        QCOMPARE(changes.size(), 1);
        QCOMPARE(changes.first().at(2).value<QList<int>>(), QList<int>{RowListModel::FirstRole + 2});
    }

    void supersededRunsAreDropped() {
        ModelOperation operation;
        QSignalSpy busy(&operation, &ModelOperation::busyChanged);
        QSignalSpy errors(&operation, &ModelOperation::errorChanged);
        auto first = operation.start();
        QVERIFY(first);
        QVERIFY(operation.isBusy());
        auto second = operation.start();
        QVERIFY(!first);
        QVERIFY(second);
        // The old run's failure is not the user's business any more.
        first.fail(u"Alt"_s);
        QVERIFY(operation.isBusy());
        QCOMPARE(operation.errorText(), QString());
        second.fail(u"Neu"_s);
        QVERIFY(!operation.isBusy());
        QCOMPARE(operation.errorText(), u"Neu"_s);
        QCOMPARE(busy.size(), 2);
        QCOMPARE(errors.size(), 1);
        // A new start clears the error of the last one.
        auto third = operation.start();
        QCOMPARE(operation.errorText(), QString());
        third.succeed();
        QVERIFY(!operation.isBusy());
    }

    void aRunThatEndsEarlyIsNotBusyForever() {
        ModelOperation operation;
        {
            auto run = operation.start();
            QVERIFY(operation.isBusy());
        }
        QVERIFY(!operation.isBusy());
        auto moved = [&operation] {
            return operation.start();
        }();
        QVERIFY(moved);
        operation.abandon();
        QVERIFY(!moved);
        QVERIFY(!operation.isBusy());
    }

    void failuresSayWhatFailed_data() {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("expected");
        QTest::newRow("Apple answered")
            << 0 << u"Versionen konnten nicht geladen werden (HTTP 404): Nicht da."_s;
        QTest::newRow("no answer") << 1 << u"Versionen konnten nicht geladen werden: offline"_s;
    }

    void failuresSayWhatFailed() {
        QFETCH(int, kind);
        QFETCH(QString, expected);
        AppleErrorObject apple;
        apple.detail = u"Nicht da."_s;
        const VelmoraAPIError error = kind == 0 ? VelmoraAPIError::http(404, std::nullopt, {apple})
                                                : VelmoraAPIError::network(u"offline"_s);
        ModelOperation operation;
        operation.start().fail(u"Versionen konnten nicht geladen werden"_s, error);
        QVERIFY(operation.errorText().startsWith(expected.section(u':', 0, 0)));
        QVERIFY2(operation.errorText().contains(describeError(error)), qPrintable(operation.errorText()));
    }

    void theModelGoingAwayEndsItsRuns() {
        auto operation = std::make_unique<ModelOperation>();
        auto run = operation->start();
        operation.reset();
        QVERIFY(!run);
        run.succeed();
    }

    // A signal shared by several properties makes QML re-read all of them whenever one moves,
    // and hides which one a handler was meant for.
    void eachPropertyHasItsOwnSignal_data() {
        QTest::addColumn<const QMetaObject*>("type");
        const QList<const QMetaObject*> types{
            &RowListModel::staticMetaObject,
            &RateLimitStatusViewModel::staticMetaObject,
            &AccountSettingsViewModel::staticMetaObject,
            &AddAccountViewModel::staticMetaObject,
            &TaskListModel::staticMetaObject,
            &WriteConfirmationViewModel::staticMetaObject,
            &WorkspaceViewModel::staticMetaObject,
            &BackgroundSettingsViewModel::staticMetaObject,
            &SectionHost::staticMetaObject,
            &MetadataViewModel::staticMetaObject,
            &VersionsListViewModel::staticMetaObject,
            &TestFlightViewModel::staticMetaObject,
            &OverviewViewModel::staticMetaObject,
            &AppWindowViewModel::staticMetaObject,
            &ChangeLogViewModel::staticMetaObject,
            &BetaBuildDetailViewModel::staticMetaObject,
            &BetaAppInfoViewModel::staticMetaObject,
            &BetaFeedbackViewModel::staticMetaObject,
            &AnalyticsViewModel::staticMetaObject,
            &PerformanceViewModel::staticMetaObject,
        };
        for (const QMetaObject* type : types) {
            QTest::newRow(type->className()) << type;
        }
    }

    void eachPropertyHasItsOwnSignal() {
        QFETCH(const QMetaObject*, type);
        QHash<QByteArray, QByteArray> ownerOf;
        for (int i = type->propertyOffset(); i < type->propertyCount(); ++i) {
            const QMetaProperty property = type->property(i);
            if (!property.hasNotifySignal()) {
                continue;
            }
            const QByteArray signal = property.notifySignal().methodSignature();
            const QByteArray owner = ownerOf.value(signal);
            QVERIFY2(owner.isEmpty(), qPrintable(u"%1 und %2 teilen %3"_s.arg(
                                          QLatin1StringView(owner), QLatin1StringView(property.name()),
                                          QLatin1StringView(signal))));
            ownerOf.insert(signal, property.name());
        }
    }
};

QTEST_GUILESS_MAIN(PresentationTest)
#include "tst_presentation.moc"
