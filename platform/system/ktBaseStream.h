#pragma once

/// @file
/// Reader of the binary object stream.

#include "platform/system/ktPointer.h"
#include "platform/system/ktRttiInterface.h"
#include "platform/system/ktStreamVersion.h"
#include "platform/system/ktSystemExport.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace kt {

/// A cursor over the bytes of a versioned, little-endian object stream. It does not own the bytes; they must outlive it.
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
    bool readle(int itemSize, int count, void* destination);

    /// Reads up to size bytes, stores what there is and returns how many. Sets no flag: a short read is the caller's to
    /// report with setStreamError().
    std::size_t read(void* destination, std::size_t size);

    /// Reads one byte as read() does, setting the error flag when there is none.
    /// @return false when there was none; value is unchanged then.
    bool readByte(std::uint8_t& value);

    void setStreamError() { mHasError = true; }
    bool hasStreamError() const { return mHasError; }
    void clearStreamError() { mHasError = false; }

    /// Bytes consumed by whole successful reads.
    std::uint64_t getConsumedCount() const { return mConsumedCount; }
    /// Offset of the next byte from the first byte of the stream; the end once the stream is exhausted.
    std::size_t getOffset() const { return static_cast<std::size_t>(mCursor - mBegin); }
    std::size_t getRemaining() const { return static_cast<std::size_t>(mEnd - mCursor); }

    /// Bounds what chargeMemory() lets pass in all. Without a call there is no bound.
    void setMemoryBudget(std::uint64_t bytes);
    /// Accounts for storage that is about to be allocated; never given back. Throws std::bad_alloc when the sum exceeds
    /// the budget.
    void chargeMemory(std::uint64_t count, std::uint64_t elementSize);
    /// True once chargeMemory() has thrown.
    bool isMemoryBudgetExceeded() const { return mIsBudgetExceeded; }

    /// Enters one level of nested annotations: false, with the error flag set, when that would be deeper than
    /// sMaxAnnotationDepth. Use AnnotationLevel, which leaves the level again.
    bool enterAnnotationLevel();
    void leaveAnnotationLevel() { --mAnnotationDepth; }

    /// The object as T, null when it is null or of another type.
    template <typename T>
    static T* GetLinkPointer(ktRttiInterface* object) {
        return dynamic_cast<T*>(object);
    }

    /// Reads count object links into entries, which stay null until the document's objects are all read and the links
    /// resolved. The entries must stay where they are until then.
    template <typename T>
    void ReadObjectImpl(ktPointer<T>* entries, int count, LinkConverter<T> convert);
    template <typename T>
    void ReadObjectImpl(ktPointer<T>& entry, int count, LinkConverter<T> convert) {
        ReadObjectImpl(&entry, count, convert);
    }

    /// One link that waits for its object.
    struct PendingLink {
        std::uint32_t mId;        ///< the object's id, not 0
        std::size_t mOffset;      ///< where the link stands in the stream
        void* mEntry;             ///< the ktPointer to fill
        void* mConvert;           ///< the converter, in the form that mAssign knows
        /// Stores the object through the converter; false when it has another type.
        bool (*mAssign)(const PendingLink& link, ktRttiInterface* object);
    };
    /// Links read so far and not yet resolved. Whoever drops an object drops its links.
    std::vector<PendingLink>& editPendingLinks() { return mPendingLinks; }

    /// Confines reading to the bytes before offset end (from the first byte of the stream) and puts the cursor at begin,
    /// as fresh as a new stream: exhaustion and the error flag are cleared. The budget and pending links stay.
    void confine(std::size_t begin, std::size_t end);

private:
    const std::byte* mBegin;
    const std::byte* mCursor;
    const std::byte* mEnd;
    std::size_t mSize;
    std::uint64_t mConsumedCount = 0;
    std::uint64_t mBudget;
    std::uint64_t mCharged = 0;
    std::vector<PendingLink> mPendingLinks;
    ktStreamVersion mVersion;
    int mAnnotationDepth = 0;
    bool mHasError = false;
    bool mIsExhausted = false;
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
