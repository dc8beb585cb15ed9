#include "legacy/ktAnnotationMetaData.h"
#include "legacy/ktAnnotationRaster.h"
#include "legacy/ktAnnotationText.h"
#include "legacy/ktAnnotationView.h"
#include "library/Version.h"
#include "platform/system/ktBaseStream.h"
#include "tests/legacy/LegacyLibraryTest.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace ktLegacy {
namespace {

using kt::ktPointer;
using testing::ElementsAre;
using Point = Wm4::Vector3<float>;
using Segment = ktAnnotationText::TextSegment;
using Properties = ktAnnotationText::TextProperties;
using TextPointer = ktPointer<ktAnnotationText>;
using ViewPointer = ktPointer<ktAnnotationView>;

class Model : public ktTest::LegacyLibraryTest {};

/// An annotation type of a host, of no kind that the library knows.
class HostAnnotation : public ktAnnotationInterface {
public:
    HostAnnotation() : ktAnnotationInterface(Undefined) {}
};

/// The lines of an annotation, segments apart: "H|2_|O" is three segments, the second a subscript.
std::vector<std::string> showLines(const ktAnnotationText& text) {
    std::vector<std::string> lines;
    for (const auto& line : text.mLines) {
        std::string shown;
        for (const Segment& segment : line) {
            shown += (&segment == &line.front() ? "" : "|") + std::string(segment.getText(), segment.mLength);
            shown += segment.mType == Segment::Subscript ? "_" : "";
        }
        lines.push_back(line.empty() ? "(no segment)" : shown);
    }
    return lines;
}

TextPointer makeText(const std::string& content) {
    TextPointer text(new ktAnnotationText);
    text->setText(content);
    return text;
}

TEST_F(Model, NewAnnotationsHaveTheirDefaults) {
    const TextPointer text(new ktAnnotationText);
    EXPECT_EQ(text->mType, ktAnnotationInterface::Text);
    EXPECT_EQ(text->GetName(), "");
    EXPECT_EQ(text->mColor, Wm4::Vector3<unsigned char>(255, 255, 255));
    EXPECT_EQ(text->mPosition, Point::ZERO);
    EXPECT_EQ(text->getFlags(), 1);
    EXPECT_EQ(text->mFrameShape, ktAnnotationInterface::FrameRectangle);
    EXPECT_TRUE(text->mLeaders.empty() && text->mMeasureLeaders.empty() && text->mMetadata.empty());
    EXPECT_EQ(text->getSubAnnotsCount(), 0U);
    EXPECT_EQ(text->mDefaultTextProperties, Properties("Arial", 1.0F));
    EXPECT_TRUE(text->mLines.empty());
    EXPECT_EQ(text->GetType(), &kt::ktObject::TYPE) << "annotations have no record of their own";

    const ktPointer<ktAnnotationRaster> raster(new ktAnnotationRaster);
    EXPECT_EQ(raster->mType, ktAnnotationInterface::Raster);
    EXPECT_EQ(raster->mRasterName, "");
    EXPECT_EQ(raster->mSizeEm, Wm4::Vector2<float>(1, 1));

    EXPECT_EQ(ktAnnotationInterface::MeasureLeader().mOffsetVector, Point::UNIT_X);
    EXPECT_EQ(ktAnnotationInterface::SubAnnot().mAnchorLocation, ktAnnotationInterface::SubAnnot::AnchorBottomLeft);
}

TEST_F(Model, MembersLieInTheirOrder) {
    const ktPointer<ktAnnotationText> holder(new ktAnnotationText);
    const ktAnnotationText& text = *holder;
    const auto offset = [&text](const auto& member) {
        return reinterpret_cast<const char*>(&member) - reinterpret_cast<const char*>(&text);
    };
    EXPECT_EQ(offset(text.mLeaders), 16) << "behind the base's virtual table, count and id";
    EXPECT_EQ(offset(text.mMeasureLeaders), 40);
    EXPECT_EQ(offset(text.mPosition), 64);
    EXPECT_EQ(offset(text.mColor), 76);
    EXPECT_EQ(offset(text.mName), 80);
    EXPECT_EQ(offset(text.mMetadata), 112);
    // The list of children lies between.
    const auto type = offset(text.mType);
    EXPECT_EQ(type, 112 + static_cast<long>(sizeof(text.mMetadata) + sizeof(void*)));
    const ktPointer<ktAnnotationText> flagged(new ktAnnotationText);
    flagged->setFlags(0xA5);
    EXPECT_EQ(reinterpret_cast<const unsigned char*>(flagged.get())[type + 1], 0xA5) << "the flags byte follows";
    EXPECT_LT(offset(text.mDefaultTextProperties), offset(text.mLines));
    EXPECT_EQ(sizeof(ktAnnotationInterface::Leader), 16U);
    EXPECT_EQ(sizeof(ktAnnotationInterface::MeasureLeader), 40U);
    EXPECT_EQ(sizeof(Segment), 24U);
}

TEST_F(Model, FlagsByteKeepsEveryBit) {
    const TextPointer text(new ktAnnotationText);
    for (unsigned int flags = 0; flags < 256; ++flags) {
        text->setFlags(static_cast<std::uint8_t>(flags));
        EXPECT_EQ(text->getFlags(), flags);
        EXPECT_EQ(text->mFrameShape, flags & 0x0F);
        EXPECT_EQ(text->mIsIgnoreZTest, (flags & 0x20) != 0);
        EXPECT_EQ(text->mIsScaleLocked, (flags & 0x40) != 0);
        EXPECT_EQ(text->mIsFrameLocked, (flags & 0x80) != 0);
    }
}

TEST_F(Model, ChildListIsSharedUntilFirstEdited) {
    const TextPointer text(new ktAnnotationText);
    EXPECT_EQ(&text->getSubAnnots(), ktAnnotationInterface::sDummySubAnnots);
    const auto* own = &text->editSubAnnots();
    EXPECT_EQ(&text->getSubAnnots(), own);
    EXPECT_NE(own, ktAnnotationInterface::sDummySubAnnots);
    text->removeSubAnnots();
    EXPECT_EQ(&text->getSubAnnots(), ktAnnotationInterface::sDummySubAnnots);
}

TEST_F(Model, CopiesAreDeep) {
    const TextPointer source = makeText("H");
    source->mLines[0][0].setTextProperties(Properties("Serif", 2));
    source->mMetadata["key"] = "value";
    source->editSubAnnots().push_back({makeText("child"), ktAnnotationInterface::SubAnnot::AnchorTopLeft});
    source->editSubAnnots().push_back({nullptr, ktAnnotationInterface::SubAnnot::AnchorRightTop});

    const TextPointer copy(new ktAnnotationText(*source));
    copy->mLines[0][0].setText(std::string("other"));
    copy->mLines[0][0].mProperties->mFontName = "Mono";
    copy->mMetadata["key"] = "changed";
    copy->getSubAnnots().front().mAnnotation->SetName("renamed");

    EXPECT_THAT(showLines(*source), ElementsAre("H"));
    EXPECT_EQ(source->mLines[0][0].mProperties->mFontName, "Serif");
    EXPECT_EQ(source->mMetadata.at("key").toString(), "value");
    EXPECT_EQ(source->getSubAnnots().front().mAnnotation->GetName(), "");
    ASSERT_EQ(copy->getSubAnnotsCount(), 2U);
    EXPECT_EQ(copy->getSubAnnots().front().mAnchorLocation, ktAnnotationInterface::SubAnnot::AnchorTopLeft);
    EXPECT_EQ(copy->getSubAnnots().back().mAnnotation, nullptr);
    EXPECT_EQ(copy->getSubAnnots().back().mAnchorLocation, ktAnnotationInterface::SubAnnot::AnchorRightTop);
    EXPECT_NE(copy->GetID(), source->GetID());
}

TEST_F(Model, AssignmentKeepsTheKindAndSharesChildrenOfUnknownKind) {
    const ktPointer<ktAnnotationRaster> raster(new ktAnnotationRaster);
    const ktPointer<ktAnnotationInterface> host(new HostAnnotation);
    raster->SetName("image");
    raster->setFlags(0xF3);
    raster->editSubAnnots().emplace_back().mAnnotation = host;
    const TextPointer text = makeText("kept");
    text->editSubAnnots().emplace_back().mAnnotation = makeText("old child").get();

    static_cast<ktAnnotationInterface&>(*text) = *raster;

    EXPECT_EQ(text->mType, ktAnnotationInterface::Text);
    EXPECT_EQ(text->GetName(), "image");
    EXPECT_EQ(text->getFlags(), 0xF3);
    EXPECT_THAT(showLines(*text), ElementsAre("kept"));
    ASSERT_EQ(text->getSubAnnotsCount(), 1U);
    EXPECT_EQ(text->getSubAnnots().front().mAnnotation, host);
    EXPECT_EQ(host->cloneAnnotation(), nullptr);
}

TEST_F(Model, AssigningWithinOneTreeIsSafe) {
    const auto makeChain = [] {
        const TextPointer top = makeText("top");
        const TextPointer middle = makeText("middle");
        middle->SetName("a name too long to lie inside a string object");
        middle->editSubAnnots().emplace_back().mAnnotation = makeText("bottom").get();
        top->editSubAnnots().emplace_back().mAnnotation = middle.get();
        return top;
    };
    const TextPointer fromChild = makeChain();
    *fromChild = static_cast<const ktAnnotationText&>(*fromChild->getSubAnnots().front().mAnnotation);
    EXPECT_THAT(showLines(*fromChild), ElementsAre("middle"));
    EXPECT_EQ(fromChild->GetName(), "a name too long to lie inside a string object");
    EXPECT_EQ(fromChild->getSubAnnotsCount(), 1U);

    const TextPointer top = makeChain();
    auto& middle = static_cast<ktAnnotationText&>(*top->getSubAnnots().front().mAnnotation);
    middle = *top;
    EXPECT_THAT(showLines(middle), ElementsAre("top"));
    EXPECT_THAT(showLines(static_cast<ktAnnotationText&>(*middle.getSubAnnots().front().mAnnotation)),
                ElementsAre("middle"));

    const ktAnnotationText& self = *top;
    *top = self;
    EXPECT_THAT(showLines(*top), ElementsAre("top"));
    EXPECT_EQ(top->getSubAnnotsCount(), 1U);
}

TEST_F(Model, TransformMovesPointsAndTurnsOffsets) {
    const TextPointer text(new ktAnnotationText);
    text->mLeaders.emplace_back(Point(1, 1, 1));
    text->mMeasureLeaders.resize(1);
    text->mMeasureLeaders[0].mPointB = {0, 1, 0};
    const TextPointer child(new ktAnnotationText);
    text->editSubAnnots().emplace_back().mAnnotation = child.get();

    kt::ktGenericTransformation<float> transformation;
    transformation.SetTranslate({1, 2, 3});
    transformation.SetScale({2, 2, 2});
    text->transform(transformation);

    EXPECT_EQ(text->mLeaders[0].mPosition, Point(3, 4, 5));
    EXPECT_EQ(text->mMeasureLeaders[0].mPointA, Point(1, 2, 3));
    EXPECT_EQ(text->mMeasureLeaders[0].mPointB, Point(1, 4, 3));
    EXPECT_EQ(text->mMeasureLeaders[0].mOffsetVector, Point(2, 0, 0));
    EXPECT_EQ(text->mPosition, Point(1, 2, 3));
    EXPECT_EQ(child->mPosition, Point::ZERO);
}

TEST_F(Model, OffsetVectorsReachToThePosition) {
    struct Case {
        Point mBefore;
        Point mAfter;
    };
    const float tiny = std::numeric_limits<float>::denorm_min();
    for (const Case& c : {Case{{2, 0, 0}, {4, 0, 0}}, Case{{-3, 0, 0}, {4, 0, 0}}, Case{{0, 0, 0}, {0, 0, 0}},
                          Case{{0, -2, 0}, {0, 7, 0}}, Case{{tiny, 0, 0}, {0, 0, 0}}}) {
        const TextPointer text(new ktAnnotationText);
        text->mPosition = {5, 7, 0};
        text->mMeasureLeaders.resize(1);
        text->mMeasureLeaders[0].mPointA = {1, 0, 0};
        text->mMeasureLeaders[0].mOffsetVector = c.mBefore;
        text->recomputeOffsetVectorLength();
        EXPECT_EQ(text->mMeasureLeaders[0].mOffsetVector, c.mAfter);
    }
}

TEST_F(Model, HeightsAreStoredInHundredths) {
    struct Case {
        float mEm;
        int mStored;
    };
    const float infinity = std::numeric_limits<float>::infinity();
    for (const Case& c : {Case{1.0F, 100}, Case{1.239F, 123}, Case{0.53F, 52}, Case{655.34F, 65534},
                          Case{655.35F, 65534}, Case{1e9F, 65534}, Case{infinity, 65534}, Case{std::nanf(""), 65534},
                          Case{-0.5F, 0}, Case{-infinity, 0}, Case{0.0F, 0}, Case{0.009F, 0}}) {
        EXPECT_EQ(Properties("Arial", c.mEm).mHeight, c.mStored) << c.mEm;
    }
}

TEST_F(Model, SegmentsKeepAtMost65535Bytes) {
    const std::string longText(70'000, 'x');
    const TextPointer text = makeText(longText);
    ASSERT_EQ(text->mLines.size(), 1U);
    ASSERT_EQ(text->mLines[0].size(), 1U);
    EXPECT_EQ(text->mLines[0][0].mLength, 65'535);
    EXPECT_EQ(std::string(text->mLines[0][0].getText()), longText.substr(0, 65'535));
}

TEST_F(Model, SegmentTextsAreMeasuredAndCut) {
    Segment segment("abc", Segment::Superscript);
    segment.setText(segment.getText() + 1, 1);
    EXPECT_STREQ(segment.getText(), "b") << "a part of its own text";
    segment.setText("xyz", 0);
    EXPECT_EQ(segment.mLength, 3);
    segment.setText("", 0);
    EXPECT_EQ(segment.mText, nullptr);
    EXPECT_STREQ(segment.getText(), "");

    segment.setText(std::string("a\0b", 3));
    EXPECT_EQ(segment.mLength, 3);
    Segment copy(segment);
    EXPECT_EQ(copy.mLength, 1) << "a copy ends at the NUL";
    EXPECT_EQ(copy.mType, Segment::Superscript);
    const Segment moved(std::move(segment));
    EXPECT_EQ(moved.mLength, 3);

    copy.setTextProperties(Properties("Serif", 3));
    copy = moved;
    EXPECT_EQ(copy.mProperties, nullptr);
    EXPECT_FLOAT_EQ(Segment::GetFontScaleFactor(Segment::Normal), 1.0F);
    EXPECT_FLOAT_EQ(Segment::GetFontScaleFactor(static_cast<Segment::SegmentType>(7)), 0.63F);
}

TEST_F(Model, PlainTextIsSplitAtLineEnds) {
    struct Case {
        std::string mText;
        std::vector<std::string> mLines;
        std::string mPlain;
    };
    for (const Case& c : {Case{"", {""}, ""}, Case{"a\n", {"a", ""}, "a\n"}, Case{"a\n\nb", {"a", "", "b"}, "a\n\nb"},
                          Case{"a\r\nb\rc\n", {"a", "b", "c", ""}, "a\nb\nc\n"}, Case{"\r\r\n", {"", "", ""}, "\n\n"},
                          Case{"\n\r", {"", "", ""}, "\n\n"}, Case{"a^2\\b", {"a^2\\b"}, "a^2\\b"}}) {
        const TextPointer text = makeText("before");
        text->setText(c.mText);
        EXPECT_EQ(showLines(*text), c.mLines) << c.mText;
        std::string plain = "before";
        text->toString(plain);
        EXPECT_EQ(plain, c.mPlain);
    }
    std::string plain = "before";
    ktAnnotationText().toString(plain);
    EXPECT_EQ(plain, "");
}

TEST_F(Model, TrimRemovesEmptyEdgesOnly) {
    const std::string none = "(no segment)";
    struct Case {
        bool mLeading;
        bool mTrailing;
        std::vector<std::string> mLines;
    };
    for (const Case& c :
         {Case{false, false, {none, "", "|x||", none, " |", none}}, Case{true, false, {"x||", none, " |", none}},
          Case{false, true, {none, none, "|x", none, " "}}, Case{true, true, {"x", none, " "}}}) {
        ktAnnotationText text;
        const Segment empty;
        text.mLines.resize(6);
        text.mLines[1] = {empty};
        text.mLines[2] = {empty, Segment("x", Segment::Normal), empty, empty};
        text.mLines[4] = {Segment(" ", Segment::Normal), empty};
        text.trim(c.mLeading, c.mTrailing);
        EXPECT_EQ(showLines(text), c.mLines) << c.mLeading << c.mTrailing;
    }
}

TEST_F(Model, ViewCopiesAsTheModeSays) {
    struct Case {
        int mMode;
        std::size_t mCount;
        bool mIsShared;
    };
    const ViewPointer source(new ktAnnotationView);
    source->SetName("plan");
    source->mOrigin = {1, 2, 3};
    source->mMetadata["key"] = 1;
    source->mAnnotations = {makeText("a"), nullptr};
    for (const Case& c :
         {Case{0, 2, true}, Case{1, 2, false}, Case{2, 0, false}, Case{9, 0, false}, Case{-1, 0, false}}) {
        ktAnnotationView copy;
        copy.mAnnotations = {makeText("old"), makeText("old"), makeText("old")};
        copy.copyFrom(*source, static_cast<ktAnnotationView::AnnotationCopyMode>(c.mMode));
        EXPECT_EQ(copy.GetName(), "plan");
        EXPECT_EQ(copy.mOrigin, Point(1, 2, 3));
        EXPECT_EQ(copy.mMetadata.size(), 1U);
        ASSERT_EQ(copy.mAnnotations.size(), c.mCount) << c.mMode;
        if (c.mCount != 0) {
            EXPECT_EQ(copy.mAnnotations[0] == source->mAnnotations[0], c.mIsShared);
            EXPECT_EQ(copy.mAnnotations[1], nullptr);
        }
    }
    const ktAnnotationView copy(*source);
    EXPECT_NE(copy.mAnnotations[0], source->mAnnotations[0]);
    source->copyFrom(*source, ktAnnotationView::ShareAnnotations);
    EXPECT_EQ(source->mAnnotations.size(), 2U);
}

TEST_F(Model, ViewPlaneBecomesATransformation) {
    ktAnnotationView view;
    kt::ktGenericTransformation<float> plane;
    plane.SetUniformScale(5);
    view.getPlaneTransform(plane);
    EXPECT_EQ(plane, kt::ktGenericTransformation<float>());

    view.mOrigin = {1, 2, 3};
    view.mNormal = {0, 3, 0};
    view.mAxis = {2, 0, 1};
    view.getPlaneTransform(plane);
    EXPECT_EQ(plane.GetTranslate(), Point(1, 2, 3));
    EXPECT_EQ(plane.GetMatrix(), Wm4::Matrix3<float>(2, 3, 0, 0, 0, 3, 1, -6, 0));
    EXPECT_FALSE(plane.IsIdentity());
    EXPECT_TRUE(plane.IsUniformScale());
}

TEST_F(Model, ViewTransformMovesThePlaneOnly) {
    ktAnnotationView view;
    view.mOrigin = {1, 0, 0};
    view.mAnnotations = {makeText("a")};
    kt::ktGenericTransformation<float> transformation;
    transformation.SetTranslate({0, 5, 0});
    transformation.SetUniformScale(2);
    view.transform(transformation);
    EXPECT_EQ(view.mOrigin, Point(2, 5, 0));
    EXPECT_EQ(view.mNormal, Point(0, 0, 2));
    EXPECT_EQ(view.mAxis, Point(2, 0, 0));
    EXPECT_EQ(view.mAnnotations[0]->mPosition, Point::ZERO);
}

TEST_F(Model, ViewsNeitherCloneNorCompareNorSearchTheirAnnotations) {
    const ViewPointer view(new ktAnnotationView);
    view->SetName("plan");
    view->mAnnotations = {makeText("a")};
    view->mAnnotations[0]->SetName("note");
    kt::ktRttiInterface* out = nullptr;
    EXPECT_FALSE(view->Clone(out));
    EXPECT_EQ(out, nullptr);
    EXPECT_FALSE(view->Equals(view));
    EXPECT_EQ(view->GetObjectByName("plan"), view);
    EXPECT_EQ(view->GetObjectByName("note"), nullptr);
    EXPECT_EQ(view->GetObjectByID(view->mAnnotations[0]->GetID()), nullptr);
    EXPECT_TRUE(view->GetType()->IsExactly(ktAnnotationView::TYPE) && view->GetType()->IsDerived(kt::ktObject::TYPE));
}

TEST_F(Model, MetadataCopiesFullyButClonesDefaultViews) {
    const ktPointer<ktAnnotationMetaData> source(new ktAnnotationMetaData);
    source->SetName("ignored");
    EXPECT_EQ(&source->GetName(), &kt::ktRttiInterface::sEmptyString);
    EXPECT_EQ(source->GetMetadataTypeId(), 5U);
    for (const char* name : {"one", "two"}) {
        const ViewPointer view(new ktAnnotationView);
        view->SetName(name);
        view->mOrigin = {1, 2, 3};
        view->mAnnotations = {makeText("a")};
        source->editViews().push_back(view);
    }

    const ktAnnotationMetaData copy(*source);
    ASSERT_EQ(copy.getViews().size(), 2U);
    EXPECT_NE(copy.getViews()[1], source->getViews()[1]);
    EXPECT_EQ(copy.getViews()[1]->GetName(), "two");
    EXPECT_NE(copy.getViews()[1]->mAnnotations.at(0), source->getViews()[1]->mAnnotations.at(0));

    kt::ktRttiInterface* out = nullptr;
    EXPECT_TRUE(source->Clone(out));
    const ktPointer<ktAnnotationMetaData> clone(dynamic_cast<ktAnnotationMetaData*>(out));
    ASSERT_NE(clone, nullptr);
    ASSERT_EQ(clone->getViews().size(), 2U);
    EXPECT_EQ(clone->getViews()[0]->GetName(), "");
    EXPECT_EQ(clone->getViews()[0]->mOrigin, Point::ZERO);
    EXPECT_TRUE(source->Clone(out)) << "into the existing object";
    EXPECT_EQ(clone->getViews().size(), 2U);

    const ViewPointer unrelated(new ktAnnotationView);
    unrelated->SetName("same");
    out = unrelated;
    EXPECT_FALSE(source->Clone(out));
    EXPECT_EQ(out, unrelated);
    EXPECT_EQ(unrelated->GetName(), "same");
}

TEST_F(Model, ContainersRefuseToBeWritten) {
    struct Case {
        kt::ktStreamVersion mVersion;
        bool mIsViewRefused;
        bool mIsMetaDataRefused;
    };
    for (const Case& c : {Case{{6, 12}, false, false}, Case{{6, 13}, false, true}, Case{{6, 26}, false, true},
                          Case{{6, 27}, true, true}, Case{{7, 0}, true, true}}) {
        kt::ktBaseStream viewStream(nullptr, 0, c.mVersion);
        ktAnnotationView().Save(viewStream);
        EXPECT_EQ(viewStream.hasStreamError(), c.mIsViewRefused) << c.mVersion.toString();
        kt::ktBaseStream metaDataStream(nullptr, 0, c.mVersion);
        ktAnnotationMetaData().Save(metaDataStream);
        EXPECT_EQ(metaDataStream.hasStreamError(), c.mIsMetaDataRefused) << c.mVersion.toString();
    }
}

TEST(LegacyRegistry, HoldsBothFactoriesWhileInitialised) {
    const auto find = kt::ktRttiInterface::FindFactoryFunction;
    for (int use = 0; use < 2; ++use) {
        EXPECT_EQ(ktAnnotationInterface::sDummySubAnnots, nullptr);
        EXPECT_EQ(find("ktCore.ktAnnotationView"), nullptr);
        kt::initializeKtAnnotationLegacyLibrary();
        ASSERT_NE(ktAnnotationInterface::sDummySubAnnots, nullptr);
        EXPECT_TRUE(ktAnnotationInterface::sDummySubAnnots->empty());
        EXPECT_EQ(find("ktCore.ktAnnotationView"), ktAnnotationView::Factory);
        EXPECT_EQ(find("ktCore.ktAnnotationMetadata"), ktAnnotationMetaData::Factory);
        EXPECT_EQ(find("ktCore.ktAnnotationMetaData"), nullptr);
        ktAnnotationMetaData::RegisterFactory();
        EXPECT_EQ(find("ktCore.ktAnnotationMetaData"), ktAnnotationMetaData::Factory);
        ktAnnotationMetaData::UnRegisterFactory();
        EXPECT_EQ(find("ktCore.ktAnnotationMetaData"), nullptr);
        kt::terminateKtAnnotationLegacyLibrary();
        EXPECT_EQ(find("ktCore.ktAnnotationMetadata"), nullptr);
    }
}

TEST(LegacyVersion, TellsItsTexts) {
    using ktAnnotationLegacy::Version;
    EXPECT_STREQ(Version::GetDescStringMajorMinor(true), "3.0");
    EXPECT_STREQ(Version::GetDescStringMajorMinorRelease(false), "3.0.0");
    EXPECT_STREQ(Version::GetDescStringMajorMinorReleaseRevision(true, false), "3.0.0.1226");
    EXPECT_STREQ(Version::GetDescStringMajorMinorReleaseRevision(false, true), "3.0.0.1226 #0f14611422dbde61");
    EXPECT_STREQ(Version::GetDescStringMajorMinorReleaseRevisionDate(), "3.0.0.1226 #0f14611422dbde61 2025-12");
}

}  // namespace
}  // namespace ktLegacy
