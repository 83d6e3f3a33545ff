#pragma once

#include "api/Endpoint.h"

// Endpoints around a test's own request, for tests of the client itself.
inline Endpoint<Returns::Bytes> bytesOf(APIRequest request) {
    return Endpoint<Returns::Bytes>::of(std::move(request));
}

inline Endpoint<Returns::Nothing> nothingOf(APIRequest request) {
    return Endpoint<Returns::Nothing>::of(std::move(request));
}
