#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

// Whole-file reads and atomic writes: a reader sees the old or the new file, never half of one.
namespace AtomicFile {

// Writes `data` to `path`, creating the folder if needed. Returns an error text, or nothing.
std::optional<QString> write(const QString& path, const QByteArray& data);

// The file's bytes, or nothing when it cannot be read.
std::optional<QByteArray> read(const QString& path);

} // namespace AtomicFile
