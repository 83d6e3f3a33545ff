#pragma once

#include "testflight/ManagedBetaFeedback.h"
#include "workspace/ManagedApp.h"

#include <QCoro/QCoroTask>
#include <QObject>

#include <memory>
#include <optional>

class QTemporaryDir;

class AppState;
class ModelOperation;
class RowListModel;

// What testers sent from inside TestFlight, screenshots and crashes in one list, newest first;
// a filter by kind; the details of the chosen item and, for a crash, its log. Read only.
class BetaFeedbackViewModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY isLoadingChanged)
    Q_PROPERTY(QString loadingText READ loadingText CONSTANT)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged)
    Q_PROPERTY(RowListModel* items READ itemRows CONSTANT)
    Q_PROPERTY(RowListModel* kinds READ kindRows CONSTANT)
    Q_PROPERTY(RowListModel* stats READ statRows CONSTANT)
    Q_PROPERTY(bool showsEmptyState READ showsEmptyState NOTIFY showsEmptyStateChanged)
    Q_PROPERTY(QString emptyTitle READ emptyTitle NOTIFY emptyTitleChanged)
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY emptyTextChanged)
    Q_PROPERTY(QString selectedID READ selectedID NOTIFY selectedIDChanged)
    Q_PROPERTY(QString selectedDetail READ selectedDetail NOTIFY selectedDetailChanged)
    Q_PROPERTY(bool canOpenCrashLog READ canOpenCrashLog NOTIFY canOpenCrashLogChanged)
    Q_PROPERTY(bool isLoadingCrashLog READ isLoadingCrashLog NOTIFY isLoadingCrashLogChanged)
    Q_PROPERTY(QString crashLogText READ crashLogText NOTIFY crashLogTextChanged)

public:
    enum class Kind { All, Screenshot, Crash };
    Q_ENUM(Kind)

    // How many of each kind one load asks for.
    static constexpr int limit = 50;

    // The roles of `items`, in this order.
    enum ItemColumn {
        ItemID,
        ItemKindLabel,
        ItemIsCrash,
        ItemDateText,
        ItemComment,
        // Tester, device and version in one line.
        ItemDetailLine,
        ItemIsSelected,
        ItemAccessibleName,
    };
    // The roles of `kinds` (the filter's choices), in this order.
    enum KindColumn { KindKey, KindLabel, KindIsSelected };
    // The roles of `stats`, in this order.
    enum StatColumn { StatLabel, StatValue };

    BetaFeedbackViewModel(AppState& state, ManagedApp app, QObject* parent = nullptr);
    ~BetaFeedbackViewModel() override;

    static QString loadingText();

    // Published state.
    const QList<ManagedBetaFeedback>& allItems() const { return m_items; }
    // The items of the chosen kind.
    QList<ManagedBetaFeedback> filtered() const;
    Kind selectedKind() const { return m_kind; }
    const std::optional<ManagedBetaFeedback>& selected() const { return m_selected; }
    RowListModel* itemRows() const { return m_itemRows; }
    RowListModel* kindRows() const { return m_kindRows; }
    RowListModel* statRows() const { return m_statRows; }
    bool isLoading() const;
    QString errorMessage() const { return m_published.errorMessage; }
    bool showsEmptyState() const { return m_published.showsEmptyState; }
    QString emptyTitle() const { return m_published.emptyTitle; }
    QString emptyText() const { return m_published.emptyText; }
    QString selectedID() const { return m_selected ? m_selected->id : QString(); }
    QString selectedDetail() const { return m_published.selectedDetail; }
    bool canOpenCrashLog() const { return m_published.canOpenCrashLog; }
    bool isLoadingCrashLog() const;
    QString crashLogText() const { return m_crashLogText; }

    // Operations; each has a coroutine form that tests await.
    QCoro::Task<> load(bool forceRefresh);
    Q_INVOKABLE void startLoad(bool forceRefresh);
    void setKind(Kind kind);
    // By the key of a `kinds` row: "all", "screenshot", "crash".
    Q_INVOKABLE void selectKind(const QString& key);
    Q_INVOKABLE void select(const QString& feedbackID);
    // Fetches the log of the chosen crash, opens it in the system's viewer and shows its text;
    // Apple may hold none.
    QCoro::Task<> openCrashLog();
    Q_INVOKABLE void startOpenCrashLog();

Q_SIGNALS:
    void isLoadingChanged();
    void errorMessageChanged();
    void showsEmptyStateChanged();
    void emptyTitleChanged();
    void emptyTextChanged();
    void selectedIDChanged();
    void selectedDetailChanged();
    void canOpenCrashLogChanged();
    void isLoadingCrashLogChanged();
    void crashLogTextChanged();

private:
    struct Published {
        QString errorMessage;
        bool showsEmptyState = false;
        QString emptyTitle;
        QString emptyText;
        QString selectedDetail;
        bool canOpenCrashLog = false;
    };

    bool isDemo() const;
    void setCrashLogText(const QString& text);
    bool openWithDesktop(const QUrl& url) const;
    // Nothing, or why the log could not be opened.
    std::optional<QString> openInViewer(const QString& text, const QString& feedbackID);
    void publish();

    AppState& m_state;
    ManagedApp m_app;
    ModelOperation* m_loading;
    ModelOperation* m_crashLog;
    RowListModel* m_itemRows;
    RowListModel* m_kindRows;
    RowListModel* m_statRows;
    Published m_published;
    bool m_loaded = false;
    QList<ManagedBetaFeedback> m_items;
    Kind m_kind = Kind::All;
    std::optional<ManagedBetaFeedback> m_selected;
    QString m_crashLogText;
    std::unique_ptr<QTemporaryDir> m_logFolder;
};
