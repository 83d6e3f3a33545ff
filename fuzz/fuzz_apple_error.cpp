// Apple's error document: the body of any answer that is not a success. It is read leniently and
// its words reach labels and terminals, which must never see a control code from outside.

#include "FuzzSupport.h"

#include "wire/AppleErrorDocument.h"
#include "wire/VelmoraAPIError.h"

#include <algorithm>

namespace {

// What a failed operation shows; blank would look like no failure at all.
void checkShown(const QString& text) {
    Fuzz::check(!text.trimmed().isEmpty(), "an error without words");

    const bool clean = std::none_of(text.cbegin(), text.cend(), [](QChar c) {
        return c.category() == QChar::Other_Control && c != u'\n' && c != u'\t';
    });
    Fuzz::check(clean, "a control code from the answer reaches the user's text");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Fuzz::startApplication();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray body = Fuzz::bytes(data, size);
    const QList<AppleErrorObject> errors = AppleErrorDocument::decodeLenient(body);
    for (const auto& e : errors) {
        (void)e.code;
    }
    const VelmoraAPIError http = VelmoraAPIError::http(size % 600, std::nullopt, errors);
    checkShown(http.errorDescription());
    checkShown(describeError(http));
    checkShown(QString::fromUtf8(http.what()));
    const VelmoraAPIError forbidden = VelmoraAPIError::forbidden(errors);
    checkShown(forbidden.errorDescription());
    return 0;
}
