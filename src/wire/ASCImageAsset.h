#pragma once

#include <QString>

#include <optional>

// An image as Apple serves it: a URL template with "{w}", "{h}" and "{f}" placeholders and the
// original size. Builds, screenshots and review screenshots all carry one.
struct ASCImageAsset {
    std::optional<QString> templateUrl;
    std::optional<int> width;
    std::optional<int> height;
    friend bool operator==(const ASCImageAsset&, const ASCImageAsset&) = default;
};
