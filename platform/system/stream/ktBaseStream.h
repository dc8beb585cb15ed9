#pragma once

/// @file
/// Reader of the binary object stream.

#include "platform/system/ktSystemExport.h"
#include "platform/system/memory/ktLimits.h"
#include "platform/system/object/ktPointer.h"
#include "platform/system/object/ktRttiInterface.h"
#include "platform/system/stream/ktStreamVersion.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <span>
#include <vector>

namespace kt {

/// Why the error flag of a stream was set.
enum class ktStreamFault : std::uint8_t {
    None,                 ///< the flag is not set
    Unspecified,          ///< the reader of a record gave no reason
    RecordTooShort,       ///< a read was short
    UnsupportedVersion,   ///< the record is of a version that its class cannot read
    WrongTypeIdentifier,  ///< a metadata record carries the identifier of another type
    UnknownChildType,     ///< a nested annotation is of an unknown type
    AnnotationsTooDeep,   ///< annotations are nested deeper than sMaxAnnotationDepth
    UnknownValueKind,     ///< a value of a variant map is of an unknown kind
    MetadataTooDeep,      ///< a variant map is nested deeper than sMaxVariantMapDepth
};

/// Thrown by ktBaseStream::chargeMemory(): the input claims more memory than its budget allows.
class KT_SYSTEM_API ktMemoryBudgetExceeded : public std::bad_alloc {
public:
    ~ktMemoryBudgetExceeded() override;
    const char* what() const noexcept override;
};

/// A cursor over the bytes of a versioned, little-endian object stream. It does not own the bytes; they must outlive
/// it.
///
/// Errors never throw: readers set a flag and go on. After any short read the stream is exhausted, so that every later
/// read is short too. The exception is memory: what exceeds the memory budget throws std::bad_alloc before anything is
/// allocated.
class KT_SYSTEM_API ktBaseStream {
public:
    /// Gives the object behind a link as the wanted type, null when it is of another type.
    template <typename T>
    using LinkConverter = T* (*)(ktRttiInterface*);

    /// @param bytes    the record or document to read, from its first byte.
    /// @param version  the version that the readers of the records go by.
    ktBaseStream(std::span<const std::byte> bytes, ktStreamVersion version);
    ktBaseStream(const void* data, std::size_t size, ktStreamVersion version);
    ktBaseStream(const ktBaseStream&) = delete;
    ktBaseStream& operator=(const ktBaseStream&) = delete;
    ~ktBaseStream();

    ktStreamVersion GetVersion() const { return mVersion; }

    /// Reads count little-endian items of itemSize (1, 2, 4 or 8) bytes. All or nothing: on a short read nothing is
    /// stored, the error flag is set and false returned. A count or size below 1 reads nothing and is true.
    bool readle(int itemSize, int count, void* destination) {
        if (itemSize < 1 || count < 1) {
            return true;
        }
        // Two positive 32-bit numbers: the product fits 64 bits.
        const auto size = static_cast<std::size_t>(itemSize) * static_cast<std::size_t>(count);
        if (size > getRemaining()) [[unlikely]] {
            exhaust();
            setStreamError();
            return false;
        }
        std::memcpy(destination, mCursor, size);
        if constexpr (std::endian::native == std::endian::big) {
            swapBytes(static_cast<std::size_t>(itemSize), size, destination);
        }
        mCursor += size;
        mConsumedCount += size;
        return true;
    }

    /// Reads up to size bytes, stores what there is and returns how many. Sets no flag: a short read is the caller's to
    /// report with setStreamError().
    std::size_t read(void* destination, std::size_t size) {
        if (size > getRemaining()) [[unlikely]] {
            return readShort(destination);
        }
        if (size != 0) {
            std::memcpy(destination, mCursor, size);
            mCursor += size;
            mConsumedCount += size;
        }
        return size;
    }

    /// Consumes the next size bytes as one whole read and gives their place in the stream; null, with nothing changed,
    /// when there are fewer.
    const std::byte* take(std::size_t size) {
        if (size > getRemaining()) [[unlikely]] {
            return nullptr;
        }
        const std::byte* bytes = mCursor;
        mCursor += size;
        mConsumedCount += size;
        return bytes;
    }

    /// The next size bytes, which stay to be read; null when there are fewer.
    const std::byte* peek(std::size_t size) const { return size <= getRemaining() ? mCursor : nullptr; }

    /// Reads one byte as read() does, setting the error flag when there is none.
    /// @return false when there was none; value is unchanged then.
    bool readByte(std::uint8_t& value) {
        if (mCursor == mEnd) [[unlikely]] {
            exhaust();
            setStreamError();
            return false;
        }
        value = static_cast<std::uint8_t>(*mCursor);
        ++mCursor;
        ++mConsumedCount;
        return true;
    }

    /// Passes over size bytes and returns where they lie, valid as long as the stream's bytes; on a short read null,
    /// with the error flag set.
    const std::byte* readInPlace(std::size_t size) {
        if (size > getRemaining()) [[unlikely]] {
            exhaust();
            setStreamError();
            return nullptr;
        }
        const std::byte* bytes = mCursor;
        mCursor += size;
        mConsumedCount += size;
        return bytes;
    }

    /// @param fault  kept when it is the first one since the flag was last cleared, and no read was short before.
    void setStreamError(ktStreamFault fault = ktStreamFault::Unspecified) {
        mHasError = true;
        mErrorOffset = std::min(mErrorOffset, getOffset());
        mFault = mFault == ktStreamFault::None ? fault : mFault;
    }
    bool hasStreamError() const { return mHasError; }
    void clearStreamError() {
        mHasError = false;
        mErrorOffset = sNoOffset;
        mFault = ktStreamFault::None;
    }
    /// Why the error flag was set first; None while it is not set.
    ktStreamFault getFault() const { return mHasError ? mFault : ktStreamFault::None; }
    /// Where the first trouble was seen since the flag was last cleared: the offset of the first short read or of the
    /// cursor at the first setStreamError(), whichever came first. Meaningful only while the error flag is set.
    std::size_t getErrorOffset() const { return mErrorOffset; }

    /// Bytes consumed by whole successful reads.
    std::uint64_t getConsumedCount() const { return mConsumedCount; }
    /// Offset of the next byte from the first byte of the stream; the end once the stream is exhausted.
    std::size_t getOffset() const { return static_cast<std::size_t>(mCursor - mBegin); }
    std::size_t getRemaining() const { return static_cast<std::size_t>(mEnd - mCursor); }

    /// Bounds what chargeMemory() lets pass in all. Without a call there is no bound.
    void setMemoryBudget(std::uint64_t bytes) { mBudget = bytes; }
    /// Accounts for storage that is about to be allocated; never given back. Throws ktMemoryBudgetExceeded, which is a
    /// std::bad_alloc, when the sum exceeds the budget; what was refused is not accounted for.
    void chargeMemory(std::uint64_t count, std::uint64_t elementSize) {
        const std::uint64_t available = mBudget > mCharged ? mBudget - mCharged : 0;
        if (elementSize != 0 && count > available / elementSize) [[unlikely]] {
            refuseMemory(count);
        }
        mCharged += count * elementSize;
    }
    /// True once chargeMemory() has thrown.
    bool isMemoryBudgetExceeded() const { return mIsBudgetExceeded; }
    /// The number of elements that chargeMemory() refused last.
    std::uint64_t getRefusedCount() const { return mRefusedCount; }

    /// Enters one level of nested annotations: false, with the error flag set, when that would be deeper than
    /// sMaxAnnotationDepth. Use AnnotationLevel, which leaves the level again.
    bool enterAnnotationLevel() {
        if (mAnnotationDepth >= sMaxAnnotationDepth) {
            setStreamError(ktStreamFault::AnnotationsTooDeep);
            return false;
        }
        ++mAnnotationDepth;
        return true;
    }
    void leaveAnnotationLevel() { --mAnnotationDepth; }

    /// The object as T, null when it is null or of another type.
    template <typename T>
    static T* GetLinkPointer(ktRttiInterface* object) {
        return dynamic_cast<T*>(object);
    }

    /// Reads count object links into entries, which stay null until the document's objects are all read and the links
    /// resolved. The entries must stay where they are until then. A short read sets the error flag.
    template <typename T>
    void ReadObjectImpl(ktPointer<T>* entries, int count, LinkConverter<T> convert) {
        for (int index = 0; index < count; ++index) {
            const std::size_t offset = getOffset();
            std::uint32_t id = 0;
            if (!readle(4, 1, &id)) {
                return;
            }
            if (id != 0) {
                addPendingLink({id, offset, entries + index, reinterpret_cast<void (*)()>(convert), &assignLink<T>});
            }
        }
    }
    template <typename T>
    void ReadObjectImpl(ktPointer<T>& entry, int count, LinkConverter<T> convert) {
        ReadObjectImpl(&entry, count, convert);
    }

    /// One link that waits for its object.
    struct PendingLink {
        std::uint32_t mId;    ///< the object's id, not 0
        std::size_t mOffset;  ///< where the link stands in the stream
        void* mEntry;         ///< the ktPointer to fill
        void (*mConvert)();   ///< the converter; mAssign knows its type
        /// Stores the object through the converter; false when it has another type.
        bool (*mAssign)(const PendingLink& link, ktRttiInterface* object);
    };
    /// Links read so far and not yet resolved. Whoever drops an object drops its links.
    std::vector<PendingLink>& editPendingLinks() { return mPendingLinks; }

    /// Confines reading to the bytes before offset end (from the first byte of the stream) and puts the cursor at
    /// begin, as fresh as a new stream: exhaustion and the error flag are cleared. The budget and pending links stay.
    /// Offsets beyond the stream count as its end.
    void confine(std::size_t begin, std::size_t end);

private:
    static constexpr std::size_t sNoOffset = std::numeric_limits<std::size_t>::max();

    template <typename T>
    static bool assignLink(const PendingLink& link, ktRttiInterface* object) {
        T* target = reinterpret_cast<LinkConverter<T>>(link.mConvert)(object);
        *static_cast<ktPointer<T>*>(link.mEntry) = target;
        return target != nullptr;
    }

    /// Puts the cursor at the end, where every read is short.
    void exhaust() {
        mErrorOffset = std::min(mErrorOffset, getOffset());
        mFault = mFault == ktStreamFault::None ? ktStreamFault::RecordTooShort : mFault;
        mCursor = mEnd;
    }
    std::size_t readShort(void* destination);
    [[noreturn]] void refuseMemory(std::uint64_t count);
    void addPendingLink(const PendingLink& link);
    static void swapBytes(std::size_t itemSize, std::size_t size, void* items);

    const std::byte* mBegin;
    const std::byte* mCursor;
    const std::byte* mEnd;
    std::size_t mSize;
    std::uint64_t mConsumedCount = 0;
    std::uint64_t mBudget = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t mCharged = 0;
    std::size_t mErrorOffset = sNoOffset;
    std::vector<PendingLink> mPendingLinks;
    ktStreamVersion mVersion;
    std::uint64_t mRefusedCount = 0;
    int mAnnotationDepth = 0;
    ktStreamFault mFault = ktStreamFault::None;
    bool mHasError = false;
    bool mIsBudgetExceeded = false;
};

/// Holds one level of nested annotations for its lifetime.
class AnnotationLevel {
public:
    explicit AnnotationLevel(ktBaseStream& stream) : mStream(stream), mIsEntered(stream.enterAnnotationLevel()) {}
    AnnotationLevel(const AnnotationLevel&) = delete;
    AnnotationLevel& operator=(const AnnotationLevel&) = delete;
    ~AnnotationLevel() {
        if (mIsEntered) {
            mStream.leaveAnnotationLevel();
        }
    }

    bool isEntered() const { return mIsEntered; }

private:
    ktBaseStream& mStream;
    bool mIsEntered;
};

}  // namespace kt
