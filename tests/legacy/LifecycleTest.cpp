// Builds the library's frame from its sources against recording stand-ins of everything that it calls, so that the
// order of the calls shows.

#include "legacy/ktAnnotationInterface.h"
#include "legacy/ktAnnotationMetaData.h"
#include "legacy/ktAnnotationView.h"
#include "library/ktAnnotationLegacyLibrary.h"
#include "platform/annotation/ktAnnotationLibrary.h"
#include "platform/scenegraph/ktSceneGraph.h"
#include "platform/system/LibInitCounter.h"
#include "platform/system/ktSystem.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

/// What the stand-ins were asked for, in order. Never destroyed, as it is used before and after main().
std::string& getCalls() {
    static auto* calls = new std::string;
    return *calls;
}

void record(const std::string& call) { getCalls() += call + '\n'; }

std::string takeCalls() { return std::exchange(getCalls(), {}); }

/// What goes at exit is told on standard error, where the test sees it after the process has ended.
void recordEnd(const std::string& name) { std::fprintf(stderr, "gone: %s\n", name.c_str()); }

}  // namespace

// Stand-ins

kt::ktRtti::ktRtti(const char* name, const ktRtti* parent) : mName(name), mParent(parent) { record("record " + mName); }
kt::ktRtti::~ktRtti() { recordEnd("record " + mName); }

kt::impl::LibInitCounter::LibInitCounter(const char* name, bool reportUnbalanced)
    : mName(name), mReportUnbalanced(reportUnbalanced) {
    record(std::string("counter ") + name + (reportUnbalanced ? " true" : " false"));
}
kt::impl::LibInitCounter::~LibInitCounter() { recordEnd(std::string("counter ") + mName); }
bool kt::impl::LibInitCounter::incrementInitCounter() { return ++mCount == 1; }
bool kt::impl::LibInitCounter::decrementInitCounter() { return mCount > 0 && --mCount == 0; }

// The linker leads the library's uses of std::ios_base::Init here.
extern "C" {
void __real__ZNSt8ios_base4InitC1Ev(void* self);
void __real__ZNSt8ios_base4InitD1Ev(void* self);
void __wrap__ZNSt8ios_base4InitC1Ev(void* self) {
    record("standard streams");
    __real__ZNSt8ios_base4InitC1Ev(self);
}
void __wrap__ZNSt8ios_base4InitD1Ev(void* self) {
    recordEnd("standard streams");
    __real__ZNSt8ios_base4InitD1Ev(self);
}
}

void kt::initializeKtSystem(InitType type, bool verbose) {
    record("initialize system " + std::to_string(static_cast<int>(type)) + (verbose ? " true" : " false"));
}
void kt::terminateKtSystem() { record("terminate system"); }
void kt::initializeKtSceneGraph() { record("initialize scene graph"); }
void kt::terminateKtSceneGraph() { record("terminate scene graph"); }
void kt::initializeKtAnnotationLibrary(bool preloadFonts) {
    record(std::string("initialize annotation") + (preloadFonts ? " true" : " false"));
}
void kt::terminateKtAnnotationLibrary() { record("terminate annotation"); }

void ktLegacy::ktAnnotationInterface::InitDummySubAnnots() { record("create shared list"); }
void ktLegacy::ktAnnotationInterface::ClearDummySubAnnots() noexcept { record("destroy shared list"); }

kt::ktRttiInterface* ktLegacy::ktAnnotationView::Factory(kt::ktBaseStream& /*stream*/) { return nullptr; }
kt::ktRttiInterface* ktLegacy::ktAnnotationMetaData::Factory(kt::ktBaseStream& /*stream*/) { return nullptr; }

void kt::ktRttiInterface::RegisterFactoryFunction(const std::string& name, FactoryFunction factory) {
    record("register " + name + (factory == ktLegacy::ktAnnotationView::Factory ? " for views" : " for metadata"));
}
void kt::ktRttiInterface::UnregisterFactoryFunction(const std::string& name) { record("unregister " + name); }

const kt::ktRtti kt::ktObject::TYPE("ktObject", nullptr);
const kt::ktRtti kt::ktMetadataInterface::TYPE("ktMetadataInterface", &ktObject::TYPE);

namespace {

// One test, as the calls before main() are recorded once only.
TEST(Lifecycle, EverythingComesAndGoesInOrder) {
    EXPECT_THAT(takeCalls(), testing::HasSubstr("counter annotationLegacy true\nrecord ktCore.ktAnnotationMetaData\n"
                                                "standard streams\nrecord ktCore.ktAnnotationView\n"));
    EXPECT_EQ(ktLegacy::ktAnnotationMetaData::TYPE.GetParent(), &kt::ktMetadataInterface::TYPE);
    EXPECT_EQ(ktLegacy::ktAnnotationView::TYPE.GetParent(), &kt::ktObject::TYPE);
    for (int use = 0; use < 2; ++use) {
        kt::initializeKtAnnotationLegacyLibrary();
        EXPECT_EQ(takeCalls(),
                  "initialize system 2 false\ninitialize scene graph\ninitialize annotation false\ncreate shared list\n"
                  "register ktCore.ktAnnotationView for views\nregister ktCore.ktAnnotationMetadata for metadata\n");
        kt::initializeKtAnnotationLegacyLibrary();
        kt::terminateKtAnnotationLegacyLibrary();
        EXPECT_EQ(takeCalls(), "") << "a second user changes the count only";
        kt::terminateKtAnnotationLegacyLibrary();
        EXPECT_EQ(takeCalls(),
                  "unregister ktCore.ktAnnotationView\nunregister ktCore.ktAnnotationMetadata\nterminate annotation\n"
                  "terminate scene graph\nterminate system\ndestroy shared list\n");
        kt::terminateKtAnnotationLegacyLibrary();
        EXPECT_EQ(takeCalls(), "") << "a surplus call does nothing";
    }
    EXPECT_EXIT(std::exit(0), testing::ExitedWithCode(0),
                "gone: record ktCore.ktAnnotationView\ngone: standard streams\n"
                "gone: record ktCore.ktAnnotationMetaData\ngone: counter annotationLegacy\n");
}

}  // namespace
