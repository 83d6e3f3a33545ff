#pragma once

#include <QList>
#include <QString>

#include <optional>

// The sections of an app, in their order. The raw value is what stored state and links carry.
enum class SidebarSection {
    Overview,
    AppStoreOptimization,
    AppInformation,
    Screenshots,
    Releases,
    TestFlight,
    Monetization,
    Reviews,
    Analytics,
    XcodeCloud,
    Platform,
};

// The headings that gather the sections in the sidebar.
enum class SidebarGroup { Start, StorePresence, Distribution, Business, Insights };

namespace SidebarSections {
QList<SidebarSection> all();
QString rawValue(SidebarSection section);
std::optional<SidebarSection> fromRaw(const QString& raw);
QString title(SidebarSection section);
// A symbol name in the platform's symbol vocabulary; the screens map it to an icon.
QString symbol(SidebarSection section);
SidebarGroup group(SidebarSection section);
QString groupTitle(SidebarGroup group);
} // namespace SidebarSections
