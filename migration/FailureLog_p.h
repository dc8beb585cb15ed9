#pragma once

/// @file
/// What the migration tells.

#include "migration/ktAnnotationMigration.h"

#include <string>
#include <string_view>
#include <vector>

namespace ktLegacy::migration {

/// Writes the migration's lines to the process's log, all at the type of errors, and keeps them with their codes for
/// the caller of the migration.
class FailureLog {
public:
    /// A line under construction; it is written when it is destroyed.
    class Line {
    public:
        Line(FailureLog& log, ktFindingCode code) : mLog(log), mCode(code) {}
        Line(const Line&) = delete;
        Line& operator=(const Line&) = delete;
        ~Line();

        Line& operator<<(std::string_view text) {
            mText += text;
            return *this;
        }

    private:
        FailureLog& mLog;
        ktFindingCode mCode;
        std::string mText;
    };

    /// Begins a line.
    Line tell(ktFindingCode code) { return {*this, code}; }

    /// A call of the migration, for its lifetime. The outermost one begins with no lines.
    class Call {
    public:
        explicit Call(FailureLog& log) : mLog(log) {
            if (log.mDepth++ == 0) {
                log.mLines.clear();
            }
        }
        Call(const Call&) = delete;
        Call& operator=(const Call&) = delete;
        ~Call() { --mLog.mDepth; }

    private:
        FailureLog& mLog;
    };

    const std::vector<ktAnnotationMigration::LogLine>& getLines() const { return mLines; }

private:
    std::vector<ktAnnotationMigration::LogLine> mLines;
    int mDepth = 0;  ///< calls at work: a raster callback may migrate something else with the same object
};

}  // namespace ktLegacy::migration
