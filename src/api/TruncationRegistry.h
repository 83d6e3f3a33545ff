#pragma once

#include <QSet>
#include <QString>

// Remembers which lists were cut off at their page limit, for a later display.
class TruncationRegistry {
public:
    void insert(const QString& path) { m_paths.insert(path); }
    void remove(const QString& path) { m_paths.remove(path); }
    bool contains(const QString& path) const { return m_paths.contains(path); }
    const QSet<QString>& truncatedPaths() const { return m_paths; }

private:
    QSet<QString> m_paths;
};
