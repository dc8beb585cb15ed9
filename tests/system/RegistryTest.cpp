#include "platform/system/LibInitCounter.h"
#include "platform/system/ktMetadataInterface.h"
#include "platform/system/ktObject.h"
#include "platform/system/ktPointer.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace {

using kt::ktRttiInterface;

ktRttiInterface* makeNothing(kt::ktBaseStream& /*stream*/) { return nullptr; }
ktRttiInterface* makeOther(kt::ktBaseStream& /*stream*/) { return nullptr; }

TEST(Registry, LastRegistrationCountsOnEveryThread) {
    ktRttiInterface::RegisterFactoryFunction("test.Shared", makeNothing);
    const auto work = [](int number) {
        const std::string own = "test.Thread" + std::to_string(number);
        int misses = 0;
        for (int round = 0; round < 500; ++round) {
            ktRttiInterface::RegisterFactoryFunction(own, makeNothing);
            ktRttiInterface::RegisterFactoryFunction(own, makeOther);
            misses += static_cast<int>(ktRttiInterface::FindFactoryFunction(own) != &makeOther);
            misses += static_cast<int>(ktRttiInterface::FindFactoryFunction("test.Shared") != &makeNothing);
            misses += static_cast<int>(ktRttiInterface::FindFactoryFunction("test.shared") != nullptr);
            ktRttiInterface::UnregisterFactoryFunction(own);
            ktRttiInterface::UnregisterFactoryFunction(own);
            misses += static_cast<int>(ktRttiInterface::FindFactoryFunction(own) != nullptr);
        }
        EXPECT_EQ(misses, 0);
    };
    std::vector<std::jthread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back(work, number);
    }
    threads.clear();
    ktRttiInterface::UnregisterFactoryFunction("test.Shared");
}

class Counted : public kt::ktObject {
public:
    explicit Counted(int& alive) : mAlive(alive) { ++mAlive; }
    ~Counted() override { --mAlive; }

private:
    int& mAlive;
};

TEST(Pointer, LastReferenceDestroysTheObject) {
    int alive = 0;
    kt::ktPointer<Counted> first(new Counted(alive));
    kt::ktPointer<kt::ktObject> second(first);
    EXPECT_EQ(first->GetReferences(), 2);
    kt::ktPointer<Counted> moved(std::move(first));
    EXPECT_EQ(moved->GetReferences(), 2);
    moved = moved.get();
    moved.reset();
    EXPECT_EQ(alive, 1);
    second = nullptr;
    EXPECT_EQ(alive, 0);
}

TEST(Rtti, KnowsItsAncestors) {
    const kt::ktRtti& metadata = kt::ktMetadataInterface::TYPE;
    EXPECT_TRUE(metadata.IsDerived(kt::ktObject::TYPE) && metadata.IsDerived(ktRttiInterface::TYPE));
    EXPECT_TRUE(metadata.IsDerived(metadata) && metadata.IsExactly(metadata));
    EXPECT_FALSE(kt::ktObject::TYPE.IsDerived(metadata) || metadata.IsExactly(kt::ktObject::TYPE));
}

TEST(InitCounter, OnlyTheFirstAndTheLastUserCount) {
    kt::impl::LibInitCounter counter("test", true);
    EXPECT_FALSE(counter.decrementInitCounter());
    EXPECT_TRUE(counter.incrementInitCounter());
    EXPECT_FALSE(counter.incrementInitCounter());
    EXPECT_FALSE(counter.decrementInitCounter());
    EXPECT_TRUE(counter.decrementInitCounter());
}

}  // namespace
