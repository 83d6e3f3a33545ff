#include "platform/DataPaths.h"

#include <QDir>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

DataPaths DataPaths::standard() {
    const QString base = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    return DataPaths(QDir(base).filePath(u"Velmora"_s));
}

QString DataPaths::file(const QString& relative) const {
    return QDir(m_root).filePath(relative);
}

QString DataPaths::accountsFile() const {
    return file(u"accounts.json"_s);
}

QString DataPaths::auditLogFile() const {
    return file(u"aenderungsprotokoll.json"_s);
}

QString DataPaths::cacheDirectory() const {
    return file(u"Daten"_s);
}
