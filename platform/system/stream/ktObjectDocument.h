#pragma once

/// @file
/// Whole documents of the binary object stream.

#include "platform/system/ktSystemExport.h"
#include "platform/system/object/ktPointer.h"
#include "platform/system/object/ktRttiInterface.h"
#include "platform/system/stream/ktBaseStream.h"
#include "platform/system/stream/ktStreamVersion.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace kt {

/// What a binary document holds, and what is wrong with it.
///
/// A document is a header (magic, stream version, object count) and that many records of a type name, an object id and
/// a body, which the factory of the type reads. Trouble with one object does not stop the others.
class KT_SYSTEM_API ktObjectDocument {
public:
    /// An object of the document.
    struct Object {
        std::uint32_t mId;                   ///< as stored: 0 and repeated ids are kept
        std::uint64_t mOffset;               ///< of its record
        ktPointer<ktRttiInterface> mObject;  ///< not null
    };

    /// Kinds of problems.
    enum class Cause : std::uint8_t {
        RecordMissing,    ///< the file ends before a record
        RecordHeadCut,    ///< the file ends inside the head of a record
        TypeNameTooLong,  ///< a type name claims more bytes than there are
        BodyTooLong,      ///< a body claims more bytes than there are
        ZeroId,           ///< an object has the id of no object
        TakenId,          ///< an object has the id of an earlier one
        UnknownType,      ///< no factory is registered for a type name
        OverBudget,       ///< an object claims more memory than the budget allows; it is lost
        ClaimsTooMuch,    ///< an object claims more elements than its bytes can hold; it is lost
        OutOfMemory,      ///< the machine had no memory for an object; it is lost
        Damaged,          ///< the error flag was set while an object was read: mFault says why
        BytesLeftOver,    ///< a record has more bytes than its reader took
        BytesAfterLastRecord,
        NotCompleted,  ///< the error flag was set after the links of an object were resolved
        DeadLink,
        LinkToUnknownType,
        LinkToWrongType,
    };

    /// Something that is wrong with the document.
    struct Problem {
        Cause mCause;
        ktStreamFault mFault;                ///< None unless the cause is Damaged
        std::uint32_t mObjectId;             ///< 0 for the document itself
        std::uint64_t mOffset;               ///< where the trouble was seen
        std::uint64_t mUnread;               ///< bytes of a damaged record that were not read
        std::optional<std::size_t> mObject;  ///< index of the object that it is about, where there is one
        std::string mWhat;                   ///< an English sentence
    };

    /// Bytes before the first record.
    static constexpr std::size_t sHeaderSize = 16;

    /// Whether bytes begin as such a document does.
    static bool hasMagic(std::span<const std::byte> bytes);

    /// Reads a document. The bytes are not needed afterwards.
    /// @param bytes         the whole document.
    /// @param memoryBudget  what its objects may allocate; by default getMemoryBudget() of its size.
    explicit ktObjectDocument(std::span<const std::byte> bytes,
                              std::optional<std::uint64_t> memoryBudget = std::nullopt);
    ~ktObjectDocument();
    ktObjectDocument(ktObjectDocument&&) noexcept;
    ktObjectDocument& operator=(ktObjectDocument&&) noexcept;

    /// Why the document was refused as a whole, empty when it was not.
    const std::string& getRefusal() const { return mRefusal; }
    bool isRefused() const { return !mRefusal.empty(); }

    ktStreamVersion getVersion() const { return mVersion; }
    /// The objects in the order of their records.
    const std::vector<Object>& getObjects() const { return mObjects; }
    /// The problems in the order in which they were met.
    const std::vector<Problem>& getProblems() const { return mProblems; }
    /// True when the stream's error flag was set while an object was read.
    bool hasStreamError() const { return mHasStreamError; }
    /// True when an object was lost because of the memory budget.
    bool isLimitReached() const { return mIsLimitReached; }

private:
    class Reader;

    std::string mRefusal;
    ktStreamVersion mVersion;
    std::vector<Object> mObjects;
    std::vector<Problem> mProblems;
    bool mHasStreamError = false;
    bool mIsLimitReached = false;
};

}  // namespace kt
