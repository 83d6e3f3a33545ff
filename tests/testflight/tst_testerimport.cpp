#include "support/AwaitTask.h"
#include "testflight/BetaTesterImportFile.h"
#include "testflight/BetaTesterImportParsing.h"
#include "testflight/BetaTesterImportPreview.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace BetaTesterImportParsing;

namespace {

// A tester as "address|first|last", leaving out the names that are absent.
QString notation(const ImportedBetaTester& t) {
    QStringList parts{t.email};
    for (const auto& name : {t.firstName, t.lastName}) {
        if (name) {
            parts.append(*name);
        }
    }
    return parts.join(u'|');
}

QStringList testersOf(const Result& r) {
    QStringList out;
    for (const ImportedBetaTester& t : r.testers) {
        out.append(notation(t));
    }
    return out;
}

// A rejected line as "number:text".
QStringList rejectedOf(const Result& r) {
    QStringList out;
    for (const RejectedLine& l : r.rejectedLines) {
        out.append(QString::number(l.line) + u':' + l.text);
    }
    return out;
}

QList<ImportedBetaTester> numbered(int count) {
    QList<ImportedBetaTester> testers;
    for (int i = 0; i < count; ++i) {
        testers.append({u"t%1@example.com"_s.arg(i), u"Name%1"_s.arg(i), std::nullopt});
    }
    return testers;
}

} // namespace

class TesterImportTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void parse_data();
    void parse();
    void lineEnds_data();
    void lineEnds();
    void splitRow_data();
    void splitRow();
    void decode_data();
    void decode();
    void markedHeaderIsStillAHeader();
    void unreadableFiles_data();
    void unreadableFiles();
    void loadParsesOnAWorker();
    void previewCut_data();
    void previewCut();
    void previewSections();
    void displayName_data();
    void displayName();
    void confirmation();
    void chunks_data();
    void chunks();
};

void TesterImportTest::parse_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("testers");
    QTest::addColumn<QStringList>("rejected");
    QTest::addColumn<int>("duplicates");
    const QStringList none;

    QTest::newRow("empty") << u""_s << none << none << 0;
    QTest::newRow("blank lines only") << u"\n  \n\t\r\n\u00A0\n"_s << none << none << 0;
    QTest::newRow("address in the middle")
        << u"Anna;anna@example.com;Muster"_s << QStringList{u"anna@example.com|Anna|Muster"_s} << none << 0;
    QTest::newRow("address in any column, per line")
        << u"anna@example.com,Anna\nBob,Berg,bob@example.com"_s
        << QStringList{u"anna@example.com|Anna"_s, u"bob@example.com|Bob|Berg"_s} << none << 0;
    // The separator is chosen per line: ";" before "," before a tab, quotes or not.
    QTest::newRow("separator per line")
        << u"a@x.de;Anna\nb@x.de,Bob\nc@x.de\tCem"_s
        << QStringList{u"a@x.de|Anna"_s, u"b@x.de|Bob"_s, u"c@x.de|Cem"_s} << none << 0;
    QTest::newRow("semicolon wins over comma")
        << u"Muster, Anna;anna@x.de"_s << QStringList{u"anna@x.de|Muster, Anna"_s} << none << 0;
    QTest::newRow("comma wins over tab")
        << u"Anna\tMaria,anna@x.de"_s << QStringList{u"anna@x.de|Anna\tMaria"_s} << none << 0;
    QTest::newRow("quoted comma") << u"\"Muster, Anna\",anna@x.de"_s
                                  << QStringList{u"anna@x.de|Muster, Anna"_s} << none << 0;
    // The semicolon in the quoted name makes ";" the separator; the comma is then an ordinary
    // character and the line holds a single field with a blank in it.
    QTest::newRow("quoted semicolon turns the comma off")
        << u"\"Muster; Anna\",anna@x.de"_s << none << QStringList{u"1:\"Muster; Anna\",anna@x.de"_s} << 0;
    QTest::newRow("quoted separator stays in the field")
        << u"\"Muster; Anna\";anna@x.de"_s << QStringList{u"anna@x.de|Muster; Anna"_s} << none << 0;
    QTest::newRow("doubled quotes vanish") << u"\"Anna \"\"Ann\"\" Muster\",anna@x.de"_s
                                           << QStringList{u"anna@x.de|Anna Ann Muster"_s} << none << 0;
    QTest::newRow("unterminated quote runs to the end")
        << u"anna@x.de,\"Muster, Anna"_s << QStringList{u"anna@x.de|Muster, Anna"_s} << none << 0;
    QTest::newRow("quoted address") << u"\"anna@x.de\""_s << QStringList{u"anna@x.de"_s} << none << 0;
    QTest::newRow("empty fields and a third name")
        << u"anna@x.de;;Anna; ;Maria;Muster;"_s << QStringList{u"anna@x.de|Anna|Maria"_s} << none << 0;
    QTest::newRow("second address is a name")
        << u"anna@x.de;bob@x.de"_s << QStringList{u"anna@x.de|bob@x.de"_s} << none << 0;
    QTest::newRow("unicode blanks trimmed")
        << u"\u2003 Anna\u00A0; anna@x.de\u3000"_s << QStringList{u"anna@x.de|Anna"_s} << none << 0;

    QTest::newRow("header skipped") << u"email;name\nanna@x.de;Anna"_s << QStringList{u"anna@x.de|Anna"_s}
                                    << none << 0;
    QTest::newRow("header words in any case")
        << u"Vorname,NACHNAME,E-Mail\r\nFirst Name\tLast Name\tMail\nanna@x.de"_s
        << QStringList{u"anna@x.de"_s} << QStringList{u"2:First Name\tLast Name\tMail"_s} << 0;
    QTest::newRow("header only on the first physical line")
        << u"\nemail;name\nanna@x.de"_s << QStringList{u"anna@x.de"_s} << QStringList{u"2:email;name"_s} << 0;
    QTest::newRow("whitespace first line is no header line")
        << u" \t \nfirstname;lastname"_s << none << QStringList{u"2:firstname;lastname"_s} << 0;
    QTest::newRow("header word beside an address is data")
        << u"Email;anna@x.de"_s << QStringList{u"anna@x.de|Email"_s} << none << 0;
    QTest::newRow("near header words are rejected")
        << u"emails;e mail;name"_s << none << QStringList{u"1:emails;e mail;name"_s} << 0;

    QTest::newRow("duplicates ignore case, first spelling wins")
        << u"Anna@Example.COM;Anna\nanna@example.com;Other\nANNA@EXAMPLE.COM"_s
        << QStringList{u"Anna@Example.COM|Anna"_s} << none << 2;
    QTest::newRow("duplicates beyond ASCII")
        << u"JÖRG@x.de\njörg@x.de;Jörg"_s << QStringList{u"JÖRG@x.de"_s} << none << 1;
    // The Kelvin sign lower-cases to an ASCII "k": the same address as its plain spelling.
    QTest::newRow("duplicates where lower case leaves ASCII")
        << u"\u212Aai@x.de\nkai@x.de"_s << QStringList{u"\u212Aai@x.de"_s} << none << 1;
    QTest::newRow("a rejected line is no duplicate")
        << u"kein Eintrag\nkein Eintrag"_s << none << QStringList{u"1:kein Eintrag"_s, u"2:kein Eintrag"_s}
        << 0;

    // Quoted names are copied while their rows wait for the duplicate check; many long ones, and
    // one longer than any buffer so far, must all survive to the end.
    QString quotedText;
    QStringList quotedTesters;
    for (int i = 0; i < 60; ++i) {
        const QString name = u"Name%1 "_s.arg(i) + QString(i == 45 ? 20000 : 300, u'x');
        quotedText += u"\"%1\";p%2@x.de\n"_s.arg(name).arg(i);
        quotedTesters.append(u"p%1@x.de|%2"_s.arg(i).arg(name));
    }
    QTest::newRow("many long quoted names") << quotedText << quotedTesters << none << 0;
    QTest::newRow("no at sign") << u"anna.x.de"_s << none << QStringList{u"1:anna.x.de"_s} << 0;
    QTest::newRow("nothing ahead of the at sign") << u"@x.de"_s << none << QStringList{u"1:@x.de"_s} << 0;
    QTest::newRow("no dot behind the at sign")
        << u"an.na@xde"_s << none << QStringList{u"1:an.na@xde"_s} << 0;
    QTest::newRow("ends in a dot") << u"anna@x.de."_s << none << QStringList{u"1:anna@x.de."_s} << 0;
    QTest::newRow("blank inside") << u"anna @x.de"_s << none << QStringList{u"1:anna @x.de"_s} << 0;
    QTest::newRow("rejected text is the trimmed line")
        << u"   Anna Muster ,  \n"_s << none << QStringList{u"1:Anna Muster ,"_s} << 0;
    // Only the four rules count: a second "@", a leading dot of the domain and a tab pass.
    QTest::newRow("what the rules let pass")
        << u"a@b@c.de\nb@.de\nc\td@x.de;Cem"_s << QStringList{u"a@b@c.de"_s, u"b@.de"_s, u"c\td@x.de|Cem"_s}
        << none << 0;
}

void TesterImportTest::parse() {
    QFETCH(QString, text);
    QFETCH(QStringList, testers);
    QFETCH(QStringList, rejected);
    QFETCH(int, duplicates);

    const Result result = BetaTesterImportParsing::parse(text);
    QCOMPARE(testersOf(result), testers);
    QCOMPARE(rejectedOf(result), rejected);
    QCOMPARE(result.duplicateCount, duplicates);
}

// Whatever system wrote the file, a rejected line is reported with the number an editor shows.
void TesterImportTest::lineEnds_data() {
    QTest::addColumn<QString>("text");
    const QStringList lines{u"anna@x.de"_s, u""_s, u"kaputt"_s, u"bob@x.de"_s, u"falsch"_s, u""_s};
    QTest::newRow("LF") << lines.join(u"\n"_s);
    QTest::newRow("CR LF") << lines.join(u"\r\n"_s);
    QTest::newRow("CR") << lines.join(u"\r"_s);
    QTest::newRow("mixed") << u"anna@x.de\r\n\rkaputt\nbob@x.de\r\nfalsch\r"_s;
}

void TesterImportTest::lineEnds() {
    QFETCH(QString, text);
    const Result result = BetaTesterImportParsing::parse(text);
    QCOMPARE(rejectedOf(result), (QStringList{u"3:kaputt"_s, u"5:falsch"_s}));
    QCOMPARE(testersOf(result), (QStringList{u"anna@x.de"_s, u"bob@x.de"_s}));
}

void TesterImportTest::splitRow_data() {
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("separator");
    QTest::addColumn<QStringList>("fields");
    QTest::newRow("trailing separator") << u"a,b,"_s << u","_s << QStringList{u"a"_s, u"b"_s, u""_s};
    QTest::newRow("separator inside quotes") << u"\"a;b\";c"_s << u";"_s << QStringList{u"a;b"_s, u"c"_s};
    QTest::newRow("quotes mid-field") << u"x\"y,z\"w,v"_s << u","_s << QStringList{u"xy,zw"_s, u"v"_s};
    QTest::newRow("blanks around quotes") << u"  \"a\"  ,\t\"\"  "_s << u","_s << QStringList{u"a"_s, u""_s};
    QTest::newRow("quoted blanks are trimmed too") << u"\" a \""_s << u","_s << QStringList{u"a"_s};
    QTest::newRow("long quoted field")
        << u"\"%1\";b"_s.arg(QString(9000, u'x')) << u";"_s << QStringList{QString(9000, u'x'), u"b"_s};
    QTest::newRow("tab") << u"a\tb c\t"_s << u"\t"_s << QStringList{u"a"_s, u"b c"_s, u""_s};
}

void TesterImportTest::splitRow() {
    QFETCH(QString, line);
    QFETCH(QString, separator);
    QFETCH(QStringList, fields);
    QCOMPARE(BetaTesterImportParsing::splitRow(line, separator.at(0)), fields);
    QCOMPARE(BetaTesterImportParsing::separator(line), separator.at(0));
}

void TesterImportTest::decode_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QByteArray() << u""_s;
    QTest::newRow("UTF-8") << "J\xC3\xB6rg;j@x.de"_ba << u"Jörg;j@x.de"_s;
    QTest::newRow("Latin-1") << "J\xF6rg;j@x.de"_ba << u"Jörg;j@x.de"_s;
    // A reader that keeps an unfinished sequence for more input would call this valid UTF-8.
    QTest::newRow("Latin-1 ending in a letter above ASCII") << "j@x.de;Zo\xEB"_ba << u"j@x.de;Zoë"_s;
    QTest::newRow("UTF-8 surrogate is not UTF-8") << "a\xED\xA0\x80"_ba << u"a\u00ED\u00A0\u0080"_s;
    QTest::newRow("UTF-8 mark") << "\xEF\xBB\xBF"
                                   "email"_ba
                                << u"email"_s;
    QTest::newRow("UTF-8 mark before Latin-1") << "\xEF\xBB\xBF"
                                                  "J\xF6rg"_ba
                                               << u"Jörg"_s;
    QTest::newRow("UTF-16 LE mark") << QByteArray("\xFF\xFE"
                                                  "a\0;\0\xF6\0",
                                                  8)
                                    << u"a;ö"_s;
    QTest::newRow("UTF-16 BE mark") << QByteArray("\xFE\xFF\0a\0;\0\xF6", 8) << u"a;ö"_s;
}

void TesterImportTest::decode() {
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);
    QCOMPARE(BetaTesterImportFile::decode(bytes), text);
}

// A spreadsheet's byte-order mark must not glue itself to the first column title.
void TesterImportTest::markedHeaderIsStillAHeader() {
    const Result result =
        BetaTesterImportParsing::parse(BetaTesterImportFile::decode("\xEF\xBB\xBF"
                                                                    "E-Mail;Vorname\nanna@x.de;Anna"_ba));
    QCOMPARE(testersOf(result), QStringList{u"anna@x.de|Anna"_s});
    QVERIFY(result.rejectedLines.isEmpty());
}

void TesterImportTest::unreadableFiles_data() {
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("reason"); // %1 stands for the temporary folder
    QTest::newRow("no path") << u"empty"_s << u"Es wurde keine Datei angegeben."_s;
    QTest::newRow("web address") << u"https"_s << u"Sie liegt nicht auf diesem Rechner."_s;
    QTest::newRow("missing") << u"missing"_s << u"Unter „%1/fehlt.csv“ gibt es keine Datei."_s;
    QTest::newRow("missing behind a file address")
        << u"missingUrl"_s << u"Unter „%1/fehlt.csv“ gibt es keine Datei."_s;
    QTest::newRow("folder") << u"folder"_s << u"„ordner.csv“ ist ein Ordner, keine Datei."_s;
    QTest::newRow("pipe") << u"fifo"_s << u"„pipe.csv“ ist keine gewöhnliche Datei."_s;
    QTest::newRow("no permission") << u"locked"_s << u"Es fehlt die Berechtigung, sie zu lesen."_s;
    QTest::newRow("read fails") << u"readError"_s << u"Beim Lesen ist ein Fehler aufgetreten."_s;
}

void TesterImportTest::unreadableFiles() {
    QFETCH(QString, kind);
    QFETCH(QString, reason);
    QTemporaryDir dir;
    const QString root = QDir(dir.path()).canonicalPath();
    QString path;
    if (kind == u"https"_s) {
        path = u"https://example.com/tester.csv"_s;
    } else if (kind == u"missing"_s) {
        path = root + u"/fehlt.csv"_s;
    } else if (kind == u"missingUrl"_s) {
        path = QUrl::fromLocalFile(root + u"/fehlt.csv"_s).toString();
    } else if (kind == u"folder"_s) {
        path = root + u"/ordner.csv"_s;
        QVERIFY(QDir(root).mkdir(u"ordner.csv"_s));
    } else if (kind == u"fifo"_s) {
        path = root + u"/pipe.csv"_s;
        QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    } else if (kind == u"locked"_s) {
        path = root + u"/gesperrt.csv"_s;
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("anna@x.de\n");
        file.close();
        QVERIFY(file.setPermissions(QFileDevice::WriteOwner));
        if (file.open(QIODevice::ReadOnly)) {
            QSKIP("This user reads files without read permission (root).");
        }
    } else if (kind == u"readError"_s) {
        // A regular file whose first read fails: the process's memory at address zero.
        path = u"/proc/self/mem"_s;
        if (!QFile::exists(path)) {
            QSKIP("No /proc on this system.");
        }
    }
    try {
        BetaTesterImportFile::readText(path);
        QFAIL("The file was read.");
    } catch (const BetaTesterImportFileError& error) {
        const QString expected = QString(reason).replace(u"%1"_s, root);
        QCOMPARE(error.reason(), expected);
        QCOMPARE(error.errorDescription(), u"Die Datei konnte nicht gelesen werden: "_s + expected);
    }
}

// The worker gives the same result as parsing on the spot, and the caller's thread is free while
// it runs: the task is still pending when `load` returns.
void TesterImportTest::loadParsesOnAWorker() {
    QTemporaryDir dir;
    const QString path = dir.filePath(u"tester.csv"_s);
    QByteArray bytes = "E-Mail;Name\r\n"_ba;
    for (int i = 0; i < 50000; ++i) {
        bytes +=
            "Person " + QByteArray::number(i) + ";p" + QByteArray::number(i % 40000) + "@example.com\r\n";
    }
    bytes += "Zo\xEB;zoe@example.com"_ba;
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    file.close();

    QCoro::Task<Result> task = BetaTesterImportFile::load(QUrl::fromLocalFile(path).toString());
    QVERIFY(!task.isReady());
    const Result result = VarnisTest::awaitTask(std::move(task));
    QCOMPARE(result, BetaTesterImportParsing::parse(BetaTesterImportFile::decode(bytes)));
    QCOMPARE(result.testers.size(), 40001);
    QCOMPARE(result.duplicateCount, 10000);
    QCOMPARE(notation(result.testers.last()), u"zoe@example.com|Zoë"_s);

    try {
        VarnisTest::awaitTask(BetaTesterImportFile::load(dir.filePath(u"fehlt.csv"_s)));
        QFAIL("A missing file was read.");
    } catch (const BetaTesterImportFileError& error) {
        QVERIFY(error.errorDescription().startsWith(u"Die Datei konnte nicht gelesen werden: Unter „"_s));
    }
}

void TesterImportTest::previewCut_data() {
    QTest::addColumn<int>("count");
    QTest::addColumn<std::optional<int>>("remaining");
    QTest::addColumn<QString>("more"); // empty: no such line
    QTest::addColumn<QString>("cost"); // empty: no sentence
    QTest::newRow("none") << 0 << std::optional<int>() << u""_s << u""_s;
    QTest::newRow("one") << 1 << std::optional<int>() << u""_s
                         << u"Der Import kostet 1 Anfrage vom stündlichen Kontingent."_s;
    QTest::newRow("200 fit") << 200 << std::optional<int>(3000) << u""_s
                             << u"Der Import kostet 200 Anfragen vom stündlichen Kontingent."_s;
    QTest::newRow("201 cut") << 201 << std::optional<int>(201) << u"1 weitere"_s
                             << u"Der Import kostet 201 Anfragen vom stündlichen Kontingent."_s;
    QTest::newRow("1234 over the budget")
        << 1234 << std::optional<int>(540) << u"1034 weitere"_s
        << u"Der Import kostet 1.234 Anfragen vom stündlichen Kontingent. Apple meldet für diese Stunde nur "
           u"noch 540 übrig."_s;
}

void TesterImportTest::previewCut() {
    QFETCH(int, count);
    QFETCH(std::optional<int>, remaining);
    QFETCH(QString, more);
    QFETCH(QString, cost);
    Result result;
    result.testers = numbered(count);
    const auto p = BetaTesterImportPreview::of(result, remaining);
    QCOMPARE(p.recognizedTitle, u"Erkannt (%1)"_s.arg(count));
    QCOMPARE(p.listedNames.size(), std::min(count, 200));
    if (count > 0) {
        QCOMPARE(p.listedNames.last(), result.testers.at(p.listedNames.size() - 1).displayName());
    }
    QCOMPARE(p.moreNames.value_or(QString()), more);
    QCOMPARE(p.footer, u"%1 Tester bereit"_s.arg(count));
    QCOMPARE(p.costSentence.value_or(QString()), cost);
    QCOMPARE(p.hasTesters, count > 0);
    QCOMPARE(BetaTesterImportPreview::canImport(result, false), count > 0);
    QVERIFY(!BetaTesterImportPreview::canImport(result, true));
}

void TesterImportTest::previewSections() {
    const Result one = BetaTesterImportParsing::parse(u"a@x.de\nA@X.DE\nkaputt\n\n\x1B[2Jweg"_s);
    const auto p = BetaTesterImportPreview::of(one);
    QCOMPARE(p.duplicateSentence.value_or(QString()),
             u"1 Adresse kam mehrfach vor und wurde nur einmal übernommen."_s);
    QCOMPARE(p.rejectedTitle.value_or(QString()), u"Ohne erkennbare Adresse (2)"_s);
    const QList<BetaTesterImportPreview::RejectedRow> rows{{u"Zeile 3"_s, u"kaputt"_s},
                                                           {u"Zeile 5"_s, u"\\x1B[2Jweg"_s}};
    QCOMPARE(p.rejectedRows, rows);

    const auto two = BetaTesterImportPreview::of(BetaTesterImportParsing::parse(u"a@x.de\na@x.de\na@x.de"_s));
    QCOMPARE(two.duplicateSentence.value_or(QString()),
             u"2 Adressen kamen mehrfach vor und wurden nur einmal übernommen."_s);
    QVERIFY(!two.rejectedTitle);
    QVERIFY(!BetaTesterImportPreview::of(BetaTesterImportParsing::parse(u"a@x.de"_s)).duplicateSentence);
}

void TesterImportTest::displayName_data() {
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("displayName");
    QTest::newRow("both names") << u"Anna;a@x.de;Muster"_s << u"Anna Muster <a@x.de>"_s;
    QTest::newRow("one name") << u"a@x.de;Anna"_s << u"Anna <a@x.de>"_s;
    QTest::newRow("no name") << u"a@x.de;;"_s << u"a@x.de"_s;
}

void TesterImportTest::displayName() {
    QFETCH(QString, line);
    QFETCH(QString, displayName);
    const Result result = BetaTesterImportParsing::parse(line);
    QCOMPARE(result.testers.size(), 1);
    QCOMPARE(result.testers.first().displayName(), displayName);
}

void TesterImportTest::confirmation() {
    const Result clean = BetaTesterImportParsing::parse(u"a@x.de\nb@x.de"_s);
    const PendingWrite plain = BetaTesterImportPreview::confirmation(u"Außen"_s, clean);
    QCOMPARE(plain.explanation, u"Apple lädt die neuen Tester zu „Außen“ ein und verschickt dabei E-Mails. "
                                u"Bereits vorhandene Adressen überspringt Apple."_s);
    QVERIFY(!plain.isDestructive);
    QStringList rows;
    for (const WriteChange& c : plain.changes) {
        QVERIFY(!c.before);
        rows.append(c.field + u'=' + c.after);
    }
    QCOMPARE(rows, (QStringList{u"Gruppe=Außen"_s, u"Tester=2 Adressen"_s}));

    const Result messy = BetaTesterImportParsing::parse(u"a@x.de\nA@x.de\nkaputt\nweg\nb@x.de"_s);
    rows.clear();
    for (const WriteChange& c : BetaTesterImportPreview::confirmation(u"Außen"_s, messy).changes) {
        rows.append(c.field + u'=' + c.after);
    }
    QCOMPARE(rows, (QStringList{u"Gruppe=Außen"_s, u"Tester=2 Adressen"_s,
                                u"Dubletten in der Datei=1 übersprungen"_s,
                                u"Nicht lesbare Zeilen=2 übersprungen"_s}));
}

void TesterImportTest::chunks_data() {
    QTest::addColumn<int>("count");
    QTest::addColumn<QList<int>>("sizes");
    QTest::newRow("none") << 0 << QList<int>{};
    QTest::newRow("one") << 1 << QList<int>{1};
    QTest::newRow("1000") << 1000 << QList<int>{1000};
    QTest::newRow("1001") << 1001 << QList<int>{1000, 1};
    QTest::newRow("2500") << 2500 << QList<int>{1000, 1000, 500};
}

void TesterImportTest::chunks() {
    QFETCH(int, count);
    QFETCH(QList<int>, sizes);
    const QList<ImportedBetaTester> testers = numbered(count);
    const auto parts = BetaTesterImportParsing::chunks(testers);
    QList<int> actual;
    QList<ImportedBetaTester> joined;
    for (const auto& part : parts) {
        actual.append(int(part.size()));
        joined += part;
    }
    QCOMPARE(actual, sizes);
    QCOMPARE(joined, testers); // nothing lost, nothing reordered
}

QTEST_GUILESS_MAIN(TesterImportTest)
#include "tst_testerimport.moc"
