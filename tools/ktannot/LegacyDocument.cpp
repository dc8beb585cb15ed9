#include "tools/ktannot/LegacyDocument.h"

#include "legacy/ktAnnotationMetaData.h"
#include "platform/system/json/ktVariantJson.h"
#include "platform/system/memory/ktLimits.h"
#include "platform/system/memory/ktMappedFile.h"
#include "platform/system/stream/ktObjectDocument.h"
#include "platform/system/variant/ktVariantListImpl.h"
#include "tools/ktannot/NestingLimit.h"

#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <new>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace ktannot {

namespace {

using ktLegacy::ktAnnotationMetaData;
using ktLegacy::ktAnnotationView;
using ktLegacy::ktVariantDocumentReader;
using VariantList = kt::ktVariant::ktVariantListImpl;

std::string describeNestingLimit() {
    return std::to_string(kt::sMaxAnnotationDepth) + " levels of nested annotations; what is deeper was not read";
}

/// The views of a document stream: those that its metadata objects list, then those that none of them lists.
std::vector<ktAnnotationView*> listViews(const kt::ktObjectDocument& document) {
    std::vector<ktAnnotationView*> views;
    std::unordered_set<const ktAnnotationView*> listed;
    const auto add = [&](ktAnnotationView* view) {
        if (view != nullptr && listed.insert(view).second) {
            views.push_back(view);
        }
    };
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
    return views;
}

/// The index of the view that an object id stands for: the first view with that id.
std::unordered_map<std::uint32_t, std::size_t> indexViews(const kt::ktObjectDocument& document,
                                                          const std::vector<ktAnnotationView*>& views) {
    std::unordered_map<const kt::ktRttiInterface*, std::size_t> indexByObject;
    for (std::size_t index = 0; index < views.size(); ++index) {
        indexByObject.emplace(views[index], index);
    }
    std::unordered_map<std::uint32_t, std::size_t> indexById;
    for (const kt::ktObjectDocument::Object& object : document.getObjects()) {
        if (const auto found = indexByObject.find(object.mObject.get()); found != indexByObject.end()) {
            indexById.emplace(object.mId, found->second);
        }
    }
    return indexById;
}

/// Whether the first character that is not blank begins a JSON object or array.
bool looksLikeJson(std::span<const std::byte> bytes) {
    std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (text.starts_with("\xEF\xBB\xBF")) {
        text.remove_prefix(3);
    }
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    return first != std::string_view::npos && (text[first] == '{' || text[first] == '[');
}

std::string describe(const kt::ktJsonError& error, bool isJson) {
    std::string what = error.mMessage;
    while (what.ends_with('.')) {
        what.pop_back();
    }
    const std::string place = "line " + std::to_string(error.mLine) + ", column " + std::to_string(error.mColumn) +
                              " (byte " + std::to_string(error.mOffset) + "): " + what;
    if (error.mIsLimit) {
        return "a limit of the reader was reached at " + place + "; split the document";
    }
    return (isJson ? "not valid JSON at "
                   : "neither a binary document (it does not begin with \"KTSTREAM\") nor valid JSON at ") +
           place + "; correct it there or export the document again";
}

}  // namespace

LegacyDocument LegacyDocument::load(const Input& input, std::optional<std::uint64_t> memoryLimit) {
    LegacyDocument document(input.mSource, memoryLimit);
    if (!input.mFailure.empty()) {
        document.end(State::Unreadable, input.mFailure);
        return document;
    }
    try {
        kt::ktMappedFile file;
        std::string error;
        if (input.isStandardInput() ? file.open(STDIN_FILENO, error) : file.open(input.mPath, error)) {
            document.read(file.getBytes(), input.mIsJsonFromFolder);
        } else {
            document.end(State::Unreadable, "cannot be read: " + error);
        }
    } catch (const std::bad_alloc&) {
        document.end(State::Unreadable, "there is not enough memory to hold the document");
    }
    return document;
}

LegacyDocument LegacyDocument::load(const std::string& source, std::span<const std::byte> bytes,
                                    std::optional<std::uint64_t> memoryLimit) {
    LegacyDocument document(source, memoryLimit);
    document.read(bytes, false);
    return document;
}

ExitCode LegacyDocument::getOutcome() const {
    if (mState == State::Unreadable) {
        return ExitCode::EnvironmentFailed;
    }
    if (!mLimit.empty()) {
        return ExitCode::LimitReached;
    }
    const auto isMissing = [](const View& view) { return view.mIsMissing; };
    if (mState == State::Refused || std::any_of(mViews.begin(), mViews.end(), isMissing)) {
        return ExitCode::Refused;
    }
    return mProblems.empty() && mMessages.empty() ? ExitCode::AllWell : ExitCode::WithProblems;
}

void LegacyDocument::end(State state, std::string reason) {
    mViews.clear();
    mMessages.clear();
    mProblems.clear();
    mState = state;
    mReason = std::move(reason);
}

void LegacyDocument::read(std::span<const std::byte> bytes, bool isSkippedWithoutViewMap) {
    if (bytes.empty()) {
        end(State::Refused, "the file is empty (it ends at byte 0); get a whole copy of the document");
    } else if (kt::ktObjectDocument::hasMagic(bytes)) {
        mKind = Kind::Stream;
        readStream(bytes);
    } else {
        readVariant(bytes, isSkippedWithoutViewMap);
    }
}

void LegacyDocument::readStream(std::span<const std::byte> bytes) {
    const std::uint64_t budget = mMemoryLimit.value_or(kt::getMemoryBudget(bytes.size()));
    const kt::ktObjectDocument document(bytes, budget);
    if (document.isRefused()) {
        end(State::Refused, document.getRefusal() + "; get a whole copy of the document");
        return;
    }
    mVersion = document.getVersion().toString();
    mHasStreamError = document.hasStreamError();
    const std::vector<ktAnnotationView*> views = listViews(document);
    for (ktAnnotationView* view : views) {
        mViews.emplace_back().mView = view;
        if (mHasStreamError && NestingLimit::isReachedByStream(*view)) {
            mLimit = describeNestingLimit();
        }
    }
    const std::unordered_map<std::uint32_t, std::size_t> indexById = indexViews(document, views);
    for (const kt::ktObjectDocument::Problem& problem : document.getProblems()) {
        Problem& own = mProblems.emplace_back(Problem{problem.mObjectId, problem.mOffset, problem.mWhat, {}});
        if (const auto found = indexById.find(problem.mObjectId); found != indexById.end()) {
            own.mView = found->second;
        }
    }
    if (document.isLimitReached()) {
        mLimit = "the memory budget of " + std::to_string(budget) +
                 " bytes for a document of this size; the objects that claim more were not read";
    }
}

void LegacyDocument::readVariant(std::span<const std::byte> bytes, bool isSkippedWithoutViewMap) {
    if (mMemoryLimit && bytes.size() > *mMemoryLimit / sVariantMemoryPerByte) {
        mLimit = "the memory limit of " + std::to_string(*mMemoryLimit) + " bytes";
        end(State::Refused, mLimit + " is too small for a variant document of " + std::to_string(bytes.size()) +
                                " bytes; raise it to " + std::to_string(bytes.size() * sVariantMemoryPerByte));
        return;
    }
    std::vector<ktVariantDocumentReader::View> views;
    kt::ktJsonError error;
    const ktVariantDocumentReader::Outcome outcome = ktVariantDocumentReader().read(bytes, views, error);
    const auto isViewMap = [](const ktVariantDocumentReader::View& view) { return view.mHasVersion; };
    if (outcome == ktVariantDocumentReader::Outcome::NotJson) {
        mLimit = error.mIsLimit ? "a limit of the JSON reader" : "";
        end(State::Refused, describe(error, looksLikeJson(bytes)));
    } else if (isSkippedWithoutViewMap && std::none_of(views.begin(), views.end(), isViewMap)) {
        end(State::Skipped, {});
    } else if (outcome == ktVariantDocumentReader::Outcome::SingleValue) {
        end(State::Refused,
            "line 1, column 1: the document is a single value; a view map or a list of view maps is wanted");
    } else {
        for (ktVariantDocumentReader::View& view : views) {
            addView(view);
        }
        if (reachesNestingLimit(bytes)) {
            mLimit = describeNestingLimit();
        }
    }
}

void LegacyDocument::addView(ktVariantDocumentReader::View& read) {
    View& view = mViews.emplace_back();
    view.mVersion = read.mVersion.toString();
    view.mMessagesBegin = mMessages.size();
    std::move(read.mMessages.begin(), read.mMessages.end(), std::back_inserter(mMessages));
    view.mMessagesEnd = mMessages.size();
    view.mView = std::move(read.mView);
    view.mIsMissing = !view.mView;
    if (view.mIsMissing) {
        return;
    }
    const std::size_t loaded = view.mView->mAnnotations.size();
    if (loaded < read.mEntryCount) {
        mProblems.push_back({0, 0,
                             std::to_string(read.mEntryCount - loaded) + " of " + std::to_string(read.mEntryCount) +
                                 " annotations of view '" + view.mView->mName + "' could not be read",
                             mViews.size() - 1});
    }
}

bool LegacyDocument::reachesNestingLimit(std::span<const std::byte> bytes) const {
    const auto isDeep = [](const View& view) { return view.mView && NestingLimit::isDeepestLevelRead(*view.mView); };
    if (std::none_of(mViews.begin(), mViews.end(), isDeep)) {
        return false;
    }
    // Only now the maps are worth their memory.
    kt::ktVariant value;
    kt::ktJsonError error;
    kt::ktJsonReader().parse(bytes, value, error);
    const VariantList* maps = value.getList();
    for (std::size_t index = 0; index < mViews.size(); ++index) {
        const kt::ktVariant& map = maps != nullptr ? (*maps)[index] : value;
        if (mViews[index].mView && NestingLimit::isReachedByVariant(*mViews[index].mView, *map.getMap())) {
            return true;
        }
    }
    return false;
}

}  // namespace ktannot
