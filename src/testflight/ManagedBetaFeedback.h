#pragma once

#include "wire/JsonReader.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QUrl>

#include <optional>

// A screenshot a tester attached to feedback; the URL is presigned and expires.
struct ASCFeedbackImage {
    std::optional<QString> url;
    std::optional<QString> fileName;
    std::optional<QDateTime> expirationDate;
    friend bool operator==(const ASCFeedbackImage&, const ASCFeedbackImage&) = default;
};

// The attributes of both kinds of feedback that the program shows. Apple sends more device
// details (time zone, architecture, connection, disk, screen size); they are not read, so that a
// change in one of them cannot make the whole list unreadable.
struct ASCBetaFeedbackAttributes {
    std::optional<QDateTime> createdDate;
    std::optional<QString> comment;
    std::optional<QString> email;
    std::optional<QString> deviceModel;
    std::optional<QString> osVersion;
    std::optional<QString> locale;
    std::optional<QString> appVersion;
    std::optional<qint64> batteryPercentage;
    QList<ASCFeedbackImage> screenshots;
    static ASCBetaFeedbackAttributes fromJson(const JsonReader& r);
};

// What a tester sent from inside TestFlight: a screenshot with a comment, or a crash.
struct ManagedBetaFeedback {
    enum class Kind { Screenshot, Crash };

    QString id;
    Kind kind = Kind::Screenshot;
    std::optional<QDateTime> createdDate;
    std::optional<QString> comment;
    std::optional<QString> email;
    std::optional<QString> deviceModel;
    std::optional<QString> osVersion;
    std::optional<QString> locale;
    std::optional<QString> appVersion;
    std::optional<int> batteryPercentage;
    QList<ASCFeedbackImage> screenshots;
    friend bool operator==(const ManagedBetaFeedback&, const ManagedBetaFeedback&) = default;

    static ManagedBetaFeedback fromResource(Kind kind, const QString& id,
                                            const std::optional<ASCBetaFeedbackAttributes>& a);
    // Newest first; an item without a date goes last. Stable.
    static void sortNewestFirst(QList<ManagedBetaFeedback>& items);
};

struct ASCCrashLogAttributes {
    std::optional<QString> logText;
    std::optional<QString> url;
    std::optional<QDateTime> expirationDate;
    static ASCCrashLogAttributes fromJson(const JsonReader& r);
};

// The crash report behind a crash feedback: Apple answers with the log's text; where it names a
// download address instead, that address (presigned, it expires).
struct ManagedBetaCrashLog {
    std::optional<QString> logText;
    std::optional<QUrl> url;
    std::optional<QDateTime> expirationDate;
    friend bool operator==(const ManagedBetaCrashLog&, const ManagedBetaCrashLog&) = default;

    static ManagedBetaCrashLog fromAttributes(const std::optional<ASCCrashLogAttributes>& a);
};
