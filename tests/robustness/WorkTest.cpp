#include "document/ktLegacyDocument.h"
#include "library/ktAnnotationLegacyLibrary.h"
#include "tests/legacy/StreamBuilder.h"
#include "tests/robustness/DamagedDocuments.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <new>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace {

/// Bytes and blocks allocated since the program began.
struct Work {
    std::uint64_t mBytes = 0;
    std::uint64_t mBlocks = 0;
};
Work sWork;

void* allocate(std::size_t size) {
    sWork.mBytes += size;
    ++sWork.mBlocks;
    void* block = std::malloc(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

}  // namespace

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept { return std::malloc(size); }
void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept { return std::malloc(size); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t /*size*/) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t /*size*/) noexcept { std::free(block); }

namespace ktTest {
namespace {

Bytes makeView(const StreamBuilder& body) { return DocumentBuilder(27).view(1, body).build(); }

/// The front, so many times the element, and the back.
StreamBuilder repeat(StreamBuilder front, const StreamBuilder& element, std::uint32_t count,
                     const StreamBuilder& back) {
    for (std::uint32_t index = 0; index < count; ++index) {
        front.bytes(element);
    }
    return front.bytes(back);
}

/// JSON text with a list of so many equal elements.
Bytes repeatJson(std::string_view front, const std::string& element, std::uint32_t count, const std::string& back) {
    return repeat(StreamBuilder().bytes(front), StreamBuilder().bytes(element + ","), count - 1,
                  StreamBuilder().bytes(element + back))
        .getBytes();
}

Bytes makeEmptySegments(std::uint32_t count) {
    StreamBuilder front = StreamBuilder().viewStart("v").u32(1).u32(0).base("t").properties("F", 100, 0, 0);
    return makeView(repeat(front.u32(1).u32(count), StreamBuilder().segment(""), count, StreamBuilder().emptyMap()));
}

Bytes makeEqualKeys(std::uint32_t count) {
    const StreamBuilder front = StreamBuilder().viewStart("v").u32(0).u32(0).u32(count);
    return makeView(repeat(front, StreamBuilder().text("same").u8(1).u8(1), count, StreamBuilder()));
}

/// Objects of ids that differ by a step.
Bytes makeObjects(const char* type, std::uint32_t step, std::uint32_t count) {
    DocumentBuilder document(27);
    for (std::uint32_t index = 0; index < count; ++index) {
        document.record(type, 7 + index * step, makeSmallView(27, "v"));
    }
    return document.build();
}

Bytes makeUnknownTypes(std::uint32_t count) { return makeObjects("?", 1, count); }

Bytes makeTakenIds(std::uint32_t count) { return makeObjects("ktCore.ktAnnotationView", 0, count); }

Bytes makeLinksToNothing(std::uint32_t count) {
    return DocumentBuilder(27).metadata(1, std::vector<std::uint32_t>(count, 2)).build();
}

Bytes makeEqualJsonKeys(std::uint32_t count) {
    return repeatJson(R"({"ver": "6.27", "metadata": {)", R"("same": {"a": [1, "text"]})", count, "}}");
}

Bytes makeBadJsonAnnotations(std::uint32_t count) {
    const std::string annotation = R"({"type": "text", "leaders": 5, "color": []})";
    return repeatJson(R"({"ver": "6.27", "annotations": [)", annotation, count, "]}");
}

Bytes makeBadJsonViews(std::uint32_t count) { return repeatJson("[", R"({"ver": "1.0"})", count, "]"); }

Work measureLoading(const Bytes& document) {
    const Work before = sWork;
    ktLegacy::ktLegacyDocument::read(document);
    return {sWork.mBytes - before.mBytes, sWork.mBlocks - before.mBlocks};
}

// Twice the input takes about twice the memory and allocations; room is left for lists that grow by doubling.
TEST(Work, GrowsWithHostileInputAndNoFaster) {
    constexpr std::uint32_t count = 20'000;
    constexpr double largestGrowth = 2.6;
    const struct {
        const char* mName;
        Bytes (*mMake)(std::uint32_t);
    } inputs[] = {{"empty segments", makeEmptySegments},       {"equal keys", makeEqualKeys},
                  {"unknown types", makeUnknownTypes},         {"taken ids", makeTakenIds},
                  {"links to nothing", makeLinksToNothing},    {"equal JSON keys", makeEqualJsonKeys},
                  {"bad annotations", makeBadJsonAnnotations}, {"bad views", makeBadJsonViews}};
    kt::initializeKtAnnotationLegacyLibrary();
    for (const auto& input : inputs) {
        SCOPED_TRACE(input.mName);
        const Bytes once = input.mMake(count);
        const Bytes twice = input.mMake(2 * count);
        measureLoading(once);  // pools and caches are filled
        const Work first = measureLoading(once);
        const Work second = measureLoading(twice);
        EXPECT_LT(static_cast<double>(second.mBytes), largestGrowth * static_cast<double>(first.mBytes));
        EXPECT_LT(static_cast<double>(second.mBlocks), largestGrowth * static_cast<double>(first.mBlocks) + 100);
        RecordProperty(input.mName, std::to_string(first.mBytes) + " and " + std::to_string(second.mBytes) + " bytes");
    }
    kt::terminateKtAnnotationLegacyLibrary();
}

}  // namespace
}  // namespace ktTest
