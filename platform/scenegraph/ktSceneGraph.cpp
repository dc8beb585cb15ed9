#include "platform/scenegraph/ktSceneGraph.h"

#include "platform/system/LibInitCounter.h"
#include "platform/system/ktSystem.h"

namespace kt {

namespace {
impl::LibInitCounter sInitCounter("sceneGraph", true);
}

void initializeKtSceneGraph() {
    if (sInitCounter.incrementInitCounter()) {
        initializeKtSystem(InitType::Full, false);
    }
}

void terminateKtSceneGraph() {
    if (sInitCounter.decrementInitCounter()) {
        terminateKtSystem();
    }
}

}  // namespace kt
