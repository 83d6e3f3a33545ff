#include "testflight/ManagedBetaGroup.h"

#include <algorithm>

using namespace Qt::StringLiterals;

ASCBetaGroupAttributes ASCBetaGroupAttributes::fromJson(const JsonReader& r) {
    ASCBetaGroupAttributes a;
    a.name = r.optString(u"name"_s);
    a.isInternalGroup = r.optBool(u"isInternalGroup"_s);
    a.createdDate = r.optDate(u"createdDate"_s);
    a.publicLinkEnabled = r.optBool(u"publicLinkEnabled"_s);
    a.publicLink = r.optString(u"publicLink"_s);
    a.feedbackEnabled = r.optBool(u"feedbackEnabled"_s);
    a.publicLinkLimit = r.optInt(u"publicLinkLimit"_s);
    a.publicLinkLimitEnabled = r.optBool(u"publicLinkLimitEnabled"_s);
    a.hasAccessToAllBuilds = r.optBool(u"hasAccessToAllBuilds"_s);
    a.iosBuildsAvailableForAppleSiliconMac = r.optBool(u"iosBuildsAvailableForAppleSiliconMac"_s);
    return a;
}

ManagedBetaGroup ManagedBetaGroup::fromResource(const QString& id,
                                                const std::optional<ASCBetaGroupAttributes>& a) {
    ManagedBetaGroup g;
    g.id = id;
    g.name = u"Unbenannte Gruppe"_s;
    if (!a) {
        return g;
    }
    if (a->name) {
        g.name = *a->name;
    }
    g.isInternal = a->isInternalGroup.value_or(false);
    g.createdDate = a->createdDate;
    g.publicLinkEnabled = a->publicLinkEnabled.value_or(false);
    g.publicLink = a->publicLink;
    g.feedbackEnabled = a->feedbackEnabled.value_or(false);
    if (a->publicLinkLimit) {
        g.publicLinkLimit = int(*a->publicLinkLimit);
    }
    g.publicLinkLimitEnabled = a->publicLinkLimitEnabled.value_or(false);
    g.hasAccessToAllBuilds = a->hasAccessToAllBuilds.value_or(false);
    g.iosBuildsAvailableForAppleSiliconMac = a->iosBuildsAvailableForAppleSiliconMac.value_or(false);
    return g;
}

void ManagedBetaGroup::sortByName(QList<ManagedBetaGroup>& groups) {
    std::stable_sort(groups.begin(), groups.end(),
                     [](const ManagedBetaGroup& a, const ManagedBetaGroup& b) { return a.name < b.name; });
}
