#include "release/VersionsListViewModel.h"

#include "api/AccountStore.h"
#include "api/AppStoreConnectClient.h"
#include "platform/Clock.h"
#include "platform/VarnisError.h"
#include "release/VersionsService.h"
#include "workspace/AppState.h"
#include "workspace/MockData.h"

#include <QLocale>
#include <QPointer>

using namespace Qt::StringLiterals;

namespace {

QVariantMap row(const VelmoraVersion& version, const std::optional<ManagedBuild>& build) {
    const QString created =
        version.createdDate
            ? QLocale(QLocale::German).toString(version.createdDate->toLocalTime(), u"dd.MM.yyyy"_s)
            : QString();
    return {{u"id"_s, version.id},
            {u"versionString"_s, version.versionString},
            {u"platform"_s, version.platform ? version.platform->raw() : QString()},
            {u"stateName"_s, version.state.displayName()},
            {u"createdText"_s, created.isEmpty() ? QString() : u"angelegt am "_s + created},
            {u"buildText"_s, build ? u"Build "_s + build->buildNumber : u"Kein Build zugeordnet"_s}};
}

} // namespace

VersionsListViewModel::VersionsListViewModel(AppState& state, ManagedApp app, QObject* parent)
    : QObject(parent), m_state(state), m_app(std::move(app)) {}

QString VersionsListViewModel::emptyText() const {
    return u"Für diese App gibt es noch keine Version."_s;
}

void VersionsListViewModel::startLoad(bool forceRefresh) {
    QCoro::connect(load(forceRefresh), this, [] {});
}

QCoro::Task<> VersionsListViewModel::load(bool forceRefresh) {
    QPointer<VersionsListViewModel> self(this);
    if (m_state.isDemoActive()) {
        const QDateTime now = m_state.platform().clock->now();
        const auto versions = MockData::versions(m_app.id, now);
        const auto builds = MockData::builds(m_app.id, now);
        m_rows.clear();
        for (qsizetype i = 0; i < versions.size(); ++i) {
            m_rows.append(
                row(versions[i], i < builds.size() ? std::optional<ManagedBuild>(builds[i]) : std::nullopt));
        }
        Q_EMIT changed();
        co_return;
    }
    const auto account = m_state.accountStore().selectedAccount();
    if (!account) {
        co_return;
    }
    m_isLoading = true;
    m_error.clear();
    Q_EMIT changed();
    try {
        auto client = co_await m_state.accountStore().makeClient(*account);
        if (!self) {
            co_return;
        }
        const QString appID = m_app.id;
        const auto versions = co_await m_state.versionsService().versions(appID, client, forceRefresh);
        if (!self) {
            co_return;
        }
        QVariantList rows;
        for (const auto& version : versions) {
            const QString versionID = version.id;
            // One small request per version; the service keeps the answers for a minute.
            const auto build =
                co_await m_state.versionsService().assignedBuild(versionID, client, forceRefresh);
            if (!self) {
                co_return;
            }
            rows.append(row(version, build));
        }
        m_rows = rows;
    } catch (const std::exception& error) {
        if (!self) {
            co_return;
        }
        m_error = describeError(error);
    }
    m_isLoading = false;
    Q_EMIT changed();
}
