#pragma once

#include "cloud/ManagedCiBuildRun.h"
#include "cloud/ManagedCiProduct.h"
#include "cloud/ManagedCiWorkflow.h"
#include "media/ManagedScreenshot.h"
#include "media/ManagedScreenshotSet.h"
#include "metadata/ManagedLocalization.h"
#include "monetization/ManagedInAppPurchase.h"
#include "monetization/ManagedSubscription.h"
#include "presence/ManagedAppEvent.h"
#include "release/VelmoraVersion.h"
#include "reports/AnalyticsTable.h"
#include "reports/ManagedAnalyticsReport.h"
#include "reports/ManagedAnalyticsReportRequest.h"
#include "reports/SalesReportKinds.h"
#include "reviews/ManagedReview.h"
#include "reviews/ManagedReviewResponse.h"
#include "testflight/ManagedBetaAppLocalization.h"
#include "testflight/ManagedBetaBuildLocalization.h"
#include "testflight/ManagedBetaFeedback.h"
#include "testflight/ManagedBetaGroup.h"
#include "testflight/ManagedBetaReviewSubmission.h"
#include "testflight/ManagedBetaTester.h"
#include "testflight/ManagedBetaUsage.h"
#include "testflight/ManagedBuild.h"
#include "testflight/ManagedBuildBetaDetail.h"
#include "workspace/ManagedApp.h"

#include <QDateTime>
#include <QList>
#include <QSet>

#include <optional>

// Sample data for demo mode: pure functions, fresh values of the same types the services return,
// so that a screen cannot tell them apart. Nothing here touches the network or a store.
//
// Every id is the parent's id plus a fixed suffix: repeated calls give equal values, a child can
// be asked for by the id of its parent, and an id from elsewhere still yields a full list.
// Times are offsets from the `now` the caller passes (the injected clock), so the sample never
// ages and tests can pin it.
namespace MockData {
QList<ManagedApp> apps();

// Suffixes "-v3", "-v2", "-v1", newest first.
QList<VelmoraVersion> versions(const QString& appID, const QDateTime& now);
// Builds "142", "141", "140" with suffixes "-b3", "-b2", "-b1"; the last one has expired.
QList<ManagedBuild> builds(const QString& appID, const QDateTime& now);
// Suffixes "-r1", "-r2", "-r3"; only the first is answered.
QList<ManagedReview> reviews(const QString& appID, const QDateTime& now);
// The reply to a review: its id is the review's id plus "-resp".
ManagedReviewResponse reviewResponse(const QString& reviewID, const QDateTime& now);
// German and English, sorted by locale; ids end in "-info-de"/"-ver-de" and "-info-en"/"-ver-en".
QList<ManagedLocalization> localizations(const QString& appID);
// "-set1" for 6.7" iPhones, "-set2" for 12.9" iPads.
QList<ManagedScreenshotSet> screenshotSets(const QString& versionLocalizationID);
// Suffixes "-shot1" ..., file names "screenshot-1.png" ...
QList<ManagedScreenshot> screenshots(const QString& setID);
// "-g1" internal, "-g2" external with a public link.
QList<ManagedBetaGroup> betaGroups(const QString& appID, const QDateTime& now);
// Suffixes "-t1", "-t2", "-t3"; the third has only been invited.
QList<ManagedBetaTester> betaTesters(const QString& groupID);
// "-fb1" a crash, "-fb2" a screenshot, newest first.
QList<ManagedBetaFeedback> betaFeedback(const QString& appID, const QDateTime& now);
// The builds of `builds` in a group: all three in "-g1", the two newest in "-g2".
QSet<QString> betaGroupBuildIDs(const QString& groupID);
// "-b3" in internal test and waiting for the beta review, "-b2" in test on both sides, "-b1" expired.
ManagedBuildBetaDetail buildBetaDetail(const QString& buildID);
// German and English test notes, sorted by locale; ids end in "-bl-de" and "-bl-en".
QList<ManagedBetaBuildLocalization> betaBuildLocalizations(const QString& buildID);
// The app's German and English beta texts, sorted by locale; ids end in "-bal-de" and "-bal-en".
QList<ManagedBetaAppLocalization> betaAppLocalizations(const QString& appID);
// "-b3" waits for the beta review, "-b2" passed it, "-b1" was never submitted. Id: build id + "-brs".
std::optional<ManagedBetaReviewSubmission> betaReviewSubmission(const QString& buildID);
// A week of use; the expired "-b1" has a month behind it.
ManagedBetaUsage betaUsage(const QString& buildID);
// The log of a crash feedback ("-fb1"); none for anything else.
std::optional<ManagedBetaCrashLog> betaCrashLog(const QString& feedbackID);
QList<ManagedInAppPurchase> inAppPurchases(const QString& appID);
QList<ManagedSubscription> subscriptions(const QString& groupID);
QList<ManagedAppEvent> appEvents(const QString& appID);
QList<ManagedAnalyticsReportRequest> analyticsReportRequests(const QString& appID);
// "-rep1" app usage, "-rep2" commerce.
QList<ManagedAnalyticsReport> analyticsReports(const QString& requestID);
// "-inst1" daily, "-inst2" weekly.
QList<ManagedAnalyticsReportInstance> analyticsReportInstances(const QString& reportID);
// "-seg1"; a sample has no address to download from.
QList<ManagedAnalyticsReportSegment> analyticsReportSegments(const QString& instanceID);
ManagedCiProduct ciProduct(const QString& appID);
QList<ManagedCiWorkflow> ciWorkflows(const QString& productID);
// "-run1" (finished, succeeded) and "-run2" (finished, failed), newest first.
QList<ManagedCiBuildRun> ciBuildRuns(const QString& workflowID, const QDateTime& now);
// The unpacked file of an analytics segment, standing in for a download in demo mode: a row per
// day and device ("-rep1", app usage) or per day and territory (other reports) from 400 days
// before `now` up to its day, the same for the same day.
QByteArray analyticsSegmentText(const QString& segmentID, const QDateTime& now);
} // namespace MockData

// Sales and finance reports of the demo account, as Apple's summary tables would read: one row per
// demo app and country, figures that differ from period to period (so that the comparison has
// something to say) but are the same for the same period on every call.
namespace MockData {
// The vendor number the demo account's reports carry.
QString salesVendorNumber();
AnalyticsTable salesReport(SalesReportType type, SalesReportFrequency frequency, const QString& reportDate);
// Quantities and "Extended Partner Share" per line, as a finance report has them; no "Units".
AnalyticsTable financeReport(const QString& regionCode, const QString& month);
} // namespace MockData
