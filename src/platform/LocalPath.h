#pragma once

#include <QString>

#include <optional>

// The local path behind what a file dialog or a caller hands over (a "file://" address or a
// plain path); nothing for an empty text or any other kind of address.
std::optional<QString> localPathFrom(const QString& pathOrFileUrl);
