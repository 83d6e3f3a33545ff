#include "testflight/BetaFeedbackViewModel.h"

#include "api/AccountStore.h"
#include "api/ModelOperation.h"
#include "api/RowListModel.h"
#include "platform/AtomicFile.h"
#include "platform/Clock.h"
#include "platform/UrlOpener.h"
#include "testflight/TestFlightService.h"
#include "wire/VelmoraAPIError.h"
#include "workspace/AppState.h"
#include "workspace/MockData.h"

#include <QLocale>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

using Kind = BetaFeedbackViewModel::Kind;

struct KindChoice {
    Kind kind;
    QString key;
    QString label;
};

const QList<KindChoice>& kindChoices() {
    static const QList<KindChoice> choices{
        {Kind::All, u"all"_s, u"Alle"_s},
        {Kind::Screenshot, u"screenshot"_s, u"Screenshots"_s},
        {Kind::Crash, u"crash"_s, u"Abstürze"_s},
    };
    return choices;
}

bool isCrash(const ManagedBetaFeedback& item) {
    return item.kind == ManagedBetaFeedback::Kind::Crash;
}

QString dateText(const std::optional<QDateTime>& date) {
    return date ? QLocale(QLocale::German).toString(date->toLocalTime(), u"dd.MM.yyyy, HH:mm"_s)
                : u"ohne Datum"_s;
}

QString detailLine(const ManagedBetaFeedback& item) {
    QStringList parts;
    if (item.email) {
        parts.append(*item.email);
    }
    if (item.deviceModel) {
        parts.append(*item.deviceModel);
    }
    if (item.osVersion) {
        parts.append(u"System "_s + *item.osVersion);
    }
    if (item.appVersion) {
        parts.append(u"App "_s + *item.appVersion);
    }
    return parts.join(u" · "_s);
}

QString detailText(const ManagedBetaFeedback& item) {
    QStringList lines;
    const auto add = [&](const QString& label, const std::optional<QString>& value) {
        if (value && !value->isEmpty()) {
            lines.append(label + u": "_s + *value);
        }
    };
    lines.append((isCrash(item) ? u"Absturz vom "_s : u"Screenshot vom "_s) + dateText(item.createdDate));
    add(u"Kommentar"_s, item.comment);
    add(u"Tester"_s, item.email);
    add(u"Gerät"_s, item.deviceModel);
    add(u"System"_s, item.osVersion);
    add(u"App-Version"_s, item.appVersion);
    add(u"Sprache"_s, item.locale);
    if (item.batteryPercentage) {
        lines.append(u"Akku: %1 %"_s.arg(*item.batteryPercentage));
    }
    QStringList files;
    for (const auto& image : item.screenshots) {
        files.append(image.fileName.value_or(u"ohne Namen"_s));
    }
    if (!files.isEmpty()) {
        lines.append(u"Screenshots: "_s + files.join(u", "_s));
    }
    return lines.join(u'\n');
}

template <typename Signal>
void publishValue(BetaFeedbackViewModel* model, auto& stored, const auto& value, Signal signal) {
    if (stored != value) {
        stored = value;
        Q_EMIT(model->*signal)();
    }
}

} // namespace

BetaFeedbackViewModel::BetaFeedbackViewModel(AppState& state, ManagedApp app, QObject* parent)
    : QObject(parent), m_state(state), m_app(std::move(app)), m_loading(new ModelOperation(this)),
      m_crashLog(new ModelOperation(this)),
      m_itemRows(new RowListModel({"feedbackId", "kindLabel", "isCrash", "dateText", "comment", "detailLine",
                                   "isSelected", "accessibleName"},
                                  this)),
      m_kindRows(new RowListModel({"kindKey", "label", "isSelected"}, this)),
      m_statRows(new RowListModel({"label", "value"}, this)) {
    connect(m_loading, &ModelOperation::busyChanged, this, &BetaFeedbackViewModel::isLoadingChanged);
    connect(m_crashLog, &ModelOperation::busyChanged, this, &BetaFeedbackViewModel::isLoadingCrashLogChanged);
    for (ModelOperation* operation : {m_loading, m_crashLog}) {
        connect(operation, &ModelOperation::busyChanged, this, &BetaFeedbackViewModel::publish);
        connect(operation, &ModelOperation::errorChanged, this, &BetaFeedbackViewModel::publish);
    }
    publish();
}

BetaFeedbackViewModel::~BetaFeedbackViewModel() = default;

QString BetaFeedbackViewModel::loadingText() {
    return u"Rückmeldungen werden geladen …"_s;
}

bool BetaFeedbackViewModel::isDemo() const {
    return m_state.isDemoActive();
}

bool BetaFeedbackViewModel::isLoading() const {
    return m_loading->isBusy();
}

bool BetaFeedbackViewModel::isLoadingCrashLog() const {
    return m_crashLog->isBusy();
}

QList<ManagedBetaFeedback> BetaFeedbackViewModel::filtered() const {
    if (m_kind == Kind::All) {
        return m_items;
    }
    const auto wanted =
        m_kind == Kind::Crash ? ManagedBetaFeedback::Kind::Crash : ManagedBetaFeedback::Kind::Screenshot;
    QList<ManagedBetaFeedback> result;
    std::copy_if(m_items.cbegin(), m_items.cend(), std::back_inserter(result),
                 [&](const ManagedBetaFeedback& item) { return item.kind == wanted; });
    return result;
}

void BetaFeedbackViewModel::startLoad(bool forceRefresh) {
    QCoro::connect(load(forceRefresh), this, [] {});
}

QCoro::Task<> BetaFeedbackViewModel::load(bool forceRefresh) {
    if (m_loaded && !forceRefresh) {
        co_return;
    }
    auto run = m_loading->start();
    QList<ManagedBetaFeedback> items;
    if (isDemo()) {
        items = MockData::betaFeedback(m_app.id, m_state.platform().clock->now());
    } else {
        const auto account = m_state.accountStore().selectedAccount();
        if (!account) {
            run.fail(VelmoraAPIError::notConfigured().errorDescription());
            co_return;
        }
        try {
            auto client = co_await m_state.accountStore().makeClient(*account);
            if (!run) {
                co_return;
            }
            items = co_await m_state.testFlightService().feedback(m_app.id, limit, client);
            if (!run) {
                co_return;
            }
        } catch (const std::exception& error) {
            if (run) {
                run.fail(u"Die Rückmeldungen konnten nicht geladen werden"_s, error);
            }
            co_return;
        }
    }
    m_items = std::move(items);
    m_loaded = true;
    if (m_selected) {
        const QString id = m_selected->id;
        const auto still = std::find_if(m_items.cbegin(), m_items.cend(),
                                        [&](const ManagedBetaFeedback& item) { return item.id == id; });
        m_selected = still == m_items.cend() ? std::nullopt : std::optional<ManagedBetaFeedback>(*still);
        Q_EMIT selectedIDChanged();
    }
    run.succeed();
    publish();
}

void BetaFeedbackViewModel::setKind(Kind kind) {
    if (kind == m_kind) {
        return;
    }
    m_kind = kind;
    // An item the filter hides is no longer chosen: its details would stand beside a list
    // that does not show it.
    if (m_selected && kind != Kind::All && isCrash(*m_selected) != (kind == Kind::Crash)) {
        m_selected.reset();
        m_crashLog->abandon();
        m_crashLog->clearError();
        setCrashLogText(QString());
        Q_EMIT selectedIDChanged();
    }
    publish();
}

void BetaFeedbackViewModel::selectKind(const QString& key) {
    for (const auto& choice : kindChoices()) {
        if (choice.key == key) {
            setKind(choice.kind);
        }
    }
}

void BetaFeedbackViewModel::select(const QString& feedbackID) {
    if (m_selected && m_selected->id == feedbackID) {
        return;
    }
    const auto found = std::find_if(m_items.cbegin(), m_items.cend(),
                                    [&](const ManagedBetaFeedback& item) { return item.id == feedbackID; });
    if (found == m_items.cend()) {
        return;
    }
    m_selected = *found;
    // The log belongs to the crash it was fetched for.
    m_crashLog->abandon();
    m_crashLog->clearError();
    setCrashLogText(QString());
    Q_EMIT selectedIDChanged();
    publish();
}

void BetaFeedbackViewModel::setCrashLogText(const QString& text) {
    if (m_crashLogText != text) {
        m_crashLogText = text;
        Q_EMIT crashLogTextChanged();
    }
}

void BetaFeedbackViewModel::startOpenCrashLog() {
    QCoro::connect(openCrashLog(), this, [] {});
}

QCoro::Task<> BetaFeedbackViewModel::openCrashLog() {
    if (!m_selected || !isCrash(*m_selected)) {
        co_return;
    }
    auto run = m_crashLog->start();
    setCrashLogText(QString());
    const QString feedbackID = m_selected->id;
    std::optional<ManagedBetaCrashLog> log;
    if (isDemo()) {
        log = MockData::betaCrashLog(feedbackID);
    } else {
        const auto account = m_state.accountStore().selectedAccount();
        if (!account) {
            run.fail(VelmoraAPIError::notConfigured().errorDescription());
            co_return;
        }
        try {
            auto client = co_await m_state.accountStore().makeClient(*account);
            if (!run) {
                co_return;
            }
            log = co_await m_state.testFlightService().crashLog(feedbackID, client);
            if (!run) {
                co_return;
            }
        } catch (const std::exception& error) {
            if (run) {
                run.fail(u"Der Absturzbericht konnte nicht geladen werden"_s, error);
            }
            co_return;
        }
    }
    // The log goes to the program the user reads such files with, and is shown here as well;
    // where Apple names only a download address, the browser gets it.
    if (log && log->logText && !log->logText->isEmpty()) {
        setCrashLogText(*log->logText);
        if (const auto problem = openInViewer(*log->logText, feedbackID)) {
            run.fail(*problem);
            co_return;
        }
    } else if (log && log->url) {
        QString text = u"Apple stellt den Absturzbericht zum Herunterladen bereit: "_s +
                       log->url->toString(QUrl::FullyEncoded);
        if (log->expirationDate) {
            text += u"\nDie Adresse gilt bis "_s + dateText(log->expirationDate) + u'.';
        }
        setCrashLogText(text);
        if (!openWithDesktop(*log->url)) {
            run.fail(u"Die Download-Adresse konnte nicht im Browser geöffnet werden; sie steht unten."_s);
            co_return;
        }
    } else {
        run.fail(u"Apple hält für diese Rückmeldung keinen Absturzbericht bereit."_s);
        co_return;
    }
    run.succeed();
}

bool BetaFeedbackViewModel::openWithDesktop(const QUrl& url) const {
    const auto& opener = m_state.platform().urlOpener;
    return opener && opener->open(url);
}

std::optional<QString> BetaFeedbackViewModel::openInViewer(const QString& text, const QString& feedbackID) {
    // The file lives in a folder of this screen's own that goes when the screen goes: the log is
    // handed to the viewer, not kept.
    if (!m_logFolder || !m_logFolder->isValid()) {
        m_logFolder = std::make_unique<QTemporaryDir>();
        if (!m_logFolder->isValid()) {
            return u"Der Absturzbericht konnte nicht zwischengespeichert werden: "_s +
                   m_logFolder->errorString();
        }
    }
    QString safeID = feedbackID;
    safeID.replace(QRegularExpression(u"[^A-Za-z0-9_-]"_s), u"_"_s);
    const QString path = m_logFolder->filePath(u"absturzbericht-"_s + safeID + u".txt"_s);
    if (const auto error = AtomicFile::write(path, text.toUtf8())) {
        return u"Der Absturzbericht konnte nicht zwischengespeichert werden: "_s + *error;
    }
    if (!openWithDesktop(QUrl::fromLocalFile(path))) {
        return u"Für Absturzberichte ist auf diesem System kein Programm eingerichtet; der Bericht steht unten."_s;
    }
    return std::nullopt;
}

void BetaFeedbackViewModel::publish() {
    const QList<ManagedBetaFeedback> shown = filtered();
    Published next;
    next.errorMessage = m_crashLog->hasError() ? m_crashLog->errorText() : m_loading->errorText();
    next.showsEmptyState = m_loaded && shown.isEmpty();
    if (next.showsEmptyState && m_items.isEmpty()) {
        next.emptyTitle = u"Keine Rückmeldungen"_s;
        next.emptyText = u"Tester senden Rückmeldungen direkt aus TestFlight – über einen Screenshot oder "
                         u"nach einem Absturz."_s;
    } else if (next.showsEmptyState) {
        next.emptyTitle = m_kind == Kind::Crash ? u"Keine Abstürze"_s : u"Keine Screenshots"_s;
        next.emptyText = u"Unter „Alle“ stehen die übrigen Rückmeldungen."_s;
    }
    next.selectedDetail = m_selected ? detailText(*m_selected) : QString();
    next.canOpenCrashLog = m_selected && isCrash(*m_selected) && !m_crashLog->isBusy();

    using M = BetaFeedbackViewModel;
    Published& p = m_published;
    publishValue(this, p.errorMessage, next.errorMessage, &M::errorMessageChanged);
    publishValue(this, p.showsEmptyState, next.showsEmptyState, &M::showsEmptyStateChanged);
    publishValue(this, p.emptyTitle, next.emptyTitle, &M::emptyTitleChanged);
    publishValue(this, p.emptyText, next.emptyText, &M::emptyTextChanged);
    publishValue(this, p.selectedDetail, next.selectedDetail, &M::selectedDetailChanged);
    publishValue(this, p.canOpenCrashLog, next.canOpenCrashLog, &M::canOpenCrashLogChanged);

    QList<RowListModel::Row> rows;
    for (const auto& item : shown) {
        const QString kind = isCrash(item) ? u"Absturz"_s : u"Screenshot"_s;
        const QString date = dateText(item.createdDate);
        const QString comment = item.comment.value_or(QString());
        rows.append({item.id, kind, isCrash(item), date, comment, detailLine(item),
                     m_selected && m_selected->id == item.id,
                     kind + u", "_s + date + (comment.isEmpty() ? QString() : u", "_s + comment)});
    }
    m_itemRows->setRows(rows);

    QList<RowListModel::Row> kinds;
    for (const auto& choice : kindChoices()) {
        kinds.append({choice.key, choice.label, choice.kind == m_kind});
    }
    m_kindRows->setRows(kinds);

    const auto crashes = std::count_if(m_items.cbegin(), m_items.cend(), isCrash);
    const auto withComment =
        std::count_if(m_items.cbegin(), m_items.cend(), [](const ManagedBetaFeedback& i) {
            return i.comment && !i.comment->trimmed().isEmpty();
        });
    QList<RowListModel::Row> stats;
    if (m_loaded) {
        stats = {{u"Rückmeldungen"_s, QString::number(m_items.size())},
                 {u"Screenshots"_s, QString::number(m_items.size() - crashes)},
                 {u"Abstürze"_s, QString::number(crashes)},
                 {u"Mit Kommentar"_s, QString::number(withComment)}};
    }
    m_statRows->setRows(stats);
}
