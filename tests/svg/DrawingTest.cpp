#include "platform/annotation/ktCadViewSvgWriter.h"
#include "platform/svg/Image.h"
#include "platform/svg/PathBuilder.h"
#include "platform/svg/Rect.h"
#include "platform/svg/Text.h"
#include "tests/render/RenderCompare.h"
#include "tests/svg/XmlTree.h"

#include <gmock/gmock.h>

#include <limits>

namespace kt {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Point2 = Wm4::Vector2<float>;

constexpr float sPi = Wm4::Mathf::PI;

/// Differences of two renderers at the edges of shapes stay below this; a shape out of place does not.
constexpr double sTolerance = 0.04;

const svg::Transform sMirror{{1, 0, 0, -1}, {0, 0}};

struct Drawing {
    explicit Drawing(const ktCadAnnotationView& view, const ktCadViewSvgWriter::Options& options = {}) {
        ktCadViewSvgWriter(options).write(view, mText, mWarnings);
        auto elements = test::parseXml(mText);
        EXPECT_TRUE(elements) << mText;
        mElements = std::move(elements).value_or(std::vector<test::XmlElement>());
    }

    std::string mText;
    std::vector<std::string> mWarnings;
    std::vector<test::XmlElement> mElements;
};

ktPointer<ktCadAnnotation> addAnnotation(ktCadAnnotationView& view, const std::string& name,
                                         const Wm4::Vector3<float>& position) {
    ktPointer<ktCadAnnotation> annotation(new ktCadAnnotation());
    annotation->SetName(name);
    annotation->mPosition = position;
    annotation->mRoot = std::make_shared<svg::Node>();
    annotation->mRoot->setColor("#000000");
    annotation->mRoot->setOutlineColor("#000000");
    view.mAnnotations.push_back(annotation);
    return annotation;
}

std::shared_ptr<svg::Rect> makeRect(const Point2& position, const Point2& size, const char* color) {
    auto rect = std::make_shared<svg::Rect>(position, size);
    rect->setColor(color);
    rect->setOutlineColor("none");
    return rect;
}

/// A head pointing to the left, as leaders have it: built with y up, then mirrored.
std::shared_ptr<svg::Node> makeHead() {
    svg::PathBuilder builder;
    builder.startContour();
    builder.appendSegmentListMove({{4, 2}, {0, 0}, {4, 0}});
    builder.endContour(false);
    auto path = builder.createPathItem(true);
    path->setOutlineColor("none");
    auto node = std::make_shared<svg::Node>();
    node->appendChild(path);
    node->setTransform(sMirror);
    return node;
}

/// Makes the drawing two inches by one, whatever else is in it.
void addBackground(ktCadAnnotationView& view) {
    addAnnotation(view, "background", {})->mRoot->appendChild(makeRect({0, 0}, {50.8F, 25.4F}, "#F0F0F0"));
}

constexpr ktCadViewSvgWriter::Options sNoMargin{svg::SvgWriter::TextMode::Text, 0.0F, 0.5F};

TEST(Drawing, OfAnEmptyViewShowsItsTitle) {
    ktCadAnnotationView view;
    view.SetName("Top & bottom \x01");
    const Drawing drawing(view);
    EXPECT_EQ(drawing.mElements.at(0).getAttribute("viewBox"), "-5 -5 10 10");
    EXPECT_EQ(test::findElements(drawing.mElements, "title").at(0).mText, "Top & bottom \xEF\xBF\xBD");
}

TEST(Drawing, PutsLeadersBeneathAnnotationsAndHoldsEverything) {
    ktCadAnnotationView view;
    const auto first = addAnnotation(view, "first", {10, 20, 7});
    first->mRoot->appendChild(makeRect({-2, -1}, {4, 2}, "#FFFFFF"));
    const auto second = addAnnotation(view, "second", {-30, 5, 0});
    second->mRoot->appendChild(makeRect({0, 0}, {1, 1}, "#FFFFFF"));
    second->mColor = {255, 0, 171};
    second->mSegments.emplace_back(Wm4::Vector3<float>(50, -40, 9), Wm4::Vector3<float>(-30, 5, 0));
    second->mShapes.emplace_back(makeHead(), Wm4::Vector3<float>(50, -40, 9));
    const Drawing drawing(view);
    // x from the second annotation to the head's end, y from the first annotation's frame to the head.
    EXPECT_EQ(drawing.mElements.at(0).getAttribute("viewBox"), "-35 -26 94 71");
    const auto groups = test::findElements(drawing.mElements, "g");
    ASSERT_EQ(groups.size(), 3U);
    EXPECT_EQ(groups[0].getAttribute("stroke"), "#FF00AB");
    EXPECT_EQ(groups[0].getAttribute("fill"), "#FF00AB");
    EXPECT_EQ(groups[1].getAttribute("transform"), "translate(10 -20)");
    EXPECT_EQ(groups[2].getAttribute("transform"), "translate(-30 -5)");
    const auto paths = test::findElements(drawing.mElements, "path");
    ASSERT_EQ(paths.size(), 2U);
    EXPECT_EQ(paths[0].getAttribute("d"), "M50 40L-30 -5");
    EXPECT_EQ(paths[1].getAttribute("transform"), "matrix(1 0 0 -1 50 40)");
    const auto titles = test::findElements(drawing.mElements, "title");
    ASSERT_EQ(titles.size(), 2U);
    EXPECT_EQ(titles[1].mText, "second");
    EXPECT_THAT(drawing.mWarnings, IsEmpty());
    EXPECT_EQ(Drawing(view).mText, drawing.mText);
}

TEST(Drawing, TellsWhatIsLeftOutAndKeepsItsBox) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    ktCadAnnotationView view;
    const auto annotation = addAnnotation(view, "A", {});
    annotation->mRoot->appendChild(makeRect({0, 0}, {infinity, 1}, "#FFFFFF"));
    annotation->mRoot->appendChild(makeRect({0, 0}, {20, 10}, "#FFFFFF"));
    annotation->mSegments.emplace_back(Wm4::Vector3<float>(infinity, 0, 0), Wm4::Vector3<float>());
    addAnnotation(view, "B", {infinity, 0, 0})->mRoot->appendChild(makeRect({0, 0}, {1, 1}, "#FFFFFF"));
    const Drawing drawing(view);
    EXPECT_EQ(drawing.mElements.at(0).getAttribute("viewBox"), "-5 -5 30 20");
    EXPECT_THAT(drawing.mWarnings, ElementsAre("annotation 'A': a line was left out: a number is not finite",
                                               "annotation 'A': a rectangle was left out: a number is not finite",
                                               "annotation 'B': a group was left out: a number is not finite"));
}

TEST(DrawingPicture, OfShapes) {
    ktCadAnnotationView view;
    addBackground(view);
    const auto annotation = addAnnotation(view, "shapes", {25.4F, -12.7F, 0});
    svg::PathBuilder builder;
    builder.appendEllipse({-17, -5}, {5, 3}, 0, 2 * sPi);
    builder.appendEllipse({-5, -5}, {5, 3}, 0, 0.75F * sPi);
    builder.startContour();
    builder.appendSegmentListMove({{3, -8}, {3, -2}});
    builder.appendCubic({10, 4}, {10, -14}, {14, -8});
    builder.endContour(false);
    auto path = builder.createPathItem(true);
    path->setColor("#FFC040");
    path->setStyleOption(svg::ItemInterface::sStyleNonScalingStroke);
    annotation->mRoot->appendChild(path);
    auto frame = makeRect({-22, 3}, {12, 6}, "#A0D0FF");
    frame->setOutlineColor("#000000");
    frame->setStyleOption(svg::ItemInterface::sStyleNonScalingStroke);
    annotation->mRoot->appendChild(frame);
    annotation->mSegments.emplace_back(Wm4::Vector3<float>(28, -20, 0), Wm4::Vector3<float>(46, -16, 0));
    annotation->mShapes.emplace_back(makeHead(), Wm4::Vector3<float>(28, -20, 0));
    annotation->mColor = {200, 0, 0};
    // The leader lies beneath the annotations, the background among them.
    view.mAnnotations[0]->mRoot->setColor("none");
    view.mAnnotations[0]->mRoot->editChildren()[0]->setColor("none");
    EXPECT_TRUE(test::matchesReference(Drawing(view, sNoMargin).mText, "shapes", sTolerance));
}

TEST(DrawingPicture, OfTransforms) {
    ktCadAnnotationView view;
    addBackground(view);
    const auto turned = addAnnotation(view, "turned", {12, -12, 0});
    turned->mRotation = sPi / 6;
    turned->mScale = 1.5F;
    turned->mRoot->appendChild(makeRect({-5, -1}, {10, 2}, "#C00000"));
    turned->mRoot->appendChild(makeRect({3, -3}, {2, 2}, "#0000C0"));
    const auto nested = addAnnotation(view, "nested", {38, -12, 0});
    // A chain of groups deeper than files may nest; each turns and shrinks a little.
    std::shared_ptr<svg::Node> chain = nested->mRoot;
    for (int depth = 0; depth < 100; ++depth) {
        auto group = std::make_shared<svg::Node>();
        group->setTransform(svg::Transform::makeTranslationRotationScale({0.1F, 0}, 0.1F, 0.98F));
        group->appendChild(makeRect({8, -1}, {2, 2}, depth % 2 == 0 ? "#008000" : "#80C080"));
        chain->appendChild(group);
        chain = group;
    }
    EXPECT_TRUE(test::matchesReference(Drawing(view, sNoMargin).mText, "transforms", sTolerance));
}

TEST(DrawingPicture, OfImages) {
    // Four squares: red, green above blue, white.
    const std::string png =
        "data:image/png;base64,iVBORw0KGgoAAAANSUhEUgAAAEAAAABAAgMAAADXB5lNAAAADFBMVEX/AAAA/wAAAP/////"
        "7AGD2AAAAIElEQVQ4y2NggIJQKGAYFRgVQBJYBQX/oWBUYFQASQAABnD+ELPmF8EAAAAASUVORK5CYII=";
    ktCadAnnotationView view;
    addBackground(view);
    const auto annotation = addAnnotation(view, "images", {});
    auto upright = std::make_shared<svg::Image>();
    upright->setSource(png);
    upright->setPosition({4, 4});
    upright->setSize({16, 16});
    annotation->mRoot->appendChild(upright);
    auto turned = std::make_shared<svg::Image>(*upright);
    turned->setPosition({-8, -8});
    turned->setTransform(svg::Transform::makeTranslationRotationScale({38, 12}, sPi / 2, 0.9F));
    annotation->mRoot->appendChild(turned);
    EXPECT_TRUE(test::matchesReference(Drawing(view, sNoMargin).mText, "images", sTolerance));
}

TEST(DrawingPicture, OfTextIsUpright) {
    ktCadAnnotationView view;
    addBackground(view);
    const auto annotation = addAnnotation(view, "text", {4, -4, 0});
    auto group = std::make_shared<svg::Node>();
    group->setTransform(sMirror);
    const char* lines[] = {"LF  7", "jgF<&>"};
    float y = -5.0F;
    for (const char* line : lines) {
        auto text = std::make_shared<svg::Text>();
        text->setText(line);
        text->setFont("Liberation Sans");
        text->setSize(8.0F);
        text->setPosition({0, y});
        text->setTransform({{1, 0, 0, -1}, {0, 2 * y}});
        group->appendChild(text);
        y -= 10.0F;
    }
    annotation->mRoot->appendChild(group);
    EXPECT_TRUE(test::matchesReference(Drawing(view, sNoMargin).mText, "text", 0.08));
}

}  // namespace
}  // namespace kt
