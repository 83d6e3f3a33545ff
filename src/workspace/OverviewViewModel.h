#pragma once

#include "workspace/ManagedApp.h"

#include <QObject>

class AppState;
class RowListModel;

// "Übersicht": what is known of the app without asking Apple again.
class OverviewViewModel : public QObject {
    Q_OBJECT
    Q_MOC_INCLUDE("api/RowListModel.h")
    Q_PROPERTY(RowListModel* rows READ rows CONSTANT)
public:
    // The roles of `rows`, in this order.
    enum Column { Label, Value, AccessibleName };

    OverviewViewModel(const AppState& state, ManagedApp app, QObject* parent = nullptr);

    RowListModel* rows() const { return m_rows; }

private:
    RowListModel* m_rows;
};
