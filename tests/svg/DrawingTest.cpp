#include "platform/annotation/ktCadViewSvgWriter.h"
#include "platform/svg/PathBuilder.h"
#include "tests/render/RenderCompare.h"
#include "tests/svg/MakeItems.h"
#include "tests/svg/XmlTree.h"

#include <gmock/gmock.h>

#include <limits>

namespace kt {
namespace {

using test::Point2;
using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Property;

constexpr float sPi = Wm4::Mathf::PI;

/// Differences of two renderers at the edges of shapes stay below this; a shape out of place does not.
constexpr double sTolerance = 0.04;

const svg::Transform sMirror{{1, 0, 0, -1}, {0, 0}};

struct Drawing {
    explicit Drawing(const ktCadAnnotationView& view, const ktCadViewSvgWriter::Options& options = {}) {
        ktCadViewSvgWriter writer(options);
        writer.write(view, mText);
        mWarnings = writer.getWarnings();
        auto elements = test::parseXml(mText);
        EXPECT_TRUE(elements) << mText;
        mElements = std::move(elements).value_or(std::vector<test::XmlElement>());
    }

    std::string mText;
    std::vector<ktCadViewSvgWriter::Warning> mWarnings;
    std::vector<test::XmlElement> mElements;
};

ktPointer<ktCadAnnotation> addAnnotation(ktCadAnnotationView& view, const std::string& name,
                                         const Wm4::Vector3<float>& position, const test::Items& items) {
    ktPointer<ktCadAnnotation> annotation(new ktCadAnnotation());
    annotation->SetName(name);
    annotation->mPosition = position;
    annotation->mRoot = test::makeGroup({}, items);
    annotation->mRoot->setColor("#000000");
    annotation->mRoot->setOutlineColor("#000000");
    view.mAnnotations.push_back(annotation);
    return annotation;
}

std::shared_ptr<svg::Rect> makeRect(const Point2& position, const Point2& size, const char* color = "#FFFFFF") {
    return test::makeRect(position, size, color, "none");
}

/// A head pointing to the left, as leaders have it: built with y up, then mirrored.
std::shared_ptr<svg::Node> makeHead() {
    svg::PathBuilder builder;
    builder.startContour();
    builder.appendSegmentListMove({{4, 2}, {0, 0}, {4, 0}});
    builder.endContour(false);
    auto path = builder.createPathItem(true);
    path->setOutlineColor("none");
    return test::makeGroup(sMirror, {path});
}

/// Makes the drawing two inches by one, whatever else is in it.
void addBackground(ktCadAnnotationView& view) {
    addAnnotation(view, "background", {}, {makeRect({0, 0}, {50.8F, 25.4F}, "#F0F0F0")});
}

const ktCadViewSvgWriter::Options sNoMargin{svg::SvgWriter::TextMode::Text, 0.0F, 0.5F, 0.0F};

TEST(Drawing, ShowsItsTitleAndHasAMargin) {
    ktCadAnnotationView view;
    view.SetName("Top & bottom \x01");
    const Drawing drawing(view);
    EXPECT_EQ(drawing.mElements.at(0).getAttribute("viewBox"), "-5 -5 10 10");
    EXPECT_EQ(test::findElements(drawing.mElements, "title").at(0).mText, "Top & bottom \xEF\xBF\xBD");
    EXPECT_EQ(test::findElements(drawing.mElements, "desc").at(0).mText, "0 annotations");
    addAnnotation(view, "wide", {}, {makeRect({0, 0}, {1000, 10})});
    ktCadViewSvgWriter::Options options;
    options.mBackground = "white";
    const Drawing wide(view, options);
    EXPECT_EQ(wide.mElements.at(0).getAttribute("viewBox"), "-10 -10 1020 30") << "large ones have more margin";
    EXPECT_THAT(test::describeElements(wide.mElements),
                HasSubstr("desc | 1 annotation\nrect fill=white height=30 width=1020 x=-10 y=-10\ng\n"));
}

TEST(Drawing, PutsLeadersBeneathAnnotationsAndHoldsEverything) {
    ktCadAnnotationView view;
    addAnnotation(view, "first", {10, 20, 7}, {makeRect({-2, -1}, {4, 2})});
    const auto second = addAnnotation(view, "second", {-30, 5, 0}, {makeRect({0, 0}, {1, 1})});
    second->mColor = {255, 0, 171};
    second->mSegments.emplace_back(Wm4::Vector3<float>(50, -40, 9), Wm4::Vector3<float>(-30, 5, 0));
    second->mShapes.emplace_back(makeHead(), Wm4::Vector3<float>(50, -40, 9));
    const Drawing drawing(view);
    // x from the second annotation to the head's end, y from the first annotation's frame to the head.
    EXPECT_EQ(drawing.mElements.at(0).getAttribute("viewBox"), "-35 -26 94 71");
    EXPECT_EQ(test::describeElements(drawing.mElements),
              "desc | 2 annotations\n"
              "g fill=#FF00AB stroke=#FF00AB\n"
              ".path d=M50 40L-30 -5\n"
              ".path d=M4 2L0 0L4 0Z stroke=none transform=matrix(1 0 0 -1 50 40)\n"
              "g transform=translate(10 -20)\n"
              ".title | first\n"
              ".rect fill=#FFFFFF height=2 width=4 x=-2 y=-1\n"
              "g transform=translate(-30 -5)\n"
              ".title | second\n"
              ".rect fill=#FFFFFF height=1 width=1 x=0 y=0\n");
    EXPECT_THAT(drawing.mWarnings, IsEmpty());
    EXPECT_EQ(Drawing(view).mText, drawing.mText);
}

TEST(Drawing, TellsWhatIsLeftOutAndKeepsItsBox) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    ktCadAnnotationView view;
    const auto annotation = addAnnotation(view, "A", {}, {makeRect({0, 0}, {infinity, 1}), makeRect({0, 0}, {20, 10})});
    annotation->mSegments.emplace_back(Wm4::Vector3<float>(infinity, 0, 0), Wm4::Vector3<float>());
    addAnnotation(view, "B", {infinity, 0, 0}, {makeRect({0, 0}, {1, 1})});
    const Drawing drawing(view);
    EXPECT_EQ(drawing.mElements.at(0).getAttribute("viewBox"), "-5 -5 30 20");
    const auto isWarning = [](std::size_t index, const std::string& name, const std::string& what) {
        using Warning = ktCadViewSvgWriter::Warning;
        const std::string sentence = "annotation '" + name + "': " + what + " was left out: a number is not finite";
        return AllOf(Field(&Warning::mKind, Warning::Kind::NumberNotFinite), Field(&Warning::mAnnotation, index),
                     Field(&Warning::mName, name), Property(&Warning::getSentence, sentence));
    };
    EXPECT_THAT(drawing.mWarnings, ElementsAre(isWarning(0, "A", "a line"), isWarning(0, "A", "a rectangle"),
                                               isWarning(1, "B", "a group")));
}

TEST(DrawingPicture, OfTransforms) {
    ktCadAnnotationView view;
    addBackground(view);
    const auto turned = addAnnotation(view, "turned", {12, -12, 0},
                                      {makeRect({-5, -1}, {10, 2}, "#C00000"), makeRect({3, -3}, {2, 2}, "#0000C0")});
    turned->mRotation = sPi / 6;
    turned->mScale = 1.5F;
    // A chain of groups deeper than files may nest; each turns and shrinks a little.
    std::shared_ptr<svg::Node> chain = addAnnotation(view, "nested", {38, -12, 0}, {})->mRoot;
    for (int depth = 0; depth < 100; ++depth) {
        const auto turn = svg::Transform::makeTranslationRotationScale({0.1F, 0}, 0.1F, 0.98F);
        chain->appendChild(test::makeGroup(turn, {makeRect({8, -1}, {2, 2}, depth % 2 == 0 ? "#008000" : "#80C080")}));
        chain = std::static_pointer_cast<svg::Node>(chain->editChildren().back());
    }
    test::expectReference(Drawing(view, sNoMargin).mText, "transforms", sTolerance);
}

TEST(DrawingPicture, OfImages) {
    // Four squares: red, green above blue, white.
    const std::string png =
        "data:image/png;base64,iVBORw0KGgoAAAANSUhEUgAAAEAAAABAAgMAAADXB5lNAAAADFBMVEX/AAAA/wAAAP/////"
        "7AGD2AAAAIElEQVQ4y2NggIJQKGAYFRgVQBJYBQX/oWBUYFQASQAABnD+ELPmF8EAAAAASUVORK5CYII=";
    ktCadAnnotationView view;
    addBackground(view);
    auto turned = test::makeImage(png, {-8, -8}, {16, 16});
    turned->setTransform(svg::Transform::makeTranslationRotationScale({38, 12}, sPi / 2, 0.9F));
    // Line art on transparency: a cross.
    const std::string cross =
        "data:image/png;base64,"
        "iVBORw0KGgoAAAANSUhEUgAAACYAAAATCAQAAABWg7c7AAAAJElEQVR42mNgIAz+wyEVwKhhQ8ew/1SEo4aRYdho"
        "oh01DCsAAHDeAwwIuaCvAAAAAElFTkSuQmCC";
    addAnnotation(view, "images", {},
                  {test::makeImage(png, {4, 4}, {16, 16}), turned, makeRect({20, 20}, {10, 5}, "#000000"),
                   test::makeImage(cross, {20, 20}, {10, 5})});
    test::expectReference(Drawing(view, sNoMargin).mText, "images", sTolerance);
}

}  // namespace
}  // namespace kt
