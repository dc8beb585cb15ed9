#include "library/ktAnnotationLegacyLibrary.h"

#include "legacy/ktAnnotationInterface.h"
#include "legacy/ktAnnotationMetaData.h"
#include "legacy/ktAnnotationView.h"
#include "legacy/ktLegacyStatics_p.h"
#include "platform/annotation/ktAnnotationLibrary.h"
#include "platform/scenegraph/ktSceneGraph.h"
#include "platform/system/ktSystem.h"
#include "platform/system/object/ktRttiInterface.h"

#include <exception>
#include <string>
#include <utility>

namespace {

/// Streams spell the metadata class with a small "d"; the class's own record has a capital one. Both are in use. Never
/// destroyed: static objects of a host may terminate the library last.
const std::string& getMetaDataFactoryName() {
    static const std::string& name = *new std::string("ktCore.ktAnnotationMetadata");
    return name;
}

/// Takes a step of the initialisation back when a later one fails.
template <typename Step>
class OnFailure {
public:
    explicit OnFailure(Step takeBack) : mTakeBack(std::move(takeBack)) {}
    OnFailure(const OnFailure&) = delete;
    OnFailure& operator=(const OnFailure&) = delete;
    ~OnFailure() {
        if (std::uncaught_exceptions() > mExceptions) {
            mTakeBack();
        }
    }

private:
    Step mTakeBack;
    int mExceptions = std::uncaught_exceptions();
};

}  // namespace

namespace kt {

using ktLegacy::ktAnnotationInterface;
using ktLegacy::ktAnnotationMetaData;
using ktLegacy::ktAnnotationView;

void initializeKtAnnotationLegacyLibrary() {
    if (!ktLegacy::impl::sInitCounter.incrementInitCounter()) {
        return;
    }
    const OnFailure endUse([] { ktLegacy::impl::sInitCounter.decrementInitCounter(); });
    initializeKtSystem(InitType::Full, false);
    const OnFailure endSystem(terminateKtSystem);
    initializeKtSceneGraph();
    const OnFailure endSceneGraph(terminateKtSceneGraph);
    initializeKtAnnotationLibrary(false);
    const OnFailure endAnnotations(terminateKtAnnotationLibrary);
    ktAnnotationInterface::InitDummySubAnnots();
    const OnFailure endList(ktAnnotationInterface::ClearDummySubAnnots);
    ktAnnotationView::RegisterFactory();
    const OnFailure endView(ktAnnotationView::UnRegisterFactory);
    ktRttiInterface::RegisterFactoryFunction(getMetaDataFactoryName(), ktAnnotationMetaData::Factory);
}

void terminateKtAnnotationLegacyLibrary() {
    if (!ktLegacy::impl::sInitCounter.decrementInitCounter()) {
        return;
    }
    ktAnnotationView::UnRegisterFactory();
    ktRttiInterface::UnregisterFactoryFunction(getMetaDataFactoryName());
    terminateKtAnnotationLibrary();
    terminateKtSceneGraph();
    terminateKtSystem();
    // Not the mirror of the initialisation: annotations may still be looked at until the platform is down.
    ktAnnotationInterface::ClearDummySubAnnots();
}

}  // namespace kt
