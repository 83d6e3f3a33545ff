#include "testflight/BetaTexts.h"

#include "metadata/AppStoreLocales.h"
#include "metadata/MetadataValidator.h"

#include <QLocale>

#include <cmath>

using namespace Qt::StringLiterals;

int BetaTexts::characterCount(const QString& text) {
    // The store texts count the same way; one rule for both, so that the counters agree.
    return MetadataValidator::characterCount(text);
}

QString BetaTexts::countText(int count) {
    return u"%1/%2"_s.arg(count).arg(maxCharacters);
}

QString BetaTexts::fieldOfLanguage(const QString& locale, const QString& field) {
    return AppStoreLocales::displayName(locale) + u" · "_s + field;
}

QString BetaTexts::number(double value) {
    const QLocale german(QLocale::German);
    return std::floor(value) == value ? german.toString(qint64(value)) : german.toString(value, 'f', 1);
}
