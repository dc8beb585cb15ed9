#include "tools/ktannot/commands/VersionCommand.h"

#include "library/Version.h"
#include "tools/ktannot/ToolVersion.h"

namespace ktannot {

namespace {

#if defined(__clang__)
constexpr const char* sCompiler = "clang " __clang_version__;
#else
constexpr const char* sCompiler = "GCC " __VERSION__;
#endif

#if defined(NDEBUG)
constexpr const char* sAssertions = "without assertions";
#else
constexpr const char* sAssertions = "with assertions";
#endif

}  // namespace

std::string VersionCommand::getDetails() const { return "Please give this text with every report of a fault."; }

void VersionCommand::declareOptions(CLI::App& /*app*/) {}

ExitCode VersionCommand::run(Channels& channels) {
    channels.mConsole.out().write(getText() + "\n");
    return ExitCode::AllWell;
}

std::string VersionCommand::getText() {
    using ktAnnotationLegacy::Version;
    return std::string("ktannot ") + getToolVersion() + "\nlibktAnnotationLegacy " +
           Version::GetDescStringMajorMinorReleaseRevisionDate() + "\nbuilt with " + sCompiler + ", " + sAssertions;
}

}  // namespace ktannot
