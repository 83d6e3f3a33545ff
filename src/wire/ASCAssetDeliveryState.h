#pragma once

#include "wire/OpenEnum.h"

// Where an uploaded asset stands at Apple; the label is that of a screenshot tile.
struct AssetDeliveryStateTraits {
    enum class Case { Unknown, AwaitingUpload, UploadComplete, Complete, Failed };
    static constexpr std::array<RawValueRow<Case>, 4> rows{{
        {Case::AwaitingUpload, u"AWAITING_UPLOAD", u"Wartet auf Upload"},
        {Case::UploadComplete, u"UPLOAD_COMPLETE", u"Hochgeladen"},
        {Case::Complete, u"COMPLETE", u"Fertig"},
        {Case::Failed, u"FAILED", u"Fehlgeschlagen"},
    }};
};
using ASCAssetDeliveryState = OpenEnum<AssetDeliveryStateTraits>;
