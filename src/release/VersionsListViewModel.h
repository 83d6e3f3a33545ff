#pragma once

#include "workspace/ManagedApp.h"

#include <QCoro/QCoroTask>
#include <QObject>
#include <QVariantList>

class AppState;

// The "Versionen & Builds" list: every version of the app with its state and the build it
// carries. Reading only; the guided release comes on top of it.
class VersionsListViewModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY changed)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY changed)
    Q_PROPERTY(QVariantList versions READ versions NOTIFY changed)
    Q_PROPERTY(QString emptyText READ emptyText CONSTANT)
public:
    VersionsListViewModel(AppState& state, ManagedApp app, QObject* parent = nullptr);

    bool isLoading() const { return m_isLoading; }
    QString errorMessage() const { return m_error; }
    QVariantList versions() const { return m_rows; }
    QString emptyText() const;

    QCoro::Task<> load(bool forceRefresh);
    Q_INVOKABLE void startLoad(bool forceRefresh);

Q_SIGNALS:
    void changed();

private:
    AppState& m_state;
    ManagedApp m_app;
    bool m_isLoading = false;
    QString m_error;
    QVariantList m_rows;
};
