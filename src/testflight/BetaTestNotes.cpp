#include "testflight/BetaTestNotes.h"

#include "metadata/MetadataValidator.h"

using namespace Qt::StringLiterals;

std::optional<QString> BetaTestNotes::lengthRefusal(const QString& text) {
    const int length = MetadataValidator::characterCount(text);
    if (length <= maxCharacters) {
        return std::nullopt;
    }
    return u"Der Text ist %1 Zeichen lang; Apple erlaubt %2."_s.arg(length).arg(maxCharacters);
}
