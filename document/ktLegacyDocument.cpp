#include "document/ktLegacyDocument.h"

#include "document/JsonRefusal_p.h"
#include "legacy/ktAnnotationMetaData.h"
#include "legacy/variant/ktVariantDocumentReader.h"
#include "platform/system/memory/ktLimits.h"
#include "platform/system/memory/ktMappedFile.h"
#include "platform/system/stream/ktObjectDocument.h"

#include <algorithm>
#include <new>
#include <unordered_map>
#include <utility>

namespace ktLegacy {

namespace {

using Cause = kt::ktObjectDocument::Cause;
using kt::ktStreamFault;

std::string describeNestingLimit() {
    return std::to_string(kt::sMaxAnnotationDepth) + " levels of nested annotations; what is deeper was not read";
}

/// The views of a binary document, and which view each of its objects is.
struct ViewList {
    std::vector<ktAnnotationView*> mViews;
    std::unordered_map<const kt::ktRttiInterface*, std::size_t> mIndices;

    explicit ViewList(const kt::ktObjectDocument& document) {
        for (const kt::ktObjectDocument::Object& object : document.getObjects()) {
            if (const auto* metadata = dynamic_cast<const ktAnnotationMetaData*>(object.mObject.get())) {
                for (const kt::ktPointer<ktAnnotationView>& view : metadata->getViews()) {
                    add(view.get());
                }
            }
        }
        for (const kt::ktObjectDocument::Object& object : document.getObjects()) {
            add(dynamic_cast<ktAnnotationView*>(object.mObject.get()));
        }
    }

private:
    void add(ktAnnotationView* view) {
        if (view != nullptr && mIndices.try_emplace(view, mViews.size()).second) {
            mViews.push_back(view);
        }
    }
};

ktFindingCode getFaultCode(ktStreamFault fault) {
    switch (fault) {
        case ktStreamFault::RecordTooShort:
            return ktFindingCode::RecordTooShort;
        case ktStreamFault::UnsupportedVersion:
            return ktFindingCode::UnsupportedVersion;
        case ktStreamFault::WrongTypeIdentifier:
            return ktFindingCode::WrongTypeIdentifier;
        case ktStreamFault::UnknownChildType:
            return ktFindingCode::UnknownChildType;
        case ktStreamFault::AnnotationsTooDeep:
            return ktFindingCode::StreamNestedTooDeep;
        case ktStreamFault::UnknownValueKind:
            return ktFindingCode::UnknownValueKind;
        case ktStreamFault::MetadataTooDeep:
            return ktFindingCode::MetadataNestedTooDeep;
        case ktStreamFault::None:
        case ktStreamFault::Unspecified:
            break;
    }
    return ktFindingCode::RecordDamaged;
}

ktFindingCode getCauseCode(const kt::ktObjectDocument::Problem& problem) {
    switch (problem.mCause) {
        case Cause::RecordMissing:
            return ktFindingCode::RecordMissing;
        case Cause::RecordHeadCut:
            return ktFindingCode::RecordHeadCut;
        case Cause::TypeNameTooLong:
            return ktFindingCode::TypeNameTooLong;
        case Cause::BodyTooLong:
            return ktFindingCode::BodyTooLong;
        case Cause::ZeroId:
            return ktFindingCode::ZeroId;
        case Cause::TakenId:
            return ktFindingCode::TakenId;
        case Cause::UnknownType:
            return ktFindingCode::UnknownType;
        case Cause::OverBudget:
            return ktFindingCode::ObjectOverBudget;
        case Cause::ClaimsTooMuch:
            return ktFindingCode::ObjectClaimsTooMuch;
        case Cause::OutOfMemory:
            return ktFindingCode::ObjectOutOfMemory;
        case Cause::Damaged:
            return getFaultCode(problem.mFault);
        case Cause::BytesLeftOver:
            return ktFindingCode::BytesLeftOver;
        case Cause::BytesAfterLastRecord:
            return ktFindingCode::BytesAfterLastRecord;
        case Cause::NotCompleted:
            return ktFindingCode::NotCompleted;
        case Cause::DeadLink:
            return ktFindingCode::DeadLink;
        case Cause::LinkToUnknownType:
            return ktFindingCode::LinkToUnknownType;
        case Cause::LinkToWrongType:
            return ktFindingCode::LinkToWrongType;
    }
    return ktFindingCode::RecordDamaged;
}

/// The sentence of a problem. Damage has one for each fault, which the problem's own sentence does not tell apart.
std::string describeProblem(const kt::ktObjectDocument::Problem& problem) {
    if (problem.mCause != Cause::Damaged) {
        return problem.mWhat;
    }
    std::string what = getFindingKind(getCauseCode(problem)).mSentence;
    constexpr std::string_view sOpenEnd = " ...";
    if (what.ends_with(sOpenEnd)) {
        what.resize(what.size() - sOpenEnd.size());
    }
    if (problem.mUnread != 0) {
        what += "; " + std::to_string(problem.mUnread) + (problem.mUnread == 1 ? " byte" : " bytes") + " were not read";
    }
    return what;
}

}  // namespace

/// Fills a document.
class ktLegacyDocument::Reader {
public:
    explicit Reader(ktLegacyDocument& document, const Options& options) : mDocument(document), mOptions(options) {}

    template <typename Source>
    void readFile(const Source& source) {
        try {
            kt::ktMappedFile file;
            std::string error;
            const auto access = mOptions.mIsMapped ? kt::ktMappedFile::Access::Map : kt::ktMappedFile::Access::Copy;
            if (!file.open(source, error, access)) {
                refuse(State::Unreadable, ktLegacyFinding(ktFindingCode::Unreadable, "cannot be read: " + error));
                return;
            }
            if (file.hasChanged()) {
                refuse(State::Unreadable,
                       ktLegacyFinding(ktFindingCode::DocumentChanged,
                                       "the file changed while it was read; run again when it is at rest"));
                return;
            }
            readBytes(file.getBytes());
        } catch (const std::bad_alloc&) {
            refuse(State::Unreadable, ktLegacyFinding(ktFindingCode::NoMemoryForDocument));
        }
    }

    void readBytes(std::span<const std::byte> bytes) {
        mDocument.mSize = bytes.size();
        if (bytes.empty()) {
            refuse(State::Refused,
                   ktLegacyFinding(ktFindingCode::EmptyFile,
                                   "the file is empty (it ends at byte 0); get a whole copy of the document"));
        } else if (kt::ktObjectDocument::hasMagic(bytes)) {
            mDocument.mKind = Kind::Stream;
            readStream(bytes);
        } else {
            readVariant(bytes);
        }
    }

    void refuse(State state, ktLegacyFinding why) {
        mDocument.mViews.clear();
        mDocument.mFindings.clear();
        mDocument.mProblems.clear();
        mDocument.mState = state;
        mDocument.mFindings.push_back(std::move(why));
    }

private:
    // Binary documents

    void readStream(std::span<const std::byte> bytes) {
        const std::uint64_t budget = mOptions.mMemoryLimit.value_or(kt::getMemoryBudget(bytes.size()));
        const kt::ktObjectDocument objects(bytes, budget);
        if (objects.isRefused()) {
            refuse(State::Refused, ktLegacyFinding(ktFindingCode::StreamHeaderCut,
                                                   objects.getRefusal() + "; get a whole copy of the document"));
            return;
        }
        mDocument.mVersion = objects.getVersion();
        mDocument.mHasStreamError = objects.hasStreamError();
        const ViewList list(objects);
        for (ktAnnotationView* view : list.mViews) {
            mDocument.mViews.push_back(
                {kt::ktPointer<ktAnnotationView>(view), objects.getVersion(), std::nullopt, false});
        }
        for (const kt::ktObjectDocument::Object& object : objects.getObjects()) {
            if (const auto found = list.mIndices.find(object.mObject.get()); found != list.mIndices.end()) {
                mDocument.mViews[found->second].mObject = object.mId;
            }
        }
        if (objects.isLimitReached()) {
            mDocument.mLimit = "the memory budget of " + std::to_string(budget) +
                               " bytes for a document of this size; the objects that claim more were not read";
        }
        for (const kt::ktObjectDocument::Problem& problem : objects.getProblems()) {
            addProblem(problem, objects, list);
        }
    }

    void addProblem(const kt::ktObjectDocument::Problem& problem, const kt::ktObjectDocument& objects,
                    const ViewList& list) {
        mDocument.mProblems.push_back({problem.mObjectId, problem.mOffset, problem.mWhat});
        ktLegacyFinding& finding =
            mDocument.mFindings.emplace_back(ktLegacyFinding(getCauseCode(problem), describeProblem(problem)));
        finding.mObject = problem.mObjectId;
        finding.mOffset = problem.mOffset;
        if (finding.mCode == ktFindingCode::StreamNestedTooDeep) {
            mDocument.mLimit = describeNestingLimit();
        } else if (finding.mCode == ktFindingCode::ObjectOverBudget) {
            finding.mRemedy = "--memory-limit";
        } else if (finding.mCode == ktFindingCode::ObjectOutOfMemory) {
            mDocument.mLacksMemory = true;
        }
        if (!problem.mObject) {
            return;
        }
        const auto view = list.mIndices.find(objects.getObjects()[*problem.mObject].mObject.get());
        if (view != list.mIndices.end()) {
            finding.mView = view->second;
            finding.mViewName = list.mViews[view->second]->GetName();
        }
    }

    // Variant documents

    void readVariant(std::span<const std::byte> bytes) {
        if (mOptions.mMemoryLimit && bytes.size() > *mOptions.mMemoryLimit / sVariantMemoryPerByte) {
            mDocument.mLimit = "the memory limit of " + std::to_string(*mOptions.mMemoryLimit) + " bytes";
            ktLegacyFinding finding(ktFindingCode::MemoryLimit,
                                    mDocument.mLimit + " is too small for a variant document of " +
                                        std::to_string(bytes.size()) + " bytes; raise it to " +
                                        std::to_string(bytes.size() * sVariantMemoryPerByte));
            finding.mRemedy = "--memory-limit " + std::to_string(bytes.size() * sVariantMemoryPerByte);
            refuse(State::Refused, std::move(finding));
            return;
        }
        std::vector<ktVariantDocumentReader::View> views;
        kt::ktJsonError error;
        ktVariantDocumentReader reader;
        switch (reader.read(bytes, views, error)) {
            case ktVariantDocumentReader::Outcome::NotJson:
                mDocument.mLimit = error.mIsLimit ? "a limit of the JSON reader" : "";
                refuse(State::Refused, makeJsonRefusal(bytes, error));
                return;
            case ktVariantDocumentReader::Outcome::SingleValue:
                refuse(State::Refused, makeSingleValueRefusal());
                return;
            case ktVariantDocumentReader::Outcome::Read:
                break;
        }
        if (reader.getOverflow().mCount != 0) {
            addOverflow(reader.getOverflow());
        }
        for (ktVariantDocumentReader::View& view : views) {
            addView(view);
        }
    }

    void addOverflow(const kt::ktJsonOverflow& overflow) {
        ktLegacyFinding& finding = mDocument.mFindings.emplace_back(ktFindingCode::NumberBeyondDouble);
        const std::string others =
            overflow.mCount > 1 ? ", as do " + std::to_string(overflow.mCount - 1) + " more" : "";
        finding.mWhat = "the number at line " + std::to_string(overflow.mFirst.mLine) + ", column " +
                        std::to_string(overflow.mFirst.mColumn) + " is too large for any value and counts as infinite" +
                        others;
        finding.mLine = overflow.mFirst.mLine;
        finding.mColumn = overflow.mFirst.mColumn;
        finding.mOffset = overflow.mFirst.mOffset;
    }

    static ktLegacyFinding makeSingleValueRefusal() {
        ktLegacyFinding finding(ktFindingCode::SingleValue);
        finding.mWhat = "line 1, column 1: " + finding.mWhat;
        finding.mLine = 1;
        finding.mColumn = 1;
        return finding;
    }

    void addView(ktVariantDocumentReader::View& read) {
        View& view = mDocument.mViews.emplace_back();
        view.mVersion = read.mVersion;
        view.mView = std::move(read.mView);
        view.mIsMissing = !view.mView;
        mDocument.mHoldsViewMap |= read.mHasVersion;
        const std::size_t index = mDocument.mViews.size() - 1;
        const std::string name = view.mView ? view.mView->GetName() : std::string();
        for (ktVariantFinding& found : read.mFindings) {
            addFinding(std::move(found), index, name);
        }
        if (view.mIsMissing) {
            return;
        }
        const std::size_t loaded = view.mView->mAnnotations.size();
        if (loaded < read.mEntryCount) {
            addLoss(ktFindingCode::AnnotationsLost, read.mEntryCount - loaded, read.mEntryCount, index, name);
        }
        if (read.mNestedLostCount != 0) {
            addLoss(ktFindingCode::NestedAnnotationsLost, read.mNestedLostCount, read.mNestedEntryCount, index, name);
        }
    }

    void addFinding(ktVariantFinding&& found, std::size_t view, const std::string& viewName) {
        ktLegacyFinding& finding = mDocument.mFindings.emplace_back(ktLegacyFinding(found.mCode, found.getText()));
        finding.mView = view;
        finding.mViewName = viewName;
        if (found.mAnnotation != ktVariantFinding::sNoAnnotation) {
            finding.mAnnotation = found.mAnnotation;
        }
        finding.mChild = std::move(found.mChild);
        finding.mAnnotationName = std::move(found.mName);
        if (found.mCode == ktFindingCode::VariantNestedTooDeep) {
            mDocument.mLimit = describeNestingLimit();
        }
    }

    void addLoss(ktFindingCode code, std::size_t lost, std::size_t all, std::size_t view, const std::string& viewName) {
        const bool isNested = code == ktFindingCode::NestedAnnotationsLost;
        std::string what = std::to_string(lost) + " of " + std::to_string(all) + (isNested ? " nested" : "") +
                           " annotations of view '" + viewName + "' could not be read";
        ktLegacyFinding& finding = mDocument.mFindings.emplace_back(ktLegacyFinding(code, what));
        finding.mView = view;
        finding.mViewName = viewName;
        mDocument.mProblems.push_back({0, 0, std::move(what)});
    }

    ktLegacyDocument& mDocument;
    const Options& mOptions;
};

ktLegacyDocument::ktLegacyDocument() = default;
ktLegacyDocument::ktLegacyDocument(ktLegacyDocument&&) noexcept = default;
ktLegacyDocument& ktLegacyDocument::operator=(ktLegacyDocument&&) noexcept = default;
ktLegacyDocument::~ktLegacyDocument() = default;

ktLegacyDocument ktLegacyDocument::open(const std::string& path, const Options& options) {
    ktLegacyDocument document;
    Reader(document, options).readFile(path);
    return document;
}

ktLegacyDocument ktLegacyDocument::open(int descriptor, const Options& options) {
    ktLegacyDocument document;
    Reader(document, options).readFile(descriptor);
    return document;
}

ktLegacyDocument ktLegacyDocument::read(std::span<const std::byte> bytes, const Options& options) {
    ktLegacyDocument document;
    Reader(document, options).readBytes(bytes);
    return document;
}

ktLegacyDocument ktLegacyDocument::makeUnreadable(ktLegacyFinding why) {
    ktLegacyDocument document;
    Reader(document, Options()).refuse(State::Unreadable, std::move(why));
    return document;
}

std::string ktLegacyDocument::getReason() const { return isLoaded() ? std::string() : mFindings.back().mWhat; }

std::vector<std::string> ktLegacyDocument::getMessages() const {
    std::vector<std::string> messages;
    for (const ktLegacyFinding& finding : mFindings) {
        if (isLoaderMessage(finding.mCode)) {
            messages.push_back(finding.mWhat);
        }
    }
    return messages;
}

ktOutcome ktLegacyDocument::getOutcome() const {
    if (mState == State::Unreadable || mLacksMemory) {
        return ktOutcome::EnvironmentFailed;
    }
    if (!mLimit.empty()) {
        return ktOutcome::LimitReached;
    }
    const auto isMissing = [](const View& view) { return view.mIsMissing; };
    if (mState == State::Refused || std::any_of(mViews.begin(), mViews.end(), isMissing)) {
        return ktOutcome::Refused;
    }
    const auto matters = [](const ktLegacyFinding& finding) {
        return finding.getSeverity() != ktFindingSeverity::Note;
    };
    return std::any_of(mFindings.begin(), mFindings.end(), matters) ? ktOutcome::WithProblems : ktOutcome::AllWell;
}

}  // namespace ktLegacy
