#include "tests/migrate/DrawingCheck.h"
#include "tests/migrate/SampleText.h"
#include "tests/tool/TemporaryFolder.h"
#include "tests/tool/ToolRunner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fstream>

namespace ktannot::test {
namespace {

using testing::HasSubstr;

/// A folder with a document for every way that things can go.
class MigrateReport : public testing::Test {
protected:
    MigrateReport() {
        mFolder.write("in/a.json", "[" + makeView("a") + "," + makeView("m", makeText(), R"({"k":1})") + "]");
        mFolder.write("in/broken.json", "{");
        mFolder.write("in/field.json", R"({"ver":"6.22","name":"f","axis":0,"annotations":[]})");
        mFolder.write("in/settings.json", R"({"colour":"red"})");
        mFolder.write("in/list.json", "[1,2]");
        mFolder.write("in/there.json", "[" + makeView("t") + "," + makeView("u") + "]");
        mFolder.write("out/there.json/001-t.svg", "mine");
        mFolder.write("out/a.json/001-a.svg/in the way", "a folder where a drawing should be");
    }

    nlohmann::json migrate(const std::vector<std::string>& options) {
        std::vector<std::string> arguments{"migrate",         mFolder.at("in"), "-o",
                                           mFolder.at("out"), "--report",       mFolder.at("report.json")};
        arguments.insert(arguments.end(), options.begin(), options.end());
        mResult = runTool(arguments);
        return nlohmann::json::parse(std::ifstream(mFolder.at("report.json")));
    }

    const TemporaryFolder mFolder;
    ToolResult mResult;
};

TEST_F(MigrateReport, CountsAndNamesEverything) {
    const nlohmann::json report = migrate({"--force", "--jobs", "2"});
    EXPECT_EQ(mResult.mExitCode, 6);
    EXPECT_EQ(report["exit"], 6);
    EXPECT_EQ(report["tool"], "ktannot");
    const nlohmann::json summary = {{"documents", 4}, {"failedDocuments", 1}, {"skippedFiles", 2}, {"written", 3},
                                    {"skipped", 0},   {"refused", 1},         {"failed", 1},       {"problems", 1}};
    EXPECT_EQ(report["summary"], summary);
    EXPECT_EQ(mResult.mOut,
              "3 views of 4 documents migrated to " + mFolder.at("out") +
                  "; 1 refused; 1 not written; 1 document failed; 2 other files skipped; 1 problem told\n");

    const nlohmann::json& documents = report["documents"];
    ASSERT_EQ(documents.size(), 4U);
    EXPECT_EQ(documents[0]["source"], mFolder.at("in/a.json"));
    EXPECT_EQ(documents[0]["exit"], 6);
    EXPECT_EQ(documents[0]["views"][0]["state"], "failed");
    EXPECT_FALSE(documents[0]["views"][0].contains("file"));
    EXPECT_EQ(documents[0]["views"][1]["state"], "refused");
    EXPECT_EQ(documents[0]["views"][1]["accept"], "view-metadata");
    EXPECT_THAT(documents[1]["reason"], HasSubstr("not valid JSON"));
    EXPECT_EQ(documents[2]["exit"], 3);
    EXPECT_EQ(documents[2]["messages"], nlohmann::json({"invalid 'axis' field"}));
    for (const nlohmann::json& view : documents[3]["views"]) {
        EXPECT_EQ(view["state"], "written");
        EXPECT_TRUE(std::filesystem::exists(view["file"].get<std::string>()));
    }
}

TEST_F(MigrateReport, TellsWhatWasThereAlready) {
    const nlohmann::json kept = migrate({"--skip-existing"});
    EXPECT_EQ(kept["documents"][3]["views"][0]["state"], "skipped");
    EXPECT_EQ(kept["documents"][3]["views"][1]["state"], "written");
    EXPECT_EQ(kept["summary"]["skipped"], 2);

    const nlohmann::json refused = migrate({});
    EXPECT_THAT(refused["documents"][3]["reason"], HasSubstr("--force"));
    EXPECT_EQ(refused["summary"]["failedDocuments"], 4);  // by now a drawing of every document is there
}

TEST_F(MigrateReport, LogLinesGoToTheDumpAndToTheLogFile) {
    mFolder.write("log", "older line\n");
    const ToolResult result =
        runTool({"migrate", mFolder.at("in/a.json"), "--format", "json", "-o", "-", "--log-file", mFolder.at("log")});
    const nlohmann::json dump = nlohmann::json::parse(result.mOut);
    const nlohmann::json log = {{{"type", 5}, {"message", "Found metadata in annotation view"}}};
    EXPECT_EQ(dump["log"], log);
    EXPECT_TRUE(dump["views"][1].is_null());
    const std::string file = readTree(mFolder.getPath())["log"];
    EXPECT_THAT(file, testing::StartsWith("older line\n"));
    EXPECT_THAT(file, HasSubstr("[5] Found metadata in annotation view\n"));
}

}  // namespace
}  // namespace ktannot::test
