#pragma once

#include "wire/OpenEnum.h"

#include <QString>

#include <optional>

// How a tester came to the app.
enum class ASCBetaInviteType { Email, PublicLink };

namespace ASCBetaInviteTypes {
QString rawValue(ASCBetaInviteType type);
std::optional<ASCBetaInviteType> fromRaw(const QString& raw);
} // namespace ASCBetaInviteTypes

// Where a tester stands with the app.
struct BetaTesterStateTraits {
    enum class Case { Unknown, NotInvited, Invited, Accepted, Installed, Revoked };
    static constexpr std::array<RawValueRow<Case>, 5> rows{{
        {Case::NotInvited, u"NOT_INVITED"},
        {Case::Invited, u"INVITED"},
        {Case::Accepted, u"ACCEPTED"},
        {Case::Installed, u"INSTALLED"},
        {Case::Revoked, u"REVOKED"},
    }};
};
using ASCBetaTesterState = OpenEnum<BetaTesterStateTraits>;

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
