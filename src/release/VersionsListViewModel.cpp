#include "release/VersionsListViewModel.h"

#include "api/AccountStore.h"
#include "api/AppStoreConnectClient.h"
#include "api/ModelOperation.h"
#include "api/RowListModel.h"
#include "platform/Clock.h"
#include "platform/VarnisError.h"
#include "release/VersionsService.h"
#include "workspace/AppState.h"
#include "workspace/MockData.h"

#include <QLocale>

using namespace Qt::StringLiterals;

namespace {

RowListModel::Row row(const VelmoraVersion& version, const std::optional<ManagedBuild>& build) {
    const QString created =
        version.createdDate
            ? QLocale(QLocale::German).toString(version.createdDate->toLocalTime(), u"dd.MM.yyyy"_s)
            : QString();
    const QString createdText = created.isEmpty() ? QString() : u"angelegt am "_s + created;
    const QString buildText = build ? u"Build "_s + build->buildNumber : u"Kein Build zugeordnet"_s;
    const QString detail = createdText.isEmpty() ? buildText : buildText + u" · "_s + createdText;
    return {version.id,
            version.versionString,
            version.platform ? version.platform->raw() : QString(),
            version.state.displayName(),
            createdText,
            buildText,
            detail,
            u"Version "_s + version.versionString + u", "_s + version.state.displayName() + u", "_s + detail};
}

} // namespace

VersionsListViewModel::VersionsListViewModel(AppState& state, ManagedApp app, QObject* parent)
    : QObject(parent), m_state(state), m_app(std::move(app)), m_loading(new ModelOperation(this)),
      m_rows(new RowListModel({"versionId", "versionString", "platform", "stateName", "createdText",
                               "buildText", "detailText", "accessibleName"},
                              this)) {
    connect(m_loading, &ModelOperation::busyChanged, this, &VersionsListViewModel::isLoadingChanged);
    // "Empty" waits for the load to finish.
    connect(m_loading, &ModelOperation::busyChanged, this, &VersionsListViewModel::isEmptyChanged);
    connect(m_loading, &ModelOperation::errorChanged, this, &VersionsListViewModel::errorMessageChanged);
    connect(m_rows, &RowListModel::countChanged, this, &VersionsListViewModel::isEmptyChanged);
}

bool VersionsListViewModel::isLoading() const {
    return m_loading->isBusy();
}

QString VersionsListViewModel::errorMessage() const {
    return m_loading->errorText();
}

bool VersionsListViewModel::isEmpty() const {
    return m_rows->count() == 0 && !m_loading->isBusy();
}

QString VersionsListViewModel::emptyText() const {
    return u"Für diese App gibt es noch keine Version."_s;
}

void VersionsListViewModel::startLoad(bool forceRefresh) {
    QCoro::connect(load(forceRefresh), this, [] {});
}

QCoro::Task<> VersionsListViewModel::load(bool forceRefresh) {
    auto run = m_loading->start();
    if (m_state.isDemoActive()) {
        const QDateTime now = m_state.platform().clock->now();
        const auto versions = MockData::versions(m_app.id, now);
        const auto builds = MockData::builds(m_app.id, now);
        QList<RowListModel::Row> rows;
        for (qsizetype i = 0; i < versions.size(); ++i) {
            rows.append(
                row(versions[i], i < builds.size() ? std::optional<ManagedBuild>(builds[i]) : std::nullopt));
        }
        m_rows->setRows(rows);
        run.succeed();
        co_return;
    }
    const auto account = m_state.accountStore().selectedAccount();
    if (!account) {
        co_return;
    }
    try {
        auto client = co_await m_state.accountStore().makeClient(*account);
        if (!run) {
            co_return;
        }
        const QString appID = m_app.id;
        const auto versions = co_await m_state.versionsService().versions(appID, client, forceRefresh);
        if (!run) {
            co_return;
        }
        QList<RowListModel::Row> rows;
        for (const auto& version : versions) {
            const QString versionID = version.id;
            // One small request per version; the service keeps the answers for a minute.
            const auto build =
                co_await m_state.versionsService().assignedBuild(versionID, client, forceRefresh);
            if (!run) {
                co_return;
            }
            rows.append(row(version, build));
        }
        m_rows->setRows(rows);
        run.succeed();
    } catch (const std::exception& error) {
        run.fail(u"Versionen konnten nicht geladen werden"_s, error);
    }
}
