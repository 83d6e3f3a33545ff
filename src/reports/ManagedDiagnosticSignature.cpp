#include "reports/ManagedDiagnosticSignature.h"

#include "wire/RawValueTable.h"

#include <QLocale>

using namespace Qt::StringLiterals;

namespace {

constexpr std::array<RawValueRow<ASCDiagnosticType>, 3> typeRows{{
    {ASCDiagnosticType::Hangs, u"HANGS", u"Hänger"},
    {ASCDiagnosticType::DiskWrites, u"DISK_WRITES", u"Schreibzugriffe"},
    {ASCDiagnosticType::Launches, u"LAUNCHES", u"Starts"},
}};

QString number(double value) {
    return QLocale(QLocale::German).toString(value, 'g', 6);
}

// "A", "A und B", "A, B und C".
QString joined(const QStringList& parts) {
    if (parts.size() < 2) {
        return parts.join(QString());
    }
    return parts.mid(0, parts.size() - 1).join(u", "_s) + u" und "_s + parts.last();
}

} // namespace

namespace DiagnosticTypes {

QList<ASCDiagnosticType> all() {
    return {ASCDiagnosticType::Hangs, ASCDiagnosticType::DiskWrites, ASCDiagnosticType::Launches};
}

QString rawValue(ASCDiagnosticType type) {
    return rowForCase(typeRows, type)->raw.toString();
}

std::optional<ASCDiagnosticType> fromRaw(const QString& raw) {
    return caseForRaw(typeRows, QStringView(raw.trimmed().toUpper()));
}

QString label(ASCDiagnosticType type) {
    return rowForCase(typeRows, type)->label.toString();
}

QString label(const QString& raw) {
    const auto type = fromRaw(raw);
    return type ? label(*type) : raw;
}

} // namespace DiagnosticTypes

ASCDiagnosticInsight ASCDiagnosticInsight::fromJson(const JsonReader& r) {
    ASCDiagnosticInsight insight;
    insight.insightType = r.optString(u"insightType"_s);
    insight.direction = r.optString(u"direction"_s);
    if (const auto references = r.optArray(u"referenceVersions"_s)) {
        for (const QJsonValue& entry : *references) {
            const JsonReader reference = JsonReader::of(entry, u"referenceVersions"_s);
            insight.referenceVersions.append(
                {nilIfBlank(reference.optString(u"version"_s)), reference.optDouble(u"value"_s)});
        }
    }
    return insight;
}

std::optional<QString> ASCDiagnosticInsight::summary() const {
    QStringList references;
    for (const Reference& reference : referenceVersions) {
        if (!reference.version) {
            continue;
        }
        references.append(reference.value ? u"%1 (%2)"_s.arg(*reference.version, number(*reference.value))
                                          : *reference.version);
    }
    if (!direction && references.isEmpty()) {
        return std::nullopt;
    }
    QString lead = u"Keine klare Veränderung gegenüber"_s;
    if (direction == u"UP"_s) {
        lead = u"Tritt häufiger auf als in"_s;
    } else if (direction == u"DOWN"_s) {
        lead = u"Tritt seltener auf als in"_s;
    }
    QString versions = u"früheren Versionen"_s;
    if (references.size() == 1) {
        versions = u"Version "_s + references.first();
    } else if (references.size() > 1) {
        versions = u"den Versionen "_s + joined(references);
    }
    return lead + u' ' + versions + u'.';
}

ASCDiagnosticSignatureAttributes ASCDiagnosticSignatureAttributes::fromJson(const JsonReader& r) {
    ASCDiagnosticSignatureAttributes a;
    a.diagnosticType = r.optString(u"diagnosticType"_s);
    a.signature = r.optString(u"signature"_s);
    a.weight = r.optDouble(u"weight"_s);
    if (const auto insight = r.optObject(u"insight"_s)) {
        a.insight = ASCDiagnosticInsight::fromJson(*insight);
    }
    return a;
}

ManagedDiagnosticSignature
ManagedDiagnosticSignature::fromResource(const QString& id,
                                         const std::optional<ASCDiagnosticSignatureAttributes>& a) {
    ManagedDiagnosticSignature s;
    s.id = id;
    if (!a) {
        return s;
    }
    s.diagnosticType = a->diagnosticType;
    s.signature = a->signature.value_or(QString());
    s.weight = a->weight;
    if (a->insight) {
        s.insightSummary = a->insight->summary();
    }
    return s;
}
