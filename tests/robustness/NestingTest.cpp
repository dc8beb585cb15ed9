#include "document/ktLegacyDocument.h"
#include "tests/legacy/LegacyLibraryTest.h"
#include "tests/legacy/StreamBuilder.h"
#include "tests/robustness/DamagedDocuments.h"
#include "tests/robustness/Drawings.h"
#include "tools/ktannot/console/TextOutput.h"
#include "tools/ktannot/report/JsonWriter.h"
#include "tools/ktannot/report/LegacyJson.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <thread>

namespace ktTest {
namespace {

using ktLegacy::ktAnnotationInterface;
using ktLegacy::ktLegacyDocument;

constexpr int sDeepestLevel = 512;

/// A stream of one view with text annotations within each other.
std::string makeNestedStream(int levels) {
    StreamBuilder body;
    body.viewStart("nested").u32(1).u32(0);
    for (int level = 1; level <= levels; ++level) {
        body.text("").u32(0).u32(0).placement(1).u32(level < levels ? 1 : 0);
        if (level < levels) {
            body.u8(3).u8(1);
        }
    }
    for (int level = 1; level <= levels; ++level) {
        body.emptyMap().textEnd("x");
    }
    const Bytes bytes = DocumentBuilder(27).view(1, body.emptyMap()).build();
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::string makeNestedJson(int levels) {
    std::string json = R"({"ver": "6.27", "metadata": {}, "annotations": [)";
    for (int level = 1; level <= levels; ++level) {
        json += R"({"type": "text", "lines": [[{"text": "x"}]], "children": [)";
    }
    for (int level = 1; level <= levels; ++level) {
        json += "]}";
    }
    return json + "]}";
}

int countLevels(const ktAnnotationInterface* annotation) {
    int levels = 0;
    while (annotation != nullptr) {
        ++levels;
        const auto& children = annotation->getSubAnnots();
        annotation = children.empty() ? nullptr : children.front().mAnnotation.get();
    }
    return levels;
}

/// What the tool does with a document: read, dump, copy, draw, destroy.
void expectWholeJourney(const std::string& text, int levels) {
    const ktLegacyDocument document = ktLegacyDocument::read(std::as_bytes(std::span(text)));
    ASSERT_EQ(document.getViews().size(), 1U) << document.getReason();
    const auto& annotations = document.getViews().front().mView->mAnnotations;
    ASSERT_EQ(annotations.size(), 1U);
    EXPECT_EQ(countLevels(annotations.front().get()), std::min(levels, sDeepestLevel));
    EXPECT_EQ(document.getOutcome(),
              levels > sDeepestLevel ? ktLegacy::ktOutcome::LimitReached : ktLegacy::ktOutcome::AllWell);

    const kt::ktPointer<ktAnnotationInterface> copy(annotations.front()->cloneAnnotation());
    EXPECT_EQ(countLevels(copy.get()), std::min(levels, sDeepestLevel));
    ktannot::TextOutput output;
    ktannot::JsonWriter json(output);
    for (const ktLegacyDocument::View& view : document.getViews()) {
        ktannot::LegacyJson(json).writeView(view, document.getKind());
    }
    EXPECT_GT(output.getText().size(), 100U * static_cast<unsigned>(std::min(levels, sDeepestLevel)));
    // A null child, which streams have there, fails its parent.
    EXPECT_GE(countDrawings(document), levels > sDeepestLevel ? 0U : 1U);
}

class NestingTest : public LegacyLibraryTest, public testing::WithParamInterface<int> {};

INSTANTIATE_TEST_SUITE_P(Levels, NestingTest, testing::Values(511, 512, 513, 5'000), testing::PrintToStringParamName());

TEST_P(NestingTest, EndsAtTheLimit) {
    for (const std::string& document : {makeNestedStream(GetParam()), makeNestedJson(GetParam())}) {
        // With the stack of 8 MiB that threads and processes usually have.
        std::jthread([&document] { expectWholeJourney(document, GetParam()); });
    }
}

}  // namespace
}  // namespace ktTest
