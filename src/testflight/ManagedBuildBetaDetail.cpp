#include "testflight/ManagedBuildBetaDetail.h"

using namespace Qt::StringLiterals;

namespace {
std::optional<ASCBetaBuildState> stateOf(const std::optional<QString>& raw) {
    if (!raw) {
        return std::nullopt;
    }
    return ASCBetaBuildState::fromRaw(*raw);
}

std::optional<QString> rawOf(const std::optional<ASCBetaBuildState>& state) {
    if (!state) {
        return std::nullopt;
    }
    return state->raw();
}
} // namespace

ASCBuildBetaDetailAttributes ASCBuildBetaDetailAttributes::fromJson(const JsonReader& r) {
    return ASCBuildBetaDetailAttributes{r.optBool(u"autoNotifyEnabled"_s),
                                        r.optString(u"internalBuildState"_s),
                                        r.optString(u"externalBuildState"_s)};
}

std::optional<QString> ManagedBuildBetaDetail::internalRawState() const {
    return rawOf(internal);
}

std::optional<QString> ManagedBuildBetaDetail::externalRawState() const {
    return rawOf(external);
}

bool ManagedBuildBetaDetail::isMissingExportCompliance() const {
    const auto missing = ASCBetaBuildState(ASCBetaBuildState::Case::MissingExportCompliance);
    return internal == missing || external == missing;
}

QString ManagedBuildBetaDetail::label(const std::optional<ASCBetaBuildState>& state) {
    return state ? state->displayName() : u"–"_s;
}

ManagedBuildBetaDetail
ManagedBuildBetaDetail::fromResource(const std::optional<ASCBuildBetaDetailAttributes>& a) {
    if (!a) {
        return {};
    }
    return ManagedBuildBetaDetail{stateOf(a->internalBuildState), stateOf(a->externalBuildState)};
}
