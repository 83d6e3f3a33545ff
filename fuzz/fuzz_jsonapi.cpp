// Every decoder of the API's answers. The first byte picks the resource type and the form of the
// answer (one resource, one resource or null, a page with its links); the rest is the body as it
// came over the wire. Whatever decodes is turned into the program's own values, and where those
// go into the disk cache, their stored form must read back to itself.

#include "FuzzSupport.h"

#include "api/Endpoint.h"
#include "metadata/ManagedLocalization.h"
#include "metadata/MetadataEndpoints.h"
#include "release/ManagedAppReviewDetail.h"
#include "release/ManagedPhasedRelease.h"
#include "release/ManagedReviewAttachment.h"
#include "release/ManagedReviewSubmission.h"
#include "release/VelmoraVersion.h"
#include "testflight/ManagedBuild.h"
#include "workspace/ManagedApp.h"

#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace {

using namespace EndpointReturns;

// The resources of an answer in each of the forms the endpoints declare; nothing when the body
// does not decode. Only DecodingError may leave a decoder: the client maps nothing else.
template <class Attributes>
std::optional<QList<JSONAPIResource<Attributes>>> decode(const QByteArray& body, unsigned form) {
    try {
        switch (form % 3) {
        case 0:
            return QList{Decoder<Returns::One<Attributes>>::decode(body)};
        case 1:
            if (auto one = Decoder<Returns::MaybeOne<Attributes>>::decode(body)) {
                return QList{*one};
            }
            return QList<JSONAPIResource<Attributes>>{};
        default: {
            auto page = Decoder<Returns::Page<Attributes>>::decode(body);
            if (page.links && page.links->next) {
                // What the client follows for the next page.
                (void)APIRequest::get(*page.links->next).coalescingKey();
            }
            return page.data;
        }
        }
    } catch (const DecodingError&) {
        return std::nullopt;
    }
}

// The disk cache writes `toJson` as a JSON file and reads it back with `fromJson`: what it wrote
// must read again, and unchanged.
template <class T> void checkStoredForm(const QList<T>& values) {
    QJsonArray stored;
    for (const auto& value : values) {
        stored.append(value.toJson());
    }
    const QJsonDocument file = QJsonDocument::fromJson(QJsonDocument(stored).toJson(QJsonDocument::Compact));
    Fuzz::check(file.isArray(), "the cached list is no JSON array");
    QJsonArray again;
    try {
        for (const auto& item : file.array()) {
            again.append(T::fromJson(JsonReader::of(item)).toJson());
        }
    } catch (const DecodingError&) {
        Fuzz::fail("a cached list does not read back");
    }
    Fuzz::check(again == stored, "a cached list reads back changed");
}

template <class Attributes, class Value, class Convert>
void toValues(const QByteArray& body, unsigned form, Convert convert, QList<Value>& values) {
    if (const auto resources = decode<Attributes>(body, form)) {
        for (const auto& resource : *resources) {
            values.append(convert(resource));
        }
    }
}

void apps(const QByteArray& body, unsigned form) {
    QList<ManagedApp> values;
    toValues<ASCAppAttributes, ManagedApp>(
        body, form, [](const auto& r) { return ManagedApp::fromResource(r.id, r.attributes); }, values);
    checkStoredForm(values);
}

void versions(const QByteArray& body, unsigned form) {
    QList<VelmoraVersion> values;
    toValues<ASCAppStoreVersionAttributes, VelmoraVersion>(
        body, form, [](const auto& r) { return VelmoraVersion::fromResource(r.id, r.attributes); }, values);
    VelmoraVersion::sortNewestFirst(values);
    for (const auto& v : std::as_const(values)) {
        (void)v.state.displayName();
        if (v.platform) {
            (void)v.platform->displayName();
        }
    }
    checkStoredForm(values);
}

void builds(const QByteArray& body, unsigned form) {
    QList<ManagedBuild> values;
    toValues<ASCBuildAttributes, ManagedBuild>(
        body, form, [](const auto& r) { return ManagedBuild::fromResource(r.id, r.attributes); }, values);
    ManagedBuild::sortNewestFirst(values);
    for (const auto& b : std::as_const(values)) {
        (void)b.processingState.displayName();
    }
    checkStoredForm(values);
}

void localizations(const QByteArray& body, unsigned form) {
    // One body read as either side, then matched by locale as the store-text screen does.
    const auto appInfo = decode<ASCAppInfoLocalizationAttributes>(body, form);
    const auto version = decode<ASCAppStoreVersionLocalizationAttributes>(body, form);
    const auto merged = mergeLocalizations(appInfo.value_or(QList<AppInfoLocalizationResource>{}),
                                           version.value_or(QList<VersionLocalizationResource>{}));
    for (qsizetype i = 1; i < merged.size(); ++i) {
        (void)merged[i].differingFieldNames(merged[i - 1]);
    }
}

void phasedReleases(const QByteArray& body, unsigned form) {
    QList<ManagedPhasedRelease> values;
    toValues<ASCPhasedReleaseAttributes, ManagedPhasedRelease>(
        body, form, [](const auto& r) { return ManagedPhasedRelease::fromResource(r.id, r.attributes); },
        values);
    for (const auto& p : std::as_const(values)) {
        if (const auto percent = p.currentPercentage()) {
            Fuzz::check(*percent >= 1 && *percent <= 100, "a rollout share outside 1 to 100 %");
        }
        (void)p.canComplete();
        (void)p.state.displayName();
    }
}

void reviewDetails(const QByteArray& body, unsigned form) {
    QList<ManagedAppReviewDetail> values;
    toValues<ASCAppStoreReviewDetailAttributes, ManagedAppReviewDetail>(
        body, form, [](const auto& r) { return ManagedAppReviewDetail::fromResource(r.id, r.attributes); },
        values);
    for (const auto& d : std::as_const(values)) {
        (void)d.missingRequiredFields();
    }
}

void attachments(const QByteArray& body, unsigned form) {
    QList<ManagedReviewAttachment> values;
    toValues<ASCAppStoreReviewAttachmentAttributes, ManagedReviewAttachment>(
        body, form, [](const auto& r) { return ManagedReviewAttachment::fromResource(r.id, r.attributes); },
        values);
    for (const auto& a : std::as_const(values)) {
        (void)a.deliveryState.displayName();
    }
}

void submissions(const QByteArray& body, unsigned form) {
    QList<ManagedReviewSubmission> values;
    toValues<ASCReviewSubmissionAttributes, ManagedReviewSubmission>(
        body, form, [](const auto& r) { return ManagedReviewSubmission::fromResource(r.id, r.attributes); },
        values);
    for (const auto& s : std::as_const(values)) {
        (void)s.state.displayName();
    }
}

void submissionItems(const QByteArray& body, unsigned form) {
    VelmoraVersion known;
    known.id = u"1"_s;
    known.versionString = u"1.0"_s;
    const QHash<QString, VelmoraVersion> versionsByID{{known.id, known}};
    QList<ManagedReviewSubmissionItem> values;
    toValues<ASCReviewSubmissionItemAttributes, ManagedReviewSubmissionItem>(
        body, form,
        [&](const auto& r) {
            return ManagedReviewSubmissionItem::fromResource(r.id, r.attributes, r.relationships,
                                                             versionsByID);
        },
        values);
}

void appInfos(const QByteArray& body, unsigned form) {
    (void)decode<NoAttributes>(body, form);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Fuzz::startApplication();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) {
        return 0;
    }
    using Decode = void (*)(const QByteArray&, unsigned);
    static constexpr Decode decoders[] = {
        apps,          versions,    builds,      localizations,   phasedReleases,
        reviewDetails, attachments, submissions, submissionItems, appInfos};
    constexpr unsigned count = sizeof decoders / sizeof decoders[0];
    const unsigned selector = data[0];
    decoders[selector % count](Fuzz::bytes(data + 1, size - 1), selector / count);
    return 0;
}
