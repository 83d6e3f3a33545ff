#include "platform/KeychainError.h"

using namespace Qt::StringLiterals;

KeychainError KeychainError::unhandled(int status, QString platformMessage) {
    KeychainError error(Kind::Unhandled);
    error.m_status = status;
    error.m_platformMessage = std::move(platformMessage);
    return error;
}

KeychainError KeychainError::unavailable(QString platformMessage) {
    KeychainError error(Kind::Unavailable);
    error.m_platformMessage = std::move(platformMessage);
    return error;
}

QString KeychainError::errorDescription() const {
    switch (m_kind) {
    case Kind::Unhandled:
        return u"Keychain-Fehler (%1): %2"_s.arg(m_status).arg(
            m_platformMessage.isEmpty() ? u"unbekannt"_s : m_platformMessage);
    case Kind::NotFound:
        return u"Kein Eintrag im Schlüsselbund gefunden."_s;
    case Kind::EncodingFailed:
        return u"Daten konnten nicht kodiert werden."_s;
    case Kind::Unauthorized:
        return u"Der Zugriff auf den Schlüssel wurde nicht bestätigt."_s;
    case Kind::Unavailable:
        return u"Kein Schlüsselbund erreichbar (%1). Auf Rechnern ohne Schlüsselbund lässt sich ein "
               "Account für einen Lauf über VARNIS_ISSUER_ID, VARNIS_KEY_ID und VARNIS_KEY_FILE angeben."_s
                   .arg(m_platformMessage.isEmpty() ? u"kein Secret Service"_s : m_platformMessage);
    }
    return {};
}
