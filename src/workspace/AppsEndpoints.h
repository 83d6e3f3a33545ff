#pragma once

#include "api/Endpoint.h"
#include "workspace/ManagedApp.h"

// Every request of the app list.
namespace AppsEndpoints {

// The apps of the account by name.
Endpoint<Returns::AllPages<ASCAppAttributes>> apps(int pageLimit, int maxPages);

} // namespace AppsEndpoints
