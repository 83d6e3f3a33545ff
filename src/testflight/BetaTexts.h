#pragma once

#include <QString>

#include <optional>

// What the beta texts of a build and of an app have in common: Apple's length limit and the way
// the screens count and name things.
namespace BetaTexts {

// Apple's limit for test notes and for the beta description, in user-perceived characters.
inline constexpr int maxCharacters = 4000;

// User-perceived characters (grapheme clusters), as Apple counts them.
int characterCount(const QString& text);
// "123/4000".
QString countText(int count);
// "Deutsch (Deutschland) · Testhinweise": a field of one language on the confirmation sheet.
QString fieldOfLanguage(const QString& locale, const QString& field);
// A figure the way the screen shows it: whole numbers without decimals, German separators.
QString number(double value);

} // namespace BetaTexts
