#include "workspace/OverviewViewModel.h"

#include "api/AccountStore.h"
#include "api/RowListModel.h"
#include "workspace/AppState.h"

using namespace Qt::StringLiterals;

OverviewViewModel::OverviewViewModel(const AppState& state, ManagedApp app, QObject* parent)
    : QObject(parent), m_rows(new RowListModel({"label", "value", "accessibleName"}, this)) {
    QString account = app.accountName.value_or(QString());
    if (account.isEmpty() && app.accountID) {
        if (auto owner = state.accountStore().account(*app.accountID)) {
            account = owner->name;
        }
    }
    if (account.isEmpty()) {
        account = state.isDemoActive() ? u"Demo-Modus"_s : u"–"_s;
    }
    const QList<std::pair<QString, QString>> pairs{
        {u"Name"_s, app.name},
        {u"Bundle-ID"_s, app.bundleID},
        {u"SKU"_s, app.sku.value_or(u"–"_s)},
        {u"Primärsprache"_s, app.primaryLocale.value_or(u"–"_s)},
        {u"Account"_s, account},
        {u"App-ID"_s, app.id},
    };
    QList<RowListModel::Row> rows;
    for (const auto& [label, value] : pairs) {
        rows.append({label, value, label + u": "_s + value});
    }
    m_rows->setRows(rows);
}
