#include "release/ManagedReviewSubmission.h"

using namespace Qt::StringLiterals;

ASCReviewSubmissionAttributes ASCReviewSubmissionAttributes::fromJson(const JsonReader& r) {
    return ASCReviewSubmissionAttributes{r.optString(u"platform"_s), r.optString(u"state"_s),
                                         r.optDate(u"submittedDate"_s)};
}

ASCReviewSubmissionItemAttributes ASCReviewSubmissionItemAttributes::fromJson(const JsonReader& r) {
    return ASCReviewSubmissionItemAttributes{r.optString(u"state"_s), r.optBool(u"resolved"_s),
                                             r.optBool(u"removed"_s)};
}

ManagedReviewSubmissionItem ManagedReviewSubmissionItem::fromResource(
    const QString& id, const std::optional<ASCReviewSubmissionItemAttributes>& a,
    const QJsonObject& relationships, const QHash<QString, VelmoraVersion>& versionsByID) {
    ManagedReviewSubmissionItem item;
    item.id = id;
    if (a) {
        if (a->state) {
            item.state = ASCReviewSubmissionItemState::fromRaw(*a->state);
        }
        item.isResolved = a->resolved.value_or(false);
        item.isRemoved = a->removed.value_or(false);
    }
    if (item.state.value() == ASCReviewSubmissionItemState::Case::Removed) {
        item.isRemoved = true;
    }
    const QJsonValue linkage = relationships.value(u"appStoreVersion"_s).toObject().value(u"data"_s);
    if (linkage.isObject()) {
        const QString versionID = linkage.toObject().value(u"id"_s).toString();
        if (!versionID.isEmpty()) {
            item.appStoreVersionID = versionID;
            if (auto it = versionsByID.constFind(versionID); it != versionsByID.cend()) {
                item.subjectDescription = u"Version "_s + it->versionString;
            }
        }
    }
    return item;
}

ManagedReviewSubmission
ManagedReviewSubmission::fromResource(const QString& id,
                                      const std::optional<ASCReviewSubmissionAttributes>& a) {
    ManagedReviewSubmission s;
    s.id = id;
    if (!a) {
        return s;
    }
    if (a->platform) {
        s.platform = ASCPlatform::fromRaw(*a->platform);
    }
    if (a->state) {
        s.state = ASCReviewSubmissionState::fromRaw(*a->state);
    }
    s.submittedDate = a->submittedDate;
    return s;
}
