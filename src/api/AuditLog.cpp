#include "api/AuditLog.h"

#include "platform/AtomicFile.h"
#include "wire/JsonReader.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

// Dates are seconds since 2001-01-01 00:00 UTC, the reference date of the file format.
const QDateTime& referenceDate() {
    static const QDateTime reference(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC);
    return reference;
}

// A stored number outside the years 1 to 9999 (or none) is an absent date, not a wrapped one.
QDateTime dateFromStoredSeconds(std::optional<double> seconds) {
    // 9999-12-31 lies about 2.5e11 seconds after the reference date, year 1 about 6.3e10 before it.
    if (!seconds || !std::isfinite(*seconds) || std::abs(*seconds) > 3.0e11) {
        return {};
    }
    const QDateTime date = referenceDate().addMSecs(qint64(std::llround(*seconds * 1000.0)));
    return date.date().year() >= 1 && date.date().year() <= 9999 ? date : QDateTime();
}

template <class T>
void insertOptional(QJsonObject& object, const QString& key, const std::optional<T>& value) {
    if (value) {
        object.insert(key, *value);
    }
}

} // namespace

AuditLog::AuditLog(QString filePath) : m_filePath(std::move(filePath)) {}

void AuditLog::ensureLoaded() {
    if (m_didLoad) {
        return;
    }
    m_didLoad = true;
    const auto bytes = AtomicFile::read(m_filePath);
    if (!bytes) {
        return;
    }
    const auto doc = QJsonDocument::fromJson(*bytes);
    if (!doc.isArray()) {
        return;
    }
    QList<Entry> loaded;
    try {
        for (const auto& value : doc.array()) {
            const auto r = JsonReader::of(value);
            Entry e;
            e.id = QUuid::fromString(r.string(u"id"_s));
            if (e.id.isNull()) {
                return;
            }
            e.date = dateFromStoredSeconds(r.optDouble(u"date"_s));
            e.method = r.string(u"method"_s);
            e.path = r.string(u"path"_s);
            if (auto s = r.optInt(u"statusCode"_s)) {
                e.statusCode = int(*s);
            }
            e.appleRequestID = r.optString(u"appleRequestID"_s);
            e.accountName = r.optString(u"accountName"_s);
            e.errorMessage = r.optString(u"errorMessage"_s);
            loaded.append(std::move(e));
        }
    } catch (const DecodingError&) {
        return;
    }
    m_entries = std::move(loaded);
}

void AuditLog::save() {
    QJsonArray array;
    for (const auto& e : std::as_const(m_entries)) {
        QJsonObject object{{u"id"_s, e.id.toString(QUuid::WithoutBraces).toUpper()},
                           {u"method"_s, e.method},
                           {u"path"_s, e.path}};
        if (e.date.isValid()) {
            object.insert(u"date"_s, double(referenceDate().msecsTo(e.date)) / 1000.0);
        }
        insertOptional(object, u"statusCode"_s, e.statusCode);
        insertOptional(object, u"appleRequestID"_s, e.appleRequestID);
        insertOptional(object, u"accountName"_s, e.accountName);
        insertOptional(object, u"errorMessage"_s, e.errorMessage);
        array.append(object);
    }
    // A full disk must not fail the write that is being recorded.
    (void)AtomicFile::write(m_filePath, QJsonDocument(array).toJson(QJsonDocument::Compact));
}

QList<AuditLog::Entry> AuditLog::entries() {
    ensureLoaded();
    return m_entries;
}

void AuditLog::record(Entry entry) {
    ensureLoaded();
    m_entries.prepend(std::move(entry));
    if (m_entries.size() > maxEntries) {
        m_entries.resize(maxEntries);
    }
    save();
}

void AuditLog::clear() {
    ensureLoaded();
    m_entries.clear();
    save();
}

QString AuditLog::exportText() {
    ensureLoaded();
    const QString dash = u"–"_s;
    QStringList lines;
    lines.reserve(m_entries.size());
    for (const auto& e : std::as_const(m_entries)) {
        lines.append(QStringList{e.date.toUTC().toString(Qt::ISODate), e.method, e.path,
                                 e.statusCode ? QString::number(*e.statusCode) : dash,
                                 e.appleRequestID.value_or(dash), e.accountName.value_or(dash),
                                 e.errorMessage.value_or(QString())}
                         .join(u'\t'));
    }
    return lines.join(u'\n');
}
