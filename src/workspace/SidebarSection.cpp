#include "workspace/SidebarSection.h"

#include <array>

using namespace Qt::StringLiterals;

namespace {
struct Row {
    SidebarSection section;
    QStringView raw;
    QStringView title;
};
constexpr std::array<Row, 11> rows{{
    {SidebarSection::Overview, u"overview", u"Übersicht"},
    {SidebarSection::AppStoreOptimization, u"appStoreOptimization", u"App Store Optimization"},
    {SidebarSection::AppInformation, u"appInformation", u"App-Informationen"},
    {SidebarSection::Screenshots, u"screenshots", u"Screenshots"},
    {SidebarSection::Releases, u"releases", u"Versionen & Builds"},
    {SidebarSection::TestFlight, u"testFlight", u"TestFlight"},
    {SidebarSection::Monetization, u"monetization", u"Monetarisierung"},
    {SidebarSection::Reviews, u"reviews", u"Reviews"},
    {SidebarSection::Analytics, u"analytics", u"Analytics"},
    {SidebarSection::XcodeCloud, u"xcodeCloud", u"Xcode Cloud"},
    {SidebarSection::Platform, u"platform", u"Plattform"},
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
