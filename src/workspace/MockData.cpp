#include "workspace/MockData.h"

#include "reports/ReportDecimal.h"

#include <QLocale>

using namespace Qt::StringLiterals;

QList<ManagedApp> MockData::apps() {
    auto app = [](QString id, QString name, QString bundle, QString sku) {
        ManagedApp a;
        a.id = std::move(id);
        a.name = std::move(name);
        a.bundleID = std::move(bundle);
        a.sku = std::move(sku);
        a.primaryLocale = u"en-US"_s;
        return a;
    };
    return {
        app(u"demo-aurora-journal"_s, u"Aurora Journal"_s, u"com.example.aurorajournal"_s,
            u"AURORAJOURNAL"_s),
        app(u"demo-fjord-weather"_s, u"Fjord Weather"_s, u"com.example.fjordweather"_s, u"FJORDWEATHER"_s),
        app(u"demo-runestone-notes"_s, u"Runestone Notes"_s, u"com.example.runestonenotes"_s,
            u"RUNESTONENOTES"_s),
        app(u"demo-varnis-budget"_s, u"Varnis Budget"_s, u"com.example.varnisbudget"_s, u"VARNISBUDGET"_s),
    };
}

namespace {

constexpr qint64 hour = 3600;
constexpr qint64 day = 86400;

// A moment `seconds` after `now` (negative: before), in UTC like every date of the API.
QDateTime at(const QDateTime& now, qint64 seconds) {
    return now.toUTC().addSecs(seconds);
}

// The name of a demo app, or a neutral one for an id from elsewhere.
QString appName(const QString& appID) {
    for (const ManagedApp& app : MockData::apps()) {
        if (app.id == appID) {
            return app.name;
        }
    }
    return u"Demo-App"_s;
}

} // namespace

QList<VelmoraVersion> MockData::versions(const QString& appID, const QDateTime& now) {
    auto version = [&](QString suffix, QString number, ASCAppStoreVersionState::Case state,
                       ASCReleaseType releaseType, qint64 age) {
        VelmoraVersion v;
        v.id = appID + suffix;
        v.versionString = std::move(number);
        v.platform = ASCPlatform(ASCPlatform::Case::Ios);
        v.state = ASCAppStoreVersionState(state);
        v.createdDate = at(now, -age);
        v.releaseType = releaseType;
        v.copyright = QString::number(now.toUTC().date().year()) + u" Example Studio GmbH"_s;
        return v;
    };
    using S = ASCAppStoreVersionState::Case;
    return {
        // The version in preparation is the one the store-text editor shows in demo mode.
        version(u"-v3"_s, u"3.1.0"_s, S::PrepareForSubmission, ASCReleaseType::Manual, 2 * day),
        version(u"-v2"_s, u"3.0.2"_s, S::ReadyForSale, ASCReleaseType::AfterApproval, 14 * day),
        version(u"-v1"_s, u"3.0.1"_s, S::ReplacedWithNewVersion, ASCReleaseType::AfterApproval, 60 * day),
    };
}

QList<ManagedBuild> MockData::builds(const QString& appID, const QDateTime& now) {
    auto build = [&](QString suffix, QString number, qint64 age, qint64 expiresIn) {
        ManagedBuild b;
        b.id = appID + suffix;
        b.buildNumber = std::move(number);
        b.uploadedDate = at(now, -age);
        b.expirationDate = at(now, expiresIn);
        b.isExpired = expiresIn <= 0;
        b.minOSVersion = u"17.0"_s;
        b.processingState = ASCProcessingState(ASCProcessingState::Case::Valid);
        b.usesNonExemptEncryption = false;
        return b;
    };
    return {
        build(u"-b3"_s, u"142"_s, hour, 89 * day),
        build(u"-b2"_s, u"141"_s, 2 * day, 87 * day),
        build(u"-b1"_s, u"140"_s, 95 * day, -5 * day),
    };
}

QList<ManagedReview> MockData::reviews(const QString& appID, const QDateTime& now) {
    auto review = [&](QString suffix, int rating, QString title, QString body, QString nickname,
                      QString territory, qint64 age) {
        ManagedReview r;
        r.id = appID + suffix;
        r.rating = rating;
        r.title = std::move(title);
        r.body = std::move(body);
        r.reviewerNickname = std::move(nickname);
        r.createdDate = at(now, -age);
        r.territory = std::move(territory);
        return r;
    };
    QList<ManagedReview> list{
        review(u"-r1"_s, 5, u"Endlich übersichtlich"_s,
               u"Seit dem letzten Update finde ich alles auf Anhieb. Die neue Startseite ist großartig."_s,
               u"LenaAusLeipzig"_s, u"DEU"_s, 1 * day),
        review(u"-r2"_s, 2, u"Absturz beim Export"_s,
               u"Beim Export als PDF stürzt die App jedes Mal ab. Bitte schnell beheben!"_s, u"mkoch"_s,
               u"AUT"_s, 4 * day),
        review(u"-r3"_s, 4, u"Great app, one wish"_s,
               u"Works well on my iPad. A dark theme for the widgets would be lovely."_s, u"fjordfan"_s,
               u"USA"_s, 9 * day),
    };
    list[0].existingResponseID = appID + u"-resp1"_s;
    return list;
}

ManagedReviewResponse MockData::reviewResponse(const QString& reviewID, const QDateTime& now) {
    ManagedReviewResponse r;
    r.id = reviewID + u"-resp"_s;
    r.responseBody = u"Danke für dein Feedback! Wir freuen uns, dass dir die neue Version gefällt."_s;
    r.lastModifiedDate = at(now, -20 * hour);
    r.state = ASCReviewResponseState(ASCReviewResponseState::Case::Published);
    return r;
}

namespace {

// The texts of one language of a sample app; each app's texts are about what that app does.
struct SampleTexts {
    QString subtitle;
    QString description;
    QString keywords;
    QString promotionalText;
    QString whatsNew;
};

struct SampleApp {
    QString slug;
    SampleTexts de;
    SampleTexts en;
};

const QList<SampleApp>& sampleTexts() {
    static const QList<SampleApp> apps{
        {u"aurorajournal"_s,
         {u"Dein Tag, schön festgehalten"_s,
          u"Aurora Journal hält deinen Tag fest: Gedanken, Fotos und Stimmungen an einem ruhigen Ort, "
          u"synchron auf iPhone und iPad und ohne Werbung."_s,
          u"tagebuch,journal,stimmung,fotos,erinnerungen,achtsamkeit"_s,
          u"Neu: Themes für Nachteulen und ein schnellerer Export."_s,
          u"• Export großer Tagebücher ist schneller und stabiler\n• Neue dunkle Themes\n• Kleinere Fehlerbehebungen"_s},
         {u"Your day, beautifully kept"_s,
          u"Aurora Journal keeps your day: thoughts, photos and moods in one calm place, in sync on iPhone "
          u"and iPad, with no ads."_s,
          u"diary,journal,mood,photos,memories,mindfulness"_s,
          u"New: themes for night owls and a faster export."_s,
          u"• Exporting large journals is faster and more reliable\n• New dark themes\n• Minor fixes"_s}},
        {u"fjordweather"_s,
         {u"Wetter für Küste und Berge"_s,
          u"Fjord Weather zeigt Wind, Wellen und Regen Stunde für Stunde – mit Warnungen für deine Orte "
          u"an der Küste und in den Bergen."_s,
          u"wetter,wind,regen,radar,küste,wandern"_s, u"Neu: Wellenhöhe und Gezeiten für 400 Häfen."_s,
          u"• Gezeiten für 400 Häfen\n• Radar lädt schneller\n• Kleinere Fehlerbehebungen"_s},
         {u"Weather for coast and mountains"_s,
          u"Fjord Weather shows wind, waves and rain hour by hour, with alerts for your places on the "
          u"coast and in the mountains."_s,
          u"weather,wind,rain,radar,coast,hiking"_s, u"New: wave height and tides for 400 harbours."_s,
          u"• Tides for 400 harbours\n• Faster radar\n• Minor fixes"_s}},
        {u"runestonenotes"_s,
         {u"Notizen, die sich finden"_s,
          u"Runestone Notes sammelt Notizen, Listen und Skizzen und findet sie wieder – mit Schlagworten, "
          u"Volltextsuche und Sync über all deine Geräte."_s,
          u"notizen,listen,skizzen,suche,markdown,sync"_s, u"Neu: Markdown-Tabellen und Schnellnotizen."_s,
          u"• Tabellen in Markdown\n• Schnellnotiz aus dem Widget\n• Kleinere Fehlerbehebungen"_s},
         {u"Notes that find themselves"_s,
          u"Runestone Notes collects notes, lists and sketches and finds them again, with tags, full-text "
          u"search and sync across your devices."_s,
          u"notes,lists,sketches,search,markdown,sync"_s, u"New: Markdown tables and quick notes."_s,
          u"• Markdown tables\n• Quick note from the widget\n• Minor fixes"_s}},
        {u"varnisbudget"_s,
         {u"Haushaltsbuch ohne Tabellen"_s,
          u"Varnis Budget ordnet Ausgaben und Einnahmen, zeigt, wohin das Geld geht, und erinnert an "
          u"Abos und Rechnungen – ohne Werbung und ohne Bankzugang."_s,
          u"budget,haushaltsbuch,ausgaben,finanzen,sparen,abos"_s,
          u"Neu: Sparziele mit Fortschritt im Widget."_s,
          u"• Sparziele im Widget\n• CSV-Import für weitere Banken\n• Kleinere Fehlerbehebungen"_s},
         {u"A budget without spreadsheets"_s,
          u"Varnis Budget sorts spending and income, shows where the money goes and reminds you of "
          u"subscriptions and bills, with no ads and no bank login."_s,
          u"budget,expenses,finance,savings,money,subscriptions"_s,
          u"New: savings goals with progress in the widget."_s,
          u"• Savings goals in the widget\n• CSV import for more banks\n• Minor fixes"_s}},
    };
    return apps;
}

} // namespace

QList<ManagedLocalization> MockData::localizations(const QString& appID) {
    const QString name = appName(appID);
    QString slug;
    for (const ManagedApp& app : MockData::apps()) {
        if (app.id == appID) {
            slug = app.bundleID.section(u'.', -1);
        }
    }
    // An id from elsewhere gets the texts of the first sample app.
    const SampleApp* texts = &sampleTexts().first();
    for (const SampleApp& candidate : sampleTexts()) {
        if (candidate.slug == slug) {
            texts = &candidate;
        }
    }
    const auto fill = [&](const QString& locale, const QString& suffix, const SampleTexts& t,
                          const QString& site) {
        using F = MetadataField;
        const bool german = suffix == u"de"_s;
        const std::pair<MetadataField, QString> texts[] = {
            {F::Name, name},
            {F::Subtitle, t.subtitle},
            {F::PrivacyPolicyURL, site + (german ? u"/datenschutz"_s : u"/privacy"_s)},
            {F::Description, t.description},
            {F::Keywords, t.keywords},
            {F::PromotionalText, t.promotionalText},
            {F::WhatsNew, t.whatsNew},
            {F::MarketingURL, site},
            {F::SupportURL, site + (german ? u"/hilfe"_s : u"/support"_s)},
        };
        ManagedLocalization l;
        l.locale = locale;
        l.appInfoLocalizationID = appID + u"-info-"_s + suffix;
        l.versionLocalizationID = appID + u"-ver-"_s + suffix;
        for (const auto& [field, text] : texts) {
            l.*MetadataFields::info(field).member = text;
        }
        return l;
    };
    const QString site = u"https://"_s + (slug.isEmpty() ? u"example"_s : slug) + u".example.com"_s;
    return {fill(u"de-DE"_s, u"de"_s, texts->de, site + u"/de"_s),
            fill(u"en-US"_s, u"en"_s, texts->en, site)};
}

QList<ManagedScreenshotSet> MockData::screenshotSets(const QString& versionLocalizationID) {
    return {
        ManagedScreenshotSet{versionLocalizationID + u"-set1"_s, u"APP_IPHONE_67"_s},
        ManagedScreenshotSet{versionLocalizationID + u"-set2"_s, u"APP_IPAD_PRO_3GEN_129"_s},
    };
}

QList<ManagedScreenshot> MockData::screenshots(const QString& setID) {
    // The iPad set is the second; everything else shows iPhone-sized images.
    const bool iPad = setID.endsWith(u"-set2"_s);
    QList<ManagedScreenshot> list;
    for (int n = 1; n <= 3; ++n) {
        ManagedScreenshot s;
        s.id = setID + u"-shot"_s + QString::number(n);
        s.fileName = u"screenshot-"_s + QString::number(n) + u".png"_s;
        s.fileSize = 640'000 + 48'000 * n;
        // No template URL: demo mode loads nothing from the network.
        s.imageAsset = ASCImageAsset{std::nullopt, iPad ? 2048 : 1290, iPad ? 2732 : 2796};
        s.deliveryState = ASCAssetDeliveryState(ASCAssetDeliveryState::Case::Complete);
        list.append(s);
    }
    return list;
}

QList<ManagedBetaGroup> MockData::betaGroups(const QString& appID, const QDateTime& now) {
    ManagedBetaGroup team;
    team.id = appID + u"-g1"_s;
    team.name = u"Internes Team"_s;
    team.isInternal = true;
    team.createdDate = at(now, -120 * day);
    team.feedbackEnabled = true;
    team.hasAccessToAllBuilds = true;

    ManagedBetaGroup community;
    community.id = appID + u"-g2"_s;
    community.name = u"Beta-Community"_s;
    community.createdDate = at(now, -45 * day);
    community.publicLinkEnabled = true;
    community.publicLink = u"https://testflight.example.com/join/"_s + community.id;
    community.feedbackEnabled = true;
    community.publicLinkLimit = 500;
    community.publicLinkLimitEnabled = true;
    return {team, community};
}

QList<ManagedBetaTester> MockData::betaTesters(const QString& groupID) {
    auto tester = [&](QString suffix, QString first, QString last, QString email, ASCBetaInviteType invite,
                      ASCBetaTesterState::Case state) {
        ManagedBetaTester t;
        t.id = groupID + suffix;
        t.firstName = std::move(first);
        t.lastName = std::move(last);
        t.email = std::move(email);
        t.inviteType = invite;
        t.state = ASCBetaTesterState(state);
        return t;
    };
    using S = ASCBetaTesterState::Case;
    return {
        tester(u"-t1"_s, u"Jonas"_s, u"Keller"_s, u"jonas.keller@example.com"_s, ASCBetaInviteType::Email,
               S::Installed),
        tester(u"-t2"_s, u"Lena"_s, u"Berger"_s, u"lena.berger@example.com"_s, ASCBetaInviteType::PublicLink,
               S::Accepted),
        tester(u"-t3"_s, u"Mira"_s, u"Sommer"_s, u"mira.sommer@example.com"_s, ASCBetaInviteType::Email,
               S::Invited),
    };
}

QList<ManagedBetaFeedback> MockData::betaFeedback(const QString& appID, const QDateTime& now) {
    ManagedBetaFeedback crash;
    crash.id = appID + u"-fb1"_s;
    crash.kind = ManagedBetaFeedback::Kind::Crash;
    crash.createdDate = at(now, -1 * day);
    crash.comment = u"Absturz beim Export einer großen Datei."_s;
    crash.email = u"jonas.keller@example.com"_s;
    crash.deviceModel = u"iPhone15,2"_s;
    crash.osVersion = u"17.4"_s;
    crash.locale = u"de-DE"_s;
    crash.appVersion = u"2.3 (141)"_s;
    crash.batteryPercentage = 64;

    ManagedBetaFeedback screenshot;
    screenshot.id = appID + u"-fb2"_s;
    screenshot.kind = ManagedBetaFeedback::Kind::Screenshot;
    screenshot.createdDate = at(now, -3 * day);
    screenshot.comment = u"Der Knopf überlappt bei großer Schrift."_s;
    screenshot.email = u"lena.berger@example.com"_s;
    screenshot.deviceModel = u"iPad13,4"_s;
    screenshot.osVersion = u"17.3"_s;
    screenshot.locale = u"de-DE"_s;
    screenshot.appVersion = u"2.2 (140)"_s;
    screenshot.batteryPercentage = 88;
    // A file name but no URL: demo mode loads nothing from the network.
    screenshot.screenshots = {ASCFeedbackImage{std::nullopt, u"feedback-1.png"_s, std::nullopt}};
    return {crash, screenshot};
}

namespace {

// Which of the three demo builds an id names: 3 for "-b3" (the newest), 2, 1; 3 for an id from
// elsewhere.
int demoBuildNumber(const QString& buildID) {
    for (int n : {2, 1}) {
        if (buildID.endsWith(u"-b"_s + QString::number(n))) {
            return n;
        }
    }
    return 3;
}

} // namespace

QSet<QString> MockData::betaGroupBuildIDs(const QString& groupID) {
    // The group's app: its id without the group suffix.
    QString appID = groupID;
    const bool external = groupID.endsWith(u"-g2"_s);
    if (external || groupID.endsWith(u"-g1"_s)) {
        appID.chop(3);
    }
    QSet<QString> ids{appID + u"-b3"_s, appID + u"-b2"_s};
    if (!external) {
        ids.insert(appID + u"-b1"_s);
    }
    return ids;
}

ManagedBuildBetaDetail MockData::buildBetaDetail(const QString& buildID) {
    using S = ASCBetaBuildState::Case;
    auto detail = [](S internal, S external) {
        return ManagedBuildBetaDetail{ASCBetaBuildState(internal), ASCBetaBuildState(external)};
    };
    switch (demoBuildNumber(buildID)) {
    case 1:
        return detail(S::Expired, S::Expired);
    case 2:
        return detail(S::InBetaTesting, S::InBetaTesting);
    default:
        return detail(S::InBetaTesting, S::WaitingForBetaReview);
    }
}

QList<ManagedBetaBuildLocalization> MockData::betaBuildLocalizations(const QString& buildID) {
    return {
        ManagedBetaBuildLocalization{buildID + u"-bl-de"_s, u"de-DE"_s,
                                     u"Bitte den neuen Export als PDF testen, vor allem mit großen Einträgen "
                                     u"und Bildern."_s},
        ManagedBetaBuildLocalization{buildID + u"-bl-en"_s, u"en-US"_s,
                                     u"Please try the new PDF export, especially with long entries and "
                                     u"pictures."_s},
    };
}

QList<ManagedBetaAppLocalization> MockData::betaAppLocalizations(const QString& appID) {
    const QString web = u"https://example.com/"_s + appID;
    auto localization = [&](QString suffix, QString locale, QString description, QString privacy) {
        ManagedBetaAppLocalization l;
        l.localizationID = appID + suffix;
        l.locale = std::move(locale);
        l.description = std::move(description);
        l.feedbackEmail = u"beta@example.com"_s;
        l.marketingURL = web;
        l.privacyPolicyURL = web + privacy;
        return l;
    };
    return {
        localization(u"-bal-de"_s, u"de-DE"_s,
                     u"Danke fürs Mittesten! Diese Beta bringt den neuen Export und eine "
                     u"überarbeitete Suche."_s,
                     u"/datenschutz"_s),
        localization(u"-bal-en"_s, u"en-US"_s,
                     u"Thanks for testing! This beta brings the new export and a reworked search."_s,
                     u"/privacy"_s),
    };
}

std::optional<ManagedBetaReviewSubmission> MockData::betaReviewSubmission(const QString& buildID) {
    switch (demoBuildNumber(buildID)) {
    case 1:
        return std::nullopt;
    case 2:
        return ManagedBetaReviewSubmission{buildID + u"-brs"_s, u"APPROVED"_s};
    default:
        return ManagedBetaReviewSubmission{buildID + u"-brs"_s, u"WAITING_FOR_REVIEW"_s};
    }
}

ManagedBetaUsage MockData::betaUsage(const QString& buildID) {
    const int n = demoBuildNumber(buildID);
    ManagedBetaUsage usage;
    usage.dataPointCount = n == 1 ? 30 : 7;
    usage.totals = {
        {u"installCount"_s, n == 1 ? 64.0 : 18.0 * n}, {u"sessionCount"_s, n == 1 ? 912.0 : 140.0 * n},
        {u"crashCount"_s, n == 3 ? 1.0 : 3.0},         {u"inviteCount"_s, n == 1 ? 80.0 : 25.0},
        {u"feedbackCount"_s, n == 1 ? 9.0 : 2.0},
    };
    return usage;
}

std::optional<ManagedBetaCrashLog> MockData::betaCrashLog(const QString& feedbackID) {
    if (!feedbackID.endsWith(u"-fb1"_s)) {
        return std::nullopt;
    }
    ManagedBetaCrashLog log;
    log.logText = u"Exception Type:  EXC_CRASH (SIGABRT)\n"
                  u"Triggered by Thread:  3\n\n"
                  u"Thread 3 Crashed:\n"
                  u"0   libsystem_kernel.dylib   __pthread_kill + 8\n"
                  u"1   AuroraJournal            PDFExporter.render(entries:) + 412\n"
                  u"2   AuroraJournal            ExportQueue.run() + 96\n"_s;
    return log;
}

QList<ManagedInAppPurchase> MockData::inAppPurchases(const QString& appID) {
    ManagedInAppPurchase themes;
    themes.id = appID + u"-iap1"_s;
    themes.name = u"Extra Journal Themes"_s;
    themes.productID = u"com.example.aurorajournal.themes"_s;
    themes.type = u"Nicht verbrauchbar"_s;
    themes.state = u"Genehmigt"_s;
    themes.rawState = u"APPROVED"_s;
    themes.rawType = u"NON_CONSUMABLE"_s;
    themes.reviewNote = u"Die Themes werden unter Einstellungen › Darstellung freigeschaltet."_s;
    themes.isFamilySharable = true;

    ManagedInAppPurchase backups;
    backups.id = appID + u"-iap2"_s;
    backups.name = u"50 Cloud Backups"_s;
    backups.productID = u"com.example.aurorajournal.backups50"_s;
    backups.type = u"Verbrauchbar"_s;
    backups.state = u"Bereit zur Einreichung"_s;
    backups.rawState = u"READY_TO_SUBMIT"_s;
    backups.rawType = u"CONSUMABLE"_s;
    return {themes, backups};
}

QList<ManagedSubscription> MockData::subscriptions(const QString& groupID) {
    ManagedSubscription monthly;
    monthly.id = groupID + u"-sub1"_s;
    monthly.name = u"Aurora Plus monatlich"_s;
    monthly.productID = u"com.example.aurorajournal.monthly"_s;
    monthly.state = u"Genehmigt"_s;
    monthly.period = u"1 Monat"_s;
    monthly.groupLevel = 2;
    monthly.rawState = u"APPROVED"_s;
    monthly.rawPeriod = ASCSubscriptionPeriod::OneMonth;
    monthly.isFamilySharable = true;

    ManagedSubscription yearly;
    yearly.id = groupID + u"-sub2"_s;
    yearly.name = u"Aurora Plus jährlich"_s;
    yearly.productID = u"com.example.aurorajournal.yearly"_s;
    yearly.state = u"Bereit zur Einreichung"_s;
    yearly.period = u"1 Jahr"_s;
    yearly.groupLevel = 1;
    yearly.rawState = u"READY_TO_SUBMIT"_s;
    yearly.rawPeriod = ASCSubscriptionPeriod::OneYear;
    yearly.reviewNote = u"Das Jahresabo schaltet dieselben Funktionen frei wie das Monatsabo."_s;
    yearly.isFamilySharable = true;
    return {monthly, yearly};
}

QList<ManagedAppEvent> MockData::appEvents(const QString& appID) {
    return {ManagedAppEvent{appID + u"-ev1"_s, u"Neujahrs-Challenge"_s, u"PUBLISHED"_s}};
}

QList<ManagedAnalyticsReportRequest> MockData::analyticsReportRequests(const QString& appID) {
    const QString kind = u"ONE_TIME_SNAPSHOT"_s;
    return {ManagedAnalyticsReportRequest{appID + u"-req1"_s,
                                          ManagedAnalyticsReportRequest::accessTypeLabel(kind), false}};
}

ManagedCiProduct MockData::ciProduct(const QString& appID) {
    return ManagedCiProduct{appID + u"-ci"_s, u"Xcode Cloud"_s};
}

QList<ManagedCiWorkflow> MockData::ciWorkflows(const QString& productID) {
    return {ManagedCiWorkflow{productID + u"-wf1"_s, u"Release-Build"_s, true}};
}

QList<ManagedCiBuildRun> MockData::ciBuildRuns(const QString& workflowID, const QDateTime& now) {
    auto run = [&](QString suffix, int number, qint64 age, QString commit, QString status,
                   QString rawStatus) {
        ManagedCiBuildRun r;
        r.id = workflowID + suffix;
        r.number = number;
        r.createdDate = at(now, -age);
        r.startedDate = at(now, -age + 45);
        r.finishedDate = at(now, -age + 14 * 60);
        r.commitMessage = std::move(commit);
        r.executionProgress = u"Abgeschlossen"_s;
        r.completionStatus = std::move(status);
        r.rawExecutionProgress = u"COMPLETE"_s;
        r.rawCompletionStatus = std::move(rawStatus);
        return r;
    };
    return {
        run(u"-run1"_s, 42, 3 * hour, u"Fix crash on export"_s, u"Erfolgreich"_s, u"SUCCEEDED"_s),
        run(u"-run2"_s, 41, 1 * day, u"Update onboarding texts"_s, u"Fehlgeschlagen"_s, u"FAILED"_s),
    };
}

QList<ManagedAnalyticsReport> MockData::analyticsReports(const QString& requestID) {
    return {{requestID + u"-rep1"_s, u"App Sessions Standard"_s, u"APP_USAGE"_s},
            {requestID + u"-rep2"_s, u"App Store Purchases Standard"_s, u"COMMERCE"_s}};
}

QList<ManagedAnalyticsReportInstance> MockData::analyticsReportInstances(const QString& reportID) {
    return {ManagedAnalyticsReportInstance::fromResource(
                reportID + u"-inst1"_s, ASCAnalyticsReportInstanceAttributes{u"DAILY"_s, u"2026-11-23"_s}),
            ManagedAnalyticsReportInstance::fromResource(
                reportID + u"-inst2"_s, ASCAnalyticsReportInstanceAttributes{u"WEEKLY"_s, u"2026-11-22"_s})};
}

QList<ManagedAnalyticsReportSegment> MockData::analyticsReportSegments(const QString& instanceID) {
    return {ManagedAnalyticsReportSegment{instanceID + u"-seg1"_s, 48213, std::nullopt, std::nullopt}};
}

QByteArray MockData::analyticsSegmentText(const QString& segmentID, const QDateTime& now) {
    constexpr int days = 400;
    const bool usage = segmentID.contains(u"-rep1"_s);
    const QDate today = now.toUTC().date();
    const QByteArray app = appName(segmentID.section(u"-req"_s, 0, 0)).toUtf8();
    QByteArray text = usage ? "Date\tApp Name\tDevice\tSessions\tTotal Session Duration\tUnique Devices\n"_ba
                            : "Date\tApp Name\tTerritory\tPurchases\tProceeds in USD\n"_ba;
    text.reserve(days * 2 * 60);
    for (int back = days; back >= 0; --back) {
        const QDate date = today.addDays(-back);
        // A slow rise, busier weekends and a little irregularity that repeats with the date.
        const qint64 dayNumber = date.toJulianDay();
        const int weekend = date.dayOfWeek() >= 6 ? 40 : 0;
        const int wobble = int((dayNumber * 37) % 23);
        const int base = 120 + (days - back) / 4 + weekend + wobble;
        const QByteArray dateText = date.toString(Qt::ISODate).toLatin1();
        if (usage) {
            for (const auto& [device, share] : {std::pair{"iPhone", 3}, std::pair{"iPad", 1}}) {
                const int sessions = base * share / 3;
                const int seconds = sessions * (170 + wobble);
                text += dateText + '\t' + app + '\t' + device + '\t' + QByteArray::number(sessions) + "\t\"" +
                        QLocale(QLocale::English).toString(seconds).toLatin1() + "\"\t" +
                        QByteArray::number(sessions * 2 / 3) + '\n';
            }
        } else {
            for (const auto& [territory, share] : {std::pair{"DE", 2}, std::pair{"US", 3}}) {
                const int purchases = base * share / 40;
                text += dateText + '\t' + app + '\t' + territory + '\t' + QByteArray::number(purchases) +
                        '\t' + QByteArray::number(purchases * 2.99 * 0.7, 'f', 2) + '\n';
            }
        }
    }
    return text;
}

namespace {

// A small number that is the same for the same text on every run and every machine (qHash is
// seeded per process).
quint32 stableSeed(const QString& text) {
    quint32 seed = 2166136261u;
    for (const QChar c : text) {
        seed = (seed ^ c.unicode()) * 16777619u;
    }
    return seed;
}

// The first and last day a report of that period covers, as Apple's tables write dates.
std::pair<QString, QString> periodDays(SalesReportFrequency frequency, const QString& reportDate) {
    QDate first;
    QDate last;
    switch (frequency) {
    case SalesReportFrequency::Daily:
        first = last = QDate::fromString(reportDate, u"yyyy-MM-dd"_s);
        break;
    case SalesReportFrequency::Weekly:
        last = QDate::fromString(reportDate, u"yyyy-MM-dd"_s);
        first = last.addDays(-6);
        break;
    case SalesReportFrequency::Monthly:
        first = QDate::fromString(reportDate, u"yyyy-MM"_s);
        last = first.addMonths(1).addDays(-1);
        break;
    case SalesReportFrequency::Yearly:
        first = QDate::fromString(reportDate, u"yyyy"_s);
        last = first.addYears(1).addDays(-1);
        break;
    }
    return {first.toString(u"MM/dd/yyyy"_s), last.toString(u"MM/dd/yyyy"_s)};
}

int daysIn(SalesReportFrequency frequency) {
    switch (frequency) {
    case SalesReportFrequency::Daily:
        return 1;
    case SalesReportFrequency::Weekly:
        return 7;
    case SalesReportFrequency::Monthly:
        return 30;
    case SalesReportFrequency::Yearly:
        return 365;
    }
    return 1;
}

struct DemoProduct {
    QString sku;
    QString title;
    QString appleID;
    // Per unit, in euros; the weather app is free.
    QString proceeds;
    QString price;
};

QList<DemoProduct> demoProducts() {
    return {{u"AURORAJOURNAL"_s, u"Aurora Journal"_s, u"6450000001"_s, u"2.09"_s, u"2.99"_s},
            {u"FJORDWEATHER"_s, u"Fjord Weather"_s, u"6450000002"_s, u"0.00"_s, u"0.00"_s},
            {u"RUNESTONENOTES"_s, u"Runestone Notes"_s, u"6450000003"_s, u"3.49"_s, u"4.99"_s},
            {u"VARNISBUDGET"_s, u"Varnis Budget"_s, u"6450000004"_s, u"0.70"_s, u"0.99"_s}};
}

const QStringList demoCountries{u"DE"_s, u"AT"_s, u"CH"_s};

} // namespace

QString MockData::salesVendorNumber() {
    return u"80012345"_s;
}

AnalyticsTable MockData::salesReport(SalesReportType type, SalesReportFrequency frequency,
                                     const QString& reportDate) {
    const auto [begin, end] = periodDays(frequency, reportDate);
    QStringList lines{u"Provider\tProvider Country\tSKU\tDeveloper\tTitle\tVersion\tProduct Type "
                      u"Identifier\tUnits\tDeveloper Proceeds\tBegin Date\tEnd Date\tCustomer "
                      u"Currency\tCountry Code\tCurrency of Proceeds\tApple Identifier\tCustomer Price"_s};
    const quint32 seed = stableSeed(SalesReportKinds::rawValue(type) + reportDate);
    int index = 0;
    for (const DemoProduct& product : demoProducts()) {
        for (const QString& country : demoCountries) {
            const int units =
                int((seed >> (index % 24)) % 9 + 1) * daysIn(frequency) * (country == u"DE"_s ? 3 : 1);
            lines.append(QStringList{u"APPLE"_s, u"US"_s, product.sku, u"Nordlicht Apps"_s, product.title,
                                     u"3.2"_s, u"1F"_s, QString::number(units), product.proceeds, begin, end,
                                     u"EUR"_s, country, u"EUR"_s, product.appleID, product.price}
                             .join(u'\t'));
            ++index;
        }
    }
    return AnalyticsTable::parseTSV(lines.join(u'\n'));
}

AnalyticsTable MockData::financeReport(const QString& regionCode, const QString& month) {
    const auto [begin, end] = periodDays(SalesReportFrequency::Monthly, month);
    const QString currency = regionCode == u"US"_s ? u"USD"_s : regionCode == u"GB"_s ? u"GBP"_s : u"EUR"_s;
    QStringList lines{u"Start Date\tEnd Date\tUPC\tISRC/ISBN\tVendor Identifier\tQuantity\tPartner "
                      u"Share\tExtended Partner Share\tPartner Share Currency\tSales or Return\tApple "
                      u"Identifier\tArtist/Show/Developer/Author\tTitle\tProduct Type Identifier\tCountry Of "
                      u"Sale\tCustomer Price\tCustomer Currency"_s};
    const quint32 seed = stableSeed(u"FINANCIAL"_s + regionCode + month);
    int index = 0;
    for (const DemoProduct& product : demoProducts()) {
        if (product.proceeds == u"0.00"_s) {
            continue; // a free app earns nothing, so the finance report has no line for it
        }
        for (const QString& country : demoCountries) {
            const int quantity = int((seed >> (index % 24)) % 40 + 5);
            const ReportDecimal share =
                ReportDecimal::parse(product.proceeds.toUtf8()).value_or(ReportDecimal());
            lines.append(QStringList{
                begin, end, QString(), QString(), product.sku, QString::number(quantity), product.proceeds,
                (share * ReportDecimal::fromInteger(quantity)).toString(2), currency, u"S"_s, product.appleID,
                u"Nordlicht Apps"_s, product.title, u"1F"_s, country, product.price, currency}
                             .join(u'\t'));
            ++index;
        }
    }
    return AnalyticsTable::parseTSV(lines.join(u'\n'));
}
