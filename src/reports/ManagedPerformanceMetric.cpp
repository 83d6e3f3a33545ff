#include "reports/ManagedPerformanceMetric.h"

#include "wire/JsonReader.h"

#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

// A text that is there and not blank.
std::optional<QString> text(const QJsonObject& object, const QString& key) {
    const QJsonValue value = object.value(key);
    if (!value.isString() || value.toString().trimmed().isEmpty()) {
        return std::nullopt;
    }
    return value.toString();
}

std::optional<double> number(const QJsonObject& object, const QString& key) {
    const QJsonValue value = object.value(key);
    return value.isDouble() ? std::optional<double>(value.toDouble()) : std::nullopt;
}

// The objects of an array under `key`; anything else there counts as absent.
QList<QJsonObject> objects(const QJsonObject& object, const QString& key) {
    QList<QJsonObject> list;
    const QJsonArray array = object.value(key).toArray();
    for (const QJsonValue& entry : array) {
        if (entry.isObject()) {
            list.append(entry.toObject());
        }
    }
    return list;
}

} // namespace

QString ManagedPerformanceMetric::categoryLabel(const QString& raw) {
    static const QHash<QString, QString> labels{
        {u"HANG"_s, u"Hänger"_s},          {u"LAUNCH"_s, u"Start"_s}, {u"MEMORY"_s, u"Speicher"_s},
        {u"DISK"_s, u"Schreibzugriffe"_s}, {u"BATTERY"_s, u"Akku"_s}, {u"TERMINATION"_s, u"Beendigungen"_s},
        {u"ANIMATION"_s, u"Animationen"_s}};
    return labels.value(raw, raw);
}

QString ManagedPerformanceMetric::percentileLabel(const QString& raw) {
    static const QHash<QString, QString> labels{{u"percentile.fifty"_s, u"Median"_s},
                                                {u"percentile.ninety"_s, u"90. Perzentil"_s}};
    return labels.value(raw, raw);
}

void ManagedPerformanceMetric::sortForDisplay(QList<ManagedPerformanceMetric>& metrics) {
    std::stable_sort(metrics.begin(), metrics.end(),
                     [](const ManagedPerformanceMetric& a, const ManagedPerformanceMetric& b) {
                         if (a.category != b.category) {
                             return a.category < b.category;
                         }
                         return a.identifier < b.identifier;
                     });
}

ASCPerfPowerMetricsResponse ASCPerfPowerMetricsResponse::decode(const QByteArray& body) {
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(body, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject()) {
        throw DecodingError(u"Apples Leistungsdaten sind kein lesbares JSON-Dokument."_s);
    }
    return {document.object().value(u"productData"_s).toArray()};
}

QList<ManagedPerformanceMetric> ASCPerfPowerMetricsResponse::flattened() const {
    QList<ManagedPerformanceMetric> list;
    for (const QJsonValue& productValue : productData) {
        for (const QJsonObject& category : objects(productValue.toObject(), u"metricCategories"_s)) {
            const QString categoryName = text(category, u"identifier"_s).value_or(QString());
            for (const QJsonObject& metric : objects(category, u"metrics"_s)) {
                const QJsonObject unit = metric.value(u"unit"_s).toObject();
                ManagedPerformanceMetric base;
                base.category = categoryName;
                base.identifier = text(metric, u"identifier"_s).value_or(QString());
                // The name Apple shows beats the unit's symbol.
                base.unit = text(unit, u"displayName"_s);
                if (!base.unit) {
                    base.unit = text(unit, u"identifier"_s);
                }
                for (const QJsonObject& dataset : objects(metric, u"datasets"_s)) {
                    const QJsonObject criteria = dataset.value(u"filterCriteria"_s).toObject();
                    ManagedPerformanceMetric row = base;
                    row.percentile = text(criteria, u"percentile"_s);
                    row.device = text(criteria, u"deviceMarketingName"_s);
                    if (!row.device) {
                        row.device = text(criteria, u"device"_s);
                    }
                    for (const QJsonObject& point : objects(dataset, u"points"_s)) {
                        const auto value = number(point, u"value"_s);
                        if (!value) {
                            continue;
                        }
                        ManagedPerformanceMetric entry = row;
                        entry.version = text(point, u"version"_s);
                        entry.value = *value;
                        entry.errorMargin = number(point, u"errorMargin"_s);
                        list.append(std::move(entry));
                    }
                }
            }
        }
    }
    return list;
}
