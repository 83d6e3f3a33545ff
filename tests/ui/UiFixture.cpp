#include "UiFixture.h"

#include "platform/Clock.h"
#include "support/FakeTransport.h"
#include "support/MemorySecretStore.h"

#include <QDir>
#include <QGuiApplication>
#include <QQuickStyle>
#include <QSettings>
#include <QTest>

#include <functional>

using namespace Qt::StringLiterals;

namespace {

QtMessageHandler previousHandler = nullptr;

void collectQmlProblems(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    const QByteArrayView category(context.category ? context.category : "");
    // Some of the engine's complaints come without a category or a file ("QQmlComponent:
    // Component is not ready"); they name the engine's classes instead.
    const bool fromQml = category.startsWith("qml") || category.startsWith("js") ||
                         message.contains(u"qrc:/"_s) || message.contains(u".qml"_s) ||
                         message.startsWith(u"QQml"_s) || message.startsWith(u"QQuick"_s);
    if (type != QtDebugMsg && type != QtInfoMsg && fromQml) {
        UiFixture::qmlProblems().append(message);
    }
    if (previousHandler) {
        previousHandler(type, context, message);
    }
}

} // namespace

QStringList& UiFixture::qmlProblems() {
    static QStringList problems;
    return problems;
}

void UiFixture::installMessageHandler() {
    QQuickStyle::setStyle(u"Fusion"_s);
    previousHandler = qInstallMessageHandler(collectQmlProblems);
}

void UiFixture::initFixture() {
    qmlProblems().clear();
    m_dir = std::make_unique<QTemporaryDir>();
}

void UiFixture::cleanupFixture() {
    m_shell.reset();
    m_engine.reset();
    m_state.reset();
    QVERIFY2(qmlProblems().isEmpty(), qPrintable(qmlProblems().join(u'\n')));
}

Platform UiFixture::demoPlatform() const {
    Platform platform;
    platform.clock = std::make_shared<ManualClock>();
    platform.transport = std::make_shared<FakeTransport>();
    platform.secrets = std::make_shared<MemorySecretStore>();
    platform.urlOpener = m_urlOpener;
    platform.paths = DataPaths::at(m_dir->filePath(u"data"_s));
    platform.apiRoot = QUrl(u"https://api.example.test"_s);
    return platform;
}

void UiFixture::start(Platform platform) {
    m_state = std::make_unique<AppState>(
        std::move(platform), AppState::Options{std::make_shared<QSettings>(m_dir->filePath(u"settings.ini"_s),
                                                                           QSettings::IniFormat)});
}

void UiFixture::startDemo() {
    start(demoPlatform());
    m_state->setDemoModeEnabled(true);
    show();
}

void UiFixture::show() {
    m_engine = std::make_unique<QQmlApplicationEngine>();
    m_shell = std::make_unique<UiShell>(*m_state, *m_engine);
    QVERIFY(m_shell->load());
    m_shell->start();
    QVERIFY(QTest::qWaitForWindowExposed(m_shell->mainWindow()));
    activate(m_shell->mainWindow());
}

void UiFixture::activate(QQuickWindow* window) {
    window->requestActivate();
    QVERIFY(QTest::qWaitForWindowActive(window));
}

void UiFixture::shoot(QQuickWindow* window, const QString& name) {
    QVERIFY(window);
    QCoreApplication::processEvents();
    const QImage image = window->grabWindow();
    QVERIFY2(!image.isNull(), qPrintable(name));
    QDir().mkpath(QStringLiteral(VARNIS_SCREENSHOT_DIR));
    QVERIFY(image.save(QStringLiteral(VARNIS_SCREENSHOT_DIR) + u'/' + name + u".png"_s));
}

QQuickWindow* UiFixture::topLevel(const QString& objectName) {
    for (QWindow* window : QGuiApplication::topLevelWindows()) {
        if (window->objectName() == objectName && window->isVisible()) {
            return qobject_cast<QQuickWindow*>(window);
        }
    }
    return nullptr;
}

namespace {
// Walks what is on screen, not the object tree: delegates, loaded pages and popups are visual
// children of the window's root item whatever their owner is.
QQuickItem* visibleMatch(QQuickItem* item, const std::function<bool(QQuickItem*)>& matches) {
    if (!item->isVisible()) {
        return nullptr;
    }
    if (matches(item)) {
        return item;
    }
    const auto children = item->childItems();
    for (QQuickItem* child : children) {
        if (QQuickItem* found = visibleMatch(child, matches)) {
            return found;
        }
    }
    return nullptr;
}

QQuickItem* visibleChild(QQuickItem* item, const QString& objectName) {
    return visibleMatch(item, [&objectName](QQuickItem* candidate) {
        return candidate->objectName() == objectName && candidate->width() > 0 && candidate->height() > 0;
    });
}

QQuickItem* rootOf(QQuickWindow* window) {
    QQuickItem* root = window->contentItem();
    while (root->parentItem()) {
        root = root->parentItem();
    }
    return root;
}
} // namespace

QQuickItem* UiFixture::shownItem(QQuickWindow* window, const QString& objectName) {
    // From the root item: popups and sheets live on the overlay, beside the content item.
    return visibleChild(rootOf(window), objectName);
}

QQuickItem* UiFixture::findItem(QQuickWindow* window, const QString& objectName) {
    QQuickItem* found = nullptr;
    (void)QTest::qWaitFor([&] { return (found = shownItem(window, objectName)) != nullptr; });
    return found;
}

QQuickItem* UiFixture::findText(QQuickWindow* window, const QString& text) {
    QQuickItem* found = nullptr;
    (void)QTest::qWaitFor([&] {
        found = visibleMatch(rootOf(window), [&text](QQuickItem* candidate) {
            return candidate->inherits("QQuickText") && candidate->property("text").toString() == text;
        });
        return found != nullptr;
    });
    return found;
}

void UiFixture::typeText(QWindow* window, const QString& text) {
    for (const QChar ch : text) {
        const Qt::Key key =
            ch.isLetterOrNumber() && ch.unicode() < 128 ? Qt::Key(ch.toUpper().unicode()) : Qt::Key_unknown;
        const Qt::KeyboardModifiers modifiers = ch.isUpper() ? Qt::ShiftModifier : Qt::NoModifier;
        QTest::sendKeyEvent(QTest::Press, window, key, QString(ch), modifiers);
        QTest::sendKeyEvent(QTest::Release, window, key, QString(ch), modifiers);
    }
}

void UiFixture::click(QQuickItem* item, Qt::KeyboardModifiers modifiers) {
    // A person clicks on what is drawn: the layouts settle first (a button whose text just
    // changed may be narrower now), then the click aims at the item where it is.
    (void)item->window()->grabWindow();
    const QPointF centre = item->mapToScene(QPointF(item->width() / 2, item->height() / 2));
    QTest::mouseClick(item->window(), Qt::LeftButton, modifiers, centre.toPoint());
}

bool UiFixture::clickNamed(QQuickWindow* window, const QString& objectName) {
    QQuickItem* item = findItem(window, objectName);
    if (!item) {
        qWarning("no visible item named %s", qPrintable(objectName));
        return false;
    }
    click(item);
    return true;
}

QQuickItem* UiFixture::childNamed(QQuickItem* parent, const QString& objectName) {
    return parent ? visibleChild(parent, objectName) : nullptr;
}

QQuickItem* UiFixture::rowItem(QQuickWindow* window, const QString& listName, int row) {
    QQuickItem* list = findItem(window, listName);
    if (!list) {
        qWarning("no visible list named %s", qPrintable(listName));
        if (auto* hidden = window->findChild<QQuickItem*>(listName)) {
            for (QQuickItem* item = hidden; item; item = item->parentItem()) {
                qWarning("  %s %s visible=%d %gx%g", item->metaObject()->className(),
                         qPrintable(item->objectName()), item->isVisible(), item->width(), item->height());
            }
        }
        return nullptr;
    }
    QMetaObject::invokeMethod(list, "positionViewAtIndex", Q_ARG(int, row), Q_ARG(int, 0 /* Beginning */));
    QCoreApplication::processEvents();
    QQuickItem* delegate = nullptr;
    QMetaObject::invokeMethod(list, "itemAtIndex", Q_RETURN_ARG(QQuickItem*, delegate), Q_ARG(int, row));
    if (!delegate) {
        qWarning("row %d of %s is not on screen", row, qPrintable(listName));
    }
    return delegate;
}

bool UiFixture::clickRow(QQuickWindow* window, const QString& listName, int row) {
    QQuickItem* delegate = rowItem(window, listName, row);
    if (!delegate) {
        return false;
    }
    click(delegate);
    return true;
}
