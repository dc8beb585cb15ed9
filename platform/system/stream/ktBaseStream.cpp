#include "platform/system/stream/ktBaseStream.h"

namespace kt {

ktMemoryBudgetExceeded::~ktMemoryBudgetExceeded() = default;

const char* ktMemoryBudgetExceeded::what() const noexcept { return "memory budget exceeded"; }

ktBaseStream::ktBaseStream(std::span<const std::byte> bytes, ktStreamVersion version)
    : mBegin(bytes.data()), mCursor(mBegin), mEnd(mBegin + bytes.size()), mSize(bytes.size()), mVersion(version) {}

ktBaseStream::ktBaseStream(const void* data, std::size_t size, ktStreamVersion version)
    : ktBaseStream(std::span(static_cast<const std::byte*>(data), size), version) {}

ktBaseStream::~ktBaseStream() = default;

void ktBaseStream::confine(std::size_t begin, std::size_t end) {
    end = std::min(end, mSize);
    mCursor = mBegin + std::min(begin, end);
    mEnd = mBegin + end;
    clearStreamError();
}

std::size_t ktBaseStream::readShort(void* destination) {
    const std::size_t available = getRemaining();
    if (available != 0) {
        std::memcpy(destination, mCursor, available);
    }
    exhaust();
    return available;
}

void ktBaseStream::refuseMemory(std::uint64_t count) {
    mIsBudgetExceeded = true;
    mRefusedCount = count;
    throw ktMemoryBudgetExceeded();
}

void ktBaseStream::addPendingLink(const PendingLink& link) {
    chargeMemory(1, sizeof(PendingLink));
    mPendingLinks.push_back(link);
}

void ktBaseStream::swapBytes(std::size_t itemSize, std::size_t size, void* items) {
    auto* bytes = static_cast<std::byte*>(items);
    for (std::size_t offset = 0; offset < size; offset += itemSize) {
        std::reverse(bytes + offset, bytes + offset + itemSize);
    }
}

}  // namespace kt
