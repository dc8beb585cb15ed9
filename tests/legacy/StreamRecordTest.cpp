#include "tests/legacy/LegacyLibraryTest.h"
#include "tests/legacy/StreamBuilder.h"

namespace ktLegacy {
namespace {

using ktTest::show;
using ktTest::Stream;
using ktTest::StreamBuilder;

class StreamRecord : public ktTest::LegacyLibraryTest {};

/// Reads a record into an object, which must be whole and read to its end.
template <typename Annotation>
std::string loadInto(Annotation& annotation, const StreamBuilder& builder) {
    Stream stream(builder);
    annotation.load(stream);
    EXPECT_FALSE(stream.hasStreamError()) << builder.getVersion().toString();
    EXPECT_EQ(stream.getConsumedCount(), builder.getSize()) << builder.getVersion().toString();
    return show(annotation);
}
template <typename Annotation>
std::string load(const StreamBuilder& builder) {
    const ktPointer<Annotation> annotation(new Annotation);
    return loadInto(*annotation, builder);
}

/// The versions from a first to a last one that give the same result.
struct VersionRow {
    std::vector<unsigned int> mMinors;
    std::string mShown;
};

TEST_F(StreamRecord, BaseFollowsTheVersion) {
    const std::string start = "raster 'note' at(7 8 9) rgb(1 2 3) flagsfc leader(1 2 3)";
    for (const auto& [minors, shown] :
         std::vector<VersionRow>{{{15, 16}, "0 leader(4 5 6)0"},
                                 {{17, 21}, "0 leader(4 5 6)0 measure(8 0 0)(8 1 0)(0 0 2)0"},
                                 {{22, 26, 27}, "200 leader(4 5 6)2 measure(8 0 0)(8 1 0)(0 0 2)3 key=5"}}) {
        for (const unsigned int minor : minors) {
            StreamBuilder builder(minor);
            builder.text("note").u32(2).leader(1, 2, 3, 200).leader(4, 5, 6, 2);
            (minor >= 17 ? builder.u32(1).measure(8, 3) : builder).placement(0xFC);
            (minor >= 22 ? builder.u32(0).map("key", 5) : builder).rasterEnd("image");
            EXPECT_EQ(load<ktAnnotationRaster>(builder), start + shown + " image'image'2x3") << minor;
        }
    }
}

TEST_F(StreamRecord, BaseOlderThan6_15ReadsNothing) {
    const StreamBuilder builder = StreamBuilder(14).baseStart("note").rasterEnd("image");
    Stream stream(builder);
    ktAnnotationRaster raster;
    raster.SetName("kept");
    raster.ktAnnotationInterface::load(stream);
    EXPECT_FALSE(stream.hasStreamError());
    raster.load(stream);
    EXPECT_TRUE(stream.hasStreamError());
    EXPECT_EQ(stream.getConsumedCount(), 0U);
    EXPECT_EQ(raster.GetName(), "kept");
}

// Types and heights are kept as read.
TEST_F(StreamRecord, TextFollowsTheVersion) {
    const std::string placed = " at(7 8 9) rgb(1 2 3)";
    const std::string oldLines = " Mono/40/1/9 | |H+x{Serif/65535/255/3}";
    const std::string lines = " Mono/40/1/9 | |H^2+x^9{Serif/65535/255/3}";
    for (const auto& [minors, shown] : std::vector<VersionRow>{
             {{12, 13}, "text" + placed + " leader(4 5 6)0" + oldLines},
             {{14}, "text 'note'" + placed + " flagsa2 leader(4 5 6)0" + oldLines},
             {{15, 16}, "text 'note'" + placed + " leader(4 5 6)0" + oldLines},
             {{17, 21}, "text 'note'" + placed + " leader(4 5 6)0 measure(1 0 0)(1 1 0)(0 0 2)0" + lines},
             {{22, 27}, "text 'note'" + placed + " leader(4 5 6)3 measure(1 0 0)(1 1 0)(0 0 2)2" + lines}}) {
        for (const unsigned int minor : minors) {
            StreamBuilder builder(minor);
            minor >= 15 ? builder.base("note") : minor == 14 ? builder.text("note") : builder;
            builder.properties("Mono", 40, 1, 9);
            minor >= 15 ? builder : builder.u32(1).vector(4, 5, 6);
            builder.u32(2).u32(0).u32(2).segment("H", 2).segmentStart("x", 9).u8(7).properties("Serif", 65535, 0xFF, 3);
            minor >= 15 ? builder : builder.placement(0xA2);
            EXPECT_EQ(load<ktAnnotationText>(builder), shown) << minor;
        }
    }
}

TEST_F(StreamRecord, FrameBefore6_14IsOnOrOff) {
    for (const auto& [stored, shown] : {std::pair(0U, " flags0"), {0x10U, ""}, {0xE0U, ""}, {7U, ""}}) {
        const auto builder = StreamBuilder(13).properties("Arial", 100, 0, 0).u32(0).u32(0).placement(stored);
        EXPECT_EQ(load<ktAnnotationText>(builder), std::string("text at(7 8 9) rgb(1 2 3)") + shown) << stored;
    }
}

TEST_F(StreamRecord, TextsOfUnusualLength) {
    EXPECT_EQ(load<ktAnnotationRaster>(StreamBuilder(15).i32(-3).u32(0).placement(1).i32(-1).u32(0).f32(2)),
              "raster at(7 8 9) rgb(1 2 3) image''0x2")
        << "lengths below one have no bytes";
    StreamBuilder old(13);
    old.properties("Arial", 100, 0, 0).u32(0).u32(1).u32(2).segment(std::string(70'000, 'x')).segment("y").placement(1);
    EXPECT_EQ(load<ktAnnotationText>(old), "text at(7 8 9) rgb(1 2 3) |" + std::string(65'535, 'x') + "+y");
    StreamBuilder builder(17);
    builder.text("").u32(0).u32(0).placement(1).properties("Arial", 100, 0, 0).u32(1).u32(2);
    const std::size_t before = builder.getSize();
    EXPECT_EQ(builder.segment("").getSize(), before + 4);
    EXPECT_EQ(load<ktAnnotationText>(builder.segment(std::string_view("a\0b", 3))), "text at(7 8 9) rgb(1 2 3) |~+a@b");
}

TEST_F(StreamRecord, LoadingTwiceLeavesNoTraceInTheLists) {
    ktAnnotationText text;
    text.setText("1\n2\n3\n4\n5");
    text.mLines[0][0].setTextProperties(Properties("Serif", 2));
    text.mLeaders.resize(4);
    text.editSubAnnots().emplace_back();
    const auto builder =
        StreamBuilder(22).base("note").properties("Arial", 100, 0, 0).u32(2).u32(1).segment("a").u32(0);
    EXPECT_EQ(loadInto(text, builder), load<ktAnnotationText>(builder));
}

TEST_F(StreamRecord, ChildrenAreReadByTheirType) {
    StreamBuilder builder(22);
    builder.text("top").u32(0).u32(0).placement(1);
    builder.u32(3).u8(4).u8(0).u8(11).u8(2).text("i").u32(0).u32(0).placement(1).u32(0).emptyMap().rasterEnd("r");
    builder.u8(77).u8(1).text("t").u32(0).u32(0).placement(1);
    builder.u32(1).u8(1).u8(1).text("inner").u32(0).u32(0).placement(1).u32(0).emptyMap().textEnd("x");
    builder.emptyMap().textEnd("y").map("key", 1).textEnd("z");
    const std::string placed = " at(7 8 9) rgb(1 2 3)";
    EXPECT_EQ(load<ktAnnotationText>(builder), "text 'top'" + placed + " key=1 [4:null] [11:raster 'i'" + placed +
                                                   " image'r'2x3] [77:text 't'" + placed + " [1:text 'inner'" + placed +
                                                   " |x] |y] |z");
}

TEST_F(StreamRecord, UnknownChildTypeEndsTheBaseRecordOnly) {
    const auto builder = StreamBuilder(22).baseStart("top").u32(2).u8(5).u8(7).rasterEnd("image");
    Stream stream(builder);
    ktAnnotationRaster raster;
    raster.mMetadata["key"] = "kept";
    raster.load(stream);
    EXPECT_TRUE(stream.hasStreamError());
    EXPECT_THAT(show(raster), testing::EndsWith(" key=kept [5:null] [1:null] image'image'2x3"));
}

TEST_F(StreamRecord, ShortReadsLeaveZerosAndKeepSingleBytes) {
    const auto whole = StreamBuilder(22).base("note").rasterEnd("image");
    const std::string leaderAndMeasure = " leader(4 5 6)3 measure(1 0 0)(1 1 0)(0 0 2)2";
    constexpr std::size_t leader = 4 + 4 + 4;
    constexpr std::size_t colour = leader + 13 + 4 + 37 + 12;
    for (const auto& [length, shown] : std::vector<std::pair<std::size_t, std::string>>{
             {0, "raster rgb(70 80 90) flagsa3"},
             {6, "raster 'no@@' rgb(70 80 90) flagsa3"},
             {leader + 12, "raster 'note' rgb(70 80 90) flagsa3 leader(4 5 6)5"},
             {leader + 13, "raster 'note' rgb(70 80 90) flagsa3 leader(4 5 6)3"},
             {colour + 1, "raster 'note' at(7 8 9) rgb(1 80 90) flagsa3" + leaderAndMeasure}}) {
        ktAnnotationRaster raster;
        raster.mLeaders.resize(1);
        raster.mLeaders[0].mHead = ktAnnotationInterface::Leader::HeadCross;
        raster.mColor = {70, 80, 90};
        raster.setFlags(0xA3);
        kt::ktBaseStream stream(std::span<const std::byte>(whole).first(length), whole.getVersion());
        raster.load(stream);
        EXPECT_TRUE(stream.hasStreamError());
        EXPECT_EQ(show(raster), shown + " image''0x0") << length;
    }
}

// Texts come before rasters, and both behind what is there.
TEST_F(StreamRecord, ViewFollowsTheVersion) {
    const std::string plane = "view 'plan' (1 2 3)(0 0 1)(1 0 0)";
    const std::string rest = " null text at(7 8 9) rgb(1 2 3) |x raster at(7 8 9) rgb(1 2 3) image'i'2x3";
    for (const auto& [minors, shown] : std::vector<VersionRow>{{{12}, "view '' (0 0 0)(0 0 1)(1 0 0) null"},
                                                               {{13, 14}, plane + " null"},
                                                               {{15, 26}, plane + rest},
                                                               {{27}, plane + " key=1" + rest}}) {
        for (const unsigned int minor : minors) {
            StreamBuilder builder(minor);
            builder.viewStart("plan").u32(minor < 15 ? 0 : 1);
            const auto addBase = [&builder, minor] {
                builder.text("").u32(0);
                (minor >= 17 ? builder.u32(0) : builder).placement(1);
                minor >= 22 ? builder.u32(0).emptyMap() : builder;
            };
            if (minor >= 15) {
                builder.u32(1);
                addBase();
                builder.textEnd("x");
                addBase();
                builder.rasterEnd("i");
            }
            minor >= 27 ? builder.map("key", 1) : builder;
            Stream stream(builder);
            ktAnnotationView view;
            view.mAnnotations.emplace_back();
            view.Load(stream);
            EXPECT_EQ(show(view), shown) << minor;
            EXPECT_EQ(stream.hasStreamError(), minor < 13);
            EXPECT_EQ(stream.getConsumedCount(), minor < 13 ? 0 : builder.getSize());
        }
    }
}

}  // namespace
}  // namespace ktLegacy
