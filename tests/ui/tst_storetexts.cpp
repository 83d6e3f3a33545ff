#include "UiFixture.h"

#include "metadata/MetadataFields.h"
#include "metadata/MetadataViewModel.h"
#include "workspace/AppListModel.h"
#include "workspace/SectionHost.h"
#include "workspace/WorkspaceViewModel.h"

#include <QQuickItem>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

// The part of the item that is on screen: its rectangle cut by every clipping ancestor.
QRectF visibleSceneRect(QQuickItem* item) {
    QRectF rect = item->mapRectToScene(QRectF(0, 0, item->width(), item->height()));
    for (QQuickItem* up = item->parentItem(); up; up = up->parentItem()) {
        if (up->clip()) {
            rect &= up->mapRectToScene(QRectF(0, 0, up->width(), up->height()));
        }
    }
    return rect;
}

// Scrolls every view around the item so that its top is on screen, as the wheel would.
void scrollIntoView(QQuickItem* item) {
    for (QQuickItem* up = item->parentItem(); up; up = up->parentItem()) {
        if (!up->inherits("QQuickFlickable")) {
            continue;
        }
        const QRectF inView = item->mapRectToItem(up, QRectF(0, 0, item->width(), item->height()));
        const qreal contentY = up->property("contentY").toReal();
        const qreal maxY = std::max<qreal>(0, up->property("contentHeight").toReal() - up->height());
        if (inView.top() < 0 || inView.top() + std::min<qreal>(inView.height(), 40) > up->height()) {
            up->setProperty("contentY", std::clamp<qreal>(contentY + inView.top() - 10, 0, maxY));
        }
    }
    QCoreApplication::processEvents();
}

// What the user sees of a field: the line itself, or the framed box a text area scrolls in.
QQuickItem* fieldFrame(QQuickItem* editor) {
    // A text area's frame is the scroll view right around it; a line is its own frame.
    if (!editor->inherits("QQuickTextArea")) {
        return editor;
    }
    for (QQuickItem* up = editor->parentItem(); up; up = up->parentItem()) {
        if (up->inherits("QQuickScrollView")) {
            return up;
        }
    }
    return editor;
}

QQuickItem* verticalScrollBar(QQuickItem* root) {
    for (QQuickItem* candidate : root->findChildren<QQuickItem*>()) {
        if (candidate->inherits("QQuickScrollBar") &&
            candidate->property("orientation").toInt() == Qt::Vertical && candidate->isVisible() &&
            candidate->height() > 200) {
            return candidate;
        }
    }
    return nullptr;
}

} // namespace

class StoreTextsTest : public UiFixture {
    Q_OBJECT

    WorkspaceViewModel* m_workspace = nullptr;
    MetadataViewModel* m_metadata = nullptr;

    // Demo mode, the first app chosen with the mouse, its store texts opened with Ctrl+2.
    void openStoreTexts() {
        startDemo();
        m_workspace = m_shell->workspace();
        QTRY_COMPARE(m_workspace->allApps()->count(), 4);
        QVERIFY(clickRow(mainWindow(), u"allAppsList"_s, 0));
        QTRY_VERIFY(m_workspace->hasSelectedApp());
        QTest::keyClick(mainWindow(), Qt::Key_2, Qt::ControlModifier);
        QTRY_COMPARE(m_workspace->selectedSection(), u"appStoreOptimization"_s);
        m_metadata = qobject_cast<MetadataViewModel*>(m_workspace->sections()->sectionModel());
        QVERIFY(m_metadata);
        QTRY_VERIFY(m_metadata->editBuffer().has_value());
        QCOMPARE(m_metadata->localizations().size(), 2);
    }

    QQuickItem* field(const QString& key) { return findItem(mainWindow(), u"field_"_s + key); }

    // A click in the middle of what is visible of the field.
    void clickInto(QQuickItem* item) {
        scrollIntoView(item);
        const QRectF visible = visibleSceneRect(item);
        QVERIFY2(!visible.isEmpty(), qPrintable(item->objectName()));
        QTest::mouseClick(mainWindow(), Qt::LeftButton, Qt::NoModifier, visible.center().toPoint());
    }

private Q_SLOTS:
    void initTestCase() { installMessageHandler(); }
    void init() { initFixture(); }
    void cleanup() { cleanupFixture(); }

    void typingReachesEveryField() {
        openStoreTexts();
        if (QTest::currentTestFailed()) {
            return;
        }
        const QString first = *m_metadata->selectedLocale();
        QHash<QString, QString> typed;
        for (const MetadataFieldInfo& info : MetadataFields::inEditorOrder()) {
            const QString key = info.key.toString();
            QQuickItem* item = field(key);
            QVERIFY2(item, qPrintable(key));
            clickInto(item);
            QTRY_VERIFY2(item->hasActiveFocus(), qPrintable(key));
            // To the end of the text: End for a line, Ctrl+End for a text area.
            QTest::keyClick(mainWindow(), Qt::Key_End);
            QTest::keyClick(mainWindow(), Qt::Key_End, Qt::ControlModifier);
            const QString before = MetadataFields::text(*m_metadata->editBuffer(), info.field);
            const QString word = u"Wort"_s + key.left(3);
            typeText(mainWindow(), word);
            const QString expected = before + word;
            QCOMPARE(MetadataFields::text(*m_metadata->editBuffer(), info.field), expected);
            QCOMPARE(item->property("text").toString(), expected);
            QCOMPARE(item->property("cursorPosition").toInt(), expected.size());
            QVERIFY2(item->hasActiveFocus(), qPrintable(key));
            // The editor is still the same item: nothing was rebuilt under the cursor.
            QCOMPARE(field(key), item);
            typed.insert(key, expected);
        }
        QVERIFY(m_metadata->hasUnsavedChanges());
        shoot(mainWindow(), u"store-texts-typed"_s);

        const QString other = m_metadata->localizations()[0].locale == first
                                  ? m_metadata->localizations()[1].locale
                                  : m_metadata->localizations()[0].locale;
        QVERIFY(clickNamed(mainWindow(), u"language_"_s + other));
        QTRY_COMPARE(m_metadata->selectedLocaleText(), other);
        QCOMPARE(field(u"keywords"_s)->property("text").toString(), m_metadata->editBuffer()->keywords);
        QVERIFY(clickNamed(mainWindow(), u"language_"_s + first));
        QTRY_COMPARE(m_metadata->selectedLocaleText(), first);
        QVERIFY(m_metadata->restoredDraftDate().has_value());
        for (auto it = typed.cbegin(); it != typed.cend(); ++it) {
            QCOMPARE(MetadataFields::text(*m_metadata->editBuffer(), *MetadataFields::fromRaw(it.key())),
                     it.value());
            QCOMPARE(field(it.key())->property("text").toString(), it.value());
        }
    }

    void minimumSizeKeepsFieldsApart() {
        openStoreTexts();
        if (QTest::currentTestFailed()) {
            return;
        }
        QQuickWindow* window = mainWindow();
        window->resize(900, 560);
        QTRY_COMPARE(window->size(), QSize(900, 560));
        QCoreApplication::processEvents();

        QList<QPair<QString, QRectF>> frames;
        for (const MetadataFieldInfo& info : MetadataFields::inEditorOrder()) {
            const QString key = info.key.toString();
            QQuickItem* item = field(key);
            QVERIFY2(item, qPrintable(key));
            QQuickItem* frame = fieldFrame(item);
            frames.append({key, frame->mapRectToScene(QRectF(0, 0, frame->width(), frame->height()))});
        }
        for (qsizetype i = 0; i < frames.size(); ++i) {
            QVERIFY2(frames[i].second.width() >= 150, qPrintable(frames[i].first));
            for (qsizetype j = i + 1; j < frames.size(); ++j) {
                QVERIFY2(!frames[i].second.intersects(frames[j].second),
                         qPrintable(frames[i].first + u" / "_s + frames[j].first));
            }
        }

        // The scroll bar of the editor lies beside the fields, not over them.
        QQuickItem* firstField = field(u"name"_s);
        QQuickItem* bar = nullptr;
        for (QQuickItem* up = firstField->parentItem(); up && !bar; up = up->parentItem()) {
            if (up->inherits("QQuickScrollView")) {
                bar = verticalScrollBar(up);
            }
        }
        QVERIFY(bar);
        const QRectF barRect = bar->mapRectToScene(QRectF(0, 0, bar->width(), bar->height()));
        for (const auto& [key, rect] : frames) {
            QVERIFY2(rect.right() <= barRect.left(), qPrintable(key));
        }

        // The languages and the editor sit side by side without covering each other.
        QQuickItem* languages = findItem(window, u"languageList"_s);
        QVERIFY(languages);
        const QRectF languagesRect =
            languages->mapRectToScene(QRectF(0, 0, languages->width(), languages->height()));
        QVERIFY(languagesRect.width() >= 140);
        for (const auto& [key, rect] : frames) {
            QVERIFY2(rect.left() >= languagesRect.right(), qPrintable(key));
        }
        QVERIFY(findItem(window, u"saveMetadataButton"_s));
        shoot(window, u"store-texts-minimum-size"_s);
    }
};

QTEST_MAIN(StoreTextsTest)
#include "tst_storetexts.moc"
