#pragma once

/// @file
/// The command check.

#include "tools/ktannot/commands/Command.h"
#include "tools/ktannot/report/DocumentCensus.h"

namespace ktannot {

/// Reads documents and reports everything that is wrong with them; writes no files.
class CheckCommand : public Command {
public:
    const char* getName() const override { return "check"; }
    const char* getSummary() const override { return "Read everything, report every problem, write nothing"; }
    std::string getDetails() const override;
    void declareOptions(CLI::App& app) override;
    ExitCode run(Channels& channels) override;

private:
    static void printFindings(TextOutput& output, const SourceDocument& document);
    static void printSummary(TextOutput& output, const DocumentCensus& census, const std::string& passedOver);
    static void writeJson(TextOutput& output, const SourceDocument& document);

    std::vector<std::string> mArguments;
    bool mIsJson = false;
    std::optional<std::uint64_t> mMemoryLimit;
};

}  // namespace ktannot
