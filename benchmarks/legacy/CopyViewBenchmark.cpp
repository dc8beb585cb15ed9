/// Copying and destroying a view of text annotations, measured against the same strings and numbers held in plain
/// standard containers. Both are measured in the same run, in turns; the counter "ratio" is the quotient of the
/// medians. The memory that a copy keeps is the growth of the process by the first copy of each kind.

#include "legacy/ktAnnotationText.h"
#include "legacy/ktAnnotationView.h"
#include "library/ktAnnotationLegacyLibrary.h"

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using ktLegacy::ktAnnotationText;
using ktLegacy::ktAnnotationView;

constexpr int sAnnotationCount = 100'000;
constexpr int sLineCount = 3;
constexpr int sSegmentCount = 3;
constexpr int sRepetitions = 15;

// What a view holds, in plain containers.

struct PlainLeader {
    float mPosition[3];
    std::int32_t mHead;
};

struct PlainSegment {
    std::string mText;
    std::uint8_t mType;
};

struct PlainAnnotation {
    std::string mName;
    float mPosition[3];
    std::uint8_t mColor[3];
    std::uint8_t mFlags;
    std::vector<PlainLeader> mLeaders;
    std::string mFontName;
    std::uint16_t mHeight;
    std::uint8_t mStyle;
    std::vector<std::vector<PlainSegment>> mLines;
    std::vector<PlainAnnotation> mChildren;
};

using PlainView = std::vector<PlainAnnotation>;

std::string makeSegmentText(int number, int segment) {
    static const char* const texts[] = {"M8 x 1.25", "6H depth 22", "2X 45", "see note", "A", "0.05 A B C"};
    return texts[(number + segment) % 6];
}

PlainAnnotation makePlain(int number, bool hasChild) {
    PlainAnnotation annotation{};
    annotation.mName = "annotation " + std::to_string(number);
    annotation.mPosition[0] = static_cast<float>(number);
    annotation.mFlags = 1;
    annotation.mLeaders.resize(static_cast<std::size_t>(1 + number % 2), PlainLeader{{1, 2, 3}, 3});
    annotation.mFontName = "Arial";
    annotation.mHeight = 100;
    annotation.mLines.resize(sLineCount);
    for (int line = 0; line < sLineCount; ++line) {
        for (int segment = 0; segment < sSegmentCount; ++segment) {
            annotation.mLines[static_cast<std::size_t>(line)].push_back(
                {makeSegmentText(number, line * sSegmentCount + segment), 0});
        }
    }
    if (hasChild) {
        annotation.mChildren.push_back(makePlain(number, false));
    }
    return annotation;
}

kt::ktPointer<ktAnnotationText> makeModel(const PlainAnnotation& plain) {
    kt::ktPointer<ktAnnotationText> annotation(new ktAnnotationText);
    annotation->SetName(plain.mName);
    annotation->mPosition = {plain.mPosition[0], plain.mPosition[1], plain.mPosition[2]};
    annotation->mLeaders.resize(plain.mLeaders.size());
    for (const std::vector<PlainSegment>& line : plain.mLines) {
        ktAnnotationText::Line& segments = annotation->mLines.emplace_back();
        for (const PlainSegment& segment : line) {
            segments.emplace_back(segment.mText, ktAnnotationText::TextSegment::Normal);
        }
    }
    for (const PlainAnnotation& child : plain.mChildren) {
        annotation->editSubAnnots().emplace_back().mAnnotation = makeModel(child).get();
    }
    return annotation;
}

/// Times of one kind of view, in nanoseconds an annotation.
class Times {
public:
    void add(Clock::duration duration) {
        mTimes.push_back(std::chrono::duration<double, std::nano>(duration).count() / sAnnotationCount);
    }
    double getMedian() {
        std::sort(mTimes.begin(), mTimes.end());
        return mTimes[mTimes.size() / 2];
    }

private:
    std::vector<double> mTimes;
};

/// Copies a view and destroys the copy, each into its times.
template <typename View>
void copyAndDestroy(const View& source, Times& copyTimes, Times& destroyTimes) {
    const Clock::time_point begin = Clock::now();
    std::optional<View> copy(source);
    benchmark::DoNotOptimize(copy);
    const Clock::time_point copied = Clock::now();
    copy.reset();
    copyTimes.add(copied - begin);
    destroyTimes.add(Clock::now() - copied);
}

/// Bytes of memory that the process holds.
std::int64_t getResidentSize() {
    std::int64_t total = 0;
    std::int64_t resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return resident * ::sysconf(_SC_PAGESIZE);
}

/// Bytes an annotation that a further copy keeps. The copy is left to the caller, so that the next one gets fresh
/// memory.
template <typename View>
double measureKept(const View& source, std::unique_ptr<View>& copy) {
    const std::int64_t before = getResidentSize();
    copy = std::make_unique<View>(source);
    return static_cast<double>(getResidentSize() - before) / sAnnotationCount;
}

void copyView(benchmark::State& state) {
    PlainView plain;
    ktAnnotationView model;
    for (int number = 0; number < sAnnotationCount; ++number) {
        plain.push_back(makePlain(number, number % 4 == 0));
        model.mAnnotations.emplace_back(makeModel(plain.back()));
    }
    std::unique_ptr<PlainView> plainCopy;
    std::unique_ptr<ktAnnotationView> modelCopy;
    const double plainBytes = measureKept(plain, plainCopy);
    const double modelBytes = measureKept(model, modelCopy);
    plainCopy.reset();
    modelCopy.reset();

    Times plainCopies;
    Times plainDestructions;
    Times modelCopies;
    Times modelDestructions;
    for ([[maybe_unused]] const auto& iteration : state) {
        copyAndDestroy(plain, plainCopies, plainDestructions);
        copyAndDestroy(model, modelCopies, modelDestructions);
    }
    state.counters["copy_ns"] = modelCopies.getMedian();
    state.counters["plain_copy_ns"] = plainCopies.getMedian();
    state.counters["ratio"] = modelCopies.getMedian() / plainCopies.getMedian();
    state.counters["destroy_ratio"] = modelDestructions.getMedian() / plainDestructions.getMedian();
    state.counters["bytes"] = modelBytes;
    state.counters["plain_bytes"] = plainBytes;
}
BENCHMARK(copyView)->Iterations(sRepetitions)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    kt::initializeKtAnnotationLegacyLibrary();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    kt::terminateKtAnnotationLegacyLibrary();
    return 0;
}
