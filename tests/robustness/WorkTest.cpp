#include "library/ktAnnotationLegacyLibrary.h"
#include "tests/legacy/StreamBuilder.h"
#include "tests/robustness/DamagedDocuments.h"
#include "tools/ktannot/LegacyDocument.h"

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

constexpr unsigned int sMinor = 27;

Bytes makeView(const StreamBuilder& body) { return DocumentBuilder(sMinor).view(1, body.getBytes()).build(); }

Bytes makeEmptySegments(std::uint32_t count) {
    StreamBuilder body(sMinor);
    body.viewStart("v").u32(1).u32(0).base("t").properties("F", 100, 0, 0).u32(1).u32(count);
    for (std::uint32_t index = 0; index < count; ++index) {
        body.segment("");
    }
    return makeView(body.emptyMap());
}

Bytes makeEqualKeys(std::uint32_t count) {
    StreamBuilder body(sMinor);
    body.viewStart("v").u32(0).u32(0).u32(count);
    for (std::uint32_t index = 0; index < count; ++index) {
        body.text("same").u8(1).u8(1);
    }
    return makeView(body);
}

Bytes makeUnknownTypes(std::uint32_t count) {
    DocumentBuilder document(sMinor);
    for (std::uint32_t index = 0; index < count; ++index) {
        document.record("?", index + 1, {});
    }
    return document.build();
}

Bytes makeTakenIds(std::uint32_t count) {
    DocumentBuilder document(sMinor);
    for (std::uint32_t index = 0; index < count; ++index) {
        document.view(7, makeSmallViewBody(sMinor, "v"));
    }
    return document.build();
}

Bytes makeLinksToNothing(std::uint32_t count) {
    return DocumentBuilder(sMinor).metadata(1, std::vector<std::uint32_t>(count, 2)).build();
}

Bytes repeat(std::string_view front, std::string_view element, std::uint32_t count, std::string_view back) {
    std::string text(front);
    for (std::uint32_t index = 0; index < count; ++index) {
        text.append(index == 0 ? "" : ",").append(element);
    }
    text.append(back);
    const auto bytes = std::as_bytes(std::span(text));
    return {bytes.begin(), bytes.end()};
}

Bytes makeEqualJsonKeys(std::uint32_t count) {
    return repeat(R"({"ver": "6.27", "metadata": {)", R"("same": {"a": [1, "text"]})", count, "}}");
}

Bytes makeBadJsonAnnotations(std::uint32_t count) {
    return repeat(R"({"ver": "6.27", "annotations": [)", R"({"type": "text", "leaders": 5, "color": []})", count, "]}");
}

Bytes makeBadJsonViews(std::uint32_t count) { return repeat("[", R"({"ver": "1.0"})", count, "]"); }

Work measureLoading(const Bytes& document) {
    const Work before = sWork;
    ktannot::LegacyDocument::load("test", document);
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
