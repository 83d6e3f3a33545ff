// What a full validation of an app with 40 languages costs: every field at its limit (4,000-character
// descriptions and what's new, 100-character keyword lists), in Latin, Cyrillic, Greek, Arabic,
// Hebrew, Devanagari, Thai, CJK and Hangul script, some with emoji, plus the cross-language rule.
// Grapheme counting is timed on its own over the same texts to show its share.
#include "metadata/AppStoreLocales.h"
#include "metadata/MetadataValidator.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTextBoundaryFinder>

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

// The first `count` user-perceived characters of `sample` repeated as often as needed.
QString graphemes(const QString& sample, int count) {
    QString source = sample;
    while (MetadataValidator::characterCount(source) < count) {
        source += u' ' + sample;
    }
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, source);
    int end = 0;
    for (int i = 0; i < count; ++i) {
        end = int(finder.toNextBoundary());
    }
    return source.left(end);
}

// Distinct terms joined by commas, cut to exactly `count` characters.
QString keywordList(const QString& sample, int count) {
    const QStringList words = sample.split(u' ', Qt::SkipEmptyParts);
    QStringList terms;
    for (int i = 0; MetadataValidator::characterCount(terms.join(u',')) < count; ++i) {
        terms.append(words.at(i % words.size()) + QString::number(i));
    }
    return graphemes(terms.join(u','), count);
}

QString sampleFor(const QString& locale) {
    const QString language = locale.section(u'-', 0, 0);
    if (language == u"ar"_s) {
        return u"تطبيق رائع لتحرير الصور بسرعة وسهولة مع فلاتر جميلة"_s;
    }
    if (language == u"el"_s) {
        return u"Γρήγορη επεξεργασία φωτογραφιών με όμορφα φίλτρα για όλους"_s;
    }
    if (language == u"he"_s) {
        return u"עריכת תמונות מהירה וקלה עם מסננים יפים לכולם"_s;
    }
    if (language == u"hi"_s) {
        return u"तस्वीरों को जल्दी और आसानी से संपादित करें सुंदर फ़िल्टर के साथ"_s;
    }
    if (language == u"th"_s) {
        return u"แก้ไขรูปภาพได้อย่างรวดเร็วและง่ายดายพร้อมฟิลเตอร์ที่สวยงาม"_s;
    }
    if (language == u"ja"_s) {
        return u"写真を素早く簡単に編集 美しいフィルターで 誰でも使える"_s;
    }
    if (language == u"ko"_s) {
        return u"사진을 빠르고 쉽게 편집하세요 아름다운 필터와 함께"_s;
    }
    if (language == u"zh"_s) {
        return u"快速轻松地编辑照片 美丽的滤镜 适合所有人"_s;
    }
    if (language == u"ru"_s || language == u"uk"_s) {
        return u"Быстрое и простое редактирование фотографий с красивыми фильтрами"_s;
    }
    if (language == u"vi"_s) {
        return u"Chỉnh sửa ảnh nhanh chóng và dễ dàng với bộ lọc đẹp"_s; // precomposed and combining
    }
    if (language == u"en"_s) {
        return u"Edit photos fast \U0001F4F8 with beautiful filters \U0001F469\u200D\U0001F3A8 for everyone"_s;
    }
    return u"Fotos schnell bearbeiten – schöne Filter für Groß und Klein, übersichtlich & einfach"_s;
}

int limitOf(MetadataField field) {
    return MetadataFields::info(field).limit.value_or(0);
}

// The texts of the fields that have a limit.
QList<QString> limitedTexts(const ManagedLocalization& l) {
    QList<QString> texts;
    for (const MetadataFieldInfo& field : MetadataFields::table()) {
        if (field.limit) {
            texts.append(MetadataFields::text(l, field.field));
        }
    }
    return texts;
}

ManagedLocalization fullLength(const QString& locale) {
    const QString sample = sampleFor(locale);
    ManagedLocalization l;
    l.locale = locale;
    l.appInfoLocalizationID = u"ai-"_s + locale;
    l.versionLocalizationID = u"v-"_s + locale;
    l.name = graphemes(sample, limitOf(MetadataField::Name));
    l.subtitle = graphemes(sample.mid(7), limitOf(MetadataField::Subtitle));
    l.privacyPolicyURL = u"https://example.com/datenschutz"_s;
    l.description = graphemes(sample + u"\n"_s + locale, limitOf(MetadataField::Description));
    l.keywords = keywordList(sample, limitOf(MetadataField::Keywords));
    l.promotionalText = graphemes(sample.mid(3), limitOf(MetadataField::PromotionalText));
    l.whatsNew = graphemes(locale + u": "_s + sample, limitOf(MetadataField::WhatsNew));
    l.supportURL = u"https://example.com/hilfe/"_s + locale;
    l.marketingURL = u"https://example.com"_s;
    return l;
}

template <typename Body> double medianMicros(int rounds, Body&& body) {
    std::vector<double> times;
    QElapsedTimer timer;
    for (int i = 0; i < rounds; ++i) {
        timer.start();
        body();
        times.push_back(double(timer.nsecsElapsed()) / 1000.0);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);

    QStringList locales = AppStoreLocales::codes();
    locales.append(u"de-AT"_s);
    QList<ManagedLocalization> localizations;
    for (const QString& locale : std::as_const(locales)) {
        localizations.append(fullLength(locale));
    }
    const MetadataValidator::Context context{u"Fotostudio Pro"_s, false};

    // Every text must sit exactly at its limit, or the figures measure something else.
    for (const ManagedLocalization& l : std::as_const(localizations)) {
        for (const MetadataFieldInfo& field : MetadataFields::table()) {
            if (field.limit && MetadataValidator::characterCount(l.*field.member) != *field.limit) {
                std::fprintf(stderr, "%s: a text is not at its limit\n", qPrintable(l.locale));
                return 1;
            }
        }
    }
    qsizetype units = 0;
    for (const ManagedLocalization& l : std::as_const(localizations)) {
        for (const QString& t : limitedTexts(l)) {
            units += t.size();
        }
    }

    const int rounds = 200;
    int sink = 0;
    const double pass = medianMicros(rounds, [&] {
        for (const ManagedLocalization& l : std::as_const(localizations)) {
            sink += MetadataValidator::validate(l, context).checkedCount;
        }
        sink += int(MetadataValidator::validateAcrossLocales(localizations).size());
    });
    const double across = medianMicros(
        rounds, [&] { sink += int(MetadataValidator::validateAcrossLocales(localizations).size()); });
    const double counting = medianMicros(rounds, [&] {
        for (const ManagedLocalization& l : std::as_const(localizations)) {
            for (const QString& t : limitedTexts(l)) {
                sink += MetadataValidator::characterCount(t);
            }
        }
    });
    const double n = double(localizations.size());
    std::printf("languages: %d, UTF-16 units in limited fields: %lld, rounds: %d (median)\n",
                int(localizations.size()), static_cast<long long>(units), rounds);
    std::printf("full pass (validate all + across languages): %9.1f us\n", pass);
    std::printf("  per language:                             %9.1f us\n", pass / n);
    std::printf("  across languages alone:                   %9.1f us\n", across);
    std::printf("grapheme counting of the six limited fields: %8.1f us (%.0f%% of a pass)\n", counting,
                100.0 * counting / pass);
    return sink == 42 ? 2 : 0;
}
