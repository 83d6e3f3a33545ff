#include "testflight/ManagedBetaFeedback.h"

#include <algorithm>

using namespace Qt::StringLiterals;

ASCBetaFeedbackAttributes ASCBetaFeedbackAttributes::fromJson(const JsonReader& r) {
    ASCBetaFeedbackAttributes a;
    a.createdDate = r.optDate(u"createdDate"_s);
    a.comment = r.optString(u"comment"_s);
    // Apple's description names the address `email`; `emailAddress` is read too, should an
    // answer use that name.
    a.email = r.optString(u"email"_s);
    if (!a.email) {
        a.email = r.optString(u"emailAddress"_s);
    }
    a.deviceModel = r.optString(u"deviceModel"_s);
    a.osVersion = r.optString(u"osVersion"_s);
    a.locale = r.optString(u"locale"_s);
    a.appVersion = r.optString(u"appVersion"_s);
    a.batteryPercentage = r.optInt(u"batteryPercentage"_s);
    if (const auto images = r.optArray(u"screenshots"_s)) {
        for (const QJsonValue& value : *images) {
            const JsonReader image = JsonReader::of(value, u"screenshots[]"_s);
            a.screenshots.append(ASCFeedbackImage{image.optString(u"url"_s), image.optString(u"fileName"_s),
                                                  image.optDate(u"expirationDate"_s)});
        }
    }
    return a;
}

ManagedBetaFeedback ManagedBetaFeedback::fromResource(Kind kind, const QString& id,
                                                      const std::optional<ASCBetaFeedbackAttributes>& a) {
    ManagedBetaFeedback f;
    f.id = id;
    f.kind = kind;
    if (!a) {
        return f;
    }
    f.createdDate = a->createdDate;
    f.comment = a->comment;
    f.email = a->email;
    f.deviceModel = a->deviceModel;
    f.osVersion = a->osVersion;
    f.locale = a->locale;
    f.appVersion = a->appVersion;
    if (a->batteryPercentage) {
        f.batteryPercentage = int(*a->batteryPercentage);
    }
    f.screenshots = a->screenshots;
    return f;
}

void ManagedBetaFeedback::sortNewestFirst(QList<ManagedBetaFeedback>& items) {
    std::stable_sort(items.begin(), items.end(),
                     [](const ManagedBetaFeedback& a, const ManagedBetaFeedback& b) {
                         if (!b.createdDate) {
                             return a.createdDate.has_value();
                         }
                         return a.createdDate && *a.createdDate > *b.createdDate;
                     });
}

ASCCrashLogAttributes ASCCrashLogAttributes::fromJson(const JsonReader& r) {
    return ASCCrashLogAttributes{r.optString(u"logText"_s), r.optString(u"url"_s),
                                 r.optDate(u"expirationDate"_s)};
}

ManagedBetaCrashLog ManagedBetaCrashLog::fromAttributes(const std::optional<ASCCrashLogAttributes>& a) {
    ManagedBetaCrashLog log;
    if (!a) {
        return log;
    }
    log.logText = a->logText;
    if (a->url) {
        const QUrl url(*a->url, QUrl::StrictMode);
        if (url.isValid() && !url.isRelative()) {
            log.url = url;
        }
    }
    log.expirationDate = a->expirationDate;
    return log;
}
