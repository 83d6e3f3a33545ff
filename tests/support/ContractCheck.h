#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

// What the fake transport and the loopback server do with Apple's OpenAPI document
// (OpenApiContract): every request to an API path ("/v<digits>/...") is checked (method, path,
// query parameter names, body), and so is every successful JSON answer a test scripts for it,
// since that is what the decoders are tested on. A violation is printed with qWarning, recorded,
// and in Mode::Fail fails the running test function at once (QTest::qFail), so that it cannot
// be overlooked.
class ContractCheck {
public:
    enum class Mode { Fail, Record, Off };

    // How a test marks an answer that leaves the document on purpose.
    struct Leeway {
        // Raw values carried where the document declares an enumeration, to see the client keep
        // a raw text it does not know.
        QStringList undeclaredValues;
        // Why the answer breaks the document (a success that no decoder can read); such an
        // answer is not checked at all.
        QString breach;
    };

    void setMode(Mode mode) { m_mode = mode; }
    const QStringList& violations() const { return m_violations; }

    // `path` percent-encoded as on the wire, without query.
    void request(const QByteArray& method, const QString& path, const QStringList& queryNames,
                 const QByteArray& body);
    void answer(const QByteArray& method, const QString& path, int status,
                const QList<QPair<QByteArray, QByteArray>>& headers, const QByteArray& body,
                const Leeway& leeway);

private:
    void report(const QString& violation);

    Mode m_mode = Mode::Fail;
    QStringList m_violations;
};
