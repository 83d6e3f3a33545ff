#pragma once

#include <QString>

#include <optional>

// How a tester came to the app.
enum class ASCBetaInviteType { Email, PublicLink };

namespace ASCBetaInviteTypes {
QString rawValue(ASCBetaInviteType type);
std::optional<ASCBetaInviteType> fromRaw(const QString& raw);
} // namespace ASCBetaInviteTypes

// Where a tester stands with the app. A text Apple adds later is kept in Unknown.
class ASCBetaTesterState {
public:
    enum class Case { Unknown, NotInvited, Invited, Accepted, Installed, Revoked };
    ASCBetaTesterState() = default;
    explicit ASCBetaTesterState(Case c) : m_case(c) {}
    static ASCBetaTesterState fromRaw(const QString& raw);
    Case value() const { return m_case; }
    QString raw() const;
    friend bool operator==(const ASCBetaTesterState&, const ASCBetaTesterState&) = default;

private:
    Case m_case = Case::Unknown;
    QString m_unknown;
};

struct ManagedBetaTester {
    QString id;
    std::optional<QString> firstName;
    std::optional<QString> lastName;
    QString email;
    std::optional<ASCBetaInviteType> inviteType;
    ASCBetaTesterState state;

    // The names that are present, joined by a blank; the address when there are none.
    QString displayName() const;
    friend bool operator==(const ManagedBetaTester&, const ManagedBetaTester&) = default;
};
