#pragma once

#include "platform/VarnisError.h"
#include "testflight/BetaTesterImportParsing.h"

#include <QByteArrayView>
#include <QCoro/QCoroTask>
#include <QString>

// A tester list that could not be read. The description is the German sentence the import sheet
// shows; `reason` is its second half, what went wrong with the file.
class BetaTesterImportFileError : public VarnisError {
public:
    explicit BetaTesterImportFileError(QString reason) : m_reason(std::move(reason)) {}

    const QString& reason() const { return m_reason; }
    QString errorDescription() const override;

private:
    QString m_reason;
};

// Reading a tester list from disk. The reading and the parsing of a large file run on a worker
// thread, so that the window stays responsive while a spreadsheet export of many thousand lines
// is read.
namespace BetaTesterImportFile {

// The text of a file's bytes. A byte-order mark decides the encoding and is dropped (spreadsheet
// programs write one, often with UTF-16); without one the bytes are read as UTF-8, and if they
// are not valid UTF-8 (to the last byte) as ISO Latin 1, which never fails.
QString decode(QByteArrayView bytes);

// The decoded text of the file at `pathOrFileUrl` (a plain path or a "file:" address). Throws
// BetaTesterImportFileError with a German reason when there is no such file, it is a folder or
// no plain file, it may not be read, or reading fails.
QString readText(const QString& pathOrFileUrl);

// Reads, decodes and parses the file on a worker thread; throws BetaTesterImportFileError like
// `readText`.
QCoro::Task<BetaTesterImportParsing::Result> load(QString pathOrFileUrl);

} // namespace BetaTesterImportFile
