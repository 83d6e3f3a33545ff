#pragma once

#include <QString>

// Enumerations of the API that more than one area uses. Each keeps a text it does not know in
// its Unknown case and gives it back unchanged, so that a new value from Apple never breaks
// decoding.

class ASCPlatform {
public:
    enum class Case { Unknown, Ios, MacOS, TvOS, VisionOS };
    ASCPlatform() = default;
    explicit ASCPlatform(Case c) : m_case(c) {}
    static ASCPlatform fromRaw(const QString& raw);
    Case value() const { return m_case; }
    QString raw() const;
    friend bool operator==(const ASCPlatform&, const ASCPlatform&) = default;

private:
    Case m_case = Case::Unknown;
    QString m_unknown;
};

class ASCProcessingState {
public:
    enum class Case { Unknown, Processing, Failed, Invalid, Valid };
    ASCProcessingState() = default;
    explicit ASCProcessingState(Case c) : m_case(c) {}
    static ASCProcessingState fromRaw(const QString& raw);
    Case value() const { return m_case; }
    QString raw() const;
    friend bool operator==(const ASCProcessingState&, const ASCProcessingState&) = default;

private:
    Case m_case = Case::Unknown;
    QString m_unknown;
};

class ASCAppStoreVersionState {
public:
    enum class Case {
        Unknown,
        Accepted,
        DeveloperRemovedFromSale,
        DeveloperRejected,
        InReview,
        InvalidBinary,
        MetadataRejected,
        PendingAppleRelease,
        PendingContract,
        PendingDeveloperRelease,
        PrepareForSubmission,
        PreorderReadyForSale,
        ProcessingForAppStore,
        ReadyForReview,
        ReadyForSale,
        Rejected,
        RemovedFromSale,
        WaitingForExportCompliance,
        WaitingForReview,
        ReplacedWithNewVersion,
        NotApplicable,
    };
    ASCAppStoreVersionState() = default;
    explicit ASCAppStoreVersionState(Case c) : m_case(c) {}
    static ASCAppStoreVersionState fromRaw(const QString& raw);
    Case value() const { return m_case; }
    QString raw() const;
    QString displayName() const;
    static QString displayName(const QString& raw) { return fromRaw(raw).displayName(); }
    friend bool operator==(const ASCAppStoreVersionState&, const ASCAppStoreVersionState&) = default;

private:
    Case m_case = Case::Unknown;
    QString m_unknown;
};
