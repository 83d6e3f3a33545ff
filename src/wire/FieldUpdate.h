#pragma once

#include <QJsonObject>
#include <QString>

// What a PATCH does to one text attribute: unchanged fields never reach the wire, a text that
// the user emptied goes out as an explicit JSON null.
class FieldUpdate {
public:
    enum class Kind { Value, Unchanged, Cleared };

    static FieldUpdate value(QString text) { return FieldUpdate(Kind::Value, std::move(text)); }
    static FieldUpdate unchanged() { return FieldUpdate(Kind::Unchanged, {}); }
    static FieldUpdate cleared() { return FieldUpdate(Kind::Cleared, {}); }
    static FieldUpdate between(const QString& oldText, const QString& newText);

    Kind kind() const { return m_kind; }
    const QString& text() const { return m_text; }
    void writeTo(QJsonObject& attributes, const QString& key) const;

    friend bool operator==(const FieldUpdate&, const FieldUpdate&) = default;

private:
    FieldUpdate(Kind kind, QString text) : m_kind(kind), m_text(std::move(text)) {}
    Kind m_kind;
    QString m_text;
};
