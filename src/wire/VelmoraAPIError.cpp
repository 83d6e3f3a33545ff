#include "wire/VelmoraAPIError.h"

#include "wire/JsonReader.h"

using namespace Qt::StringLiterals;

VelmoraAPIError VelmoraAPIError::network(QString underlying) {
    VelmoraAPIError e(Kind::Network);
    e.m_text = std::move(underlying);
    return e;
}

VelmoraAPIError VelmoraAPIError::decoding(QString underlying) {
    VelmoraAPIError e(Kind::Decoding);
    e.m_text = std::move(underlying);
    return e;
}

VelmoraAPIError VelmoraAPIError::http(int status, std::optional<QString> requestID,
                                      QList<AppleErrorObject> apple) {
    VelmoraAPIError e(Kind::Http);
    e.m_status = status;
    e.m_requestID = std::move(requestID);
    e.m_apple = std::move(apple);
    return e;
}

VelmoraAPIError VelmoraAPIError::rateLimited(std::optional<double> retryAfter) {
    VelmoraAPIError e(Kind::RateLimited);
    e.m_retryAfter = retryAfter;
    return e;
}

VelmoraAPIError VelmoraAPIError::rateLimitBudgetExhausted(int remaining, int limit) {
    VelmoraAPIError e(Kind::RateLimitBudgetExhausted);
    e.m_remaining = remaining;
    e.m_limit = limit;
    return e;
}

VelmoraAPIError VelmoraAPIError::forbidden(QList<AppleErrorObject> apple) {
    VelmoraAPIError e(Kind::Forbidden);
    e.m_apple = std::move(apple);
    return e;
}

VelmoraAPIError VelmoraAPIError::uploadFailed(QString reason) {
    VelmoraAPIError e(Kind::UploadFailed);
    e.m_text = std::move(reason);
    return e;
}

VelmoraAPIError VelmoraAPIError::workflowConflict(QString reason) {
    VelmoraAPIError e(Kind::WorkflowConflict);
    e.m_text = std::move(reason);
    return e;
}

VelmoraAPIError VelmoraAPIError::unknown(int status) {
    VelmoraAPIError e(Kind::Unknown);
    e.m_status = status;
    return e;
}

QString VelmoraAPIError::errorDescription() const {
    // Apple's words and names from outside reach terminals and labels: no control codes.
    return printableText(description());
}

QString VelmoraAPIError::description() const {
    switch (m_kind) {
    case Kind::Network:
        return u"Netzwerkfehler: "_s + m_text;
    case Kind::Decoding:
        return u"Die Antwort von App Store Connect konnte nicht gelesen werden."_s;
    case Kind::Http:
        // A blank text of Apple's would leave the user with an empty message: it counts as absent.
        if (!m_apple.isEmpty()) {
            if (const auto detail = nilIfBlank(m_apple.first().detail)) {
                return *detail;
            }
            if (const auto title = nilIfBlank(m_apple.first().title)) {
                return *title;
            }
        }
        return u"App Store Connect meldete Fehler %1."_s.arg(m_status);
    case Kind::RateLimited:
        return u"Zu viele Anfragen an App Store Connect. Bitte kurz warten."_s;
    case Kind::RateLimitBudgetExhausted:
        return u"Apples Stundenbudget ist fast aufgebraucht (%1 von %2 übrig). Hintergrundarbeit pausiert, "
               u"damit "
               "interaktive Anfragen weiter durchkommen."_s.arg(m_remaining)
                   .arg(m_limit);
    case Kind::Forbidden:
        if (const auto detail = m_apple.isEmpty() ? std::nullopt : nilIfBlank(m_apple.first().detail)) {
            return *detail;
        }
        return u"Der API-Schlüssel hat keine Berechtigung für diese Aktion. Manche Bereiche (z. B. "
               u"Analytics) "
               "benötigen eine zusätzliche, explizit vergebene Berechtigung – prüfe die Schlüssel-Rolle in "
               "App "
               "Store Connect."_s;
    case Kind::UploadFailed:
    case Kind::WorkflowConflict:
        return m_text;
    case Kind::Unknown:
        return u"Unbekannter Fehler (HTTP %1)."_s.arg(m_status);
    case Kind::NotConfigured:
        return u"Es ist kein App Store Connect Account konfiguriert."_s;
    case Kind::InvalidPrivateKey:
        return u"Der private API-Schlüssel ist ungültig."_s;
    case Kind::Unauthorized:
        return u"Anmeldung bei App Store Connect fehlgeschlagen. Bitte API-Schlüssel prüfen."_s;
    }
    return {};
}
