#pragma once

#include "api/Endpoint.h"

// Endpoints around a test's own request, for tests of the client itself.
inline Endpoint<Returns::Bytes> bytesOf(APIRequest request) {
    return Endpoint<Returns::Bytes>::of(std::move(request));
}

inline Endpoint<Returns::Nothing> nothingOf(APIRequest request) {
    return Endpoint<Returns::Nothing>::of(std::move(request));
}

// The body of a write that Apple's document accepts, for tests of the client itself: a new
// beta group of the app "app-1" (POST /v1/betaGroups).
inline QByteArray newBetaGroupBody() {
    return QByteArrayLiteral(R"({"data":{"type":"betaGroups","attributes":{"name":"Tester"},)"
                             R"("relationships":{"app":{"data":{"type":"apps","id":"app-1"}}}}})");
}
