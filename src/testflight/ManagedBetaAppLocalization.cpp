#include "testflight/ManagedBetaAppLocalization.h"

#include <algorithm>

using namespace Qt::StringLiterals;

ASCBetaAppLocalizationAttributes ASCBetaAppLocalizationAttributes::fromJson(const JsonReader& r) {
    ASCBetaAppLocalizationAttributes a;
    a.locale = r.optString(u"locale"_s);
    a.description = r.optString(u"description"_s);
    a.feedbackEmail = r.optString(u"feedbackEmail"_s);
    a.marketingUrl = r.optString(u"marketingUrl"_s);
    a.privacyPolicyUrl = r.optString(u"privacyPolicyUrl"_s);
    a.tvOsPrivacyPolicy = r.optString(u"tvOsPrivacyPolicy"_s);
    return a;
}

ManagedBetaAppLocalization
ManagedBetaAppLocalization::fromResource(const QString& id,
                                         const std::optional<ASCBetaAppLocalizationAttributes>& a) {
    ManagedBetaAppLocalization l;
    l.localizationID = id;
    if (a) {
        l.locale = a->locale.value_or(QString());
        l.description = a->description.value_or(QString());
        l.feedbackEmail = a->feedbackEmail.value_or(QString());
        l.marketingURL = a->marketingUrl.value_or(QString());
        l.privacyPolicyURL = a->privacyPolicyUrl.value_or(QString());
        l.tvOSPrivacyPolicy = a->tvOsPrivacyPolicy.value_or(QString());
    }
    return l;
}

void ManagedBetaAppLocalization::sortByLocale(QList<ManagedBetaAppLocalization>& list) {
    std::stable_sort(list.begin(), list.end(),
                     [](const auto& a, const auto& b) { return a.locale < b.locale; });
}
