#include "release/ManagedReviewSubmission.h"
#include "reviews/ManagedReviewResponse.h"
#include "testflight/ManagedBetaTester.h"
#include "wire/APIRequest.h"
#include "wire/ASCEnums.h"
#include "wire/AppleErrorDocument.h"
#include "wire/FieldUpdate.h"
#include "wire/JSONAPI.h"
#include "wire/JsonReader.h"
#include "wire/VelmoraAPIError.h"

#include <QJsonDocument>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

struct Attrs {
    QString name;
    static Attrs fromJson(const JsonReader& r) { return Attrs{r.string(u"name"_s)}; }
};

QList<QueryItem> items(const QStringList& pairs) {
    QList<QueryItem> result;
    for (const auto& pair : pairs) {
        const auto eq = pair.indexOf(u'=');
        result.append(eq < 0 ? QueryItem{pair, std::nullopt} : QueryItem{pair.left(eq), pair.mid(eq + 1)});
    }
    return result;
}

// One text read through an open enumeration.
struct Decoded {
    bool known = false;
    QString raw;
    QString displayName;
    QString rawOfCase;
    bool equalToSameText = false;
    bool equalToOtherText = true;
};
using Decode = Decoded (*)(const QString&);

template <class E> Decoded decode(const QString& raw) {
    const E e = E::fromRaw(raw);
    return Decoded{e.value() != E::Case::Unknown,
                   e.raw(),
                   e.displayName(),
                   E(e.value()).raw(),
                   e == E::fromRaw(QString(raw)),
                   e == E::fromRaw(raw + u'X')};
}

// The error text, or an empty text when `f` does not raise.
template <class F> QString decodingFailure(F f) {
    try {
        f();
    } catch (const DecodingError& e) {
        return e.errorDescription();
    }
    return {};
}

} // namespace

Q_DECLARE_METATYPE(Decode)

class TestWire : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void coalescingKey_data();
    void coalescingKey();
    void fieldUpdate_data();
    void fieldUpdate();
    void dates_data();
    void dates();
    void openEnums_data();
    void openEnums();
    void errorDescription_data();
    void errorDescription();
    void jsonReaderStrictness_data();
    void jsonReaderStrictness();
    void decodeList();
    void decodeSingleAndOptional();
    void appleErrorsLenient_data();
    void appleErrorsLenient();
};

void TestWire::coalescingKey_data() {
    QTest::addColumn<QStringList>("query");
    QTest::addColumn<QString>("expected");
    // Items without "=" have no value at all.
    QTest::newRow("sorted") << QStringList{u"b=2"_s, u"limit=1"_s} << u"GET /v1/apps?b=2&limit=1"_s;
    QTest::newRow("reversed") << QStringList{u"limit=1"_s, u"b=2"_s} << u"GET /v1/apps?b=2&limit=1"_s;
    QTest::newRow("no value") << QStringList{u"x"_s, u"a=1"_s} << u"GET /v1/apps?a=1&x="_s;
    QTest::newRow("empty value") << QStringList{u"x="_s} << u"GET /v1/apps?x="_s;
    QTest::newRow("no items") << QStringList{} << u"GET /v1/apps?"_s;
    // Not the same key as the two items v=1 and b=2.
    QTest::newRow("a value holding & and =") << QStringList{u"v=1&b=2"_s} << u"GET /v1/apps?v=1%26b%3D2"_s;
}

void TestWire::coalescingKey() {
    QFETCH(QStringList, query);
    QFETCH(QString, expected);
    auto request = APIRequest::get(u"/v1/apps"_s, items(query));
    QCOMPARE(request.coalescingKey(), expected);
    // Headers, body and priority do not split a key.
    request.headers.insert(u"X-Extra"_s, u"1"_s);
    request.body = "{}"_ba;
    request.priority = RequestPriority::Background;
    QCOMPARE(request.coalescingKey(), expected);
    // Another media type is another answer.
    request.accept = "application/a-gzip"_ba;
    QVERIFY(request.coalescingKey() != expected);
}

void TestWire::fieldUpdate_data() {
    QTest::addColumn<QString>("oldText");
    QTest::addColumn<QString>("newText");
    QTest::addColumn<FieldUpdate::Kind>("kind");
    QTest::addColumn<QByteArray>("json");
    QTest::newRow("equal") << u"a"_s << u"a"_s << FieldUpdate::Kind::Unchanged << "{}"_ba;
    QTest::newRow("both empty") << u""_s << u""_s << FieldUpdate::Kind::Unchanged << "{}"_ba;
    QTest::newRow("blanks only") << u"a"_s << u" \n\t "_s << FieldUpdate::Kind::Cleared << R"({"k":null})"_ba;
    QTest::newRow("emptied") << u"a"_s << u""_s << FieldUpdate::Kind::Cleared << R"({"k":null})"_ba;
    QTest::newRow("kept untrimmed") << u"a"_s << u" b\n"_s << FieldUpdate::Kind::Value
                                    << R"({"k":" b\n"})"_ba;
}

void TestWire::fieldUpdate() {
    QFETCH(QString, oldText);
    QFETCH(QString, newText);
    QFETCH(FieldUpdate::Kind, kind);
    QFETCH(QByteArray, json);
    const auto update = FieldUpdate::between(oldText, newText);
    QCOMPARE(update.kind(), kind);
    QJsonObject attributes;
    update.writeTo(attributes, u"k"_s);
    QCOMPARE(QJsonDocument(attributes).toJson(QJsonDocument::Compact), json);
}

void TestWire::dates_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QDateTime>("expected"); // invalid: must fail
    const auto utc = [](int h, int m, int s, int ms) {
        return QDateTime(QDate(2025, 1, 2), QTime(h, m, s, ms), Qt::UTC);
    };
    QTest::newRow("fraction") << u"2025-01-02T03:04:05.678Z"_s << utc(3, 4, 5, 678);
    QTest::newRow("short fraction") << u"2025-01-02T03:04:05.5Z"_s << utc(3, 4, 5, 500);
    QTest::newRow("whole seconds") << u"2025-01-02T03:04:05Z"_s << utc(3, 4, 5, 0);
    QTest::newRow("offset with colon") << u"2025-01-02T03:04:05+02:00"_s << utc(1, 4, 5, 0);
    QTest::newRow("offset without colon") << u"2025-01-02T03:04:05-0800"_s << utc(11, 4, 5, 0);
    QTest::newRow("fraction and offset") << u"2025-01-02T03:04:05.250+01:00"_s << utc(2, 4, 5, 250);
    QTest::newRow("date only") << u"2025-01-02"_s << QDateTime();
    QTest::newRow("no zone") << u"2025-01-02T03:04:05"_s << QDateTime();
    QTest::newRow("month 13") << u"2025-13-02T03:04:05Z"_s << QDateTime();
    QTest::newRow("february 30") << u"2025-02-30T03:04:05Z"_s << QDateTime();
    QTest::newRow("hour 24") << u"2025-01-02T24:00:00Z"_s << QDateTime();
    QTest::newRow("empty") << u""_s << QDateTime();
}

void TestWire::dates() {
    QFETCH(QString, text);
    QFETCH(QDateTime, expected);
    if (expected.isValid()) {
        const auto decoded = ASCDateFormatting::decode(text);
        QCOMPARE(decoded, expected);
        QCOMPARE(decoded.toMSecsSinceEpoch(), expected.toMSecsSinceEpoch());
    } else {
        QCOMPARE(decodingFailure([&] { ASCDateFormatting::decode(text); }),
                 u"Unrecognized date format: "_s + text);
    }
}

void TestWire::openEnums_data() {
    QTest::addColumn<Decode>("decode");
    QTest::addColumn<QString>("raw");
    QTest::addColumn<bool>("known");
    QTest::addColumn<QString>("display");
    const auto row = [](const char* name, Decode decode, const QString& raw, bool known,
                        const QString& display) {
        QTest::newRow(name) << decode << raw << known << display;
    };
    row("version state, first", decode<ASCAppStoreVersionState>, u"ACCEPTED"_s, true, u"Akzeptiert"_s);
    row("version state, last", decode<ASCAppStoreVersionState>, u"NOT_APPLICABLE"_s, true,
        u"Nicht zutreffend"_s);
    row("version state, new from Apple", decode<ASCAppStoreVersionState>, u"SOMETHING_NEW"_s, false,
        u"SOMETHING_NEW"_s);
    row("version state, wrong case", decode<ASCAppStoreVersionState>, u"accepted"_s, false, u"accepted"_s);
    row("platform without label", decode<ASCPlatform>, u"VISION_OS"_s, true, u"VISION_OS"_s);
    row("platform, new", decode<ASCPlatform>, u"WATCH_OS"_s, false, u"WATCH_OS"_s);
    row("platform, blank kept", decode<ASCPlatform>, u" IOS"_s, false, u" IOS"_s);
    row("processing, new", decode<ASCProcessingState>, u"QUEUED"_s, false, u"QUEUED"_s);
    row("review item, new", decode<ASCReviewSubmissionItemState>, u"WITHDRAWN"_s, false, u"WITHDRAWN"_s);
    row("review response", decode<ASCReviewResponseState>, u"PENDING_PUBLISH"_s, true, u"PENDING_PUBLISH"_s);
    row("beta tester, empty text", decode<ASCBetaTesterState>, QString(), false, QString());
}

void TestWire::openEnums() {
    QFETCH(Decode, decode);
    QFETCH(QString, raw);
    QFETCH(bool, known);
    QFETCH(QString, display);
    const Decoded d = decode(raw);
    QCOMPARE(d.known, known);
    QCOMPARE(d.raw, raw);
    QCOMPARE(d.displayName, display);
    // The case alone carries a known text; an unknown one lives only in the decoded value.
    QCOMPARE(d.rawOfCase, known ? raw : QString());
    QVERIFY(d.equalToSameText);
    QVERIFY(!d.equalToOtherText);
}

void TestWire::errorDescription_data() {
    QTest::addColumn<QString>("kind");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("title"); // null: absent
    QTest::addColumn<QString>("detail");
    QTest::addColumn<QString>("expected");
    const QString forbidden =
        u"Der API-Schlüssel hat keine Berechtigung für diese Aktion. Manche Bereiche (z. B. Analytics) "
        u"benötigen "
        "eine zusätzliche, explizit vergebene Berechtigung – prüfe die Schlüssel-Rolle in App Store Connect."_s;
    QTest::newRow("http detail wins") << u"http"_s << 409 << u"T"_s << u"D"_s << u"D"_s;
    QTest::newRow("http title only") << u"http"_s << 404 << u"Not Found"_s << QString() << u"Not Found"_s;
    QTest::newRow("http empty list") << u"http-empty"_s << 500 << QString() << QString()
                                     << u"App Store Connect meldete Fehler 500."_s;
    QTest::newRow("http bare object")
        << u"http"_s << 422 << QString() << QString() << u"App Store Connect meldete Fehler 422."_s;
    QTest::newRow("http blank detail gives the title")
        << u"http"_s << 409 << u"Konflikt"_s << u""_s << u"Konflikt"_s;
    QTest::newRow("http blank texts")
        << u"http"_s << 500 << u" "_s << u"\n\t"_s << u"App Store Connect meldete Fehler 500."_s;
    QTest::newRow("http detail trimmed") << u"http"_s << 409 << QString() << u" D\n"_s << u"D"_s;
    QTest::newRow("forbidden detail") << u"forbidden"_s << 403 << u"T"_s << u"D"_s << u"D"_s;
    QTest::newRow("forbidden ignores title") << u"forbidden"_s << 403 << u"T"_s << QString() << forbidden;
    QTest::newRow("forbidden blank detail") << u"forbidden"_s << 403 << u"T"_s << u"  "_s << forbidden;
    QTest::newRow("forbidden empty") << u"forbidden-empty"_s << 403 << QString() << QString() << forbidden;
    QTest::newRow("budget") << u"budget"_s << 539 << QString() << QString()
                            << u"Apples Stundenbudget ist fast aufgebraucht (539 von 3600 übrig). "
                               "Hintergrundarbeit pausiert, damit interaktive Anfragen weiter durchkommen."_s;
    QTest::newRow("unknown") << u"unknown"_s << -1 << QString() << QString()
                             << u"Unbekannter Fehler (HTTP -1)."_s;
}

void TestWire::errorDescription() {
    QFETCH(QString, kind);
    QFETCH(int, status);
    QFETCH(QString, title);
    QFETCH(QString, detail);
    QFETCH(QString, expected);
    AppleErrorObject object;
    if (!title.isNull()) {
        object.title = title;
    }
    if (!detail.isNull()) {
        object.detail = detail;
    }
    const QList<AppleErrorObject> apple =
        kind.endsWith(u"-empty"_s) ? QList<AppleErrorObject>{} : QList<AppleErrorObject>{object};
    const auto error = kind.startsWith(u"http"_s)        ? VelmoraAPIError::http(status, u"req"_s, apple)
                       : kind.startsWith(u"forbidden"_s) ? VelmoraAPIError::forbidden(apple)
                       : kind == u"budget"_s ? VelmoraAPIError::rateLimitBudgetExhausted(status, 3600)
                                             : VelmoraAPIError::unknown(status);
    QCOMPARE(error.errorDescription(), expected);
}

void TestWire::jsonReaderStrictness_data() {
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("reader");
    QTest::addColumn<QString>("outcome"); // "value", "none" or "throws"
    QTest::newRow("number as text") << R"({"a":5})"_ba << u"optString"_s << u"throws"_s;
    QTest::newRow("null text") << R"({"a":null})"_ba << u"optString"_s << u"none"_s;
    QTest::newRow("absent text") << "{}"_ba << u"optString"_s << u"none"_s;
    QTest::newRow("null required") << R"({"a":null})"_ba << u"string"_s << u"throws"_s;
    QTest::newRow("text as int") << R"({"a":"5"})"_ba << u"optInt"_s << u"throws"_s;
    QTest::newRow("fraction as int") << R"({"a":1.5})"_ba << u"optInt"_s << u"throws"_s;
    QTest::newRow("int") << R"({"a":-7})"_ba << u"optInt"_s << u"value"_s;
    QTest::newRow("text as bool") << R"({"a":"true"})"_ba << u"optBool"_s << u"throws"_s;
    QTest::newRow("list as object") << R"({"a":[]})"_ba << u"optObject"_s << u"throws"_s;
    QTest::newRow("null object") << R"({"a":null})"_ba << u"optObject"_s << u"none"_s;
    QTest::newRow("object as list") << R"({"a":{}})"_ba << u"optArray"_s << u"throws"_s;
    QTest::newRow("bad date") << R"({"a":"2025-01-02"})"_ba << u"optDate"_s << u"throws"_s;
}

void TestWire::jsonReaderStrictness() {
    QFETCH(QByteArray, json);
    QFETCH(QString, reader);
    QFETCH(QString, outcome);
    const JsonReader r(QJsonDocument::fromJson(json).object());
    const auto key = u"a"_s;
    QString actual;
    try {
        bool has = false;
        if (reader == u"optString"_s) {
            has = r.optString(key).has_value();
        } else if (reader == u"string"_s) {
            has = !r.string(key).isNull();
        } else if (reader == u"optInt"_s) {
            has = r.optInt(key).has_value();
        } else if (reader == u"optBool"_s) {
            has = r.optBool(key).has_value();
        } else if (reader == u"optObject"_s) {
            has = r.optObject(key).has_value();
        } else if (reader == u"optArray"_s) {
            has = r.optArray(key).has_value();
        } else if (reader == u"optDate"_s) {
            has = r.optDate(key).has_value();
        } else {
            QFAIL("unknown reader");
        }
        actual = has ? u"value"_s : u"none"_s;
    } catch (const DecodingError&) {
        actual = u"throws"_s;
    }
    QCOMPARE(actual, outcome);
}

void TestWire::decodeList() {
    const auto body =
        R"({"data":[{"type":"apps","id":"1","attributes":{"name":"Eins"}},{"type":"apps","id":"2"}],
        "links":{"self":"https://x/v1/apps","next":"https://x/v1/apps?cursor=Mg"},
        "meta":{"paging":{"total":7,"limit":2}},"included":[{"weird":true}]})"_ba;
    const auto page = JSONAPIDecode::list<JSONAPIResource<Attrs>>(body);
    QCOMPARE(page.data.size(), 2);
    QCOMPARE(page.data[0].attributes->name, u"Eins"_s);
    QVERIFY(!page.data[1].attributes);
    QCOMPARE(page.links->next.value(), u"https://x/v1/apps?cursor=Mg"_s);
    QVERIFY(!page.links->first);
    QCOMPARE(page.meta->paging->total.value(), 7);

    const auto last = JSONAPIDecode::list<JSONAPIResource<Attrs>>(R"({"data":[]})"_ba);
    QVERIFY(last.data.isEmpty());
    QVERIFY(!last.links);

    // A resource that breaks its own attribute type fails the whole page.
    QVERIFY(!decodingFailure([] {
                 JSONAPIDecode::list<JSONAPIResource<Attrs>>(
                     R"({"data":[{"type":"apps","id":"1","attributes":{}}]})"_ba);
             }).isEmpty());
    QVERIFY(!decodingFailure([] {
                 JSONAPIDecode::list<JSONAPIResource<Attrs>>(R"({"data":[3]})"_ba);
             }).isEmpty());
    QVERIFY(!decodingFailure([] { JSONAPIDecode::list<JSONAPIResource<Attrs>>("<html>"_ba); }).isEmpty());
    QVERIFY(!decodingFailure([] { JSONAPIDecode::list<JSONAPIResource<Attrs>>("[]"_ba); }).isEmpty());
}

void TestWire::decodeSingleAndOptional() {
    using R = JSONAPIResource<Attrs>;
    const auto one =
        JSONAPIDecode::single<R>(R"({"data":{"type":"apps","id":"9","attributes":{"name":"N"}}})"_ba);
    QCOMPARE(one.id, u"9"_s);
    QCOMPARE(one.attributes->name, u"N"_s);
    QVERIFY(!decodingFailure([] { JSONAPIDecode::single<R>(R"({"data":null})"_ba); }).isEmpty());
    QVERIFY(!decodingFailure([] { JSONAPIDecode::single<R>(R"({"data":{"type":"apps"}})"_ba); }).isEmpty());
    QVERIFY(!decodingFailure([] { JSONAPIDecode::single<R>("not json"_ba); }).isEmpty());

    QVERIFY(!JSONAPIDecode::singleOptional<R>(R"({"data":null})"_ba));
    QCOMPARE(JSONAPIDecode::singleOptional<R>(R"({"data":{"type":"builds","id":"b"}})"_ba)->type,
             u"builds"_s);
    // An absent `data` is a broken document, not an empty relationship.
    QVERIFY(!decodingFailure([] { JSONAPIDecode::singleOptional<R>("{}"_ba); }).isEmpty());
}

void TestWire::appleErrorsLenient_data() {
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("count");
    QTest::newRow("garbage") << "<html>502 Bad Gateway</html>"_ba << 0;
    QTest::newRow("empty") << ""_ba << 0;
    QTest::newRow("array") << "[]"_ba << 0;
    QTest::newRow("no errors key") << "{}"_ba << 0;
    QTest::newRow("errors not a list") << R"({"errors":"x"})"_ba << 0;
    QTest::newRow("status as number") << R"({"errors":[{"status":404}]})"_ba << 0;
    QTest::newRow("good") << R"({"errors":[{"status":"409","code":"C","title":"T","detail":"D"},{}]})"_ba
                          << 2;
}

void TestWire::appleErrorsLenient() {
    QFETCH(QByteArray, body);
    QFETCH(int, count);
    const auto errors = AppleErrorDocument::decodeLenient(body);
    QCOMPARE(errors.size(), count);
    if (count > 0) {
        QCOMPARE(errors[0].status.value(), u"409"_s);
        QCOMPARE(errors[0].detail.value(), u"D"_s);
        QVERIFY(!errors[1].title);
    }
}

QTEST_GUILESS_MAIN(TestWire)
#include "tst_wire.moc"
