#include "support/ContractCheck.h"

#include "support/OpenApiContract.h"

#include <QRegularExpression>
#include <QTest>
#include <QtDebug>

using namespace Qt::StringLiterals;

namespace {

// Only API calls; uploads and presigned downloads go to other paths.
bool isApiPath(const QString& path) {
    static const QRegularExpression apiPath(u"^/v\\d+/"_s);
    return apiPath.match(path).hasMatch();
}

bool isJson(const QList<QPair<QByteArray, QByteArray>>& headers) {
    return std::any_of(headers.cbegin(), headers.cend(), [](const auto& header) {
        return header.first.compare("Content-Type", Qt::CaseInsensitive) == 0 &&
               header.second.toLower().contains("json");
    });
}

} // namespace

void ContractCheck::request(const QByteArray& method, const QString& path, const QStringList& queryNames,
                            const QByteArray& body) {
    if (m_mode == Mode::Off || !isApiPath(path)) {
        return;
    }
    const QString verb = QString::fromLatin1(method);
    // A body is only worth checking once the operation is known.
    auto violation = OpenApiContract::check(verb, path, queryNames);
    if (!violation) {
        violation = OpenApiContract::checkBody(verb, path, body);
    }
    if (violation) {
        report(*violation);
    }
}

void ContractCheck::answer(const QByteArray& method, const QString& path, int status,
                           const QList<QPair<QByteArray, QByteArray>>& headers, const QByteArray& body,
                           const Leeway& leeway) {
    if (m_mode == Mode::Off || !leeway.breach.isEmpty() || !isApiPath(path) || !isJson(headers)) {
        return;
    }
    const auto violation = OpenApiContract::checkAnswer(QString::fromLatin1(method), path, status, body,
                                                        leeway.undeclaredValues);
    if (violation) {
        report(*violation);
    }
}

void ContractCheck::report(const QString& violation) {
    m_violations.append(violation);
    const QByteArray message = "OpenAPI contract violation: " + violation.toUtf8();
    qWarning("%s", message.constData());
    if (m_mode == Mode::Fail && QTest::currentTestFunction() && !QTest::currentTestFailed()) {
        QTest::qFail(message.constData(), __FILE__, __LINE__);
    }
}
