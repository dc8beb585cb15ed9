#include "benchmarks/end-to-end/SampleDocument.h"

#include <array>
#include <random>

namespace ktBenchmark {

namespace {

class Generator {
public:
    Generator(SampleContent content, int seed)
        : mContent(content), mRandom(static_cast<std::mt19937::result_type>(seed)) {}

    std::string makeView(int annotationCount) {
        std::string text =
            R"([{"ver":"6.27","name":"Front","origin":[0.0,0.0,0.0],"normal":[0.0,0.0,1.0],"axis":[1.0,0.0,0.0],)"
            R"("metadata":{},"annotations":[)";
        for (int index = 0; index < annotationCount; ++index) {
            text += index == 0 ? "" : ",";
            text += makeAnnotation(index);
        }
        return text + "]}]";
    }

private:
    static constexpr std::array<const char*, 4> sFrames{"rectangle", "flagright", "hexagon", "parallelogram"};
    static constexpr std::array<const char*, 4> sHeads{"arrow", "square", "triangle", "cross"};
    static constexpr std::array<const char*, 4> sAnchors{"rc", "bc", "lc", "tc"};
    static constexpr std::array<const char*, 6> sCallouts{
        "\u2316 | \u2300.06 | A | B | C", "4X \u2300 .250 +.003 -.001", "\u2313 | .015", "A",
        "UNLESS OTHERWISE SPECIFIED",     "\u27C2 | .02 \u24C2 | A"};

    int random(int count) { return std::uniform_int_distribution<int>(0, count - 1)(mRandom); }
    /// A decimal with up to three places.
    std::string makeNumber(int range) {
        return std::to_string(random(range)) + "." + std::to_string(1000 + random(1000)).substr(1);
    }
    std::string makePosition() { return "[" + makeNumber(1000) + "," + makeNumber(1000) + ",0.0]"; }

    std::string makeLine() {
        return R"([{"text":"\u2300)" + makeNumber(100) + R"(","font":"DejaVu Sans"},{"text":"+0.)" +
               std::to_string(random(90) + 10) + R"(","type":"sup"},{"text":" DRILL THRU H)" +
               std::to_string(random(12)) + "\"}]";
    }

    std::string makeLines() {
        if (mContent == SampleContent::Tables) {
            return makeLine() + "," + makeLine() + "," + makeLine();
        }
        return R"([{"text":")" + std::string(sCallouts[static_cast<std::size_t>(random(6))]) + "\"}]";
    }

    std::string makeText(int index, const std::string& members) {
        return R"({"type":"text","name":"Linear Size.)" + std::to_string(index) + R"(","position":)" + makePosition() +
               R"(,"color":"ffe4b5","frameshape":")" + sFrames[static_cast<std::size_t>(random(4))] +
               R"(","defaulttextprop":{"font":"Arial","heightem":1.25,"bold":false,"italic":false},"lines":[)" +
               makeLines() + "]" + members + R"(,"isframelocked":false,"isscalelocked":false,"isignoreztest":false})";
    }

    std::string makeChild(int index, const std::string& members = {}) {
        const std::string anchor = sAnchors[static_cast<std::size_t>(random(4))];
        return makeText(index, R"(,"anchorloc":")" + anchor + "\"" + members);
    }

    std::string makeChildren(int index) {
        if (mContent == SampleContent::Tables) {
            return index % 4 == 0 ? makeChild(index) : "";
        }
        std::string children;
        for (int row = 0; row < (index % 3 == 0 ? 3 : 0); ++row) {
            children += row == 0 ? "" : ",";
            children += makeChild(index, R"(,"children":[)" + makeChild(index) + "]");
        }
        return children;
    }

    std::string makeAnnotation(int index) {
        std::string members = R"(,"leaders":[{"pos":)" + makePosition() + R"(,"head":")" +
                              sHeads[static_cast<std::size_t>(random(4))] + "\"}]";
        if (const std::string children = makeChildren(index); !children.empty()) {
            members += R"(,"children":[)" + children + "]";
        }
        return makeText(index, members);
    }

    SampleContent mContent;
    std::mt19937 mRandom;
};

}  // namespace

std::string makeSampleDocument(SampleContent content, int annotationCount, int seed) {
    return Generator(content, seed).makeView(annotationCount);
}

}  // namespace ktBenchmark
