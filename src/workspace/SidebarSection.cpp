#include "workspace/SidebarSection.h"

#include <array>

using namespace Qt::StringLiterals;

namespace {
struct Row {
    SidebarSection section;
    QStringView raw;
    QStringView title;
    QStringView symbol;
    SidebarGroup group;
};
using G = SidebarGroup;
constexpr std::array<Row, 11> rows{{
    {SidebarSection::Overview, u"overview", u"Übersicht", u"square.grid.3x3", G::Start},
    {SidebarSection::AppStoreOptimization, u"appStoreOptimization", u"App Store Optimization",
     u"magnifyingglass.circle", G::StorePresence},
    {SidebarSection::AppInformation, u"appInformation", u"App-Informationen", u"info.circle",
     G::StorePresence},
    {SidebarSection::Screenshots, u"screenshots", u"Screenshots", u"photo.on.rectangle", G::StorePresence},
    {SidebarSection::Releases, u"releases", u"Versionen & Builds", u"shippingbox", G::Distribution},
    {SidebarSection::TestFlight, u"testFlight", u"TestFlight", u"airplane", G::Distribution},
    {SidebarSection::Monetization, u"monetization", u"Monetarisierung", u"creditcard", G::Business},
    {SidebarSection::Reviews, u"reviews", u"Reviews", u"star.bubble", G::Insights},
    {SidebarSection::Analytics, u"analytics", u"Analytics", u"chart.xyaxis.line", G::Insights},
    // The last two join the heading before them, so that the sidebar shows the sections in their
    // fixed order and Ctrl+1…9 count what the user sees.
    {SidebarSection::XcodeCloud, u"xcodeCloud", u"Xcode Cloud", u"cloud", G::Insights},
    {SidebarSection::Platform, u"platform", u"Plattform", u"square.stack.3d.up", G::Insights},
}};
} // namespace

QString SidebarSections::rawValue(SidebarSection section) {
    return rows[size_t(section)].raw.toString();
}

std::optional<SidebarSection> SidebarSections::fromRaw(const QString& raw) {
    for (const auto& row : rows) {
        if (row.raw == raw) {
            return row.section;
        }
    }
    return std::nullopt;
}

QString SidebarSections::title(SidebarSection section) {
    return rows[size_t(section)].title.toString();
}

QList<SidebarSection> SidebarSections::all() {
    QList<SidebarSection> sections;
    for (const auto& row : rows) {
        sections.append(row.section);
    }
    return sections;
}

QString SidebarSections::symbol(SidebarSection section) {
    return rows[size_t(section)].symbol.toString();
}

SidebarGroup SidebarSections::group(SidebarSection section) {
    return rows[size_t(section)].group;
}

QString SidebarSections::groupTitle(SidebarGroup group) {
    switch (group) {
    case SidebarGroup::Start:
        return u"Start"_s;
    case SidebarGroup::StorePresence:
        return u"Store-Auftritt"_s;
    case SidebarGroup::Distribution:
        return u"Auslieferung"_s;
    case SidebarGroup::Business:
        return u"Monetarisierung"_s;
    case SidebarGroup::Insights:
        return u"Einblicke"_s;
    }
    return {};
}
