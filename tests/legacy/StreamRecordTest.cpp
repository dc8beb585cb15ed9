#include "legacy/ktAnnotationMetaData.h"
#include "legacy/ktAnnotationRaster.h"
#include "legacy/ktAnnotationText.h"
#include "legacy/ktAnnotationView.h"
#include "platform/system/ktBaseStream.h"
#include "tests/legacy/LegacyLibraryTest.h"
#include "tests/legacy/StreamBuilder.h"

#include <gmock/gmock.h>

#include <limits>
#include <memory>
#include <new>
#include <string>

namespace ktLegacy {
namespace {

using kt::ktPointer;
using ktTest::StreamBuilder;
using Point = Wm4::Vector3<float>;
using Segment = ktAnnotationText::TextSegment;
using Properties = ktAnnotationText::TextProperties;

class StreamRecord : public ktTest::LegacyLibraryTest {};

/// A stream over the bytes that a builder holds now.
struct Stream : kt::ktBaseStream {
    explicit Stream(const StreamBuilder& builder) : kt::ktBaseStream(builder.getBytes(), builder.getVersion()) {}
};

/// Reads a record that must be whole and read to its end.
template <typename Annotation>
ktPointer<Annotation> loadWhole(const StreamBuilder& builder) {
    const ktPointer<Annotation> annotation(new Annotation);
    Stream stream(builder);
    annotation->load(stream);
    EXPECT_FALSE(stream.hasStreamError()) << builder.getVersion().toString();
    EXPECT_EQ(stream.getConsumedCount(), builder.getSize()) << builder.getVersion().toString();
    return annotation;
}

TEST_F(StreamRecord, BaseFollowsTheVersion) {
    for (const unsigned int minor : {15U, 16U, 17U, 21U, 22U, 26U, 27U}) {
        StreamBuilder builder(6, static_cast<std::uint16_t>(minor));
        builder.text("note").u32(2).leader(1, 2, 3, 200).leader(4, 5, 6, 2);
        if (minor >= 17) {
            builder.u32(1).measure(8, 3);
        }
        builder.placement(0xFC);
        if (minor >= 22) {
            builder.u32(0).map("key", 5);
        }
        const auto raster = loadWhole<ktAnnotationRaster>(builder.rasterEnd("image"));
        EXPECT_EQ(raster->GetName(), "note");
        ASSERT_EQ(raster->mLeaders.size(), 2U);
        EXPECT_EQ(raster->mLeaders[1].mPosition, Point(4, 5, 6));
        EXPECT_EQ(raster->mLeaders[0].mHead, minor >= 22 ? 200 : 0);
        ASSERT_EQ(raster->mMeasureLeaders.size(), minor >= 17 ? 1U : 0U);
        if (minor >= 17) {
            EXPECT_EQ(raster->mMeasureLeaders[0].mPointB, Point(8, 1, 0));
            EXPECT_EQ(raster->mMeasureLeaders[0].mOffsetVector, Point(0, 0, 2));
            EXPECT_EQ(raster->mMeasureLeaders[0].mArrowDirection, minor >= 22 ? 3 : 0);
        }
        EXPECT_EQ(raster->mPosition, Point(7, 8, 9));
        EXPECT_EQ(raster->mColor, Wm4::Vector3<unsigned char>(1, 2, 3));
        EXPECT_EQ(raster->getFlags(), 0xFC);
        EXPECT_EQ(raster->mMetadata.size(), minor >= 22 ? 1U : 0U);
        EXPECT_EQ(raster->mRasterName, "image");
        EXPECT_EQ(raster->mSizeEm, Wm4::Vector2<float>(2, 3));
    }
}

TEST_F(StreamRecord, BaseOlderThan6_15ReadsNothing) {
    StreamBuilder builder(6, 14);
    builder.baseStart("note").rasterEnd("image");
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

TEST_F(StreamRecord, TextFollowsTheVersion) {
    for (const unsigned int minor : {12U, 13U, 14U, 15U, 16U, 17U, 27U}) {
        StreamBuilder builder(6, static_cast<std::uint16_t>(minor));
        const auto addLines = [&builder] {
            builder.u32(2).u32(0).u32(2).segment("H", 2).segmentStart("x", 9).u8(7).properties("Serif", 65535, 0xFF, 3);
        };
        if (minor >= 15) {
            builder.base("note").properties("Mono", 40, 1, 9);
            addLines();
        } else {
            if (minor == 14) {
                builder.text("note");
            }
            builder.properties("Mono", 40, 1, 9).u32(1).vector(4, 5, 6);
            addLines();
            builder.placement(0xA2);
        }
        const auto text = loadWhole<ktAnnotationText>(builder);
        EXPECT_EQ(text->GetName(), minor >= 14 ? "note" : "");
        ASSERT_EQ(text->mLeaders.size(), 1U);
        EXPECT_EQ(text->mLeaders[0].mPosition, Point(4, 5, 6));
        EXPECT_EQ(text->mPosition, Point(7, 8, 9));
        EXPECT_EQ(text->getFlags(), minor == 14 ? 0xA2 : 1);
        EXPECT_EQ(text->mDefaultTextProperties.mFontName, "Mono");
        EXPECT_EQ(text->mDefaultTextProperties.mReserved, 9);
        ASSERT_EQ(text->mLines.size(), 2U);
        EXPECT_TRUE(text->mLines[0].empty());
        ASSERT_EQ(text->mLines[1].size(), 2U);
        const Segment& segment = text->mLines[1][1];
        EXPECT_EQ(text->mLines[1][0].mProperties, nullptr);
        EXPECT_EQ(text->mLines[1][0].mType, minor >= 17 ? Segment::Superscript : Segment::Normal);
        EXPECT_STREQ(segment.getText(), "x");
        EXPECT_EQ(segment.mType, minor >= 17 ? 9 : 0) << "kept as read";
        ASSERT_NE(segment.mProperties, nullptr);
        EXPECT_EQ(segment.mProperties->mFontName, "Serif");
        EXPECT_EQ(segment.mProperties->mHeight, 65535) << "not clamped";
        EXPECT_EQ(segment.mProperties->mStyle, 0xFF);
    }
}

TEST_F(StreamRecord, FrameBefore6_14IsOnOrOff) {
    for (const auto& [stored, expected] :
         {std::pair(0U, 0), std::pair(0x10U, 1), std::pair(0xE0U, 1), std::pair(7U, 1)}) {
        StreamBuilder builder(6, 13);
        builder.properties("", 100, 0, 0).u32(0).u32(0).placement(stored);
        EXPECT_EQ(loadWhole<ktAnnotationText>(builder)->getFlags(), expected) << stored;
    }
}

TEST_F(StreamRecord, LengthsBelowOneAreEmptyTexts) {
    StreamBuilder builder(6, 15);
    builder.i32(-3).u32(0).placement(1).i32(-1).u32(0).f32(2);
    const auto raster = loadWhole<ktAnnotationRaster>(builder);
    EXPECT_EQ(raster->mSizeEm, Wm4::Vector2<float>(0, 2)) << "the name has no bytes";
}

TEST_F(StreamRecord, LongSegmentsOfOldStreamsAreCut) {
    const std::string longText(70'000, 'x');
    StreamBuilder builder(6, 16);
    builder.base("").properties("Arial", 100, 0, 0).u32(1).u32(2).segment(longText).segment("y");
    const auto text = loadWhole<ktAnnotationText>(builder);
    EXPECT_EQ(text->mLines[0][0].mLength, 65'535);
    EXPECT_STREQ(text->mLines[0][1].getText(), "y");
}

TEST_F(StreamRecord, SegmentsKeepNulsAndHaveNoTextWhenEmpty) {
    StreamBuilder builder(6, 17);
    builder.base("").properties("Arial", 100, 0, 0).u32(1).u32(2);
    const std::size_t before = builder.getSize();
    builder.segment("");
    EXPECT_EQ(builder.getSize(), before + 4);
    builder.segment(std::string_view("a\0b", 3));
    const auto text = loadWhole<ktAnnotationText>(builder);
    EXPECT_EQ(text->mLines[0][0].mText, nullptr);
    EXPECT_EQ(std::string(text->mLines[0][1].getText(), text->mLines[0][1].mLength), std::string("a\0b", 3));
}

TEST_F(StreamRecord, LoadingTwiceLeavesNoTraceInTheLists) {
    ktAnnotationText text;
    text.setText("1\n2\n3\n4\n5");
    text.mLines[0][0].setTextProperties(Properties("Serif", 2));
    text.mLeaders.resize(4);
    text.editSubAnnots().emplace_back();
    StreamBuilder builder(6, 22);
    builder.base("note").properties("Arial", 100, 0, 0).u32(2).u32(1).segment("a").u32(0);
    Stream stream(builder);
    text.load(stream);
    EXPECT_FALSE(stream.hasStreamError());
    ASSERT_EQ(text.mLines.size(), 2U);
    EXPECT_EQ(text.mLines[0][0].mProperties, nullptr);
    EXPECT_EQ(text.mLeaders.size(), 1U);
    EXPECT_EQ(text.getSubAnnotsCount(), 0U);
}

TEST_F(StreamRecord, ChildrenAreReadByTheirType) {
    StreamBuilder builder(6, 22);
    builder.baseStart("top").u32(3).u8(4).u8(0).u8(11).u8(2).base("image").rasterEnd("i");
    builder.u8(77).u8(1).baseStart("text").u32(1).u8(1).u8(1).base("inner").textEnd("x").emptyMap().textEnd("y");
    builder.map("key", 1).textEnd("z");
    const auto text = loadWhole<ktAnnotationText>(builder);
    ASSERT_EQ(text->getSubAnnotsCount(), 3U);
    auto entry = text->getSubAnnots().begin();
    EXPECT_EQ(entry->mAnnotation, nullptr);
    EXPECT_EQ(entry->mAnchorLocation, 4);
    ++entry;
    EXPECT_EQ(entry->mAnnotation->mType, ktAnnotationInterface::Raster);
    EXPECT_EQ(entry->mAnchorLocation, 11);
    ++entry;
    EXPECT_EQ(entry->mAnchorLocation, 77) << "kept as read";
    EXPECT_EQ(entry->mAnnotation->getSubAnnots().front().mAnnotation->GetName(), "inner");
    EXPECT_EQ(text->mMetadata.at("key").toInteger(), 1);
    EXPECT_STREQ(text->mLines[0][0].getText(), "z");
}

TEST_F(StreamRecord, UnknownChildTypeEndsTheBaseRecordOnly) {
    StreamBuilder builder(6, 22);
    builder.baseStart("top").u32(2).u8(5).u8(7).rasterEnd("image");
    Stream stream(builder);
    ktAnnotationRaster raster;
    raster.mMetadata["key"] = "kept";
    raster.load(stream);
    EXPECT_TRUE(stream.hasStreamError());
    EXPECT_EQ(raster.getSubAnnotsCount(), 2U);
    EXPECT_EQ(raster.getSubAnnots().front().mAnchorLocation, 5);
    EXPECT_EQ(raster.getSubAnnots().back().mAnchorLocation, 1);
    EXPECT_EQ(raster.mMetadata.size(), 1U);
    EXPECT_EQ(raster.mRasterName, "image");
}

TEST_F(StreamRecord, ShortReadsLeaveZerosAndKeepSingleBytes) {
    StreamBuilder whole(6, 22);
    whole.base("note").rasterEnd("image");
    struct Case {
        std::size_t mLength;
        std::size_t mLeaderCount;
        int mHead;
        unsigned char mRed;
        unsigned char mGreen;
        std::string mName;
    };
    const std::size_t leader = 4 + 4 + 4;
    const std::size_t colour = leader + 13 + 4 + 37 + 12;
    for (const Case& c : {Case{0, 0, 5, 70, 80, ""}, Case{6, 0, 5, 70, 80, std::string("no\0\0", 4)},
                          Case{leader + 12, 1, 5, 70, 80, "note"}, Case{leader + 13, 1, 3, 70, 80, "note"},
                          Case{colour + 1, 1, 3, 1, 80, "note"}}) {
        ktAnnotationRaster raster;
        raster.mLeaders.resize(1);
        raster.mLeaders[0].mHead = ktAnnotationInterface::Leader::HeadCross;
        raster.mColor = {70, 80, 90};
        raster.setFlags(0xA3);
        kt::ktBaseStream stream(whole.getBytes().first(c.mLength), whole.getVersion());
        raster.load(stream);
        EXPECT_TRUE(stream.hasStreamError());
        EXPECT_EQ(raster.GetName(), c.mName);
        ASSERT_EQ(raster.mLeaders.size(), c.mLeaderCount) << c.mLength;
        if (c.mLeaderCount != 0) {
            EXPECT_EQ(raster.mLeaders[0].mHead, c.mHead) << c.mLength;
        }
        EXPECT_EQ(raster.mColor, Wm4::Vector3<unsigned char>(c.mRed, c.mGreen, 90));
        EXPECT_EQ(raster.getFlags(), 0xA3);
        EXPECT_EQ(raster.mSizeEm, Wm4::Vector2<float>::ZERO);
    }
}

// Every place where the data may end: the error flag tells, and the sanitizers find nothing.
TEST_F(StreamRecord, EveryTruncationIsAnError) {
    for (const unsigned int minor : {13U, 14U, 15U, 17U, 22U, 27U}) {
        StreamBuilder builder(6, static_cast<std::uint16_t>(minor));
        builder.viewStart("plan").u32(1);
        if (minor >= 15) {
            builder.u32(1).base("text").textEnd("content").base("image").rasterEnd("picture");
        } else {
            if (minor == 14) {
                builder.text("text");
            }
            builder.properties("Arial", 100, 0, 0).u32(0).u32(1).u32(1).segment("content").placement(1);
        }
        if (minor >= 27) {
            builder.map("key", 1);
        }
        for (std::size_t length = 0; length <= builder.getSize(); ++length) {
            kt::ktBaseStream stream(builder.getBytes().first(length), builder.getVersion());
            ktAnnotationView view;
            view.Load(stream);
            EXPECT_EQ(stream.hasStreamError(), length != builder.getSize()) << minor << ": " << length;
        }
    }
}

TEST_F(StreamRecord, NestingEndsAtLevel512) {
    for (const int depth : {511, 512, 513, 600}) {
        StreamBuilder builder(6, 22);
        for (int level = 1; level < depth; ++level) {
            builder.baseStart("").u32(1).u8(6).u8(2);
        }
        builder.base("deepest").rasterEnd("");
        for (int level = 1; level < depth; ++level) {
            builder.emptyMap().rasterEnd("");
        }
        Stream stream(builder);
        const ktPointer<ktAnnotationRaster> top(new ktAnnotationRaster);
        top->load(stream);
        int levels = 1;
        const ktAnnotationInterface* last = top;
        while (last->getSubAnnotsCount() != 0 && last->getSubAnnots().front().mAnnotation != nullptr) {
            last = last->getSubAnnots().front().mAnnotation;
            ++levels;
        }
        EXPECT_EQ(levels, std::min(depth, 512));
        EXPECT_EQ(stream.hasStreamError(), depth > 512);
        EXPECT_EQ(last->getSubAnnotsCount(), depth > 512 ? 1U : 0U) << "the entry stays";
    }
}

TEST_F(StreamRecord, HugeCountsMeetTheBudgetBeforeAnythingIsAllocated) {
    constexpr std::uint32_t huge = std::numeric_limits<std::uint32_t>::max();
    constexpr std::int32_t hugeText = std::numeric_limits<std::int32_t>::max();
    StreamBuilder name(6, 22);
    name.i32(hugeText);
    StreamBuilder leaders(6, 22);
    leaders.text("").u32(huge);
    StreamBuilder measures(6, 22);
    measures.text("").u32(0).u32(huge);
    StreamBuilder children(6, 22);
    children.baseStart("").u32(huge);
    StreamBuilder font(6, 22);
    font.base("").i32(hugeText);
    StreamBuilder lines(6, 22);
    lines.base("").properties("", 0, 0, 0).u32(huge);
    StreamBuilder segments(6, 22);
    segments.base("").properties("", 0, 0, 0).u32(1).u32(huge);
    for (const StreamBuilder* builder : {&name, &leaders, &measures, &children, &font, &lines, &segments}) {
        Stream stream(*builder);
        stream.setMemoryBudget(1 << 20);
        const ktPointer<ktAnnotationText> text(new ktAnnotationText);
        EXPECT_THROW(text->load(stream), std::bad_alloc);
        EXPECT_TRUE(stream.isMemoryBudgetExceeded());
    }
    StreamBuilder view(6, 22);
    view.viewStart("").u32(huge).u32(huge);
    StreamBuilder metaData(6, 22);
    metaData.text("").u32(5).u32(huge);
    Stream viewStream(view);
    viewStream.setMemoryBudget(1 << 20);
    EXPECT_THROW(ktAnnotationView::Factory(viewStream), std::bad_alloc);
    Stream metaDataStream(metaData);
    metaDataStream.setMemoryBudget(1 << 20);
    EXPECT_THROW(ktAnnotationMetaData::Factory(metaDataStream), std::bad_alloc);
}

TEST_F(StreamRecord, CountsBeyondTheDataWithinTheBudgetEndInTheErrorFlag) {
    StreamBuilder builder(6, 22);
    builder.text("").u32(1000).leader(1, 2, 3, 4);
    Stream stream(builder);
    stream.setMemoryBudget(1 << 20);
    ktAnnotationRaster raster;
    raster.load(stream);
    EXPECT_TRUE(stream.hasStreamError());
    ASSERT_EQ(raster.mLeaders.size(), 1000U);
    EXPECT_EQ(raster.mLeaders[0].mHead, 4);
    EXPECT_EQ(raster.mLeaders[999].mPosition, Point::ZERO);
}

TEST_F(StreamRecord, ViewFollowsTheVersion) {
    for (const unsigned int minor : {12U, 13U, 14U, 15U, 26U, 27U}) {
        StreamBuilder builder(6, static_cast<std::uint16_t>(minor));
        builder.viewStart("plan");
        const std::size_t start = builder.getSize();
        builder.u32(0);
        if (minor >= 15) {
            builder.u32(1).base("").rasterEnd("image");
        }
        if (minor >= 27) {
            builder.map("key", 1);
        }
        EXPECT_EQ(start, 4 + 4 + 36);
        Stream stream(builder);
        const ktPointer<ktAnnotationView> view(dynamic_cast<ktAnnotationView*>(ktAnnotationView::Factory(stream)));
        ASSERT_NE(view, nullptr);
        EXPECT_EQ(stream.hasStreamError(), minor < 13);
        EXPECT_EQ(stream.getConsumedCount(), minor < 13 ? 0 : builder.getSize());
        EXPECT_EQ(view->GetName(), minor < 13 ? "" : "plan");
        EXPECT_EQ(view->mOrigin, minor < 13 ? Point::ZERO : Point(1, 2, 3));
        EXPECT_EQ(view->mAnnotations.size(), minor < 15 ? 0U : 1U);
        EXPECT_EQ(view->mMetadata.size(), minor < 27 ? 0U : 1U);
    }
}

TEST_F(StreamRecord, ViewTakesTextsThenRasters) {
    StreamBuilder builder(6, 22);
    builder.viewStart("").u32(2).u32(1).base("a").textEnd("x").base("b").textEnd("y").base("c").rasterEnd("i");
    Stream stream(builder);
    ktAnnotationView view;
    view.mAnnotations.emplace_back();
    view.Load(stream);
    EXPECT_FALSE(stream.hasStreamError());
    ASSERT_EQ(view.mAnnotations.size(), 4U) << "those present are kept";
    EXPECT_EQ(view.mAnnotations[2]->GetName(), "b");
    EXPECT_EQ(view.mAnnotations[3]->mType, ktAnnotationInterface::Raster);
}

TEST_F(StreamRecord, MetadataHoldsLinksUntilTheyAreResolved) {
    StreamBuilder builder(6, 22);
    builder.text("ignored").u32(5).u32(3).u32(17).u32(0).u32(18);
    Stream stream(builder);
    const ktPointer<ktAnnotationMetaData> metaData(new ktAnnotationMetaData);
    metaData->editViews().emplace_back(new ktAnnotationView);
    metaData->Load(stream);
    EXPECT_FALSE(stream.hasStreamError());
    ASSERT_EQ(metaData->getViews().size(), 3U);
    EXPECT_EQ(metaData->getViews()[0], nullptr);
    const auto& links = stream.editPendingLinks();
    ASSERT_EQ(links.size(), 2U);
    EXPECT_EQ(links[1].mId, 18U);
    const ktPointer<ktAnnotationView> view(new ktAnnotationView);
    EXPECT_TRUE(links[0].mAssign(links[0], view));
    EXPECT_FALSE(links[1].mAssign(links[1], metaData)) << "not a view";
    EXPECT_EQ(metaData->getViews()[0], view);
    EXPECT_EQ(metaData->getViews()[2], nullptr);

    StreamBuilder none(6, 22);
    none.text("").u32(5).u32(0);
    Stream noneStream(none);
    metaData->Load(noneStream);
    EXPECT_TRUE(metaData->getViews().empty());
}

}  // namespace
}  // namespace ktLegacy
