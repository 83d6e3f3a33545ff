#pragma once

#include "reports/AnalyticsTable.h"

#include <QCoro/QCoroTask>
#include <QDateTime>
#include <QJsonObject>
#include <QList>
#include <QString>

#include <memory>
#include <optional>
#include <variant>

class Clock;
class DataPaths;

// Sales and finance reports kept on disk beyond Apple's retention: one tab-separated file per
// report in the folder "Berichte" and the index "verzeichnis.json" beside them. Nothing is ever
// deleted unless the user asks.
//
// The index is read once, at first use; a missing or damaged index reads as empty, and a damaged
// line in it is skipped, so that the archive never stops the program. A name in the index is
// only ever used as a plain ".tsv" file directly inside the folder: a line naming "../x", an
// absolute path or a link never makes the archive read or delete anything elsewhere.
//
// Calls are serial (one lock) and may come from any thread; the *Async forms run the file work
// on a worker thread.
class ReportArchiveStore {
public:
    enum class Kind { Sales, Finance };

    // What a stored report is: sales by type, frequency and date; finance by region and month.
    struct Report {
        Kind kind = Kind::Sales;
        QString vendorNumber;
        // Apple's raw report type ("SALES", …); "FINANCIAL" for finance.
        QString reportType;
        // Finance only: the region code ("ZZ").
        QString region;
        // Apple's raw frequency ("DAILY", …); "MONTHLY" for finance.
        QString frequency;
        // As in the request ("2026-01-15", "2026-01", "2026").
        QString reportDate;
    };

    // One line of the index; `fileName` is its identity.
    struct Entry {
        QString fileName;
        Report report;
        QDateTime savedAt;
        qsizetype rowCount = 0;

        QJsonObject toJson() const;
        // Nothing for a line that is damaged or names anything but a plain file of the archive.
        static std::optional<Entry> fromJson(const QJsonObject& object);
        friend bool operator==(const Entry&, const Entry&);
    };

    ReportArchiveStore(QString directory, std::shared_ptr<Clock> clock);
    ~ReportArchiveStore();
    ReportArchiveStore(const ReportArchiveStore&) = delete;
    ReportArchiveStore& operator=(const ReportArchiveStore&) = delete;

    // "Berichte" in the application's data folder.
    static QString standardDirectory(const DataPaths& paths);
    // Vendor, kind, type or region, frequency and date; the same report stored again replaces
    // its file, and a finance report never shares a name with a sales report of its month. Any
    // character that could leave the folder becomes "_".
    static QString fileName(const Report& report);
    // The path of `fileName` inside the archive, or nothing if it would lead anywhere else.
    std::optional<QString> pathOf(const QString& fileName) const;

    QString directory() const;
    QString indexFile() const;

    // Newest first.
    QList<Entry> entries();
    std::optional<Entry> entry(const QString& fileName);

    // Writes the report's file, then the index with the new line (replacing a line of the same
    // name). A failed write of the file leaves the index as it was. The reason of a failure in
    // German.
    std::variant<Entry, QString> store(const AnalyticsTable& table, const Report& report);
    // Removes the file and its line; an already missing file is no failure.
    std::optional<QString> remove(const QString& fileName);
    // The stored table, or nothing when the file cannot be read.
    std::optional<AnalyticsTable> reopen(const QString& fileName);

    QCoro::Task<std::variant<Entry, QString>> storeAsync(AnalyticsTable table, Report report);
    QCoro::Task<std::optional<QString>> removeAsync(QString fileName);
    QCoro::Task<std::optional<AnalyticsTable>> reopenAsync(QString fileName);

    // What the user reads.
    static QString archivedMessage();
    static QString archiveFailedMessage(const QString& reason);
    static QString unreadableMessage();
    static QString removeFailedMessage(const QString& reason);
    static QString reopenedMessage(const QDateTime& savedAt);
    static QString rowsText(const Entry& entry);
    static QString emptyText();
    static QString archiveActionTitle();

private:
    struct State;
    std::shared_ptr<State> d;
};
