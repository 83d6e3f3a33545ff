#include "testflight/ManagedBetaUsage.h"

#include "wire/JSONAPI.h"

#include <QRegularExpression>

#include <array>

using namespace Qt::StringLiterals;

namespace {

// A period bound: an instant of the API, or a day, which counts from its start in UTC.
std::optional<QDateTime> bound(const JsonReader& r, const QString& key) {
    const auto text = r.optString(key);
    if (!text) {
        return std::nullopt;
    }
    if (auto instant = ASCDateFormatting::parse(*text)) {
        return instant;
    }
    static const QRegularExpression dayOnly(u"^\\d{4}-\\d{2}-\\d{2}$"_s);
    if (dayOnly.match(*text).hasMatch()) {
        const QDate day = QDate::fromString(*text, Qt::ISODate);
        if (day.isValid()) {
            return QDateTime(day, QTime(0, 0), Qt::UTC);
        }
    }
    r.fail(key, u"a date or a day"_s);
}

ASCMetricsResponse::DataPoint dataPoint(const JsonReader& r) {
    ASCMetricsResponse::DataPoint point;
    point.start = bound(r, u"start"_s);
    point.end = bound(r, u"end"_s);
    if (const auto values = r.optObject(u"values"_s)) {
        const QJsonObject& object = values->object();
        for (auto it = object.begin(); it != object.end(); ++it) {
            if (it.value().isNull()) {
                continue;
            }
            if (!it.value().isDouble()) {
                values->fail(it.key(), u"a number"_s);
            }
            point.values.insert(it.key(), it.value().toDouble());
        }
    }
    return point;
}

} // namespace

ASCMetricsResponse ASCMetricsResponse::decode(const QByteArray& body) {
    const JsonReader root = JSONAPIDecode::documentRoot(body);
    ASCMetricsResponse response;
    const QJsonArray data = root.array(u"data"_s);
    for (const QJsonValue& item : data) {
        const JsonReader segmentReader = JsonReader::of(item, u"data[]"_s);
        Segment segment;
        const QJsonValue points = segmentReader.object().value(u"dataPoints"_s);
        if (points.isArray()) {
            const QJsonArray list = points.toArray();
            for (const QJsonValue& point : list) {
                segment.dataPoints.append(dataPoint(JsonReader::of(point, u"data[].dataPoints[]"_s)));
            }
        } else if (points.isObject()) {
            segment.dataPoints.append(dataPoint(JsonReader::of(points, u"data[].dataPoints"_s)));
        } else if (!points.isUndefined() && !points.isNull()) {
            segmentReader.fail(u"dataPoints"_s, u"a list or an object"_s);
        }
        response.data.append(std::move(segment));
    }
    return response;
}

ManagedBetaUsage ManagedBetaUsage::fromMetrics(const ASCMetricsResponse& metrics) {
    ManagedBetaUsage usage;
    for (const auto& segment : metrics.data) {
        for (const auto& point : segment.dataPoints) {
            ++usage.dataPointCount;
            for (auto it = point.values.begin(); it != point.values.end(); ++it) {
                usage.totals[it.key()] += it.value();
            }
        }
    }
    return usage;
}

QList<QPair<QString, double>> ManagedBetaUsage::orderedTotals() const {
    static const std::array<QString, 5> known{u"installCount"_s, u"sessionCount"_s, u"crashCount"_s,
                                              u"inviteCount"_s, u"feedbackCount"_s};
    QList<QPair<QString, double>> ordered;
    for (const QString& name : known) {
        if (const auto it = totals.constFind(name); it != totals.cend()) {
            ordered.append({name, it.value()});
        }
    }
    // A QMap iterates by key ascending already.
    for (auto it = totals.begin(); it != totals.end(); ++it) {
        if (std::find(known.begin(), known.end(), it.key()) == known.end()) {
            ordered.append({it.key(), it.value()});
        }
    }
    return ordered;
}
