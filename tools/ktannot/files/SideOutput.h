#pragma once

/// @file
/// Where a report or a log goes.

#include "tools/ktannot/files/FileDescriptor.h"
#include "tools/ktannot/files/OutputFile.h"

#include <memory>
#include <string>

namespace ktannot {

/// What is written beside the results. "-" is standard output; pipes, terminals and devices are written straight into,
/// so are "/dev/stdout" and its like. Links are followed.
class SideOutput {
public:
    enum class Way {
        Whole,   ///< the file gets its name in publish(), with all content
        Stream,  ///< the file is emptied and grows while it is written
        Append,  ///< what is there stays in front
    };

    /// Opens the output, and creates the folders above a new file.
    SideOutput(const std::string& path, Way way);

    /// Why it could not be opened; empty when it was.
    const std::string& getFailure() const { return mFailure; }
    /// To write to; below 0 when it could not be opened.
    int getDescriptor() const { return mWhole != nullptr ? mWhole->getDescriptor() : mDescriptor.get(); }
    /// Ends the output. Returns the reason of a failure, empty on success.
    std::string publish();

    /// Whether the path stands for standard output.
    static bool isStandardOutput(const std::string& path);

private:
    std::string mFailure;
    std::unique_ptr<OutputFile> mWhole;
    FileDescriptor mDescriptor;
};

}  // namespace ktannot
