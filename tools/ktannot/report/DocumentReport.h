#pragma once

/// @file
/// What is told of a document.

#include "tools/ktannot/report/ExitCode.h"
#include "tools/ktannot/report/MigrationCounts.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace ktannot {

/// All that is told of one document when it is done, without the document: small, whatever it holds, and able to cross
/// to another process.
struct DocumentReport {
    /// Messages for people that have one cause.
    struct Group {
        enum class Kind { Message, RefusedView };
        /// So many lines of a group are kept, the others are counted.
        static constexpr std::size_t sLines = 10;

        Kind mKind = Kind::Message;
        std::string mCause;               ///< without names and numbers: equal for equal causes
        std::string mRemedy;              ///< option that would help; may be empty
        std::size_t mCount = 0;           ///< of messages
        std::vector<std::string> mLines;  ///< the first of them, safe to show

        void add(std::string line);
    };

    /// The group of a cause, made when there is none.
    Group& getGroup(Group::Kind kind, std::string_view cause);

    std::string toBytes() const;
    /// Throws std::runtime_error when the bytes are not those of toBytes().
    static DocumentReport fromBytes(std::string_view bytes);

    ExitCode mOutcome = ExitCode::AllWell;
    bool mIsStopped = false;  ///< an end was asked for before all of its views were made
    MigrationCounts mCounts;
    std::vector<Group> mGroups;  ///< in the order of their first messages
    std::string mText;           ///< for standard output
    std::string mFileNames;      ///< of drawings, a line each, safe to show; when they are wanted
    std::string mJson;           ///< what the report file says; when it is wanted
};

}  // namespace ktannot
