#include "platform/system/stream/ktObjectDocument.h"

#include "platform/system/memory/ktLimits.h"
#include "platform/system/stream/ktBaseStream.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string_view>
#include <unordered_map>

namespace kt {

namespace {

constexpr std::string_view sMagic = "KTSTREAM";

/// Least bytes of a record: length of the type name, id, length of the body.
constexpr std::size_t sMinRecordSize = 16;

std::string describeBytes(std::uint64_t count) { return std::to_string(count) + (count == 1 ? " byte" : " bytes"); }

std::string quote(std::string_view text) {
    std::string quoted;
    quoted.reserve(text.size() + 2);
    quoted.append(1, '\'').append(text).append(1, '\'');
    return quoted;
}

}  // namespace

/// Reads one document: header, records, links.
class ktObjectDocument::Reader {
public:
    Reader(ktObjectDocument& document, std::span<const std::byte> bytes, std::uint64_t memoryBudget)
        : mDocument(document), mSize(bytes.size()), mStream(bytes, document.mVersion) {
        mStream.setMemoryBudget(memoryBudget);
    }

    void read(std::uint32_t objectCount) {
        mOffset = sHeaderSize;
        for (std::uint32_t index = 0; index < objectCount; ++index) {
            if (!readRecord(index, objectCount)) {
                resolveLinks();
                return;
            }
        }
        if (mOffset != mSize) {
            addProblem(Cause::BytesAfterLastRecord, 0, mOffset,
                       describeBytes(mSize - mOffset) + " after the last record; they are ignored");
        }
        resolveLinks();
    }

private:
    /// What became of an id.
    enum class Fate { Kept, Unknown, Lost };
    struct Holder {
        Fate mFate;
        std::size_t mIndex;  ///< of the object, when it is kept
    };
    struct RecordHead {
        std::string_view mTypeName;
        std::uint32_t mId = 0;
        std::size_t mRecordOffset = 0;
        std::size_t mBodyOffset = 0;
        std::uint64_t mBodyLength = 0;
    };

    Problem& addProblem(Cause cause, std::uint32_t id, std::size_t offset, std::string what) {
        return mDocument.mProblems.emplace_back(
            Problem{cause, ktStreamFault::None, id, offset, 0, std::nullopt, std::move(what)});
    }

    /// Reads the record at mOffset and moves on to the next; false when there is no way to find the next.
    bool readRecord(std::uint32_t index, std::uint32_t count) {
        RecordHead head;
        if (!readHead(index, count, head)) {
            return false;
        }
        const std::size_t firstProblem = mDocument.mProblems.size();
        const bool isOwner = claimId(head);
        if (head.mBodyLength > mSize - head.mBodyOffset) {
            addProblem(Cause::BodyTooLong, head.mId, head.mBodyOffset,
                       "the body of " + describeBytes(head.mBodyLength) + " is longer than the file, which has " +
                           describeBytes(mSize - head.mBodyOffset) + " left; the file is cut short or damaged");
            mOffset = mSize;
        } else {
            mOffset = head.mBodyOffset + static_cast<std::size_t>(head.mBodyLength);
        }
        const Holder holder = readObject(head);
        if (isOwner) {
            mHolders[head.mId] = holder;
        }
        if (holder.mFate == Fate::Kept) {
            std::for_each(mDocument.mProblems.begin() + static_cast<std::ptrdiff_t>(firstProblem),
                          mDocument.mProblems.end(), [&holder](Problem& problem) { problem.mObject = holder.mIndex; });
        }
        return true;
    }

    bool readHead(std::uint32_t index, std::uint32_t count, RecordHead& head) {
        const std::string place = "record " + std::to_string(std::uint64_t{index} + 1) + " of " + std::to_string(count);
        head.mRecordOffset = mOffset;
        mStream.confine(mOffset, mSize);
        if (mOffset == mSize) {
            addProblem(Cause::RecordMissing, 0, mOffset,
                       "the file ends before " + place + "; it is cut short or its object count is wrong");
            return false;
        }
        std::int32_t nameLength = 0;
        if (!mStream.readle(4, 1, &nameLength)) {
            addProblem(Cause::RecordHeadCut, 0, mOffset,
                       "the file ends inside the head of " + place + "; it is cut short");
            return false;
        }
        if (nameLength < 0 || static_cast<std::size_t>(nameLength) > mStream.getRemaining()) {
            addProblem(Cause::TypeNameTooLong, 0, mOffset,
                       "the type name of " + place + " claims " + std::to_string(nameLength) + " bytes, the file has " +
                           std::to_string(mStream.getRemaining()) + " left; nothing can be read from here on");
            return false;
        }
        const auto* name = reinterpret_cast<const char*>(mStream.readInPlace(static_cast<std::size_t>(nameLength)));
        head.mTypeName = {name, static_cast<std::size_t>(nameLength)};
        if (!mStream.readle(4, 1, &head.mId) || !mStream.readle(8, 1, &head.mBodyLength)) {
            addProblem(Cause::RecordHeadCut, 0, mOffset,
                       "the file ends inside the head of " + place + "; it is cut short");
            return false;
        }
        head.mBodyOffset = mStream.getOffset();
        return true;
    }

    /// Whether links to the id of the record lead to its object.
    bool claimId(const RecordHead& head) {
        if (head.mId == 0) {
            addProblem(Cause::ZeroId, 0, head.mRecordOffset,
                       "the object has the id 0, which stands for no object; no link can lead to it");
            return false;
        }
        if (!mHolders.try_emplace(head.mId, Holder{Fate::Unknown, 0}).second) {
            addProblem(Cause::TakenId, head.mId, head.mRecordOffset,
                       "the id " + std::to_string(head.mId) + " is taken by an earlier object; links lead to that one");
            return false;
        }
        return true;
    }

    Holder readObject(const RecordHead& head) {
        const FactoryFunction factory = ktRttiInterface::FindFactoryFunction(head.mTypeName);
        if (factory == nullptr) {
            addProblem(Cause::UnknownType, head.mId, head.mRecordOffset,
                       "unknown type name " + quote(head.mTypeName) + "; the object is skipped");
            return {Fate::Unknown, 0};
        }
        // NOLINTNEXTLINE(clang-analyzer-deadcode.DeadStores): read where the object is lost
        const std::size_t linkCount = mStream.editPendingLinks().size();
        mStream.confine(head.mBodyOffset, mOffset);
        try {
            return keepObject(head, factory);
        } catch (const ktMemoryBudgetExceeded&) {
            loseOverBudget(head);
        } catch (const std::bad_alloc&) {
            loseObject(Cause::OutOfMemory, head, "there is not enough memory for the object; it is lost");
        } catch (const std::length_error&) {
            mDocument.mIsLimitReached = true;
            loseObject(Cause::ClaimsTooMuch, head,
                       "the object claims more elements than any list can hold; it is lost");
        }
        mStream.editPendingLinks().resize(linkCount);
        return {Fate::Lost, 0};
    }

    using FactoryFunction = ktRttiInterface::FactoryFunction;

    Holder keepObject(const RecordHead& head, FactoryFunction factory) {
        mStream.chargeMemory(1, sizeof(Object));
        const std::size_t firstLink = mStream.editPendingLinks().size();
        const ktPointer<ktRttiInterface> object(factory(mStream));
        const std::size_t index = mDocument.mObjects.size();
        mDocument.mObjects.push_back({head.mId, head.mRecordOffset, object});
        mLinkOwners.resize(mStream.editPendingLinks().size() - firstLink + mLinkOwners.size(), index);
        reportReading(head);
        return {Fate::Kept, index};
    }

    /// Reports how the reading of a record ended. What a damaged record leaves over is part of that one problem.
    void reportReading(const RecordHead& head) {
        const std::string type = quote(head.mTypeName);
        const std::string rest = describeBytes(mStream.getRemaining());
        if (mStream.hasStreamError()) {
            mDocument.mHasStreamError = true;
            std::string what = "the record of type " + type +
                               " is damaged or of an unsupported version; the object keeps what could be read";
            if (mStream.getRemaining() != 0) {
                what += ", " + rest + " were not read";
            }
            Problem& problem = addProblem(Cause::Damaged, head.mId, mStream.getErrorOffset(), std::move(what));
            problem.mFault = mStream.getFault();
            problem.mUnread = mStream.getRemaining();
        } else if (mStream.getRemaining() != 0) {
            addProblem(Cause::BytesLeftOver, head.mId, mStream.getOffset(),
                       rest + " left over at the end of the " + type + " record; they are ignored");
        }
    }

    /// A claim that the bytes cannot hold (every element takes at least one), or one that comes after other trouble, is
    /// damage: no larger limit would help.
    void loseOverBudget(const RecordHead& head) {
        mDocument.mIsLimitReached = true;
        const std::uint64_t claimed = mStream.getRefusedCount();
        if (claimed > 1 && claimed > mStream.getRemaining()) {
            loseObject(Cause::ClaimsTooMuch, head,
                       "the object is damaged: it claims " + std::to_string(claimed) + " elements, but only " +
                           describeBytes(mStream.getRemaining()) + " are left; it is lost");
        } else if (mStream.hasStreamError()) {
            loseObject(Cause::ClaimsTooMuch, head,
                       "the object is damaged: it claims more than its " + describeBytes(head.mBodyLength) +
                           " hold, but only " + describeBytes(mStream.getRemaining()) + " are left; it is lost");
        } else {
            loseObject(Cause::OverBudget, head,
                       "the object claims more memory than the document's budget allows; it is lost. Raise the memory "
                       "limit if the document is trusted");
        }
    }

    void loseObject(Cause cause, const RecordHead& head, const std::string& what) {
        addProblem(cause, head.mId, mStream.getOffset(), quote(head.mTypeName) + ": " + what);
    }

    void resolveLinks() {
        const std::vector<ktBaseStream::PendingLink>& links = mStream.editPendingLinks();
        for (std::size_t index = 0; index < links.size(); ++index) {
            resolveLink(links[index], mLinkOwners[index]);
        }
        for (const Object& object : mDocument.mObjects) {
            mStream.confine(mSize, mSize);
            object.mObject->PostLink(mStream);
            if (mStream.hasStreamError()) {
                mDocument.mHasStreamError = true;
                addProblem(Cause::NotCompleted, object.mId, object.mOffset,
                           "the object could not be completed after its links were resolved");
            }
        }
    }

    void resolveLink(const ktBaseStream::PendingLink& link, std::size_t ownerIndex) {
        const auto tell = [&](Cause cause, std::string what) {
            addProblem(cause, mDocument.mObjects[ownerIndex].mId, link.mOffset, std::move(what)).mObject = ownerIndex;
        };
        const auto found = mHolders.find(link.mId);
        const std::string place = "the link to object " + std::to_string(link.mId);
        if (found == mHolders.end()) {
            tell(Cause::DeadLink, place + " leads nowhere: the document has no such object");
        } else if (found->second.mFate == Fate::Unknown) {
            tell(Cause::LinkToUnknownType, place + " leads to an object of an unknown type");
        } else if (found->second.mFate == Fate::Kept) {
            ktRttiInterface* object = mDocument.mObjects[found->second.mIndex].mObject.get();
            if (!link.mAssign(link, object)) {
                tell(Cause::LinkToWrongType, place + " leads to a " + quote(object->GetType()->GetName()) +
                                                 ", which is not the type wanted there");
            }
        }
    }

    ktObjectDocument& mDocument;
    std::size_t mSize;
    ktBaseStream mStream;
    std::size_t mOffset = 0;
    std::unordered_map<std::uint32_t, Holder> mHolders;
    std::vector<std::size_t> mLinkOwners;  ///< index of the object that holds the pending link of the same index
};

bool ktObjectDocument::hasMagic(std::span<const std::byte> bytes) {
    return bytes.size() >= sMagic.size() && std::memcmp(bytes.data(), sMagic.data(), sMagic.size()) == 0;
}

ktObjectDocument::ktObjectDocument(std::span<const std::byte> bytes, std::optional<std::uint64_t> memoryBudget) {
    if (bytes.empty()) {
        mRefusal = "the file is empty";
        return;
    }
    if (bytes.size() >= sMagic.size() && !hasMagic(bytes)) {
        mRefusal = "the file does not begin with \"KTSTREAM\": it is no binary document";
        return;
    }
    if (bytes.size() < sHeaderSize) {
        mRefusal = "the file ends inside its header: it has " + describeBytes(bytes.size()) +
                   ", the header alone takes " + std::to_string(sHeaderSize);
        return;
    }
    ktBaseStream header(bytes.subspan(sMagic.size()), ktStreamVersion());
    std::uint32_t version = 0;
    std::uint32_t objectCount = 0;
    header.readle(4, 1, &version);
    header.readle(4, 1, &objectCount);
    mVersion = ktStreamVersion(version);
    mObjects.reserve(std::min<std::size_t>(objectCount, (bytes.size() - sHeaderSize) / sMinRecordSize));
    Reader(*this, bytes, memoryBudget.value_or(getMemoryBudget(bytes.size()))).read(objectCount);
}

ktObjectDocument::~ktObjectDocument() = default;
ktObjectDocument::ktObjectDocument(ktObjectDocument&&) noexcept = default;
ktObjectDocument& ktObjectDocument::operator=(ktObjectDocument&&) noexcept = default;

}  // namespace kt
