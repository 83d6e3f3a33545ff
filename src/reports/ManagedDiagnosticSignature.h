#pragma once

#include "wire/JsonReader.h"

#include <QList>
#include <QString>

#include <optional>

// The kinds of diagnostics Apple groups into signatures, with their filter values.
enum class ASCDiagnosticType { Hangs, DiskWrites, Launches };

namespace DiagnosticTypes {
QList<ASCDiagnosticType> all();
// "HANGS", "DISK_WRITES", "LAUNCHES".
QString rawValue(ASCDiagnosticType type);
// Case does not matter; unknown text gives nothing.
std::optional<ASCDiagnosticType> fromRaw(const QString& raw);
// The German name; an unknown raw text is shown as it came.
QString label(ASCDiagnosticType type);
QString label(const QString& raw);
} // namespace DiagnosticTypes

// A signature's `insight`: whether it became more or less frequent than in earlier versions.
struct ASCDiagnosticInsight {
    struct Reference {
        std::optional<QString> version;
        std::optional<double> value;
        friend bool operator==(const Reference&, const Reference&) = default;
    };
    std::optional<QString> insightType;
    std::optional<QString> direction;
    QList<Reference> referenceVersions;
    friend bool operator==(const ASCDiagnosticInsight&, const ASCDiagnosticInsight&) = default;

    static ASCDiagnosticInsight fromJson(const JsonReader& r);
    // A short German sentence, or nothing when the insight says nothing.
    std::optional<QString> summary() const;
};

struct ASCDiagnosticSignatureAttributes {
    std::optional<QString> diagnosticType;
    std::optional<QString> signature;
    std::optional<double> weight;
    std::optional<ASCDiagnosticInsight> insight;
    static ASCDiagnosticSignatureAttributes fromJson(const JsonReader& r);
};

// One group of crashes, hangs or disk writes that Apple saw in a build, by its call stack.
struct ManagedDiagnosticSignature {
    QString id;
    std::optional<QString> diagnosticType;
    QString signature;
    std::optional<double> weight;
    std::optional<QString> insightSummary;
    friend bool operator==(const ManagedDiagnosticSignature&, const ManagedDiagnosticSignature&) = default;

    static ManagedDiagnosticSignature fromResource(const QString& id,
                                                   const std::optional<ASCDiagnosticSignatureAttributes>& a);
};
