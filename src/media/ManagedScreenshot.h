#pragma once

#include "wire/ASCAssetDeliveryState.h"
#include "wire/ASCImageAsset.h"

#include <QString>

#include <optional>

// One screenshot in a set, in the order Apple shows them.
struct ManagedScreenshot {
    QString id;
    QString fileName;
    std::optional<qint64> fileSize;
    std::optional<ASCImageAsset> imageAsset;
    ASCAssetDeliveryState deliveryState;
    friend bool operator==(const ManagedScreenshot&, const ManagedScreenshot&) = default;
};
