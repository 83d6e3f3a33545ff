#pragma once

#include <QString>

#include <optional>

// The test notes of a build ("Was soll getestet werden?") as Apple limits them.
namespace BetaTestNotes {

// User-perceived characters: an emoji or a letter with its accent counts once.
inline constexpr int maxCharacters = 4000;

// "Der Text ist 4012 Zeichen lang; Apple erlaubt 4000." for a text above the limit; none when
// it fits.
std::optional<QString> lengthRefusal(const QString& text);

} // namespace BetaTestNotes
