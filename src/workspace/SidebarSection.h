#pragma once

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

namespace SidebarSections {
QString rawValue(SidebarSection section);
std::optional<SidebarSection> fromRaw(const QString& raw);
QString title(SidebarSection section);
} // namespace SidebarSections
