#include "testflight/ManagedBetaTester.h"

#include "wire/RawValueTable.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace {
using I = ASCBetaInviteType;
constexpr std::array<RawValueRow<I>, 2> inviteTable{{
    {I::Email, u"EMAIL"},
    {I::PublicLink, u"PUBLIC_LINK"},
}};

using S = ASCBetaTesterState::Case;
constexpr std::array<RawValueRow<S>, 5> stateTable{{
    {S::NotInvited, u"NOT_INVITED"},
    {S::Invited, u"INVITED"},
    {S::Accepted, u"ACCEPTED"},
    {S::Installed, u"INSTALLED"},
    {S::Revoked, u"REVOKED"},
}};
} // namespace

QString ASCBetaInviteTypes::rawValue(ASCBetaInviteType type) {
    return rowForCase(inviteTable, type)->raw.toString();
}

std::optional<ASCBetaInviteType> ASCBetaInviteTypes::fromRaw(const QString& raw) {
    return caseForRaw(inviteTable, raw);
}

ASCBetaTesterState ASCBetaTesterState::fromRaw(const QString& raw) {
    ASCBetaTesterState s;
    assignRaw(stateTable, raw, s.m_case, s.m_unknown);
    return s;
}

QString ASCBetaTesterState::raw() const {
    return rawText(stateTable, m_case, m_unknown);
}

QString ManagedBetaTester::displayName() const {
    QStringList parts;
    for (const auto& part : {firstName, lastName}) {
        if (part && !part->isEmpty()) {
            parts.append(*part);
        }
    }
    const QString joined = parts.join(u' ');
    return joined.isEmpty() ? email : joined;
}
