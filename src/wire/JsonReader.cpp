#include "wire/JsonReader.h"

#include <QRegularExpression>
#include <QTimeZone>

#include <cmath>

using namespace Qt::StringLiterals;

JsonReader::JsonReader(QJsonObject object, QString path)
    : m_object(std::move(object)), m_path(std::move(path)) {}

JsonReader JsonReader::of(const QJsonValue& value, const QString& path) {
    if (!value.isObject()) {
        throw DecodingError(u"Expected an object at %1"_s.arg(path.isEmpty() ? u"top level"_s : path));
    }
    return JsonReader(value.toObject(), path);
}

QJsonValue JsonReader::value(const QString& key) const {
    return m_object.value(key);
}

QString JsonReader::where(const QString& key) const {
    return m_path.isEmpty() ? key : m_path + u'.' + key;
}

void JsonReader::fail(const QString& key, const QString& expected) const {
    throw DecodingError(u"%1: expected %2"_s.arg(where(key), expected));
}

bool JsonReader::hasValue(const QString& key) const {
    const auto v = value(key);
    return !v.isUndefined() && !v.isNull();
}

std::optional<QString> JsonReader::optString(const QString& key) const {
    const auto v = value(key);
    if (v.isUndefined() || v.isNull()) {
        return std::nullopt;
    }
    if (!v.isString()) {
        fail(key, u"text"_s);
    }
    return v.toString();
}

QString JsonReader::string(const QString& key) const {
    auto v = optString(key);
    if (!v) {
        fail(key, u"text"_s);
    }
    return *v;
}

std::optional<double> JsonReader::optDouble(const QString& key) const {
    const auto v = value(key);
    if (v.isUndefined() || v.isNull()) {
        return std::nullopt;
    }
    if (!v.isDouble()) {
        fail(key, u"a number"_s);
    }
    return v.toDouble();
}

std::optional<qint64> JsonReader::optInt(const QString& key) const {
    const auto d = optDouble(key);
    if (!d) {
        return std::nullopt;
    }
    if (std::trunc(*d) != *d || std::abs(*d) > 9.0e15) {
        fail(key, u"a whole number"_s);
    }
    return qint64(*d);
}

qint64 JsonReader::integer(const QString& key) const {
    auto v = optInt(key);
    if (!v) {
        fail(key, u"a whole number"_s);
    }
    return *v;
}

std::optional<bool> JsonReader::optBool(const QString& key) const {
    const auto v = value(key);
    if (v.isUndefined() || v.isNull()) {
        return std::nullopt;
    }
    if (!v.isBool()) {
        fail(key, u"true or false"_s);
    }
    return v.toBool();
}

bool JsonReader::boolean(const QString& key) const {
    auto v = optBool(key);
    if (!v) {
        fail(key, u"true or false"_s);
    }
    return *v;
}

std::optional<QDateTime> JsonReader::optDate(const QString& key) const {
    const auto text = optString(key);
    if (!text) {
        return std::nullopt;
    }
    const QDateTime d = ASCDateFormatting::decode(*text);
    // A well-formed date that lands beyond the years ISO text can hold (9999-12-31 with a
    // negative offset) could not be stored again: it counts as absent.
    if (d.date().year() < 1 || d.date().year() > 9999) {
        return std::nullopt;
    }
    return d;
}

QDateTime JsonReader::date(const QString& key) const {
    auto v = optDate(key);
    if (!v) {
        fail(key, u"a date"_s);
    }
    return *v;
}

std::optional<JsonReader> JsonReader::optObject(const QString& key) const {
    const auto v = value(key);
    if (v.isUndefined() || v.isNull()) {
        return std::nullopt;
    }
    if (!v.isObject()) {
        fail(key, u"an object"_s);
    }
    return JsonReader(v.toObject(), where(key));
}

JsonReader JsonReader::objectAt(const QString& key) const {
    auto v = optObject(key);
    if (!v) {
        fail(key, u"an object"_s);
    }
    return *v;
}

std::optional<QJsonArray> JsonReader::optArray(const QString& key) const {
    const auto v = value(key);
    if (v.isUndefined() || v.isNull()) {
        return std::nullopt;
    }
    if (!v.isArray()) {
        fail(key, u"a list"_s);
    }
    return v.toArray();
}

QJsonArray JsonReader::array(const QString& key) const {
    auto v = optArray(key);
    if (!v) {
        fail(key, u"a list"_s);
    }
    return *v;
}

namespace {

// Date and time with seconds, an optional fraction, and a zone that is "Z" or an offset with or
// without a colon.
QDateTime parseIso(const QString& text, bool fractional) {
    static const QRegularExpression pattern(
        u"^(\\d{4})-(\\d{2})-(\\d{2})T(\\d{2}):(\\d{2}):(\\d{2})(\\.(\\d{1,9}))?(Z|([+-])(\\d{2}):?(\\d{2}))$"_s);
    const auto m = pattern.match(text);
    if (!m.hasMatch() || m.hasCaptured(8) != fractional) {
        return {};
    }
    const QDate date(m.captured(1).toInt(), m.captured(2).toInt(), m.captured(3).toInt());
    int msec = 0;
    if (fractional) {
        const QString digits = (m.captured(8) + u"00"_s).left(3);
        msec = digits.toInt();
    }
    const QTime time(m.captured(4).toInt(), m.captured(5).toInt(), m.captured(6).toInt(), msec);
    if (!date.isValid() || !time.isValid()) {
        return {};
    }
    int offset = 0;
    if (m.captured(9) != u"Z"_s) {
        offset = (m.captured(11).toInt() * 3600 + m.captured(12).toInt() * 60) *
                 (m.captured(10) == u"-"_s ? -1 : 1);
    }
    return QDateTime(date, time, Qt::OffsetFromUTC, offset).toUTC();
}

} // namespace

std::optional<QDateTime> ASCDateFormatting::parse(const QString& text) {
    QDateTime d = parseIso(text, true);
    if (!d.isValid()) {
        d = parseIso(text, false);
    }
    if (!d.isValid()) {
        return std::nullopt;
    }
    return d;
}

QDateTime ASCDateFormatting::decode(const QString& text) {
    auto d = parse(text);
    if (!d) {
        throw DecodingError(u"Unrecognized date format: "_s + text);
    }
    return *d;
}

QString ASCDateFormatting::encodePlain(const QDateTime& date) {
    return date.toUTC().toString(Qt::ISODate);
}

QDateTime ASCDateFormatting::roundedDownToHour(const QDateTime& date) {
    const QDateTime utc = date.toUTC();
    return QDateTime(utc.date(), QTime(utc.time().hour(), 0), Qt::UTC);
}

std::optional<QString> nilIfBlank(const QString& text) {
    QString trimmed = text.trimmed();
    if (trimmed.isEmpty()) {
        return std::nullopt;
    }
    return trimmed;
}

std::optional<QString> nilIfBlank(const std::optional<QString>& text) {
    return text ? nilIfBlank(*text) : std::nullopt;
}
