#include "library/ktAnnotationLegacyLibrary.h"

#include "legacy/ktAnnotationInterface.h"
#include "legacy/ktAnnotationMetaData.h"
#include "legacy/ktAnnotationView.h"
#include "legacy/ktLegacyStatics_p.h"
#include "platform/annotation/ktAnnotationLibrary.h"
#include "platform/scenegraph/ktSceneGraph.h"
#include "platform/system/ktSystem.h"
#include "platform/system/object/ktRttiInterface.h"

namespace {

constexpr const char* sViewFactoryName = "ktCore.ktAnnotationView";
// Streams spell the metadata class with a small "d"; the class's own record has a capital one. Both are in use.
constexpr const char* sMetaDataFactoryName = "ktCore.ktAnnotationMetadata";

}  // namespace

namespace kt {

void initializeKtAnnotationLegacyLibrary() {
    if (!ktLegacy::impl::sInitCounter.incrementInitCounter()) {
        return;
    }
    initializeKtSystem(InitType::Full, false);
    initializeKtSceneGraph();
    initializeKtAnnotationLibrary(false);
    ktLegacy::ktAnnotationInterface::InitDummySubAnnots();
    ktRttiInterface::RegisterFactoryFunction(sViewFactoryName, ktLegacy::ktAnnotationView::Factory);
    ktRttiInterface::RegisterFactoryFunction(sMetaDataFactoryName, ktLegacy::ktAnnotationMetaData::Factory);
}

void terminateKtAnnotationLegacyLibrary() {
    if (!ktLegacy::impl::sInitCounter.decrementInitCounter()) {
        return;
    }
    ktRttiInterface::UnregisterFactoryFunction(sViewFactoryName);
    ktRttiInterface::UnregisterFactoryFunction(sMetaDataFactoryName);
    terminateKtAnnotationLibrary();
    terminateKtSceneGraph();
    terminateKtSystem();
    // Not the mirror of the initialisation: annotations may still be looked at until the platform is down.
    ktLegacy::ktAnnotationInterface::ClearDummySubAnnots();
}

}  // namespace kt
