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
} // namespace

QString ASCBetaInviteTypes::rawValue(ASCBetaInviteType type) {
    return rowForCase(inviteTable, type)->raw.toString();
}

std::optional<ASCBetaInviteType> ASCBetaInviteTypes::fromRaw(const QString& raw) {
    return caseForRaw(inviteTable, raw);
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
