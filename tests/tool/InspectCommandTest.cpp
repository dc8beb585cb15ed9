#include "tests/tool/TemporaryFolder.h"
#include "tests/tool/ToolRunner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

namespace ktannot::test {
namespace {

using testing::HasSubstr;
using testing::Not;

ToolResult inspectText(const std::string& document, std::vector<std::string> options) {
    ToolRun run;
    run.mArguments = {"inspect", "-"};
    run.mArguments.insert(run.mArguments.end(), options.begin(), options.end());
    run.mInput = document;
    return runTool(run);
}

/// A binary document whose view named "front" bears other five bytes as its name.
std::string renameView(const std::string& name) {
    std::ostringstream content;
    content << std::ifstream(getDocument("link_to_nothing.kts"), std::ios::binary).rdbuf();
    std::string bytes = content.str();
    return bytes.replace(bytes.find("front"), 5, name);
}

TEST(InspectCommand, JsonHoldsEveryMember) {
    const std::string document = R"([{"ver":"6.27","name":"v","origin":[1,2,3],"normal":[0,1,0],"axis":[1,0,0],
        "metadata":{"n":null,"b":true,"i":-9007199254740993,"r":0.1,"s":"x","l":[1.0,{}]},
        "annotations":[
          {"type":"text","name":"t","position":[0.1,1e300,-0.5],"color":"ff8000","frameshape":"circle",
           "isframelocked":true,"leaders":[{"pos":[1,2,3],"head":"arrow"}],
           "measures":[{"A":[1,0,0],"B":[2,0,0],"V":[0,1,0],"arrowdir":"outin"}],
           "defaulttextprop":{"font":"Serif","heightem":1.25,"bold":true},
           "lines":[[{"text":"a"},{"text":"2","type":"sup","italic":true}],[]],
           "children":[{"type":"raster","anchorloc":"tl","rastername":"p.png","sizeem":[2,0.5],"metadata":{"k":1}}]}
        ]},{"ver":"6.16"}])";
    const ToolResult result = inspectText(document, {"--json"});
    EXPECT_EQ(
        result.mOut,
        R"({"source": "-", "kind": "variant", "streamError": false, "messages": ["invalid version 6.16"], "problems": [], )"
        R"("views": [{"version": "6.27", "name": "v", "origin": [1, 2, 3], "normal": [0, 1, 0], "axis": [1, 0, 0], )"
        R"("annotations": [{"type": "text", "name": "t", "position": [0.1, "Infinity", -0.5], "color": [255, 128, 0], )"
        R"("flags": 139, "leaders": [{"position": [1, 2, 3], "head": 3}], )"
        R"("measures": [{"a": [1, 0, 0], "b": [2, 0, 0], "v": [0, 1, 0], "arrows": 3}], )"
        R"("children": [{"anchor": 4, "annotation": {"type": "raster", "name": "", "position": [0, 0, 0], )"
        R"("color": [255, 255, 255], "flags": 1, "leaders": [], "measures": [], "children": [], "metadata": {"k": 1}, )"
        R"("rasterName": "p.png", "sizeEm": [2, 0.5]}}], "metadata": {}, )"
        R"("defaults": {"font": "Serif", "height": 125, "style": 1, "reserved": 0}, )"
        R"("lines": [[{"text": "a", "type": 0, "properties": null}, {"text": "2", "type": 2, )"
        R"("properties": {"font": "Serif", "height": 125, "style": 3, "reserved": 0}}], []]}], )"
        R"("metadata": {"b": true, "i": -9007199254740993, "l": [1, {}], "n": null, "r": 0.1, "s": "x"}}, null]})"
        "\n");
    EXPECT_EQ(result.mExitCode, 4);
    EXPECT_EQ(result.mError, "");
}

TEST(InspectCommand, JsonOfABinaryDocument) {
    const std::string path = getDocument("view_of_612.kts");
    const ToolResult result = runTool({"inspect", "--json", path});
    EXPECT_THAT(result.mOut,
                HasSubstr(R"({"source": ")" + path +
                          R"(", "kind": "stream", "version": "6.12", "streamError": true, "messages": [], )"
                          R"("problems": [{"object": 2, "offset": 55, "what": ")"));
    EXPECT_THAT(result.mOut, HasSubstr(R"("views": [{"name": "", "origin": [0, 0, 0], "normal": [0, 0, 1], )"
                                       R"("axis": [1, 0, 0], "annotations": [], "metadata": {}}]})"));
    EXPECT_EQ(result.mExitCode, 3);
}

TEST(InspectCommand, BytesThatAreNoTextAreTold) {
    const ToolResult json = inspectText(renameView("fr\xffnt"), {"--json"});
    EXPECT_THAT(json.mOut, HasSubstr(R"("name": {"bytes": "6672ff6e74"})"));
    const ToolResult tree = inspectText(renameView("fr\xffnt"), {});
    EXPECT_THAT(tree.mOut, HasSubstr("'fr\\xffnt'"));
}

TEST(InspectCommand, ControlCharactersNeverReachTheTerminal) {
    const std::string name = "\x1b[2J\r";
    for (const std::vector<std::string>& options : {std::vector<std::string>{}, {"--json"}, {"--color=never"}}) {
        const ToolResult result = inspectText(renameView(name), options);
        EXPECT_THAT(result.mOut + result.mError, Not(HasSubstr("\x1b")));
        EXPECT_THAT(result.mOut + result.mError, Not(HasSubstr("\r")));
    }
    const ToolResult message = inspectText(R"({"ver":"6\u001b\u202e"})", {});
    EXPECT_THAT(message.mOut, HasSubstr("invalid version 6\\x1b\\u202e"));
    // Names of files are foreign, too.
    const ToolResult missing = runTool({"inspect", "\x1b[31mmissing"});
    EXPECT_THAT(missing.mError, testing::AllOf(HasSubstr("\\x1b[31mmissing"), Not(HasSubstr("\x1b"))));
}

TEST(InspectCommand, TreeShowsChildrenIndentedAndProblemsInPlace) {
    const ToolResult result = inspectText(R"([{"ver":"6.22","name":"v","origin":7,"annotations":[
        {"type":"text","name":"a","text":"one\ntwo","leaders":[{"pos":[1,2,3],"head":"plus"}],
         "children":[{"type":"raster","name":"b","anchorloc":"rc","rastername":"p"}]},
        {"type":"text","frameshape":"flagleft"}, 5]}, {}])",
                                          {});
    EXPECT_EQ(result.mOut,
              "-  variant document, 1 view, 2 annotations (and 1 child)\n"
              "├─ view 1 'v'  version 6.22  origin (0, 0, 0)  normal (0, 0, 1)  axis (1, 0, 0)\n"
              "│  ├─ text 'a' at (0, 0, 0)  rectangle  #ffffff  \"one / two\"\n"
              "│  │  ├─ leader to (1, 2, 3)  plus\n"
              "│  │  └─ [right centre] raster 'b' at (0, 0, 0)  rectangle  #ffffff  image 'p' 1 x 1 em\n"
              "│  ├─ text '' at (0, 0, 0)  flag left  #ffffff  without text\n"
              "│  ├─ ! invalid 'origin' field\n"
              "│  ├─ ! invalid 'annotations' field content\n"
              "│  └─ ! 1 of 3 annotations of view 'v' could not be read\n"
              "└─ view 2 could not be made\n"
              "   └─ ! invalid version \n");
    EXPECT_EQ(result.mExitCode, 4);
}

TEST(InspectCommand, DeepTreesStayReadable) {
    const ToolResult result = runTool({"inspect", getSample("parts_list_v627.json")});
    EXPECT_EQ(result.mExitCode, 0);
    EXPECT_EQ(result.mError, "");
    std::string document = R"({"ver":"6.22","annotations":[)";
    std::string end;
    for (int level = 0; level < 512; ++level) {
        document += R"({"type":"text","children":[)";
        end += "]}";
    }
    const ToolResult deep = inspectText(document + end + "]}", {});
    EXPECT_EQ(deep.mExitCode, 0);
    EXPECT_THAT(deep.mOut, HasSubstr("[level 513] "));
    EXPECT_LT(deep.mOut.size(), 512U * 400);
}

TEST(InspectCommand, ColourIsForTerminalsUnlessAskedFor) {
    const std::string path = getSample("symbols_from_617_v615.kts");
    const std::string escape = "\x1b[";
    const struct {
        bool mIsTerminal;
        const char* mNoColor;
        const char* mOption;
        bool mIsColored;
    } cases[] = {
        {false, "", "--color=auto", false},  {true, "", "--color=auto", true},   {true, "1", "--color=auto", false},
        {true, "1", "--color=always", true}, {true, "", "--color=never", false}, {false, "", "--color=always", true},
    };
    for (const auto& test : cases) {
        ToolRun run;
        run.mArguments = {"inspect", test.mOption, path};
        run.mEnvironment = {{"NO_COLOR", test.mNoColor}, {"TERM", "xterm"}};
        run.mIsTerminal = test.mIsTerminal;
        const ToolResult result = runTool(run);
        EXPECT_EQ(result.mOut.find(escape) != std::string::npos, test.mIsColored)
            << test.mIsTerminal << test.mNoColor << test.mOption;
        EXPECT_EQ(result.mExitCode, 0);
    }
}

TEST(InspectCommand, EachInputIsOneLineInOrder) {
    const TemporaryFolder folder;
    folder.write("in/b.json", R"({"ver":"6.22","annotations":[]})");
    folder.write("in/a.kts", "KTSTREAM");
    folder.write("in/settings.json", "{}");
    const ToolResult result = runTool({"inspect", "--json", folder.at("missing"), folder.at("in")});
    std::istringstream lines(result.mOut);
    std::vector<std::string> starts;
    for (std::string line; std::getline(lines, line);) {
        starts.push_back(line.substr(0, line.find(", \"", 12)));
    }
    const std::string start = "{\"source\": \"" + folder.getPath();
    EXPECT_THAT(starts, testing::ElementsAre(start + "/missing\"", start + "/in/a.kts\"", start + "/in/b.json\""));
    EXPECT_THAT(result.mOut, HasSubstr(R"("refused": "cannot be read: No such file or directory"})"));
    EXPECT_EQ(result.mExitCode, 6);
}

}  // namespace
}  // namespace ktannot::test
