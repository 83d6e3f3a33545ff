#include "testflight/BetaTesterImportFile.h"

#include "platform/LocalPath.h"

#include <QCoro/QCoroFuture>
#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>
#include <QtConcurrent/QtConcurrentRun>

#include <variant>

using namespace Qt::StringLiterals;

QString BetaTesterImportFileError::errorDescription() const {
    return u"Die Datei konnte nicht gelesen werden: "_s + m_reason;
}

namespace {

// Qt's own texts for file errors are English and name the system call; the user gets a German
// reason of what to do about it.
[[noreturn]] void unreadable(const QString& reason) {
    throw BetaTesterImportFileError(reason);
}

using Outcome = std::variant<BetaTesterImportParsing::Result, QString>;

// Runs on a worker thread: a pure function of the path. A failure comes back as its reason, not
// as an exception, so that nothing has to cross the thread but a value.
Outcome readAndParse(const QString& pathOrFileUrl) {
    try {
        return BetaTesterImportParsing::parse(BetaTesterImportFile::readText(pathOrFileUrl));
    } catch (const BetaTesterImportFileError& error) {
        return error.reason();
    }
}

} // namespace

namespace BetaTesterImportFile {

QString decode(QByteArrayView bytes) {
    const std::optional<QStringConverter::Encoding> marked = QStringConverter::encodingForData(bytes);
    if (marked && *marked != QStringConverter::Utf8) {
        // The mark is the file's own statement of UTF-16 or UTF-32; a Latin-1 reading of such a
        // file would be every other character a NUL.
        QStringDecoder decoder(*marked, QStringDecoder::Flag::Stateless);
        return decoder(bytes);
    }
    if (marked) {
        bytes = bytes.sliced(3);
    }
    // Stateless, so that a multi-byte sequence cut off by the end of the file is an error
    // rather than a remainder the decoder waits for: a Latin-1 file ending in "é" is Latin-1.
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = utf8(bytes);
    if (!utf8.hasError()) {
        return text;
    }
    // Let go of the failed reading before the second one is made: the text of a large file is
    // twice its size.
    text = QString();
    return QString::fromLatin1(bytes);
}

QString readText(const QString& pathOrFileUrl) {
    const std::optional<QString> path = localPathFrom(pathOrFileUrl);
    if (!path) {
        unreadable(pathOrFileUrl.trimmed().isEmpty() ? u"Es wurde keine Datei angegeben."_s
                                                     : u"Sie liegt nicht auf diesem Rechner."_s);
    }
    const QFileInfo info(*path);
    if (!info.exists()) {
        unreadable(u"Unter „%1“ gibt es keine Datei."_s.arg(*path));
    }
    if (info.isDir()) {
        unreadable(u"„%1“ ist ein Ordner, keine Datei."_s.arg(info.fileName()));
    }
    if (!info.isFile()) {
        // A pipe or a device would block the reader or never end.
        unreadable(u"„%1“ ist keine gewöhnliche Datei."_s.arg(info.fileName()));
    }
    QFile file(*path);
    if (!file.open(QIODevice::ReadOnly)) {
        unreadable(info.isReadable() ? u"Sie ließ sich nicht öffnen."_s
                                     : u"Es fehlt die Berechtigung, sie zu lesen."_s);
    }
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        unreadable(u"Beim Lesen ist ein Fehler aufgetreten."_s);
    }
    return decode(bytes);
}

QCoro::Task<BetaTesterImportParsing::Result> load(QString pathOrFileUrl) {
    Outcome outcome = co_await QtConcurrent::run(readAndParse, pathOrFileUrl);
    if (const QString* reason = std::get_if<QString>(&outcome)) {
        throw BetaTesterImportFileError(*reason);
    }
    co_return std::get<BetaTesterImportParsing::Result>(std::move(outcome));
}

} // namespace BetaTesterImportFile
