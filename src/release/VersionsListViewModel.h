#pragma once

#include "workspace/ManagedApp.h"

#include <QCoro/QCoroTask>
#include <QObject>

class AppState;
class ModelOperation;
class RowListModel;

// The "Versionen & Builds" list: every version of the app with its state and the build it
// carries. Reading only; the guided release comes on top of it.
class VersionsListViewModel : public QObject {
    Q_OBJECT
    Q_MOC_INCLUDE("api/RowListModel.h")
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY isLoadingChanged)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged)
    Q_PROPERTY(RowListModel* versions READ versions CONSTANT)
    Q_PROPERTY(bool isEmpty READ isEmpty NOTIFY isEmptyChanged)
    Q_PROPERTY(QString emptyText READ emptyText CONSTANT)
public:
    // The roles of `versions`, in this order.
    enum Column {
        Id,
        VersionString,
        Platform,
        StateName,
        CreatedText,
        BuildText,
        DetailText,
        AccessibleName
    };

    VersionsListViewModel(AppState& state, ManagedApp app, QObject* parent = nullptr);

    bool isLoading() const;
    QString errorMessage() const;
    RowListModel* versions() const { return m_rows; }
    bool isEmpty() const;
    QString emptyText() const;

    QCoro::Task<> load(bool forceRefresh);
    Q_INVOKABLE void startLoad(bool forceRefresh);
    Q_INVOKABLE void retry() { startLoad(true); }

Q_SIGNALS:
    void isLoadingChanged();
    void errorMessageChanged();
    void isEmptyChanged();

private:
    AppState& m_state;
    ManagedApp m_app;
    ModelOperation* m_loading;
    RowListModel* m_rows;
};
