#pragma once

#include "wire/JsonReader.h"
#include "wire/OpenEnum.h"

#include <QList>
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

struct ASCBetaTesterAttributes {
    std::optional<QString> firstName;
    std::optional<QString> lastName;
    std::optional<QString> email;
    std::optional<QString> inviteType;
    std::optional<QString> state;
    static ASCBetaTesterAttributes fromJson(const JsonReader& r);
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

    // A missing address reads "–", a missing state is unknown with the text "–".
    static ManagedBetaTester fromResource(const QString& id, const std::optional<ASCBetaTesterAttributes>& a);
    // By display name in plain text order; stable.
    static void sortByDisplayName(QList<ManagedBetaTester>& testers);
};

// A person to be added to a group, as far as Apple needs to know them.
struct NewBetaTester {
    QString email;
    std::optional<QString> firstName;
    std::optional<QString> lastName;
    friend bool operator==(const NewBetaTester&, const NewBetaTester&) = default;
};
