#pragma once

#include <QString>

// Where the application keeps its files: "Velmora" under the user's data location
// ($XDG_DATA_HOME/Velmora on Linux). Tests move it with XDG_DATA_HOME or an explicit folder.
class DataPaths {
public:
    static DataPaths standard();
    static DataPaths at(QString root) { return DataPaths(std::move(root)); }

    QString root() const { return m_root; }
    QString file(const QString& relative) const;
    QString accountsFile() const;
    QString auditLogFile() const;
    QString cacheDirectory() const;

private:
    explicit DataPaths(QString root) : m_root(std::move(root)) {}
    QString m_root;
};
