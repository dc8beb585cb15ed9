#include "platform/svg/ComputeEstimatedBoundingBox.h"
#include "platform/svg/SvgWriter.h"
#include "tests/annotation/LaidOutText.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>

namespace kt {
namespace {

using svg::SvgWriter;
using svg::Transform;
using testing::HasSubstr;
using testing::Not;

constexpr const char* sLine1 = "DRILL 4 HOLES";
constexpr const char* sLine2 = "BEFORE PLATING";

/// What a shell command prints.
std::string run(const std::string& command) {
    std::string output;
    FILE* pipe = popen(command.c_str(), "r");
    std::array<char, 4096> chunk{};
    for (std::size_t count = 0; (count = fread(chunk.data(), 1, chunk.size(), pipe)) > 0;) {
        output.append(chunk.data(), count);
    }
    pclose(pipe);
    return output;
}

/// Draws two lines in a group with that transform and reads the picture back.
std::string drawAndRead(const Transform& transform, SvgWriter::TextMode mode) {
    test::LaidOutText block(text::TextArea{test::makeProperties("Arial", 10.0F),
                                           {{test::makeSegment(sLine1)}, {test::makeSegment(sLine2)}}});
    block.mGroup.setTransform(transform);
    block.mGroup.setColor("#000000");
    svg::BoundingBox viewBox = svg::ComputeEstimatedBoundingBox(block.mGroup);
    viewBox.addMargin({10.0F, 10.0F});

    std::string drawing;
    SvgWriter writer(drawing, {.mTextMode = mode});
    writer.startDocument("read back");
    writer.writeItem(block.mGroup);
    writer.endDocument(viewBox);

    const std::string path =
        (std::filesystem::temp_directory_path() / ("kt-read-back-" + std::to_string(getpid()))).string();
    std::ofstream(path, std::ios::binary) << drawing;
    run(KT_RSVG_CONVERT " --background-color white --width 1000 '" + path + "' -o '" + path + ".png'");
    std::string text = run(KT_TESSERACT " '" + path + ".png' - --psm 6 2>/dev/null");
    std::filesystem::remove(path);
    std::filesystem::remove(path + ".png");
    return text;
}

class ReadBackTest : public testing::TestWithParam<SvgWriter::TextMode> {
protected:
    void SetUp() override {
        if (!std::filesystem::exists(KT_RSVG_CONVERT) || !std::filesystem::exists(KT_TESSERACT)) {
            GTEST_SKIP() << "rsvg-convert and tesseract are needed to read drawings back";
        }
    }
};

TEST_P(ReadBackTest, TextStandsUprightInAMirroredGroup) {
    const std::string text = drawAndRead({{1.0F, 0.0F, 0.0F, -1.0F}, {}}, GetParam());
    EXPECT_THAT(text, HasSubstr(sLine1));
    EXPECT_THAT(text, HasSubstr(sLine2));
    EXPECT_LT(text.find(sLine1), text.find(sLine2));
}

TEST_P(ReadBackTest, TextInAnyOtherGroupCannotBeRead) {
    for (const float scale : {1.0F, -1.0F}) {
        const std::string text = drawAndRead({{scale, 0.0F, 0.0F, scale}, {}}, GetParam());
        EXPECT_THAT(text, Not(HasSubstr(sLine1)));
        EXPECT_THAT(text, Not(HasSubstr(sLine2)));
    }
}

INSTANTIATE_TEST_SUITE_P(TextModes, ReadBackTest,
                         testing::Values(SvgWriter::TextMode::Text, SvgWriter::TextMode::Outlines));

}  // namespace
}  // namespace kt
