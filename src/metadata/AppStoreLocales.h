#pragma once

#include "metadata/ManagedLocalization.h"

#include <QList>
#include <QString>
#include <QStringList>

// The store languages the app offers, their German names, and the test of a language code that
// the user typed. No state.
namespace AppStoreLocales {

// The 39 codes in their fixed order.
const QStringList& codes();
// The codes without `excluded`, in table order.
QStringList available(const QStringList& excluded);
// One or two pieces separated by "-" (empty pieces dropped): two or three lower-case letters, then
// optionally two to four letters of either case. The caller trims the text.
bool looksValid(const QString& code);
// The German name of a language code, "Deutsch (Deutschland)", or the code itself when it is not
// known here.
QString displayName(const QString& code);
// The present languages worth copying texts from into a new one: those with a name or a
// description.
QStringList seedLocales(const QList<ManagedLocalization>& localizations);

} // namespace AppStoreLocales
