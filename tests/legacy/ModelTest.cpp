#include "legacy/annotation/CountAnnotationFunctor.h"
#include "legacy/ktAnnotationMetaData.h"
#include "library/Version.h"
#include "platform/system/stream/ktBaseStream.h"
#include "tests/legacy/LegacyLibraryTest.h"
#include "tests/support/RecordingLog.h"

#include <cmath>
#include <limits>
#include <vector>

namespace ktLegacy {
namespace {

using ktTest::show;
using testing::ElementsAre;
using Transformation = kt::ktGenericTransformation<float>;

class Model : public ktTest::LegacyLibraryTest {
protected:
    static Transformation makeMove(const Point& translation) {
        Transformation transformation;
        transformation.SetTranslate(translation);
        transformation.SetUniformScale(2);
        return transformation;
    }

    TextPointer mText{new ktAnnotationText};
    ktPointer<ktAnnotationRaster> mRaster{new ktAnnotationRaster};
    ViewPointer mView{new ktAnnotationView};
};

TEST_F(Model, NewAnnotationsHaveTheirDefaults) {
    EXPECT_EQ(show(mText), "text");
    EXPECT_EQ(show(mRaster), "raster");
    EXPECT_EQ(show(mView), "view '' (0 0 0)(0 0 1)(1 0 0)");
    // What the texts leave out.
    EXPECT_EQ(mText->mColor, Wm4::Vector3<unsigned char>(255, 255, 255));
    EXPECT_EQ(mText->mPosition, Point::ZERO);
    EXPECT_EQ(mText->getFlags(), 1);
    EXPECT_EQ(mText->mDefaultTextProperties, Properties("Arial", 1.0F));
    EXPECT_EQ(mRaster->mSizeEm, Wm4::Vector2<float>(1, 1));
    EXPECT_EQ(mText->GetType(), &kt::ktObject::TYPE) << "annotations have no record of their own";
    EXPECT_EQ(ktAnnotationInterface::MeasureLeader().mOffsetVector, Point::UNIT_X);
    EXPECT_EQ(ktAnnotationInterface::SubAnnot().mAnchorLocation, 1);
}

TEST_F(Model, MembersLieInTheirOrder) {
    const ktAnnotationText& text = *mText;
    const auto offset = [&text](const auto& member) {
        return reinterpret_cast<const char*>(&member) - reinterpret_cast<const char*>(&text);
    };
    // Behind the base's virtual table, count and id; the type behind the children.
    EXPECT_THAT((std::vector{offset(text.mLeaders), offset(text.mMeasureLeaders), offset(text.mPosition),
                             offset(text.mColor), offset(text.mName), offset(text.mMetadata)}),
                ElementsAre(16, 40, 64, 76, 80, 112));
    EXPECT_EQ(offset(text.mType), 112 + static_cast<long>(sizeof(text.mMetadata) + sizeof(void*)));
    EXPECT_LT(offset(text.mDefaultTextProperties), offset(text.mLines));
}

TEST_F(Model, CopiesAreDeep) {
    mText = makeText("H");
    mText->mLines[0][0].setTextProperties(Properties("Serif", 2));
    mText->mLines[0][0].setTextProperties(Properties("Serif", 3));
    mText->mMetadata["key"] = "value";
    mText->mPosition = {1, 2, 3};
    mText->mDefaultTextProperties = Properties("Mono", 4);
    mRaster->mRasterName = "image";
    mRaster->mSizeEm = {2, 5};
    addChild(addChild(addChild(*mText, makeText("child"), 4), nullptr, 12), mRaster);
    const std::string before = show(mText);
    EXPECT_EQ(before,
              "text at(1 2 3) key=value [4:text |child] [12:null] [1:raster image'image'2x5] Mono/400/0/0 "
              "|H{Serif/300/0/0}");

    const TextPointer copy(new ktAnnotationText(*mText));
    EXPECT_EQ(show(copy), before);
    EXPECT_NE(copy->GetID(), mText->GetID());
    copy->mLines[0][0].setText(std::string("other"));
    copy->mLines[0][0].mProperties->mFontName = "Mono";
    copy->mMetadata["key"] = "changed";
    copy->getSubAnnots().front().mAnnotation->SetName("renamed");
    copy->mDefaultTextProperties = Properties("Sans", 5);
    EXPECT_EQ(show(mText), before);
    *copy = *mText;
    EXPECT_EQ(show(copy), before);
    ktAnnotationRaster raster;
    raster = *mRaster;
    EXPECT_EQ(show(raster), show(mRaster));
    // A child may have two parents; each copy has one of its own.
    addChild(*mRaster, makeText("shared"));
    addChild(*mText, mRaster->getSubAnnots().front().mAnnotation);
    *copy = *mText;
    const auto& children = copy->getSubAnnots();
    EXPECT_EQ(show(children.back().mAnnotation),
              show(std::next(children.begin(), 2)->mAnnotation->getSubAnnots().front().mAnnotation));
    EXPECT_NE(children.back().mAnnotation, mText->getSubAnnots().back().mAnnotation);
}

TEST_F(Model, AssignmentKeepsTheKindAndSharesChildrenOfUnknownKind) {
    const AnnotationPointer host(new HostAnnotation);
    mRaster->SetName("image");
    mRaster->mColor = {1, 2, 3};
    mRaster->setFlags(0xF3);
    mRaster->mPosition = {1, 2, 3};
    mRaster->mMetadata["key"] = 5;
    addChild(*mRaster, host);
    mText = makeText("kept");
    addChild(*mText, makeText("old child"));
    static_cast<ktAnnotationInterface&>(*mText) = *mRaster;
    ASSERT_EQ(mText->getSubAnnotsCount(), 1U);
    EXPECT_EQ(mText->getSubAnnots().front().mAnnotation, host);
    mText->removeSubAnnots();
    EXPECT_EQ(show(mText), "text 'image' at(1 2 3) rgb(1 2 3) flagsf3 key=5 |kept");
    EXPECT_EQ(host->cloneAnnotation(), nullptr);
}

TEST_F(Model, AssigningWithinOneTreeIsSafe) {
    const std::string middle = "text 'a name too long to lie inside a string object' [1:text |bottom] |middle";
    const auto makeChain = [] {
        const TextPointer child = makeText("middle", "a name too long to lie inside a string object");
        addChild(*child, makeText("bottom"));
        TextPointer top = makeText("top");
        addChild(*top, child);
        return top;
    };
    const auto childOf = [](const TextPointer& top) -> ktAnnotationText& {
        return static_cast<ktAnnotationText&>(*top->getSubAnnots().front().mAnnotation);
    };
    const TextPointer fromChild = makeChain();
    *fromChild = childOf(fromChild);
    EXPECT_EQ(show(fromChild), middle);

    const TextPointer top = makeChain();
    const ktAnnotationText& self = *top;
    *top = self;
    EXPECT_EQ(show(top), "text [1:" + middle + "] |top");
    childOf(top) = *top;
    EXPECT_EQ(show(top), "text [1:text [1:" + middle + "] |top] |top");
}

TEST_F(Model, TransformMovesPointsAndTurnsOffsets) {
    mText->mLeaders.emplace_back(Point(1, 1, 1));
    mText->mMeasureLeaders.resize(1);
    mText->mMeasureLeaders[0].mPointB = {0, 1, 0};
    addChild(*mText, mRaster);
    mText->transform(makeMove({1, 2, 3}));
    EXPECT_EQ(show(mText), "text at(1 2 3) leader(3 4 5)0 measure(1 2 3)(1 4 3)(2 0 0)0 [1:raster]");

    mView->mOrigin = {1, 0, 0};
    mView->mAnnotations = {mRaster};
    mView->transform(makeMove({0, 5, 0}));
    EXPECT_EQ(show(mView), "view '' (2 5 0)(0 0 2)(2 0 0) raster") << "the plane only";
}

TEST_F(Model, OffsetVectorsReachToThePosition) {
    const float tiny = std::numeric_limits<float>::denorm_min();
    const std::pair<Point, Point> rows[] = {{{2, 0, 0}, {4, 0, 0}},
                                            {{-3, 0, 0}, {4, 0, 0}},
                                            {{0, 0, 0}, {0, 0, 0}},
                                            {{0, -2, 0}, {0, 7, 0}},
                                            {{std::nanf(""), 1, 0}, {0, 0, 0}},
                                            {{tiny, 0, 0}, {0, 0, 0}}};
    for (const auto& [before, after] : rows) {
        mText->mPosition = {5, 7, 0};
        mText->mMeasureLeaders.resize(1);
        mText->mMeasureLeaders[0].mPointA = {1, 0, 0};
        mText->mMeasureLeaders[0].mOffsetVector = before;
        mText->recomputeOffsetVectorLength();
        EXPECT_EQ(mText->mMeasureLeaders[0].mOffsetVector, after);
    }
}

TEST_F(Model, HeightsAreStoredInHundredths) {
    const float infinity = std::numeric_limits<float>::infinity();
    const std::pair<float, int> rows[] = {{1.0F, 100},      {1.239F, 123},  {0.53F, 52},       {655.34F, 65534},
                                          {655.35F, 65534}, {1e9F, 65534},  {infinity, 65534}, {std::nanf(""), 65534},
                                          {-0.5F, 0},       {-infinity, 0}, {0.0F, 0},         {0.009F, 0}};
    for (const auto& [em, stored] : rows) {
        EXPECT_EQ(Properties("Arial", em).mHeight, stored) << em;
    }
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
    struct Row {
        std::string mText, mShown, mPlain;
    };
    const std::string longText(70'000, 'x');
    for (const auto& [content, shown, plain] :
         {Row{"", "text |~", ""},
          {"a\n", "text |a |~", "a\n"},
          {"a\n\nb", "text |a |~ |b", "a\n\nb"},
          {"a\r\nb\rc\n", "text |a |b |c |~", "a\nb\nc\n"},
          {"\r\r\n", "text |~ |~ |~", "\n\n"},
          {"\n\r", "text |~ |~ |~", "\n\n"},
          {"a^2\\b", "text |a^2\\b", "a^2\\b"},
          {longText, "text |" + longText.substr(0, 65'535), longText.substr(0, 65'535)}}) {
        mText = makeText("before");
        mText->setText(content);
        EXPECT_EQ(show(mText), shown);
        std::string out = "before";
        mText->toString(out);
        EXPECT_EQ(out, plain);
    }
    std::string out = "before";
    ktAnnotationText().toString(out);
    EXPECT_EQ(out, "");
}

TEST_F(Model, TrimRemovesEmptyEdgesOnly) {
    const char* const expected[] = {"text | |~ |~+x+~+~ | | +~ |", "text |x+~+~ | | +~ |", "text | | |~+x | | ",
                                    "text |x | | "};
    for (const unsigned int edges : {0U, 1U, 2U, 3U}) {
        ktAnnotationText text;
        const Segment empty;
        text.mLines.resize(6);
        text.mLines[1] = {empty};
        text.mLines[2] = {empty, Segment("x", Segment::Normal), empty, empty};
        text.mLines[4] = {Segment(" ", Segment::Normal), empty};
        text.trim((edges & 1) != 0, (edges & 2) != 0);
        EXPECT_EQ(show(text), expected[edges]);
    }
}

TEST_F(Model, ViewCopiesAsTheModeSays) {
    mView->SetName("plan");
    mView->mOrigin = {1, 2, 3};
    mView->mNormal = {0, 1, 0};
    mView->mAxis = {0, 0, 1};
    mView->mMetadata["key"] = 1;
    mView->mAnnotations = {mText, nullptr};
    const std::string plane = "view 'plan' (1 2 3)(0 1 0)(0 0 1) key=1";
    for (const auto& [mode, shown] : {std::pair(0, " text null"), {1, " text null"}, {2, ""}, {9, ""}, {-1, ""}}) {
        ktAnnotationView copy;
        copy.mAnnotations.resize(3);
        copy.copyFrom(*mView, static_cast<ktAnnotationView::AnnotationCopyMode>(mode));
        EXPECT_EQ(show(copy), plane + shown);
        EXPECT_EQ(!copy.mAnnotations.empty() && copy.mAnnotations[0].get() == mText.get(), mode == 0);
    }
    EXPECT_NE(ktAnnotationView(*mView).mAnnotations[0].get(), mText.get());
    mView->copyFrom(*mView, ktAnnotationView::ShareAnnotations);
    EXPECT_EQ(show(mView), plane + " text null");
}

TEST_F(Model, ViewPlaneBecomesATransformation) {
    Transformation plane = makeMove({1, 1, 1});
    mView->getPlaneTransform(plane);
    EXPECT_EQ(plane, Transformation());
    mView->mAxis = {0, 1, 0};
    mView->getPlaneTransform(plane);
    EXPECT_FALSE(plane.IsIdentity()) << "turned at the origin";
    mView->mOrigin = {1, 2, 3};
    mView->mNormal = {0, 3, 0};
    mView->mAxis = {2, 0, 1};
    mView->getPlaneTransform(plane);
    EXPECT_EQ(plane.GetTranslate(), Point(1, 2, 3));
    EXPECT_EQ(plane.GetMatrix(), Wm4::Matrix3<float>(2, 3, 0, 0, 0, 3, 1, -6, 0));
    EXPECT_TRUE(!plane.IsIdentity() && plane.IsUniformScale());
}

TEST_F(Model, MetadataCopiesFullyButClonesDefaultViews) {
    const ktPointer<ktAnnotationMetaData> source(new ktAnnotationMetaData);
    source->SetName("ignored");
    EXPECT_EQ(&source->GetName(), &kt::ktRttiInterface::sEmptyString);
    EXPECT_EQ(source->GetMetadataTypeId(), 5U);
    mView->SetName("two");
    mView->mOrigin = {1, 2, 3};
    mView->mAnnotations = {mText};
    source->editViews() = {ViewPointer(new ktAnnotationView), mView};

    const ktAnnotationMetaData copy(*source);
    ASSERT_EQ(copy.getViews().size(), 2U);
    EXPECT_NE(copy.getViews()[1], mView);
    EXPECT_EQ(show(copy.getViews()[1]), show(mView));
    EXPECT_NE(copy.getViews()[1]->mAnnotations.at(0).get(), mText.get());

    kt::ktRttiInterface* out = nullptr;
    EXPECT_TRUE(source->Clone(out));
    const ktPointer<ktAnnotationMetaData> clone(dynamic_cast<ktAnnotationMetaData*>(out));
    ASSERT_NE(clone, nullptr);
    EXPECT_TRUE(source->Clone(out)) << "into the existing object";
    ASSERT_EQ(clone->getViews().size(), 2U);
    EXPECT_EQ(show(clone->getViews()[1]), show(ktAnnotationView()));

    out = mView;
    EXPECT_FALSE(source->Clone(out)) << "into an object of another kind";
    EXPECT_EQ(out, mView);
    EXPECT_EQ(mView->GetName(), "two");
}

TEST_F(Model, ContainersAreKnownByTypeAndNotByContent) {
    const ktPointer<ktAnnotationMetaData> metaData(new ktAnnotationMetaData);
    EXPECT_EQ(mView->GetType(), &ktAnnotationView::TYPE);
    EXPECT_EQ(ktAnnotationView::TYPE.GetParent(), &kt::ktObject::TYPE);
    EXPECT_EQ(metaData->GetType(), &ktAnnotationMetaData::TYPE);
    EXPECT_EQ(ktAnnotationMetaData::TYPE.GetParent(), &kt::ktMetadataInterface::TYPE);

    EXPECT_FALSE(mView->Equals(mView));
    EXPECT_TRUE(metaData->Equals(ktPointer<ktAnnotationMetaData>(new ktAnnotationMetaData)));
    EXPECT_FALSE(metaData->Equals(mView) || metaData->Equals(nullptr));
    kt::ktRttiInterface* out = nullptr;
    EXPECT_FALSE(mView->Clone(out));
    EXPECT_EQ(out, nullptr);

    mView->SetName("plan");
    mText->SetName("note");
    mView->mAnnotations = {mText};
    std::vector<kt::ktObject*> found;
    for (const char* name : {"plan", "note"}) {
        mView->GetAllObjectsByName(name, found);
    }
    EXPECT_THAT(found, ElementsAre(mView.get()));
    EXPECT_EQ(mView->GetObjectByName("plan"), mView.get());
    EXPECT_EQ(mView->GetObjectByName("note"), nullptr) << "annotations are not looked at";
    EXPECT_EQ(mView->GetObjectByID(mView->GetID()), mView.get());
    EXPECT_EQ(mView->GetObjectByID(mText->GetID()), nullptr);
}

TEST_F(Model, ContainersRefuseToBeWritten) {
    for (const auto& [minor, isViewRefused, isMetaDataRefused] :
         {std::tuple(12, false, false), {13, false, true}, {26, false, true}, {27, true, true}}) {
        const kt::ktStreamVersion version(6, static_cast<std::uint16_t>(minor));
        kt::ktBaseStream streams[] = {{nullptr, 0, version}, {nullptr, 0, version}};
        ktAnnotationView().Save(streams[0]);
        ktAnnotationMetaData().Save(streams[1]);
        EXPECT_EQ(streams[0].hasStreamError(), isViewRefused) << minor;
        EXPECT_EQ(streams[1].hasStreamError(), isMetaDataRefused) << minor;
    }
}

/// Writes down the calls of a walk.
struct WalkRecorder : annotation::IterateOverAnnotationTreeFunctorInterface {
    using Entry = ktAnnotationInterface::SubAnnot;
    void startProcessingAnnot(const Entry& entry, bool isRoot) override { add('+', entry, isRoot); }
    void endProcessingAnnot(const Entry& entry, bool isRoot) override { add('-', entry, isRoot); }
    void add(char sign, const Entry& entry, bool isRoot) {
        mCalls << sign << entry.mAnnotation->GetName() << entry.mAnchorLocation << (isRoot ? " root " : " ");
    }
    std::ostringstream mCalls;
};

TEST_F(Model, TreesAreWalkedDepthFirst) {
    const AnnotationPointer first = makeText("", "a");
    addChild(*first, makeText("", "b"), 4);
    mText->SetName("r");
    addChild(addChild(addChild(*mText, first, 9), nullptr, 9), makeText("", "c"), 1);
    WalkRecorder recorder;
    recorder.iterateOverAnnotationTree(mText);
    EXPECT_EQ(recorder.mCalls.str(), "+r0 root +a9 +b4 -b4 -a9 +c1 -c1 -r0 root ");
    recorder.mCalls.str("");
    recorder.iterateOverAnnotationTreeImpl(mText->getSubAnnots().front(), false);
    EXPECT_EQ(recorder.mCalls.str(), "+a9 +b4 -b4 -a9 ") << "no root in this walk";

    std::vector<AnnotationPointer> roots{mText, nullptr, first};
    unsigned int counter = 0;
    annotation::CountAnnotationFunctor functor(counter);
    functor.iterateOverAnnotationTree(roots);
    functor.iterateOverAnnotationTree(mText);
    EXPECT_EQ(counter, 4U + 2U + 4U) << "the count goes on from root to root";
}

// Recursion would need more than the usual 8 MiB of stack here.
TEST_F(Model, DeepTreesAreCopiedWalkedAssignedAndDestroyed) {
    constexpr unsigned int depth = 100'000;
    const AnnotationPointer top = makeText("");
    ktAnnotationInterface* last = top;
    for (unsigned int level = 1; level < depth; ++level) {
        addChild(*last, makeText(""));
        last = last->getSubAnnots().back().mAnnotation;
    }
    const AnnotationPointer clone(top->cloneAnnotation());
    *top = *clone->getSubAnnots().front().mAnnotation;
    unsigned int counter = 0;
    annotation::CountAnnotationFunctor(counter).iterateOverAnnotationTree(top);
    EXPECT_EQ(counter, depth - 1);
}

TEST(Lifecycle, FirstUserStartsEverythingAndLastUserEndsIt) {
    ktTest::RecordingLog log;
    const auto take = [&log] { return log.takeMessages(kt::ktLog::Debug); };
    const auto find = kt::ktRttiInterface::FindFactoryFunction;
    for (int use = 0; use < 2; ++use) {
        EXPECT_EQ(ktAnnotationInterface::sDummySubAnnots, nullptr);
        EXPECT_EQ(find("ktCore.ktAnnotationView"), nullptr);
        EXPECT_EQ(find("ktCore.ktAnnotationMetadata"), nullptr);
        kt::initializeKtAnnotationLegacyLibrary();
        EXPECT_THAT(take(), ElementsAre("annotationLegacy: first user", "system: first user", "sceneGraph: first user",
                                        "annotation: first user"));
        kt::initializeKtAnnotationLegacyLibrary();
        kt::terminateKtAnnotationLegacyLibrary();
        EXPECT_THAT(take(), ElementsAre()) << "a second user changes the count only";
        ASSERT_NE(ktAnnotationInterface::sDummySubAnnots, nullptr);
        EXPECT_EQ(find("ktCore.ktAnnotationView"), ktAnnotationView::Factory);
        EXPECT_EQ(find("ktCore.ktAnnotationMetadata"), ktAnnotationMetaData::Factory);
        EXPECT_EQ(find("ktCore.ktAnnotationMetaData"), nullptr) << "the other spelling on request only";
        ktAnnotationMetaData::RegisterFactory();
        EXPECT_EQ(find("ktCore.ktAnnotationMetaData"), ktAnnotationMetaData::Factory);
        ktAnnotationMetaData::UnRegisterFactory();
        EXPECT_EQ(find("ktCore.ktAnnotationMetaData"), nullptr);
        ktAnnotationView::UnRegisterFactory();
        EXPECT_EQ(find("ktCore.ktAnnotationView"), nullptr);
        ktAnnotationView::RegisterFactory();
        EXPECT_EQ(find("ktCore.ktAnnotationView"), ktAnnotationView::Factory);
        kt::terminateKtAnnotationLegacyLibrary();
        EXPECT_THAT(take(), ElementsAre("annotationLegacy: last user gone", "annotation: last user gone",
                                        "sceneGraph: last user gone", "system: last user gone"));
        kt::terminateKtAnnotationLegacyLibrary();
        EXPECT_THAT(take(), ElementsAre("annotationLegacy: terminated more often than initialised"));
    }
    EXPECT_EQ(ktAnnotationMetaData::TYPE.GetName(), "ktCore.ktAnnotationMetaData");
    EXPECT_TRUE(ktAnnotationMetaData::TYPE.IsDerived(kt::ktMetadataInterface::TYPE));
}

TEST(LegacyVersion, TellsItsTexts) {
    using ktAnnotationLegacy::Version;
    EXPECT_STREQ(Version::GetDescStringMajorMinor(true), "3.0");
    EXPECT_STREQ(Version::GetDescStringMajorMinorRelease(false), "3.0.0");
    EXPECT_STREQ(Version::GetDescStringMajorMinorReleaseRevision(true, false), "3.0.0.1226");
    EXPECT_STREQ(Version::GetDescStringMajorMinorReleaseRevision(false, true), "3.0.0.1226 #0f14611422dbde61");
    EXPECT_STREQ(Version::GetDescStringMajorMinorReleaseRevisionDate(), "3.0.0.1226 #0f14611422dbde61 2025-12");
    EXPECT_STREQ(Version::GetCommitId(), "0f14611422dbde61");
    EXPECT_THAT((std::vector{Version::GetMajor(), Version::GetMinor(), Version::GetRelease(), Version::GetRevision(),
                             Version::GetYear(), Version::GetMonth()}),
                ElementsAre(3, 0, 0, 1226, 2025, 12));
    EXPECT_FALSE(Version::IsBeta() || Version::IsDebug() || Version::IsDev());
}

}  // namespace
}  // namespace ktLegacy
