#include "UiFixture.h"

#include "api/AccountSettingsViewModel.h"
#include "api/AccountStore.h"
#include "api/AddAccountViewModel.h"
#include "api/AuditLog.h"
#include "platform/SecretStore.h"
#include "support/AwaitTask.h"
#include "support/TestKeys.h"

#include <QDir>
#include <QFile>
#include <QQuickWindow>
#include <QTest>

using namespace Qt::StringLiterals;

// The settings window as a person uses it: opened from the main window by keyboard, tabs and
// buttons clicked, paths typed, and closed by keyboard again.
class SettingsTest : public UiFixture {
    Q_OBJECT

    QByteArray m_home;

    QString writeKey(const QString& folder) {
        QDir().mkpath(folder);
        const QString path = folder + u"/AuthKey_ABCDE12345.p8"_s;
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(makeTestKey().privateKeyPEM) <= 0) {
            qFatal("key file could not be written");
        }
        return path;
    }

    // Ctrl+, on the main window, then the accounts tab.
    QQuickWindow* openAccounts() {
        QTest::keyClick(mainWindow(), Qt::Key_Comma, Qt::ControlModifier);
        QQuickWindow* settings = nullptr;
        (void)QTest::qWaitFor([&] { return (settings = topLevel(u"settingsWindow"_s)) != nullptr; });
        if (!settings || !QTest::qWaitForWindowExposed(settings)) {
            return nullptr;
        }
        activate(settings);
        // Away and back, by mouse: the tab bar really switches pages.
        if (!clickNamed(settings, u"generalTab"_s) || !findItem(settings, u"demoExplanationLabel"_s) ||
            !clickNamed(settings, u"accountsTab"_s)) {
            return nullptr;
        }
        return settings;
    }

    static QString textOf(QQuickWindow* window, const QString& objectName) {
        QQuickItem* item = findItem(window, objectName);
        return item ? item->property("text").toString() : u"<missing>"_s;
    }

    static void typeInto(QQuickWindow* window, const QString& objectName, const QString& text) {
        (void)window->grabWindow();
        QQuickItem* field = findItem(window, objectName);
        QVERIFY2(field, qPrintable(objectName));
        click(field);
        QTRY_VERIFY(field->hasActiveFocus());
        QTest::keyClick(window, Qt::Key_A, Qt::ControlModifier);
        typeText(window, text);
    }

private Q_SLOTS:
    void initTestCase() { installMessageHandler(); }
    void init() {
        initFixture();
        // The file dialog starts in the Downloads folder of this home.
        m_home = qgetenv("HOME");
        qputenv("HOME", m_dir->filePath(u"home"_s).toUtf8());
        QDir().mkpath(m_dir->filePath(u"home"_s));
    }
    void cleanup() {
        cleanupFixture();
        qputenv("HOME", m_home);
    }

    void chooseKeyFileInDialog() {
        const QString keyPath = writeKey(m_dir->filePath(u"home/Downloads"_s));
        start(demoPlatform());
        show();
        QQuickWindow* settings = openAccounts();
        QVERIFY(settings);
        QVERIFY(addAccountFormShown(settings));

        QVERIFY(clickNamed(settings, u"chooseKeyFileButton"_s));
        // Qt's own dialog, inside the settings window.
        QQuickItem* list = findItem(settings, u"fileDialogListView"_s);
        QVERIFY(list);
        // The folder is listed in the background; the first rows may still be of the one before.
        QQuickItem* file = nullptr;
        QTRY_VERIFY((file = findItem(settings, u"fileDialogDelegate0"_s)) &&
                    file->property("fileName").toString() == u"AuthKey_ABCDE12345.p8"_s);
        QVERIFY(!shownItem(settings, u"fileDialogDelegate1"_s));
        shoot(settings, u"settings-key-dialog"_s);
        const QPointF centre = file->mapToScene(QPointF(file->width() / 2, file->height() / 2));
        QTest::mouseDClick(settings, Qt::LeftButton, Qt::NoModifier, centre.toPoint());

        AddAccountViewModel* form = m_shell->addAccount();
        QTRY_VERIFY(form->hasPrivateKey());
        QCOMPARE(form->keyFilePath(), keyPath);
        QCOMPARE(form->keyID(), u"ABCDE12345"_s);
        QTRY_COMPARE(textOf(settings, u"keyFileField"_s), keyPath);
        QCOMPARE(textOf(settings, u"keyIDField"_s), u"ABCDE12345"_s);
        QTRY_VERIFY(!shownItem(settings, u"fileDialogListView"_s));
    }

    void typedKeyPath_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("accepted");
        QTest::addColumn<QString>("error");

        QTest::newRow("the key file") << u"home/AuthKey_ABCDE12345.p8"_s << true << QString();
        QTest::newRow("padded with blanks") << u" home/AuthKey_ABCDE12345.p8 "_s << true << QString();
        QTest::newRow("no such file") << u"home/AuthKey_ZZZZZ00000.p8"_s << false
                                      << u"Datei konnte nicht gelesen werden: Die Datei existiert nicht."_s;
        QTest::newRow("a folder") << u"home"_s << false
                                  << u"Datei konnte nicht gelesen werden: Das ist ein Ordner, keine Datei."_s;
    }

    void typedKeyPath() {
        QFETCH(QString, typed);
        QFETCH(bool, accepted);
        QFETCH(QString, error);

        writeKey(m_dir->filePath(u"home"_s));
        const QString path = m_dir->path() + u'/' + typed.trimmed();
        start(demoPlatform());
        show();
        QQuickWindow* settings = openAccounts();
        QVERIFY(settings);

        typeInto(settings, u"keyFileField"_s, typed.startsWith(u' ') ? u" "_s + path + u" "_s : path);
        QTest::keyClick(settings, Qt::Key_Return);

        AddAccountViewModel* form = m_shell->addAccount();
        QTRY_COMPARE(form->hasPrivateKey(), accepted);
        QCOMPARE(form->errorMessage(), error);
        QCOMPARE(form->keyID(), accepted ? u"ABCDE12345"_s : QString());
        QCOMPARE(textOf(settings, u"keyIDField"_s), form->keyID());
        if (!error.isEmpty()) {
            QVERIFY(findItem(settings, u"addAccountError"_s));
            QCOMPARE(textOf(settings, u"addAccountError"_s), error);
        }
    }

    void savedAccountAppearsInTheList() {
        writeKey(m_dir->filePath(u"home"_s));
        start(demoPlatform());
        show();
        QQuickWindow* settings = openAccounts();
        QVERIFY(settings);

        typeInto(settings, u"nameField"_s, u"Studio"_s);
        typeInto(settings, u"issuerIDField"_s, u"57246542-96fe-1a63-e053-0824d011072a"_s);
        typeInto(settings, u"keyFileField"_s, m_dir->filePath(u"home/AuthKey_ABCDE12345.p8"_s));
        QTest::keyClick(settings, Qt::Key_Tab);
        QTRY_COMPARE(textOf(settings, u"keyIDField"_s), u"ABCDE12345"_s);
        shoot(settings, u"settings-add-account"_s);

        QQuickItem* save = findItem(settings, u"saveAccountButton"_s);
        QVERIFY(save);
        QTRY_VERIFY(save->isEnabled());
        (void)settings->grabWindow();
        click(save);

        AccountStore& store = m_state->accountStore();
        QTRY_COMPARE(store.accounts().size(), 1);
        QCOMPARE(store.accounts().first().name, u"Studio"_s);
        QCOMPARE(store.accounts().first().keyID, u"ABCDE12345"_s);
        // The page turns to the new account: the form closes, the list shows it.
        QQuickItem* choice = findItem(settings, u"settingsAccountChoice"_s);
        QVERIFY(choice);
        QTRY_COMPARE(choice->property("displayText").toString(), u"Studio"_s);
        QVERIFY(findItem(settings, u"readOnlySwitch"_s));
        QCOMPARE(textOf(settings, u"addAccountButton"_s), u"Account hinzufügen …"_s);
        shoot(settings, u"settings-account-saved"_s);

        // "Account hinzufügen …" opens the form again, "Abbrechen" closes it.
        QVERIFY(clickNamed(settings, u"addAccountButton"_s));
        QTRY_COMPARE(textOf(settings, u"addAccountButton"_s), u"Abbrechen"_s);
        QVERIFY(findItem(settings, u"nameField"_s));
        QCOMPARE(textOf(settings, u"nameField"_s), QString());
        QVERIFY(clickNamed(settings, u"addAccountButton"_s));
        QTRY_VERIFY2(m_shell->accountSettings()->showsAccountDetails(),
                     qPrintable(textOf(settings, u"addAccountButton"_s)));
        QVERIFY(findItem(settings, u"readOnlySwitch"_s));

        // "Zugriffe messen": without a server nothing is reachable, and the card says so per area.
        QVERIFY(clickNamed(settings, u"probeButton"_s));
        AccountSettingsViewModel* accounts = m_shell->accountSettings();
        QTRY_COMPARE(accounts->capabilities()->rowCount(), 4);
        QTRY_VERIFY(!accounts->isProbing());
        QVERIFY(!accounts->statusMessage().isEmpty());
        QCOMPARE(textOf(settings, u"accountStatusLabel"_s), accounts->statusMessage());
        shoot(settings, u"settings-capabilities"_s);
    }

    // An add or remove cut short leaves an account without its key: the card says so and the
    // same key id, imported again from the card, mends it.
    void missingKeyIsImportedAgain() {
        const QString keyPath = writeKey(m_dir->filePath(u"home"_s));
        const Platform platform = demoPlatform();
        {
            AccountStore before(platform);
            VarnisTest::awaitTask(before.addAccount(u"Studio"_s, u"57246542-96fe-1a63-e053-0824d011072a"_s,
                                                    u"ABCDE12345"_s, makeTestKey().privateKeyPEM));
            VarnisTest::awaitTask(platform.secrets->remove(before.accounts().first().idText()));
        }
        start(platform);
        show();
        QQuickWindow* settings = openAccounts();
        QVERIFY(settings);
        QTRY_VERIFY(textOf(settings, u"capabilityHeadline"_s).contains(u"fehlt im Schlüsselbund"_s));
        shoot(settings, u"settings-key-missing"_s);

        QVERIFY(clickNamed(settings, u"reimportKeyButton"_s));
        QTRY_COMPARE(textOf(settings, u"nameField"_s), u"Studio"_s);
        QCOMPARE(textOf(settings, u"keyIDField"_s), u"ABCDE12345"_s);
        typeInto(settings, u"keyFileField"_s, keyPath);
        QTest::keyClick(settings, Qt::Key_Tab);
        QQuickItem* save = findItem(settings, u"saveAccountButton"_s);
        QVERIFY(save);
        QTRY_VERIFY(save->isEnabled());
        click(save);

        AccountStore& store = m_state->accountStore();
        QTRY_VERIFY(!m_shell->accountSettings()->isKeyMissing());
        QCOMPARE(store.accounts().size(), 1);
        QTRY_VERIFY(!shownItem(settings, u"reimportKeyButton"_s));
        QVERIFY(!textOf(settings, u"capabilityHeadline"_s).contains(u"fehlt"_s));
    }

    void keyboardClosesWindows_data() {
        QTest::addColumn<QString>("window");
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");

        QTest::newRow("settings, Esc") << u"settingsWindow"_s << int(Qt::Key_Escape) << int(Qt::NoModifier);
        QTest::newRow("settings, Ctrl+W")
            << u"settingsWindow"_s << int(Qt::Key_W) << int(Qt::ControlModifier);
        QTest::newRow("change log, Esc")
            << u"changeLogWindow"_s << int(Qt::Key_Escape) << int(Qt::NoModifier);
        QTest::newRow("change log, Ctrl+W")
            << u"changeLogWindow"_s << int(Qt::Key_W) << int(Qt::ControlModifier);
    }

    void keyboardClosesWindows() {
        QFETCH(QString, window);
        QFETCH(int, key);
        QFETCH(int, modifiers);

        startDemo();
        // One write in the log, so that the change log draws a row.
        m_state->accountStore().auditLog()->record({QUuid::createUuid(),
                                                    QDateTime::currentDateTimeUtc(),
                                                    u"POST"_s,
                                                    u"/v1/betaGroups"_s,
                                                    201,
                                                    u"REQ-1"_s,
                                                    u"Team"_s,
                                                    {}});
        if (window == u"settingsWindow"_s) {
            QTest::keyClick(mainWindow(), Qt::Key_Comma, Qt::ControlModifier);
        } else {
            QTest::keyClick(mainWindow(), Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
        }
        QQuickWindow* opened = nullptr;
        QTRY_VERIFY((opened = topLevel(window)) != nullptr);
        QVERIFY(QTest::qWaitForWindowExposed(opened));
        activate(opened);
        if (window == u"changeLogWindow"_s) {
            QQuickItem* list = findItem(opened, u"changeLogList"_s);
            QVERIFY(list);
            QTRY_COMPARE(list->property("count").toInt(), 1);
        }
        QTest::keyClick(opened, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
        QTRY_VERIFY(!opened->isVisible());
        QVERIFY(mainWindow()->isVisible());
    }

    void pagesFitTheWindow() {
        startDemo();
        QQuickWindow* settings = openAccounts();
        QVERIFY(settings);
        QCOMPARE(settings->size(), QSize(600, 520));
        QCOMPARE(settings->minimumSize(), settings->maximumSize());

        const QList<QPair<QString, QString>> pages{{u"accountsTab"_s, u"accountsPage"_s},
                                                   {u"backgroundTab"_s, u"backgroundPage"_s},
                                                   {u"generalTab"_s, u"generalPage"_s}};
        for (const auto& [tab, pageName] : pages) {
            QVERIFY(clickNamed(settings, tab));
            QQuickItem* page = findItem(settings, pageName);
            QVERIFY2(page, qPrintable(pageName));
            shoot(settings, u"settings-"_s + tab);
            // The page scrolls over all of its content, and the scroll bar has a lane of its own.
            QQuickItem* bar = nullptr;
            const auto children = page->childItems();
            for (QQuickItem* child : children) {
                if (QByteArrayView(child->metaObject()->className()).startsWith("ScrollBar") &&
                    child->height() > child->width()) {
                    bar = child;
                }
            }
            QVERIFY2(bar, qPrintable(pageName));
            const qreal lane = bar->mapToScene(QPointF(0, 0)).x();
            const QList<QQuickItem*> controls = focusableIn(page);
            QVERIFY(!controls.isEmpty());
            for (QQuickItem* control : controls) {
                const QRectF rect =
                    control->mapRectToScene(QRectF(0, 0, control->width(), control->height()));
                QVERIFY2(rect.right() <= lane, qPrintable(pageName + u": "_s + control->objectName()));
                QVERIFY2(rect.left() >= 0, qPrintable(pageName + u": "_s + control->objectName()));
            }
            auto* flickable = page->property("contentItem").value<QQuickItem*>();
            QVERIFY(flickable);
            auto* content = flickable->property("contentItem").value<QQuickItem*>();
            QVERIFY(content);
            const qreal contentHeight = page->property("contentHeight").toReal();
            for (QQuickItem* control : controls) {
                const QRectF inContent =
                    control->mapRectToItem(content, QRectF(0, 0, control->width(), control->height()));
                QVERIFY2(inContent.bottom() <= contentHeight,
                         qPrintable(pageName + u": "_s + control->objectName()));
            }
        }
        // What demo mode shows is said by the model, not promised by the page.
        QCOMPARE(textOf(settings, u"demoExplanationLabel"_s), m_shell->accountSettings()->demoExplanation());
        QVERIFY(!textOf(settings, u"demoExplanationLabel"_s).contains(u"alle Bereiche"_s));
    }

private:
    // Everything on the page one can tab to: fields, buttons, switches.
    static QList<QQuickItem*> focusableIn(QQuickItem* item) {
        QList<QQuickItem*> found;
        if (!item->isVisible()) {
            return found;
        }
        if (item->activeFocusOnTab() && item->width() > 0) {
            found.append(item);
        }
        const auto children = item->childItems();
        for (QQuickItem* child : children) {
            found += focusableIn(child);
        }
        return found;
    }

    static bool addAccountFormShown(QQuickWindow* settings) { return findItem(settings, u"nameField"_s); }
};

QTEST_MAIN(SettingsTest)
#include "tst_settings.moc"
