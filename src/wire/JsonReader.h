#pragma once

#include "platform/VarnisError.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>

#include <optional>

// A JSON value did not have the shape a decoder expected.
class DecodingError : public VarnisError {
public:
    explicit DecodingError(QString detail) : m_detail(std::move(detail)) {}
    QString errorDescription() const override { return m_detail; }

private:
    QString m_detail;
};

// Reads one JSON object strictly: a key that is absent or null is "none" for the optional
// readers; a present value of the wrong type is an error, never a silent default.
class JsonReader {
public:
    explicit JsonReader(QJsonObject object, QString path = {});
    // Fails unless `value` is an object.
    static JsonReader of(const QJsonValue& value, const QString& path = {});

    const QJsonObject& object() const { return m_object; }
    bool contains(const QString& key) const { return m_object.contains(key); }
    // Present and not null.
    bool hasValue(const QString& key) const;

    QString string(const QString& key) const;
    std::optional<QString> optString(const QString& key) const;
    std::optional<qint64> optInt(const QString& key) const;
    qint64 integer(const QString& key) const;
    std::optional<double> optDouble(const QString& key) const;
    std::optional<bool> optBool(const QString& key) const;
    bool boolean(const QString& key) const;
    // Dates of the API: fractional ISO 8601 first, then plain.
    std::optional<QDateTime> optDate(const QString& key) const;
    QDateTime date(const QString& key) const;
    std::optional<JsonReader> optObject(const QString& key) const;
    JsonReader objectAt(const QString& key) const;
    std::optional<QJsonArray> optArray(const QString& key) const;
    QJsonArray array(const QString& key) const;

    [[noreturn]] void fail(const QString& key, const QString& expected) const;

private:
    QJsonValue value(const QString& key) const;
    QString where(const QString& key) const;

    QJsonObject m_object;
    QString m_path;
};

// The date rule of every decoder of the API.
namespace ASCDateFormatting {
// Fractional seconds first, then whole seconds; raises DecodingError otherwise.
QDateTime decode(const QString& text);
std::optional<QDateTime> parse(const QString& text);
// Plain ISO 8601 in UTC ("2025-01-02T03:04:05Z"), the form of the local JSON files.
QString encodePlain(const QDateTime& date);
// Start of the hour in UTC.
QDateTime roundedDownToHour(const QDateTime& date);
} // namespace ASCDateFormatting

// The text trimmed of white space and line ends, or nothing if nothing remains.
std::optional<QString> nilIfBlank(const QString& text);
std::optional<QString> nilIfBlank(const std::optional<QString>& text);
