#include "wire/FieldUpdate.h"

#include <QJsonValue>

FieldUpdate FieldUpdate::between(const QString& oldText, const QString& newText) {
    if (oldText == newText) {
        return unchanged();
    }
    if (newText.trimmed().isEmpty()) {
        return cleared();
    }
    return value(newText);
}

void FieldUpdate::writeTo(QJsonObject& attributes, const QString& key) const {
    switch (m_kind) {
    case Kind::Value:
        attributes.insert(key, m_text);
        break;
    case Kind::Cleared:
        attributes.insert(key, QJsonValue(QJsonValue::Null));
        break;
    case Kind::Unchanged:
        break;
    }
}
