#include "api/AssetUploader.h"
#include "api/AuditLog.h"
#include "api/AuthenticationService.h"
#include "fixtures/TestClient.h"
#include "platform/Clock.h"
#include "platform/QtHttpTransport.h"
#include "support/AwaitTask.h"
#include "support/FakeTransport.h"
#include "support/TestKeys.h"
#include "support/TestServer.h"

#include <QCryptographicHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using Answer = FakeTransport::Answer;
Q_DECLARE_METATYPE(AssetUploadKind)
Q_DECLARE_METATYPE(FakeTransport::Answer)

namespace {

// 43 bytes whose MD5 everybody knows.
const QByteArray fox = "The quick brown fox jumps over the lazy dog"_ba;

struct Committed {
    static Committed fromJson(const JsonReader&) { return {}; }
};

QJsonObject part(std::optional<qint64> offset, std::optional<qint64> length, const QString& url = {}) {
    QJsonObject o{{u"method"_s, u"PUT"_s},
                  {u"url"_s, url.isEmpty() ? u"https://storage.example.test/p?sig=1"_s : url},
                  {u"requestHeaders"_s,
                   QJsonArray{QJsonObject{{u"name"_s, u"Content-Type"_s}, {u"value"_s, u"image/png"_s}},
                              QJsonObject{{u"name"_s, u"X-Without-Value"_s}}}}};
    if (offset) {
        o.insert(u"offset"_s, *offset);
    }
    if (length) {
        o.insert(u"length"_s, *length);
    }
    return o;
}

QByteArray reservation(const QString& type, const QJsonValue& operations = QJsonValue::Undefined) {
    QJsonObject data{{u"type"_s, type}, {u"id"_s, u"r1"_s}, {u"attributes"_s, QJsonObject{}}};
    if (!operations.isUndefined()) {
        data.insert(u"attributes"_s, QJsonObject{{u"uploadOperations"_s, operations}});
    }
    return QJsonDocument(QJsonObject{{u"data"_s, data}}).toJson();
}

QJsonObject dataOf(const QByteArray& body) {
    return QJsonDocument::fromJson(body).object()[u"data"_s].toObject();
}

bool hasHeader(const HttpRequest& request, const QByteArray& name) {
    return std::any_of(request.headers.cbegin(), request.headers.cend(),
                       [&](const auto& h) { return h.first.compare(name, Qt::CaseInsensitive) == 0; });
}

} // namespace

class AssetUploadTest : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    std::shared_ptr<ManualClock> m_clock = std::make_shared<ManualClock>();
    std::shared_ptr<FakeTransport> m_transport;
    std::shared_ptr<AuditLog> m_audit;
    TestKey m_key = makeTestKey();
    QList<double> m_progress;

    std::shared_ptr<AppStoreConnectClient> client(std::shared_ptr<HttpTransport> transport, QUrl root) {
        auto parts = clientParts(m_clock, std::move(transport), m_key.privateKeyPEM, std::move(root));
        parts.auditLog = m_audit;
        return AppStoreConnectClient::create(std::move(parts));
    }

    // Uploads fox.png (or `file`) as `kind` and returns the German error, if any.
    std::optional<QString> upload(const AssetUploadKind& kind, QJsonObject attributes = {},
                                  QString file = u"Fox.png"_s) {
        AssetUpload u{kind, m_dir.filePath(file), u"parent"_s, attributes, [this](double p) {
                          m_progress.append(p);
                      }};
        try {
            VarnisTest::awaitTask(AssetUploader::upload<Committed>(
                client(m_transport, QUrl(u"https://api.example.test"_s)), std::move(u)));
        } catch (const VelmoraAPIError& error) {
            return error.errorDescription();
        }
        return std::nullopt;
    }

    void reserveWith(const AssetUploadKind& kind, const QJsonValue& operations) {
        m_transport->script("POST", kind.reservationPath,
                            {Answer::json(201, reservation(kind.resourceType, operations))});
        m_transport->script("PATCH", kind.reservationPath + u"/r1"_s,
                            {Answer::json(200, reservation(kind.resourceType))});
    }

private Q_SLOTS:
    void init() {
        m_clock->setAutoAdvance(true);
        m_transport = std::make_shared<FakeTransport>();
        m_transport->script("PUT", u"/"_s, {Answer::json(200, {})}, RouteMatch::Prefix);
        QFile::remove(m_dir.filePath(u"log.json"_s));
        m_audit = std::make_shared<AuditLog>(m_dir.filePath(u"log.json"_s));
        m_progress.clear();
        QFile file(m_dir.filePath(u"Fox.png"_s));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(fox) == fox.size());
        QVERIFY(QFile(m_dir.filePath(u"Empty.png"_s)).open(QIODevice::WriteOnly));
    }

    void sendsEachPartThenCommits_data() {
        QTest::addColumn<AssetUploadKind>("kind");
        QTest::addColumn<QJsonArray>("operations");
        QTest::addColumn<QList<QByteArray>>("parts");
        QTest::addColumn<QJsonObject>("attributes");
        QTest::addColumn<QJsonObject>("commit");

        const QJsonObject md5{{u"uploaded"_s, true},
                              {u"sourceFileChecksum"_s, u"9e107d9d372bb6826bd81d3542a419d6"_s}};
        QTest::newRow("three parts") << AssetUploadKind::reviewAttachment()
                                     << QJsonArray{part(0, 16), part(16, 16), part(32, 11)}
                                     << QList<QByteArray>{fox.first(16), fox.sliced(16, 16), fox.sliced(32)}
                                     << QJsonObject{} << md5;
        QTest::newRow("list order, not file order")
            << AssetUploadKind::appScreenshot() << QJsonArray{part(32, 11), part(0, 32)}
            << QList<QByteArray>{fox.sliced(32), fox.first(32)} << QJsonObject{} << md5;
        QTest::newRow("no offset, no length: the whole file")
            << AssetUploadKind::appPreview() << QJsonArray{part({}, {})} << QList<QByteArray>{fox}
            << QJsonObject{{u"mimeType"_s, u"video/mp4"_s}} << md5;
        QTest::newRow("last part cut at the end")
            << AssetUploadKind::subscriptionReviewScreenshot() << QJsonArray{part(0, 40), part(40, 4096)}
            << QList<QByteArray>{fox.first(40), fox.sliced(40)} << QJsonObject{} << md5;
        QTest::newRow("event assets commit without checksum")
            << AssetUploadKind::appEventVideoClip() << QJsonArray{part(0, 43)} << QList<QByteArray>{fox}
            << QJsonObject{{u"appEventAssetType"_s, u"EVENT_CARD"_s}} << QJsonObject{{u"uploaded"_s, true}};
    }

    void sendsEachPartThenCommits() {
        QFETCH(AssetUploadKind, kind);
        QFETCH(QJsonArray, operations);
        QFETCH(QList<QByteArray>, parts);
        QFETCH(QJsonObject, attributes);
        QFETCH(QJsonObject, commit);
        reserveWith(kind, operations);
        QCOMPARE(upload(kind, attributes), std::optional<QString>());
        VARNIS_VERIFY_CONTRACT(*m_transport);

        const auto sent = m_transport->requests();
        QCOMPARE(sent.size(), parts.size() + 2);
        const QJsonObject reserve = dataOf(sent.first().body);
        attributes.insert(u"fileSize"_s, 43);
        attributes.insert(u"fileName"_s, u"Fox.png"_s);
        QCOMPARE(reserve[u"attributes"_s].toObject(), attributes);
        QCOMPARE(reserve[u"relationships"_s][kind.parentRelationship][u"data"_s].toObject(),
                 (QJsonObject{{u"type"_s, kind.parentType}, {u"id"_s, u"parent"_s}}));
        for (qsizetype i = 0; i < parts.size(); ++i) {
            const HttpRequest& request = sent.at(i + 1);
            QCOMPARE(request.url.toString(), u"https://storage.example.test/p?sig=1"_s);
            QCOMPARE(request.body, parts.at(i));
            QVERIFY(request.headers.contains(qMakePair("Content-Type"_ba, "image/png"_ba)));
            QVERIFY(!hasHeader(request, "X-Without-Value"));
            QVERIFY2(!hasHeader(request, "Authorization"), "the token never goes to storage");
        }
        QCOMPARE(sent.last().url.path(), kind.reservationPath + u"/r1"_s);
        QCOMPARE(
            dataOf(sent.last().body),
            (QJsonObject{{u"type"_s, kind.resourceType}, {u"id"_s, u"r1"_s}, {u"attributes"_s, commit}}));
        // Whole parts, never 0, ending at 1; the parts leave no audit entry.
        QCOMPARE(m_progress.size(), parts.size());
        for (qsizetype i = 0; i < parts.size(); ++i) {
            QCOMPARE(m_progress[i], double(i + 1) / double(parts.size()));
        }
        QCOMPARE(m_audit->entries().size(), 2);
    }

    void refusesUnusablePartsBeforeSending_data() {
        QTest::addColumn<QJsonValue>("operations");
        QTest::addColumn<QString>("detail");
        const QString noUrl = u"Teil 2 von 2 hat keine gültige Adresse"_s;
        QTest::newRow("absent") << QJsonValue(QJsonValue::Undefined) << QString();
        QTest::newRow("empty") << QJsonValue(QJsonArray{}) << QString();
        QJsonObject withoutUrl = part(20, 23);
        withoutUrl.remove(u"url"_s);
        QTest::newRow("no url") << QJsonValue(QJsonArray{part(0, 20), withoutUrl}) << noUrl;
        QTest::newRow("ftp url") << QJsonValue(QJsonArray{part(0, 20), part(20, 23, u"ftp://s.test/p"_s)})
                                 << noUrl;
        QJsonObject badMethod = part(20, 23);
        badMethod[u"method"_s] = u"P UT"_s;
        QTest::newRow("method") << QJsonValue(QJsonArray{part(0, 20), badMethod})
                                << u"Teil 2 von 2 nennt keine gültige HTTP-Methode"_s;
        QTest::newRow("negative offset")
            << QJsonValue(QJsonArray{part(-1, 44)}) << u"Teil 1 von 1 beginnt vor dem Anfang der Datei"_s;
        QTest::newRow("zero length") << QJsonValue(QJsonArray{part(0, 43), part(43, 0)})
                                     << u"Teil 2 von 2 hat keine Länge"_s;
        QTest::newRow("offset at the end")
            << QJsonValue(QJsonArray{part(0, 43), part(43, 10)})
            << u"Teil 2 von 2 beginnt bei Byte 43, die Datei hat aber nur 43 Bytes"_s;
        QTest::newRow("overlap") << QJsonValue(QJsonArray{part(0, 20), part(30, 13), part(16, 14)})
                                 << u"Teil 1 und Teil 3 überschneiden sich"_s;
        QTest::newRow("two without offset") << QJsonValue(QJsonArray{part({}, 20), part({}, 23)})
                                            << u"Teil 1 und Teil 2 überschneiden sich"_s;
        QTest::newRow("gap") << QJsonValue(QJsonArray{part(0, 16), part(20, 23)})
                             << u"4 Bytes ab Byte 16 gehören zu keinem Teil"_s;
        QTest::newRow("end left out")
            << QJsonValue(QJsonArray{part(0, 16)}) << u"27 Bytes ab Byte 16 gehören zu keinem Teil"_s;
    }

    void refusesUnusablePartsBeforeSending() {
        QFETCH(QJsonValue, operations);
        QFETCH(QString, detail);
        reserveWith(AssetUploadKind::reviewAttachment(), operations);
        const QString error =
            detail.isEmpty() ? u"Apple hat für „Fox.png“ keine Upload-Adresse zurückgegeben."_s
                             : u"Apple hat für „Fox.png“ unbrauchbare Upload-Anweisungen zurückgegeben: "_s +
                                   detail + u". Es wurde nichts hochgeladen."_s;
        QCOMPARE(upload(AssetUploadKind::reviewAttachment()), std::optional<QString>(error));
        QCOMPARE(m_transport->requestCount(), 1); // the reservation, which stays at Apple
    }

    void failingPartEndsWithoutCommit_data() {
        QTest::addColumn<Answer>("answer");
        QTest::addColumn<QString>("error");
        QTest::newRow("500, not retried")
            << Answer::json(500, {}) << u"App Store Connect meldete Fehler 500."_s;
        QTest::newRow("connection lost") << Answer::error(u"weg"_s) << u"Netzwerkfehler: weg"_s;
    }

    void failingPartEndsWithoutCommit() {
        QFETCH(Answer, answer);
        QFETCH(QString, error);
        const auto kind = AssetUploadKind::appScreenshot();
        reserveWith(kind,
                    QJsonArray{part(0, 16), part(16, 16, u"https://storage.example.test/b"_s), part(32, 11)});
        m_transport->script("PUT", u"/b"_s, {answer});
        QCOMPARE(upload(kind), std::optional<QString>(error));
        QCOMPARE(m_transport->requestCount(), 3);
        QCOMPARE(m_progress, QList<double>{1.0 / 3.0});
    }

    // A file changed by another program while its parts go out is never committed.
    void fileChangedDuringUploadIsNotCommitted_data() {
        QTest::addColumn<qint64>("newSize");
        QTest::newRow("shrinks") << qint64(20);
        QTest::newRow("grows") << qint64(fox.size() + 7);
    }

    void fileChangedDuringUploadIsNotCommitted() {
        QFETCH(qint64, newSize);
        const auto kind = AssetUploadKind::appScreenshot();
        reserveWith(kind, QJsonArray{part(0, 16), part(16, 16), part(32, 11)});
        const QString path = m_dir.filePath(u"Fox.png"_s);
        m_transport->route(
            "PUT", u"/"_s,
            [path, newSize](const HttpRequest&) {
                QFile(path).resize(newSize);
                return Answer::json(200, {});
            },
            RouteMatch::Prefix);
        QCOMPARE(upload(kind),
                 std::optional<QString>(u"„Fox.png“ lässt sich nicht lesen: Die Datei hat sich während "
                                        u"des Hochladens verändert; bitte erneut versuchen."_s));
        for (const HttpRequest& request : m_transport->requests()) {
            QVERIFY(request.method != "PATCH");
        }
    }

    void refusesBeforeReserving_data() {
        QTest::addColumn<AssetUploadKind>("kind");
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("error");
        QTest::newRow("missing file")
            << AssetUploadKind::appScreenshot() << u"Gone.png"_s << u"„Gone.png“ lässt sich nicht lesen: "_s;
        QTest::newRow("empty file") << AssetUploadKind::appScreenshot() << u"Empty.png"_s
                                    << u"„Empty.png“ ist leer; Apple nimmt keine leeren Dateien an."_s;
        QTest::newRow("event asset without its type")
            << AssetUploadKind::appEventScreenshot() << u"Fox.png"_s
            << u"Für „Fox.png“ fehlt die Angabe appEventAssetType; es wurde nichts gesendet."_s;
    }

    void refusesBeforeReserving() {
        QFETCH(AssetUploadKind, kind);
        QFETCH(QString, file);
        QFETCH(QString, error);
        QVERIFY(upload(kind, {}, file).value_or(QString()).startsWith(error));
        QCOMPARE(m_transport->requestCount(), 0);
    }

    // The real HTTP stack sends the parts of a file of several megabytes.
    void largeFileOverLoopback() {
        TestServer server;
        QByteArray content(3 * 1024 * 1024 + 17, 'x');
        for (qsizetype i = 0; i < content.size(); i += 4099) {
            content[i] = char(i);
        }
        QFile file(m_dir.filePath(u"Fox.png"_s));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
        file.close();
        const qint64 half = content.size() / 2;
        const QString url = server.url(u"/storage?sig=1"_s).toString();
        const auto kind = AssetUploadKind::appScreenshot();
        server.script(
            "POST", kind.reservationPath,
            {TestServer::Reply::json(
                201, reservation(kind.resourceType, QJsonArray{part(0, half, url), part(half, {}, url)}))});
        server.script("PUT", u"/storage"_s, {TestServer::Reply{}});
        server.script("PATCH", kind.reservationPath + u"/r1"_s,
                      {TestServer::Reply::json(200, reservation(kind.resourceType))});
        AssetUpload u{kind, file.fileName(), u"parent"_s, {}, {}};
        VarnisTest::awaitTask(AssetUploader::upload<Committed>(
            client(std::make_shared<QtHttpTransport>(m_clock), server.baseUrl()), std::move(u)));

        const auto& received = server.requests();
        QCOMPARE(received.size(), 4);
        QVERIFY(received[1].body + received[2].body == content);
        QCOMPARE(received[1].body.size(), half);
        QVERIFY(!received[1].header("Authorization"));
        QCOMPARE(dataOf(received[3].body)[u"attributes"_s][u"sourceFileChecksum"_s].toString(),
                 QString::fromLatin1(QCryptographicHash::hash(content, QCryptographicHash::Md5).toHex()));
    }
};

QTEST_GUILESS_MAIN(AssetUploadTest)
#include "tst_assetupload.moc"
