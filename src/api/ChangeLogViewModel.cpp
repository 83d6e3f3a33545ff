#include "api/ChangeLogViewModel.h"

#include "platform/AtomicFile.h"
#include "platform/LocalPath.h"

#include <QFileInfo>
#include <QUrl>

using namespace Qt::StringLiterals;

ChangeLogListModel::ChangeLogListModel(QObject* parent)
    : RowListModel({"entryId", "dateText", "method", "path", "statusText", "requestIDText", "accountName",
                    "errorMessage", "isSuccess", "symbol", "summary", "mark", "markTone", "accessibleName",
                    "requestLine"},
                   parent) {}

void ChangeLogListModel::setEntries(const QList<AuditLog::Entry>& entries) {
    QList<Row> rows;
    rows.reserve(entries.size());
    for (const AuditLog::Entry& entry : entries) {
        const QString dateText = entry.date.toLocalTime().toString(u"dd.MM.yyyy, HH:mm"_s);
        const QString statusText = entry.statusCode ? QString::number(*entry.statusCode) : u"–"_s;
        const QString requestIDText =
            entry.appleRequestID ? u"Request-ID "_s + *entry.appleRequestID : QString();
        const QString accountName = entry.accountName.value_or(QString());
        const QString errorMessage = entry.errorMessage.value_or(QString());
        QStringList summary;
        for (const QString& part : {dateText, statusText, requestIDText, accountName, errorMessage}) {
            if (!part.isEmpty()) {
                summary.append(part);
            }
        }
        const bool success = entry.isSuccess();
        rows.append(Row{
            entry.id.toString(QUuid::WithoutBraces),
            dateText,
            entry.method,
            entry.path,
            statusText,
            requestIDText,
            accountName,
            errorMessage,
            success,
            success ? u"checkmark.circle"_s : u"exclamationmark.circle"_s,
            summary.join(u" · "_s),
            success ? u"✓"_s : u"!"_s,
            success ? u"positive"_s : u"negative"_s,
            entry.method + u' ' + entry.path + u", "_s + statusText,
            entry.method + u' ' + entry.path,
        });
    }
    setRows(rows);
}

ChangeLogViewModel::ChangeLogViewModel(std::shared_ptr<AuditLog> log, QObject* parent)
    : QObject(parent), m_log(std::move(log)), m_list(new ChangeLogListModel(this)) {
    connect(m_list, &RowListModel::countChanged, this, &ChangeLogViewModel::entriesChanged);
}

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
