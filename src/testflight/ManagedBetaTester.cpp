#include "testflight/ManagedBetaTester.h"

#include "wire/RawValueTable.h"

#include <QStringList>

#include <algorithm>

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

ASCBetaTesterAttributes ASCBetaTesterAttributes::fromJson(const JsonReader& r) {
    return ASCBetaTesterAttributes{r.optString(u"firstName"_s), r.optString(u"lastName"_s),
                                   r.optString(u"email"_s), r.optString(u"inviteType"_s),
                                   r.optString(u"state"_s)};
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

ManagedBetaTester ManagedBetaTester::fromResource(const QString& id,
                                                  const std::optional<ASCBetaTesterAttributes>& a) {
    const QString placeholder = u"–"_s;
    ManagedBetaTester t;
    t.id = id;
    t.email = placeholder;
    t.state = ASCBetaTesterState::fromRaw(placeholder);
    if (!a) {
        return t;
    }
    t.firstName = a->firstName;
    t.lastName = a->lastName;
    if (a->email) {
        t.email = *a->email;
    }
    if (a->inviteType) {
        t.inviteType = ASCBetaInviteTypes::fromRaw(*a->inviteType);
    }
    if (a->state) {
        t.state = ASCBetaTesterState::fromRaw(*a->state);
    }
    return t;
}

void ManagedBetaTester::sortByDisplayName(QList<ManagedBetaTester>& testers) {
    std::stable_sort(testers.begin(), testers.end(),
                     [](const ManagedBetaTester& a, const ManagedBetaTester& b) {
                         return a.displayName() < b.displayName();
                     });
}
