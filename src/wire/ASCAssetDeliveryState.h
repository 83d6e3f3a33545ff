#pragma once

#include <QString>

// Where an uploaded asset stands at Apple. A text Apple adds later is kept in Unknown and given
// back unchanged.
class ASCAssetDeliveryState {
public:
    enum class Case { Unknown, AwaitingUpload, UploadComplete, Complete, Failed };
    ASCAssetDeliveryState() = default;
    explicit ASCAssetDeliveryState(Case c) : m_case(c) {}
    static ASCAssetDeliveryState fromRaw(const QString& raw);
    Case value() const { return m_case; }
    QString raw() const;
    // The label of a screenshot tile; an unknown state shows its raw text.
    QString label() const;
    friend bool operator==(const ASCAssetDeliveryState&, const ASCAssetDeliveryState&) = default;

private:
    Case m_case = Case::Unknown;
    QString m_unknown;
};
