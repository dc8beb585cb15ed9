#include "tests/migrate/DrawingCheck.h"
#include "tests/migrate/SampleText.h"
#include "tests/tool/ToolRunner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>

#include <csignal>
#include <fstream>

namespace ktannot::test {
namespace {

using testing::ContainsRegex;

/// Three hundred documents and, in the middle of them, a pipe: the tool waits there until the test has stopped it.
class InterruptTest : public testing::Test {
protected:
    static constexpr std::size_t sDocumentCount = 301;

    InterruptTest() {
        for (std::size_t index = 0; index < sDocumentCount; ++index) {
            const std::string name = "in/" + std::to_string(1000 + index) + ".json";
            mInputs.push_back(index == sDocumentCount / 2 ? mFolder.at(name) : mFolder.write(name, mDocument));
        }
        mkfifo(getPipe().c_str(), 0600);
    }

    const std::string& getPipe() const { return mInputs[sDocumentCount / 2]; }

    std::vector<std::string> getArguments(const std::vector<std::string>& options) const {
        std::vector<std::string> arguments{"migrate", "-o", mFolder.at("out")};
        arguments.insert(arguments.end(), options.begin(), options.end());
        arguments.insert(arguments.end(), mInputs.begin(), mInputs.end());
        return arguments;
    }

    ToolResult stopInTheMiddle(const std::vector<std::string>& options, int signal) const {
        RunningTool tool(getArguments(options));
        std::ofstream pipe(getPipe());  // returns when the tool has opened the other end
        tool.send(signal);
        pipe << mDocument << std::flush;
        pipe.close();
        return tool.finish();
    }

    ToolResult goOn(const std::vector<std::string>& options) const {
        std::filesystem::remove(getPipe());
        std::filesystem::copy_file(mInputs.front(), getPipe());
        return runTool(getArguments(options));
    }

    const TemporaryFolder mFolder;
    const std::string mDocument = "[" + makeView("a") + "," + makeView("b") + "]";
    std::vector<std::string> mInputs;
};

TEST_F(InterruptTest, LeavesWholeDrawingsAndGoesOnLater) {
    const struct {
        int mSignal;
        int mExitCode;
        const char* mJobs;
    } cases[] = {{SIGINT, 130, "1"}, {SIGINT, 130, "4"}, {SIGTERM, 143, "2"}};
    for (const auto& [signal, exitCode, jobs] : cases) {
        SCOPED_TRACE(std::to_string(signal) + " with --jobs " + jobs);
        const std::string report = mFolder.at("report.json");
        const ToolResult stopped = stopInTheMiddle({"--jobs", jobs, "--report", report}, signal);
        EXPECT_EQ(stopped.mExitCode, exitCode);
        EXPECT_THAT(stopped.mError, ContainsRegex("^interrupted after [0-9]+ of 301 documents; [^\n]*--skip-existing"));
        const auto part = readTree(mFolder.at("out"));
        EXPECT_LT(part.size(), 2 * sDocumentCount);
        EXPECT_EQ(findFaults(part), "");

        // The report counts what is there, and calls nothing refused that was only not reached.
        const auto told = nlohmann::json::parse(std::ifstream(report), nullptr, false);
        ASSERT_TRUE(told.is_object());
        EXPECT_EQ(told["exit"], exitCode);
        EXPECT_EQ(told["summary"]["written"], part.size());
        EXPECT_EQ(told["summary"]["refused"], 0);

        const ToolResult completed = goOn({"--skip-existing"});
        EXPECT_EQ(completed.mExitCode, 0) << completed.mError;
        const auto whole = readTree(mFolder.at("out"));
        EXPECT_EQ(whole.size(), 2 * sDocumentCount);
        EXPECT_EQ(findFaults(whole), "");

        std::filesystem::remove_all(mFolder.at("out"));
        std::filesystem::remove(getPipe());
        mkfifo(getPipe().c_str(), 0600);
    }
}

TEST_F(InterruptTest, DumpsHoldAllViewsOrAreNotThere) {
    const ToolResult stopped = stopInTheMiddle({"--jobs", "1", "--format", "json"}, SIGINT);
    EXPECT_EQ(stopped.mExitCode, 130);
    EXPECT_EQ(readTree(mFolder.at("out")).size(), 150U);
    EXPECT_EQ(goOn({"--format", "json", "--skip-existing"}).mExitCode, 0);
    const auto dumps = readTree(mFolder.at("out"));
    EXPECT_EQ(dumps.size(), sDocumentCount);
    for (const auto& [name, dump] : dumps) {
        EXPECT_EQ(nlohmann::json::parse(dump).at("views").size(), 2U) << name;
    }
}

}  // namespace
}  // namespace ktannot::test
