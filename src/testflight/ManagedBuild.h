#pragma once

#include "wire/ASCEnums.h"
#include "wire/ASCImageAsset.h"
#include "wire/JsonReader.h"

#include <QDateTime>
#include <QJsonObject>
#include <QList>
#include <QString>

#include <algorithm>
#include <optional>

// The wire form of a build's attributes, as far as the program reads them.
struct ASCBuildAttributes {
    std::optional<QString> version;
    std::optional<QDateTime> uploadedDate;
    std::optional<QDateTime> expirationDate;
    std::optional<bool> expired;
    std::optional<QString> minOsVersion;
    std::optional<QString> processingState;
    std::optional<bool> usesNonExemptEncryption;
    std::optional<ASCImageAsset> iconAssetToken;

    static ASCBuildAttributes fromJson(const JsonReader& r) {
        ASCBuildAttributes a;
        a.version = r.optString(QStringLiteral("version"));
        a.uploadedDate = r.optDate(QStringLiteral("uploadedDate"));
        a.expirationDate = r.optDate(QStringLiteral("expirationDate"));
        a.expired = r.optBool(QStringLiteral("expired"));
        a.minOsVersion = r.optString(QStringLiteral("minOsVersion"));
        a.processingState = r.optString(QStringLiteral("processingState"));
        a.usesNonExemptEncryption = r.optBool(QStringLiteral("usesNonExemptEncryption"));
        if (auto icon = r.optObject(QStringLiteral("iconAssetToken"))) {
            a.iconAssetToken = imageAsset(*icon);
        }
        return a;
    }

    static ASCImageAsset imageAsset(const JsonReader& r) {
        const auto width = r.optInt(QStringLiteral("width"));
        const auto height = r.optInt(QStringLiteral("height"));
        return ASCImageAsset{r.optString(QStringLiteral("templateUrl")),
                             width ? std::optional<int>(int(*width)) : std::nullopt,
                             height ? std::optional<int>(int(*height)) : std::nullopt};
    }
};

// The program's one picture of a build: the release workflow, the overview, the status watch
// and the attention list all read it.
struct ManagedBuild {
    QString id;
    QString buildNumber;
    std::optional<QDateTime> uploadedDate;
    std::optional<QDateTime> expirationDate;
    bool isExpired = false;
    std::optional<QString> minOSVersion;
    ASCProcessingState processingState;
    std::optional<bool> usesNonExemptEncryption;
    std::optional<ASCImageAsset> iconAsset;
    friend bool operator==(const ManagedBuild&, const ManagedBuild&) = default;

    // What Apple leaves out reads "–": the build number, and the processing state as unknown
    // with that text.
    static ManagedBuild fromResource(const QString& id, const std::optional<ASCBuildAttributes>& a) {
        const QString placeholder = QStringLiteral("–");
        ManagedBuild b;
        b.id = id;
        b.buildNumber = placeholder;
        b.processingState = ASCProcessingState::fromRaw(placeholder);
        if (!a) {
            return b;
        }
        b.buildNumber = a->version.value_or(placeholder);
        b.uploadedDate = a->uploadedDate;
        b.expirationDate = a->expirationDate;
        b.isExpired = a->expired.value_or(false);
        b.minOSVersion = a->minOsVersion;
        if (a->processingState) {
            b.processingState = ASCProcessingState::fromRaw(*a->processingState);
        }
        b.usesNonExemptEncryption = a->usesNonExemptEncryption;
        b.iconAsset = a->iconAssetToken;
        return b;
    }

    // The disk cache's form.
    QJsonObject toJson() const {
        QJsonObject o{{QStringLiteral("id"), id},
                      {QStringLiteral("buildNumber"), buildNumber},
                      {QStringLiteral("isExpired"), isExpired},
                      {QStringLiteral("processingState"), processingState.raw()}};
        if (uploadedDate) {
            o.insert(QStringLiteral("uploadedDate"), ASCDateFormatting::encodePlain(*uploadedDate));
        }
        if (expirationDate) {
            o.insert(QStringLiteral("expirationDate"), ASCDateFormatting::encodePlain(*expirationDate));
        }
        if (minOSVersion) {
            o.insert(QStringLiteral("minOSVersion"), *minOSVersion);
        }
        if (usesNonExemptEncryption) {
            o.insert(QStringLiteral("usesNonExemptEncryption"), *usesNonExemptEncryption);
        }
        if (iconAsset) {
            QJsonObject icon;
            if (iconAsset->templateUrl) {
                icon.insert(QStringLiteral("templateUrl"), *iconAsset->templateUrl);
            }
            if (iconAsset->width) {
                icon.insert(QStringLiteral("width"), *iconAsset->width);
            }
            if (iconAsset->height) {
                icon.insert(QStringLiteral("height"), *iconAsset->height);
            }
            o.insert(QStringLiteral("iconAsset"), icon);
        }
        return o;
    }

    static ManagedBuild fromJson(const JsonReader& r) {
        ManagedBuild b;
        b.id = r.string(QStringLiteral("id"));
        b.buildNumber = r.string(QStringLiteral("buildNumber"));
        b.isExpired = r.boolean(QStringLiteral("isExpired"));
        b.processingState = ASCProcessingState::fromRaw(r.string(QStringLiteral("processingState")));
        b.uploadedDate = r.optDate(QStringLiteral("uploadedDate"));
        b.expirationDate = r.optDate(QStringLiteral("expirationDate"));
        b.minOSVersion = r.optString(QStringLiteral("minOSVersion"));
        b.usesNonExemptEncryption = r.optBool(QStringLiteral("usesNonExemptEncryption"));
        if (auto icon = r.optObject(QStringLiteral("iconAsset"))) {
            b.iconAsset = ASCBuildAttributes::imageAsset(*icon);
        }
        return b;
    }

    // Newest upload first; a build without a date counts as the oldest. Stable.
    static void sortNewestFirst(QList<ManagedBuild>& builds) {
        std::stable_sort(builds.begin(), builds.end(), [](const ManagedBuild& a, const ManagedBuild& b) {
            if (!b.uploadedDate) {
                return a.uploadedDate.has_value();
            }
            return a.uploadedDate && *a.uploadedDate > *b.uploadedDate;
        });
    }
};
