#include "api/ChangeLogViewModel.h"

#include "platform/AtomicFile.h"
#include "platform/LocalPath.h"

#include <QFileInfo>
#include <QUrl>

using namespace Qt::StringLiterals;

int ChangeLogListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_entries.size());
}

QVariant ChangeLogListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid)) {
        return {};
    }
    const AuditLog::Entry& entry = m_entries.at(index.row());
    switch (role) {
    case DateTextRole:
        return entry.date.toLocalTime().toString(u"dd.MM.yyyy, HH:mm"_s);
    case MethodRole:
        return entry.method;
    case PathRole:
        return entry.path;
    case StatusTextRole:
        return entry.statusCode ? QString::number(*entry.statusCode) : u"–"_s;
    case RequestIDTextRole:
        return entry.appleRequestID ? u"Request-ID "_s + *entry.appleRequestID : QString();
    case AccountNameRole:
        return entry.accountName.value_or(QString());
    case ErrorMessageRole:
        return entry.errorMessage.value_or(QString());
    case IsSuccessRole:
        return entry.isSuccess();
    case SymbolRole:
        return entry.isSuccess() ? u"checkmark.circle"_s : u"exclamationmark.circle"_s;
    default:
        return {};
    }
}

QHash<int, QByteArray> ChangeLogListModel::roleNames() const {
    return {
        {DateTextRole, "dateText"},
        {MethodRole, "method"},
        {PathRole, "path"},
        {StatusTextRole, "statusText"},
        {RequestIDTextRole, "requestIDText"},
        {AccountNameRole, "accountName"},
        {ErrorMessageRole, "errorMessage"},
        {IsSuccessRole, "isSuccess"},
        {SymbolRole, "symbol"},
    };
}

void ChangeLogListModel::setEntries(QList<AuditLog::Entry> entries) {
    // New entries arrive at the front and old ones fall off the end; a fresh load is simplest.
    beginResetModel();
    m_entries = std::move(entries);
    endResetModel();
}

ChangeLogViewModel::ChangeLogViewModel(std::shared_ptr<AuditLog> log, QObject* parent)
    : QObject(parent), m_log(std::move(log)), m_list(new ChangeLogListModel(this)) {}

QString ChangeLogViewModel::emptyText() const {
    return u"Noch keine schreibenden Aufrufe. Hier landet jeder POST, PATCH und DELETE mit Apples Request-ID "
           u"– "
           u"nie Inhalte."_s;
}

QString ChangeLogViewModel::proposedFileName() const {
    return u"velmora-aenderungsprotokoll.tsv"_s;
}

void ChangeLogViewModel::setMessage(const QString& message) {
    if (m_message == message) {
        return;
    }
    m_message = message;
    Q_EMIT messageChanged();
}

void ChangeLogViewModel::refresh() {
    m_list->setEntries(m_log ? m_log->entries() : QList<AuditLog::Entry>{});
    Q_EMIT entriesChanged();
}

bool ChangeLogViewModel::exportTo(const QString& pathOrFileUrl) {
    const QString failed = u"Das Protokoll konnte nicht gesichert werden."_s;
    const auto path = localPathFrom(pathOrFileUrl);
    if (!path) {
        setMessage(failed + u" Auf den gewählten Ort kann nicht zugegriffen werden."_s);
        return false;
    }
    const QByteArray text = m_log ? m_log->exportText().toUtf8() : QByteArray();
    if (AtomicFile::write(*path, text)) {
        // The error of the file layer is not in German; the folder's state says enough.
        const QFileInfo folder(QFileInfo(*path).absolutePath());
        const bool writable = folder.isDir() && folder.isWritable();
        setMessage(writable ? failed : failed + u" In diesen Ordner darf nicht geschrieben werden."_s);
        return false;
    }
    setMessage(u"Gesichert als „"_s + QFileInfo(*path).fileName() + u"“."_s);
    return true;
}

void ChangeLogViewModel::clear() {
    if (m_log) {
        m_log->clear();
    }
    setMessage({});
    refresh();
}
