#pragma once

#include "wire/JsonReader.h"

#include <QString>
#include <QStringList>

#include <optional>

struct ASCAppStoreReviewDetailAttributes {
    std::optional<QString> contactFirstName;
    std::optional<QString> contactLastName;
    std::optional<QString> contactPhone;
    std::optional<QString> contactEmail;
    std::optional<QString> demoAccountName;
    std::optional<QString> demoAccountPassword;
    std::optional<bool> demoAccountRequired;
    std::optional<QString> notes;
    static ASCAppStoreReviewDetailAttributes fromJson(const JsonReader& r);
};

// What Apple's review team gets to know about a version: whom to call and how to sign in.
struct ManagedAppReviewDetail {
    // Absent until the record exists at Apple; saving then creates it.
    std::optional<QString> id;
    QString contactFirstName;
    QString contactLastName;
    QString contactPhone;
    QString contactEmail;
    QString demoAccountName;
    QString demoAccountPassword;
    bool demoAccountRequired = false;
    QString notes;

    // German labels of the fields Apple insists on that are still empty, in form order.
    QStringList missingRequiredFields() const;

    static ManagedAppReviewDetail fromResource(const QString& id,
                                               const std::optional<ASCAppStoreReviewDetailAttributes>& a);
    friend bool operator==(const ManagedAppReviewDetail&, const ManagedAppReviewDetail&) = default;
};
