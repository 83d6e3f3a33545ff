#pragma once

// What is known about the screenshots of one language: how many sets exist, how many of them hold
// at least one screenshot, and how many screenshots there are in all. `isUnavailable` says that
// the sets of this language could not be read, so nothing about them is known.
struct ScreenshotSummary {
    int setCount = 0;
    int filledSetCount = 0;
    int totalScreenshots = 0;
    bool isUnavailable = false;
    friend bool operator==(const ScreenshotSummary&, const ScreenshotSummary&) = default;
};
