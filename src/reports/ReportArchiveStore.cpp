#include "reports/ReportArchiveStore.h"

#include "platform/Clock.h"
#include "platform/DataPaths.h"
#include "platform/FileErrorText.h"
#include "reports/ReportExport.h"

#include <QCoro/QCoroFuture>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLocale>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <mutex>

using namespace Qt::StringLiterals;

namespace {

const QString indexName = u"verzeichnis.json"_s;
const QString suffix = u".tsv"_s;

// Dates are seconds since 2001-01-01 00:00 UTC, the reference date of the file format.
const QDateTime& referenceDate() {
    static const QDateTime reference(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC);
    return reference;
}

QString kindRaw(ReportArchiveStore::Kind kind) {
    return kind == ReportArchiveStore::Kind::Finance ? u"finance"_s : u"sales"_s;
}

// Only letters, digits, "_" and, in a date, "-" make it into a name: nothing of a vendor
// number typed by hand can add a folder or a "..".
QString namePart(const QString& text, bool allowDash) {
    QString part = text;
    for (QChar& c : part) {
        const bool plain = (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z') || (c >= u'0' && c <= u'9') ||
                           c == u'_' || (allowDash && c == u'-');
        if (!plain) {
            c = u'_';
        }
    }
    return part;
}

bool isPlainFileName(const QString& name) {
    return name.size() > suffix.size() && name.endsWith(suffix) && !name.startsWith(u'.') &&
           !name.contains(u'/') && !name.contains(u'\\') && !name.contains(QChar(0));
}

std::optional<QString> stringOf(const QJsonObject& object, const QString& key, bool required) {
    const QJsonValue value = object.value(key);
    if (value.isString()) {
        return value.toString();
    }
    return required || !value.isUndefined() ? std::nullopt : std::optional<QString>(QString());
}

} // namespace

struct ReportArchiveStore::State {
    QString directory;
    std::shared_ptr<Clock> clock;
    std::mutex mutex;
    bool didLoadIndex = false;
    QList<Entry> index;

    QString indexFile() const { return QDir(directory).filePath(indexName); }

    std::optional<QString> pathOf(const QString& fileName) const {
        if (!isPlainFileName(fileName)) {
            return std::nullopt;
        }
        const QString folder = QDir::cleanPath(QFileInfo(directory).absoluteFilePath());
        const QString path = QDir::cleanPath(folder + u'/' + fileName);
        const QFileInfo info(path);
        // A link could point anywhere; the archive only ever writes plain files.
        if (info.absolutePath() != folder || info.isSymLink()) {
            return std::nullopt;
        }
        return path;
    }

    // With the lock held.
    void loadIndex() {
        if (didLoadIndex) {
            return;
        }
        didLoadIndex = true;
        QFile file(indexFile());
        if (!file.open(QIODevice::ReadOnly)) {
            return;
        }
        const QJsonDocument doc = QJsonDocument::fromJson(file.readAll());
        for (const QJsonValue& line : doc.array()) {
            if (auto entry = Entry::fromJson(line.toObject()); entry && pathOf(entry->fileName)) {
                index.append(std::move(*entry));
            }
        }
    }

    std::optional<QString> writeIndex(const QList<Entry>& entries) const {
        QJsonArray array;
        for (const Entry& entry : entries) {
            array.append(entry.toJson());
        }
        const QByteArray bytes = QJsonDocument(array).toJson(QJsonDocument::Indented);
        return ReportExport::writeAtomically(indexFile(),
                                             [&](const ReportExport::Sink& sink) { return sink(bytes); });
    }

    // `savedAt` is read on the caller's thread: the clock belongs to it.
    std::variant<Entry, QString> store(const AnalyticsTable& table, const Report& report,
                                       const QDateTime& savedAt) {
        const std::lock_guard lock(mutex);
        loadIndex();
        errno = 0;
        if (!QDir().mkpath(directory)) {
            return germanFileError(errno);
        }
        Entry entry{ReportArchiveStore::fileName(report), report, savedAt, table.rowCount()};
        const std::optional<QString> path = pathOf(entry.fileName);
        if (!path) {
            return germanFileError(EACCES);
        }
        if (auto failure = ReportExport::writeAtomically(
                *path, [&](const ReportExport::Sink& sink) { return ReportExport::writeTsv(table, sink); })) {
            return *failure;
        }
        QList<Entry> next = index;
        next.removeIf([&](const Entry& e) { return e.fileName == entry.fileName; });
        next.append(entry);
        if (auto failure = writeIndex(next)) {
            return *failure;
        }
        index = std::move(next);
        return entry;
    }

    std::optional<QString> remove(const QString& fileName) {
        const std::lock_guard lock(mutex);
        loadIndex();
        const std::optional<QString> path = pathOf(fileName);
        if (!path) {
            return germanFileError(EACCES);
        }
        errno = 0;
        if (QFileInfo::exists(*path) && !QFile::remove(*path)) {
            return germanFileError(errno);
        }
        QList<Entry> next = index;
        if (next.removeIf([&](const Entry& e) { return e.fileName == fileName; }) > 0) {
            if (auto failure = writeIndex(next)) {
                return failure;
            }
        }
        index = std::move(next);
        return std::nullopt;
    }

    std::optional<QByteArray> read(const QString& fileName) {
        const std::optional<QString> path = pathOf(fileName);
        if (!path) {
            return std::nullopt;
        }
        QFile file(*path);
        if (!file.open(QIODevice::ReadOnly)) {
            return std::nullopt;
        }
        QByteArray bytes = file.readAll();
        if (file.error() != QFileDevice::NoError) {
            return std::nullopt;
        }
        return bytes;
    }

    std::optional<AnalyticsTable> reopen(const QString& fileName) {
        std::optional<QByteArray> bytes;
        {
            const std::lock_guard lock(mutex);
            bytes = read(fileName);
        }
        if (!bytes) {
            return std::nullopt;
        }
        // The table needs valid UTF-8; a file changed by hand may not be.
        if (!QByteArrayView(*bytes).isValidUtf8()) {
            return std::nullopt;
        }
        return AnalyticsTable::parseTSV(std::move(*bytes));
    }
};

QJsonObject ReportArchiveStore::Entry::toJson() const {
    QJsonObject object{
        {u"fileName"_s, fileName},
        {u"kind"_s, kindRaw(report.kind)},
        {u"vendorNumber"_s, report.vendorNumber},
        {u"reportType"_s, report.reportType},
        {u"frequency"_s, report.frequency},
        {u"reportDate"_s, report.reportDate},
        {u"savedAt"_s, double(referenceDate().msecsTo(savedAt)) / 1000.0},
        {u"rowCount"_s, double(rowCount)},
    };
    if (report.kind == Kind::Finance) {
        object.insert(u"region"_s, report.region);
    }
    return object;
}

std::optional<ReportArchiveStore::Entry> ReportArchiveStore::Entry::fromJson(const QJsonObject& object) {
    const auto name = stringOf(object, u"fileName"_s, true);
    const auto vendor = stringOf(object, u"vendorNumber"_s, true);
    const auto type = stringOf(object, u"reportType"_s, true);
    const auto frequency = stringOf(object, u"frequency"_s, true);
    const auto date = stringOf(object, u"reportDate"_s, true);
    // Lines written before finance had a kind of its own are sales.
    const auto kind = stringOf(object, u"kind"_s, false);
    const auto region = stringOf(object, u"region"_s, false);
    const QJsonValue savedAt = object.value(u"savedAt"_s);
    const QJsonValue rows = object.value(u"rowCount"_s);
    if (!name || !isPlainFileName(*name) || !vendor || !type || !frequency || !date || !kind || !region ||
        !savedAt.isDouble() || !std::isfinite(savedAt.toDouble()) || std::abs(savedAt.toDouble()) > 1e11 ||
        !rows.isDouble() || rows.toDouble() < 0 || rows.toDouble() > 1e12) {
        return std::nullopt;
    }
    Entry entry;
    entry.fileName = *name;
    entry.report.kind = *kind == u"finance"_s ? Kind::Finance : Kind::Sales;
    entry.report.vendorNumber = *vendor;
    entry.report.reportType = *type;
    entry.report.region = *region;
    entry.report.frequency = *frequency;
    entry.report.reportDate = *date;
    entry.savedAt = referenceDate().addMSecs(qint64(std::llround(savedAt.toDouble() * 1000.0)));
    entry.rowCount = qsizetype(rows.toDouble());
    return entry;
}

bool operator==(const ReportArchiveStore::Entry& a, const ReportArchiveStore::Entry& b) {
    return a.toJson() == b.toJson();
}

ReportArchiveStore::ReportArchiveStore(QString directory, std::shared_ptr<Clock> clock)
    : d(std::make_shared<State>()) {
    d->directory = std::move(directory);
    d->clock = std::move(clock);
}

ReportArchiveStore::~ReportArchiveStore() = default;

QString ReportArchiveStore::standardDirectory(const DataPaths& paths) {
    return paths.file(u"Berichte"_s);
}

QString ReportArchiveStore::fileName(const Report& report) {
    QStringList parts{namePart(report.vendorNumber, false)};
    if (report.kind == Kind::Finance) {
        parts << namePart(report.reportType.isEmpty() ? u"FINANCIAL"_s : report.reportType, false)
              << namePart(report.region, false);
    } else {
        parts << namePart(report.reportType, false);
    }
    parts << namePart(report.frequency, false) << namePart(report.reportDate, true);
    return parts.join(u'-') + suffix;
}

std::optional<QString> ReportArchiveStore::pathOf(const QString& fileName) const {
    return d->pathOf(fileName);
}

QString ReportArchiveStore::directory() const {
    return d->directory;
}

QString ReportArchiveStore::indexFile() const {
    return d->indexFile();
}

QList<ReportArchiveStore::Entry> ReportArchiveStore::entries() {
    QList<Entry> list;
    {
        const std::lock_guard lock(d->mutex);
        d->loadIndex();
        list = d->index;
    }
    std::stable_sort(list.begin(), list.end(),
                     [](const Entry& a, const Entry& b) { return a.savedAt > b.savedAt; });
    return list;
}

std::optional<ReportArchiveStore::Entry> ReportArchiveStore::entry(const QString& fileName) {
    const std::lock_guard lock(d->mutex);
    d->loadIndex();
    for (const Entry& e : d->index) {
        if (e.fileName == fileName) {
            return e;
        }
    }
    return std::nullopt;
}

std::variant<ReportArchiveStore::Entry, QString> ReportArchiveStore::store(const AnalyticsTable& table,
                                                                           const Report& report) {
    return d->store(table, report, d->clock->now());
}

std::optional<QString> ReportArchiveStore::remove(const QString& fileName) {
    return d->remove(fileName);
}

std::optional<AnalyticsTable> ReportArchiveStore::reopen(const QString& fileName) {
    return d->reopen(fileName);
}

// The futures are named before they are awaited: GCC 12 destroys a lambda's captures twice when
// the lambda is a temporary inside a co_await expression.
QCoro::Task<std::variant<ReportArchiveStore::Entry, QString>>
ReportArchiveStore::storeAsync(AnalyticsTable table, Report report) {
    QFuture<std::variant<Entry, QString>> done =
        QtConcurrent::run([state = d, table, report, savedAt = d->clock->now()] {
            return state->store(table, report, savedAt);
        });
    std::variant<Entry, QString> result = co_await done;
    co_return result;
}

QCoro::Task<std::optional<QString>> ReportArchiveStore::removeAsync(QString fileName) {
    QFuture<std::optional<QString>> done =
        QtConcurrent::run([state = d, fileName] { return state->remove(fileName); });
    std::optional<QString> result = co_await done;
    co_return result;
}

QCoro::Task<std::optional<AnalyticsTable>> ReportArchiveStore::reopenAsync(QString fileName) {
    QFuture<std::optional<AnalyticsTable>> done =
        QtConcurrent::run([state = d, fileName] { return state->reopen(fileName); });
    std::optional<AnalyticsTable> result = co_await done;
    co_return result;
}

QString ReportArchiveStore::archivedMessage() {
    return u"Bericht im Verlauf abgelegt."_s;
}

QString ReportArchiveStore::archiveFailedMessage(const QString& reason) {
    return u"Ablegen fehlgeschlagen: "_s + reason;
}

QString ReportArchiveStore::unreadableMessage() {
    return u"Die abgelegte Datei ließ sich nicht lesen."_s;
}

QString ReportArchiveStore::removeFailedMessage(const QString& reason) {
    return u"Löschen fehlgeschlagen: "_s + reason;
}

QString ReportArchiveStore::reopenedMessage(const QDateTime& savedAt) {
    const QLocale german(QLocale::German, QLocale::Germany);
    const QDateTime local = savedAt.toLocalTime();
    return u"Aus dem Verlauf geladen (abgelegt am %1, %2)."_s.arg(
        german.toString(local.date(), u"d. MMM yyyy"_s), german.toString(local.time(), u"HH:mm"_s));
}

QString ReportArchiveStore::rowsText(const Entry& entry) {
    return u"%1 Zeilen"_s.arg(QLocale(QLocale::German, QLocale::Germany).toString(qint64(entry.rowCount)));
}

QString ReportArchiveStore::emptyText() {
    return u"Noch nichts abgelegt. Apple hält Verkaufsberichte nur begrenzt vor – abgelegte Berichte bleiben "
           u"darüber hinaus lesbar."_s;
}

QString ReportArchiveStore::archiveActionTitle() {
    return u"Im Verlauf ablegen"_s;
}
