#include "UiFixture.h"

#include "workspace/AppListModel.h"
#include "workspace/SidebarSection.h"
#include "workspace/WorkspaceViewModel.h"

#include <QRandomGenerator>
#include <QTest>

using namespace Qt::StringLiterals;

// A seeded random walk through the demo window by mouse and keyboard: apps, sections, "Alle
// Apps", favourites, the second window, settings, the change log. Any crash, sanitizer report or
// QML warning fails it; the seed in the failure message replays the walk.
class SoakTest : public UiFixture {
    Q_OBJECT

    int steps() const {
        const int fromEnvironment = qEnvironmentVariableIntValue("VARNIS_SOAK_STEPS");
        return fromEnvironment > 0 ? fromEnvironment : VARNIS_SOAK_STEPS;
    }

    void closeIfOpen(const QString& name) {
        if (QQuickWindow* window = topLevel(name)) {
            window->close();
            QCoreApplication::processEvents();
        }
    }

private Q_SLOTS:
    void initTestCase() { installMessageHandler(); }
    void init() { initFixture(); }
    void cleanup() { cleanupFixture(); }

    void randomNavigation() {
        const quint32 seed = qEnvironmentVariableIsSet("VARNIS_SOAK_SEED")
                                 ? quint32(qEnvironmentVariableIntValue("VARNIS_SOAK_SEED"))
                                 : 20261124u;
        QRandomGenerator random(seed);
        startDemo();
        WorkspaceViewModel* workspace = m_shell->workspace();
        QTRY_COMPARE(workspace->allApps()->count(), 4);
        QQuickWindow* main = mainWindow();
        const auto sections = SidebarSections::all();

        for (int step = 0; step < steps(); ++step) {
            const QByteArray where =
                "seed " + QByteArray::number(seed) + ", step " + QByteArray::number(step);
            activate(main);
            const int action = int(random.bounded(11));
            if (qEnvironmentVariableIsSet("VARNIS_SOAK_TRACE")) {
                qInfo("step %d: action %d", step, action);
            }
            switch (action) {
            case 0:
            case 1:
                QVERIFY2(clickRow(main, u"allAppsList"_s, int(random.bounded(workspace->allApps()->count()))),
                         where.constData());
                break;
            case 2:
            case 3:
                // The sidebar stands while an app is chosen and the reports do not take its place.
                if (workspace->hasSelectedApp() && !workspace->showsReports()) {
                    const auto section = sections[random.bounded(int(sections.size()))];
                    QVERIFY2(clickNamed(main, u"section_"_s + SidebarSections::rawValue(section)),
                             where.constData());
                }
                break;
            case 4:
                QTest::keyClick(main, Qt::Key(Qt::Key_1 + random.bounded(9)), Qt::ControlModifier);
                break;
            case 5:
                QTest::keyClick(main, Qt::Key_BracketLeft, Qt::ControlModifier);
                break;
            case 6:
                if (QQuickItem* row = rowItem(main, u"allAppsList"_s, 0)) {
                    if (QQuickItem* star = childNamed(row, u"favoriteStar"_s)) {
                        click(star);
                    }
                }
                break;
            case 7:
                if (workspace->hasSelectedApp()) {
                    QTest::keyClick(main, Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
                    QTRY_VERIFY2(topLevel(u"appWindow"_s), where.constData());
                    QQuickWindow* second = topLevel(u"appWindow"_s);
                    activate(second);
                    QTest::keyClick(second, Qt::Key(Qt::Key_1 + random.bounded(3)), Qt::ControlModifier);
                    QCoreApplication::processEvents();
                    second->close();
                }
                break;
            case 8:
                QTest::keyClick(main, Qt::Key_Comma, Qt::ControlModifier);
                QTRY_VERIFY2(topLevel(u"settingsWindow"_s), where.constData());
                closeIfOpen(u"settingsWindow"_s);
                break;
            case 9:
                QTest::keyClick(main, Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
                QTRY_VERIFY2(topLevel(u"changeLogWindow"_s), where.constData());
                closeIfOpen(u"changeLogWindow"_s);
                break;
            case 10:
                // The account's reports, by the entry above the apps or by the keyboard.
                if (random.bounded(2) == 0) {
                    QVERIFY2(clickNamed(main, u"reportsEntry"_s), where.constData());
                } else {
                    QTest::keyClick(main, Qt::Key_B, Qt::ControlModifier);
                }
                QTRY_VERIFY2(workspace->showsReports(), where.constData());
                break;
            }
            QCoreApplication::processEvents();
            QVERIFY2(qmlProblems().isEmpty(),
                     (where + ": " + qmlProblems().join(u'\n').toUtf8()).constData());
        }
    }
};

QTEST_MAIN(SoakTest)
#include "tst_soak.moc"
