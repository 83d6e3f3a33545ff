#include "cli/Command.h"

#include "metadata/AppStoreLocales.h"

#include "cli/AccountsCommand.h"
#include "cli/AnalyticsCommand.h"
#include "cli/AppsCommand.h"
#include "cli/AuditLogCommand.h"
#include "cli/BulkCommand.h"
#include "cli/MetadataCommand.h"
#include "cli/PerfCommand.h"
#include "cli/ReportArchiveCommand.h"
#include "cli/ReportCommand.h"
#include "cli/SalesCommand.h"
#include "cli/TestFlightCommand.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringDecoder>
#include <QTextStream>

using namespace Qt::StringLiterals;

const QList<Command>& commandTable() {
    static const QList<Command> table{
        {u"accounts list"_s, u"listet die eingerichteten Accounts"_s, AccountsCommand::declareList,
         AccountsCommand::list},
        {u"accounts add"_s, u"richtet einen Account mit seinem API-Schlüssel ein"_s,
         AccountsCommand::declareAdd, AccountsCommand::add},
        {u"accounts remove"_s, u"löscht einen Account und seinen Private Key"_s,
         AccountsCommand::declareRemove, AccountsCommand::remove},
        {u"accounts probe"_s, u"misst mit je einem Testaufruf, was der Schlüssel eines Accounts darf"_s,
         AccountsCommand::declareProbe, AccountsCommand::probe},
        {u"apps"_s, u"listet die Apps des Accounts"_s, AppsCommand::declare, AppsCommand::run},
        {u"audit-log"_s, u"zeigt das Änderungsprotokoll der Schreibzugriffe"_s, AuditLogCommand::declare,
         AuditLogCommand::run},
        {u"metadata show"_s, u"zeigt die Store-Texte einer App"_s, MetadataCommand::declareShow,
         MetadataCommand::show},
        {u"metadata check"_s, u"prüft die Store-Texte einer App wie vor dem Einreichen"_s,
         MetadataCommand::declareCheck, MetadataCommand::check},
        {u"metadata set"_s, u"ändert Store-Texte einer Sprache; ohne --yes nur als Vorschau"_s,
         MetadataCommand::declareSet, MetadataCommand::set},
        {u"testflight groups"_s, u"listet die TestFlight-Gruppen einer App"_s,
         TestFlightCommand::declareGroups, TestFlightCommand::groups},
        {u"testflight testers"_s, u"listet die Tester einer TestFlight-Gruppe"_s,
         TestFlightCommand::declareTesters, TestFlightCommand::testers},
        {u"testflight import"_s,
         u"importiert Tester aus einer CSV-Datei in eine Gruppe; ohne --yes nur als Vorschau"_s,
         TestFlightCommand::declareImport, TestFlightCommand::import},
        {u"testflight notes"_s,
         u"setzt die Testhinweise eines Builds in einer Sprache; ohne --yes nur als Vorschau"_s,
         TestFlightCommand::declareNotes, TestFlightCommand::notes},
        {u"bulk whats-new"_s, u"setzt „Neu in dieser Version“ für viele Apps; ohne --yes nur als Vorschau"_s,
         BulkCommand::declareWhatsNew, BulkCommand::whatsNew},
        {u"report archive"_s, u"zeigt die abgelegten Berichte oder exportiert einen als CSV oder JSON"_s,
         ReportArchiveCommand::declare, ReportArchiveCommand::run},
        {u"report inspect"_s, u"zeigt Spalten, Zeilen und Zusammenfassung einer Berichtsdatei, ohne Netz"_s,
         ReportCommand::declareInspect, ReportCommand::inspect},
        {u"sales get"_s, u"lädt einen Verkaufsbericht von Apple und fasst ihn zusammen"_s,
         SalesCommand::declareSalesGet, SalesCommand::salesGet},
        {u"finance get"_s, u"lädt einen Finanzbericht von Apple und fasst ihn zusammen"_s,
         SalesCommand::declareFinanceGet, SalesCommand::financeGet},
        {u"analytics segments"_s, u"listet die Analytics-Reports einer App bis zu ihren Segmenten"_s,
         AnalyticsCommand::declareSegments, AnalyticsCommand::segments},
        {u"perf metrics"_s, u"zeigt Apples Leistungskennzahlen einer App"_s, PerfCommand::declareMetrics,
         PerfCommand::metrics},
    };
    return table;
}

CommandSyntax Command::syntax() const {
    CommandSyntax syntax(name);
    declare(syntax);
    return syntax;
}

int Invocation::usage(const QString& message) const {
    err << message << u"\n\n"_s << usageText;
    return 2;
}

int Invocation::fail(const QString& message) const {
    err << message << u'\n';
    return 1;
}

void Invocation::printJson(const QJsonValue& value) const {
    const QJsonDocument doc =
        value.isArray() ? QJsonDocument(value.toArray()) : QJsonDocument(value.toObject());
    out << QString::fromUtf8(doc.toJson(QJsonDocument::Indented)).trimmed() << u'\n';
}

QJsonValue optionalJson(const std::optional<QString>& value) {
    return value ? QJsonValue(*value) : QJsonValue(QJsonValue::Null);
}

std::optional<QString> readUtf8File(const QString& path, QString& error) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = u"Die Datei „%1“ lässt sich nicht lesen: %2"_s.arg(path, file.errorString());
        return std::nullopt;
    }
    auto decoder = QStringDecoder(QStringDecoder::Utf8);
    QString text = decoder(file.readAll());
    if (decoder.hasError()) {
        error = u"Die Datei „%1“ ist kein UTF-8-Text."_s.arg(path);
        return std::nullopt;
    }
    return text;
}

std::variant<QString, int> textOrFile(const Invocation& call, const QString& option) {
    const QString value = call.args.value(option);
    if (!value.startsWith(u'@')) {
        return value;
    }
    QString error;
    if (auto text = readUtf8File(value.mid(1), error)) {
        return *text;
    }
    call.err << error << u'\n';
    return 2;
}

std::variant<QString, int> localeValue(const Invocation& call, const QString& option, bool mayBeEmpty) {
    const QString locale = call.args.value(option).trimmed();
    if ((mayBeEmpty && locale.isEmpty()) || AppStoreLocales::looksValid(locale)) {
        return locale;
    }
    call.err << u"„"_s << locale
             << u"“ sieht nicht wie ein Sprachcode aus (Beispiele: de-DE, fr-FR, ja).\n"_s;
    return 2;
}
