#include "platform/annotation/ktAnnotationLibrary.h"
#include "platform/annotation/ktCadAnnotationView.h"
#include "tests/annotation/LaidOutText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kt {
namespace {

TEST(CadAnnotationTest, StartsUnturnedUnscaledAndWithoutFlags) {
    const ktPointer<ktCadAnnotation> annotation(new ktCadAnnotation);
    EXPECT_EQ(annotation->mRotation, 0.0F);
    EXPECT_EQ(annotation->mScale, 1.0F);
    EXPECT_EQ(annotation->mFlags, 0);
    EXPECT_EQ(annotation->mRoot, nullptr);
}

TEST(CadAnnotationTest, AnswersToItsName) {
    const ktPointer<ktCadAnnotationView> view(new ktCadAnnotationView);
    view->SetName("Front");
    EXPECT_EQ(view->GetName(), "Front");
    EXPECT_EQ(view->GetObjectByName("Front"), view.get());
    EXPECT_EQ(view->GetObjectByName("Back"), nullptr);
}

TEST(TextSegmentTest, TakesTextsWithAndWithoutTerminator) {
    text::TextSegment segment("ab\0c", text::TextSegment::Superscript, nullptr);
    EXPECT_EQ(segment.getText(), "ab");
    segment.setText("ab\0c", 4);
    EXPECT_EQ(segment.getText(), std::string("ab\0c", 4));
    segment.setText(nullptr, 4);
    EXPECT_EQ(segment.getText(), "");
    EXPECT_EQ(text::TextSegment(nullptr, text::TextSegment::Normal, nullptr).getText(), "");
}

TEST(AnnotationLibraryTest, KeepsFontsThatConvertersHoldBeyondItsEnd) {
    initializeKtAnnotationLibrary(true);
    const text::TextSegmentToSvgConverter converter;
    const text::TextArea area = test::makeArea({}, {{test::makeSegment("before and after")}});
    const test::LaidOutText before(converter, area);
    terminateKtAnnotationLibrary();
    const test::LaidOutText after(converter, area);
    EXPECT_GT(before.mSize.x, 0.0F);
    EXPECT_EQ(after.mSize, before.mSize);

    std::vector<svg::PlacedGlyph> glyphs;
    before.mTexts.at(0)->getGlyphSource()->appendGlyphs(*before.mTexts.at(0), glyphs);
    EXPECT_EQ(glyphs.size(), 14U);
}

}  // namespace
}  // namespace kt
