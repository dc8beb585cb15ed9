#pragma once

/// @file
/// The command version.

#include "tools/ktannot/commands/Command.h"

namespace ktannot {

/// Tells versions and how the tool was built.
class VersionCommand : public Command {
public:
    const char* getName() const override { return "version"; }
    const char* getSummary() const override { return "Tell the version of tool and library"; }
    std::string getDetails() const override;
    void declareOptions(CLI::App& app) override;
    ExitCode run(Channels& channels) override;

    static std::string getText();
};

}  // namespace ktannot
