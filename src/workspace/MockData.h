#pragma once

#include "workspace/ManagedApp.h"

#include <QList>

// Sample data for demo mode: pure functions, fresh values of the same types the services return,
// so that a screen cannot tell them apart. Nothing here touches the network or a store.
namespace MockData {
QList<ManagedApp> apps();
}
