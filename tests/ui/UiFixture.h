#pragma once

#include "app/UiShell.h"
#include "platform/Platform.h"
#include "support/RecordingUrlOpener.h"
#include "workspace/AppState.h"

#include <QObject>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTemporaryDir>

#include <memory>

class TestServer;

// What every window test needs: a fresh application state in a temporary folder, the real
// screens on it, and a way to reach items the way a person does — by what they are called and
// where they are on screen. Any QML warning or error during a test fails it.
class UiFixture : public QObject {
    Q_OBJECT
protected:
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<AppState> m_state;
    std::unique_ptr<QQmlApplicationEngine> m_engine;
    std::unique_ptr<UiShell> m_shell;
    // What the window would have handed to the desktop (browser, viewer).
    std::shared_ptr<RecordingUrlOpener> m_urlOpener = std::make_shared<RecordingUrlOpener>();

    // Seams for a run without network: manual clock, fake transport, secrets in memory.
    Platform demoPlatform() const;
    void start(Platform platform);
    // Demo mode with its sample apps, the window shown.
    void startDemo();
    void show();
    void shoot(QQuickWindow* window, const QString& name);

    QQuickWindow* mainWindow() const { return m_shell->mainWindow(); }
    // A top-level window by its object name (the second app window, settings, …), or null.
    static QQuickWindow* topLevel(const QString& objectName);
    // The visible item of that name in the window, or null; waits for it up to a few seconds
    // of event processing.
    static QQuickItem* findItem(QQuickWindow* window, const QString& objectName);
    // The same without waiting: what is on screen right now.
    static QQuickItem* shownItem(QQuickWindow* window, const QString& objectName);
    // The visible text item (label, button title) that shows exactly this text, or null; waits
    // for it like findItem.
    static QQuickItem* findText(QQuickWindow* window, const QString& text);
    // Types the text key by key into whatever has the focus, as a keyboard would (also letters
    // that are not on a US keyboard).
    static void typeText(QWindow* window, const QString& text);
    // A left click in the middle of the item, as a mouse would give it.
    static void click(QQuickItem* item, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    // Clicks the item of that name; fails the test if it is not there.
    static bool clickNamed(QQuickWindow* window, const QString& objectName);
    // The delegate of row `row` of a ListView, scrolled into view, or null.
    static QQuickItem* rowItem(QQuickWindow* window, const QString& listName, int row);
    // The visible item of that name inside `parent`, or null.
    static QQuickItem* childNamed(QQuickItem* parent, const QString& objectName);
    // Row `row` of a ListView: scrolls it into view and clicks it.
    static bool clickRow(QQuickWindow* window, const QString& listName, int row);
    static void activate(QQuickWindow* window);

    // The hooks of QtTest's fixture; derived tests call them from their own slots.
    void initFixture();
    void cleanupFixture();
    static void installMessageHandler();

public:
    static QStringList& qmlProblems();
};
