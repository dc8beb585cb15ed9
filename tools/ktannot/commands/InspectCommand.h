#pragma once

/// @file
/// The command inspect.

#include "tools/ktannot/commands/Command.h"

namespace ktannot {

/// Shows what documents hold: as trees for people or one JSON text per document for programs.
class InspectCommand : public Command {
public:
    const char* getName() const override { return "inspect"; }
    const char* getSummary() const override { return "Show what documents hold"; }
    std::string getDetails() const override;
    void declareOptions(CLI::App& app) override;
    ExitCode run(Channels& channels) override;

private:
    std::vector<std::string> mArguments;
    ColorMode mColor = ColorMode::Auto;
    bool mIsJson = false;
    std::optional<std::uint64_t> mMemoryLimit;
};

}  // namespace ktannot
