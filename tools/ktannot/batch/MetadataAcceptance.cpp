#include "tools/ktannot/batch/MetadataAcceptance.h"

#include "migration/ktAnnotationMigration.h"

#include <array>

namespace ktannot {

namespace {

using ktLegacy::ktAnnotationMigration;

struct Word {
    std::string_view mName;
    int mFlags;
    std::string_view mRefusal;  ///< how the log line begins that refuses such metadata
};

constexpr std::array<Word, 4> sWords{{
    {"view-metadata", ktAnnotationMigration::AcceptViewMetadata, "Found metadata in annotation view"},
    {"known-metadata", ktAnnotationMigration::AcceptKnownMetadata, "Found CT metadata "},
    {"other-metadata", ktAnnotationMigration::AcceptOtherMetadata, "Found unexpected metadata "},
    {"all",
     ktAnnotationMigration::AcceptViewMetadata | ktAnnotationMigration::AcceptKnownMetadata |
         ktAnnotationMigration::AcceptOtherMetadata,
     ""},
}};

const Word* findWord(std::string_view name) {
    for (const Word& word : sWords) {
        if (word.mName == name) {
            return &word;
        }
    }
    return nullptr;
}

}  // namespace

std::optional<int> MetadataAcceptance::parse(std::string_view list) {
    int flags = 0;
    while (true) {
        const std::size_t comma = list.find(',');
        const Word* word = findWord(list.substr(0, comma));
        if (word == nullptr) {
            return std::nullopt;
        }
        flags |= word->mFlags;
        if (comma == std::string_view::npos) {
            return flags;
        }
        list.remove_prefix(comma + 1);
    }
}

std::string_view MetadataAcceptance::findRemedy(std::string_view logMessage) {
    for (const Word& word : sWords) {
        if (!word.mRefusal.empty() && logMessage.starts_with(word.mRefusal)) {
            return word.mName;
        }
    }
    return {};
}

}  // namespace ktannot
