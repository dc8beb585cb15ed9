/// Writing the drawing of a view, measured against formatting the numbers of the file, each as often as it stands there
/// and as exact as the model has it, with std::to_chars in shortest form. Both are measured in the same run, by
/// processor time; the counter "ratio" is the quotient of their medians.

#include "platform/annotation/ktCadViewSvgWriter.h"
#include "platform/svg/Path.h"
#include "platform/svg/PathBuilder.h"
#include "platform/svg/Rect.h"
#include "platform/svg/Text.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <cstdlib>
#include <ctime>
#include <new>
#include <random>

namespace {

std::atomic<std::size_t> sAllocations{0};

void* allocate(std::size_t size) {
    ++sAllocations;
    if (void* memory = std::malloc(size)) {  // NOLINT(cppcoreguidelines-no-malloc): what operator new is made of
        return memory;
    }
    throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t /*size*/) noexcept { std::free(memory); }

namespace {

using Point2 = Wm4::Vector2<float>;

constexpr int sAnnotationCount = 10'000;
constexpr int sRepetitions = 15;
constexpr float sTextSize = 3.175F;

/// A view like those that migrated documents give: notes of a few lines in a frame, with leaders and their heads.
class SampleView {
public:
    explicit SampleView(int textsPerAnnotation) : mTextsPerAnnotation(textsPerAnnotation) {
        mView.SetName("Front");
        for (int index = 0; index < sAnnotationCount; ++index) {
            mView.mAnnotations.emplace_back(makeAnnotation(index));
        }
    }

    const kt::ktCadAnnotationView& getView() const { return mView; }
    /// The numbers in the file of this view, apart from those at its head.
    const std::vector<float>& getNumbers() const { return mNumbers; }
    std::size_t getItemCount() const { return mItemCount; }

private:
    float random(float low, float high) { return std::uniform_real_distribution<float>(low, high)(mRandom); }

    kt::ktCadAnnotation* makeAnnotation(int index) {
        auto* annotation = new kt::ktCadAnnotation();
        annotation->SetName("Note " + std::to_string(index));
        annotation->mPosition = {random(-500.0F, 500.0F), random(-500.0F, 500.0F), 0.0F};
        mNumbers.insert(mNumbers.end(), {annotation->mPosition.x, -annotation->mPosition.y});
        addLeader(*annotation);
        annotation->mRoot = std::make_shared<kt::svg::Node>();
        annotation->mRoot->setColor("#000000");
        annotation->mRoot->setOutlineColor("#000000");
        annotation->mRoot->appendChild(makeTexts());
        annotation->mRoot->prependChild(makeFrame());
        return annotation;
    }

    std::shared_ptr<kt::svg::ItemInterface> makeFrame() {
        const Point2 size(random(10.0F, 40.0F), random(5.0F, 30.0F));
        auto frame = std::make_shared<kt::svg::Rect>(size * -0.5F, size);
        frame->setColor("#FFFFC0");
        frame->setOutlineColor("#000000");
        frame->setStyleOption(kt::svg::ItemInterface::sStyleNonScalingStroke);
        mNumbers.insert(mNumbers.end(), {frame->getPosition().x, frame->getPosition().y, size.x, size.y});
        ++mItemCount;
        return frame;
    }

    std::shared_ptr<kt::svg::ItemInterface> makeTexts() {
        static constexpr std::array<const char*, 6> words = {"DRILL THRU",
                                                             "\xE2\x8C\x80"
                                                             "12.5",
                                                             "H7",
                                                             "0.05 A B",
                                                             "<see note & sheet 2>",
                                                             "2X 45\xC2\xB0"};
        auto group = std::make_shared<kt::svg::Node>();
        group->setColor("#000000");
        const Point2 corner(random(-20.0F, 20.0F), random(-20.0F, 20.0F));
        group->setTransform({{1.0F, 0.0F, 0.0F, -1.0F}, corner});
        for (int index = 0; index < mTextsPerAnnotation; ++index) {
            auto text = std::make_shared<kt::svg::Text>();
            const Point2 position(random(0.0F, 40.0F), random(-30.0F, 0.0F));
            text->setText(words[static_cast<std::size_t>(index) % words.size()]);
            text->setFont("Arial");
            text->setSize(sTextSize);
            text->setPosition(position);
            text->setLength(random(5.0F, 25.0F));
            text->setExtent({{0.0F, -2.9F}, {text->getLength(), 0.7F}});
            text->setTransform({{1.0F, 0.0F, 0.0F, -1.0F}, {0.0F, 2.0F * position.y}});
            mNumbers.insert(mNumbers.end(), {corner.x + position.x, corner.y - position.y, text->getLength()});
            group->appendChild(std::move(text));
            ++mItemCount;
        }
        auto box = std::make_shared<kt::svg::Rect>(Point2(0.0F, -30.0F), Point2(40.0F, 30.0F));
        box->setVisible(false);
        box->setId("dummyTxtBB");
        group->appendChild(std::move(box));
        return group;
    }

    void addLeader(kt::ktCadAnnotation& annotation) {
        const Wm4::Vector3<float> target(random(-500.0F, 500.0F), random(-500.0F, 500.0F), 0.0F);
        annotation.mSegments.emplace_back(target, annotation.mPosition);
        mNumbers.insert(mNumbers.end(), {target.x, -target.y, annotation.mPosition.x, -annotation.mPosition.y});
        kt::svg::PathBuilder builder;
        const std::vector<Point2> tip = {
            {random(-3.0F, 3.0F), random(-3.0F, 3.0F)}, {}, {random(-3.0F, 3.0F), random(-3.0F, 3.0F)}};
        builder.startContour();
        builder.appendSegmentListMove(tip);
        builder.endContour(false);
        auto path = builder.createPathItem(true);
        path->setOutlineColor("none");
        auto node = std::make_shared<kt::svg::Node>();
        node->setTransform({{1.0F, 0.0F, 0.0F, -1.0F}, {}});
        node->appendChild(std::move(path));
        annotation.mShapes.emplace_back(std::move(node), target);
        mNumbers.insert(mNumbers.end(), {1.0F, 0.0F, 0.0F, -1.0F, target.x, -target.y, tip[0].x, tip[0].y, tip[1].x,
                                         tip[1].y, tip[2].x, tip[2].y});
        mItemCount += 2;
    }

    int mTextsPerAnnotation;
    std::mt19937 mRandom{20240229};
    kt::ktCadAnnotationView mView;
    std::vector<float> mNumbers;
    std::size_t mItemCount = 0;
};

void formatNumbers(const std::vector<float>& numbers, std::string& text) {
    text.clear();
    std::array<char, 32> buffer;
    for (const float number : numbers) {
        char* const end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number).ptr;
        text.append(buffer.data(), end);
        text.push_back(' ');
    }
}

double median(std::vector<double>& values) {
    std::nth_element(values.begin(), values.begin() + std::ssize(values) / 2, values.end());
    return values[values.size() / 2];
}

double getProcessorTime() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// How many numbers stand in the attributes behind the file's head. No text of the sample holds a quote.
std::size_t countNumbers(std::string_view file) {
    std::size_t count = 0;
    bool isInValue = false;
    char before = ' ';
    for (const char character : file.substr(file.rfind("</style>"))) {
        isInValue = isInValue != (character == '"');
        const bool isPart = (character >= '0' && character <= '9') || character == '-';
        // Digits of colours follow other characters than those of numbers.
        if (isInValue && isPart && std::string_view("\"( ML").find(before) != std::string_view::npos) {
            ++count;
        }
        before = character;
    }
    return count;
}

template <typename Work>
double measure(Work work) {
    const double start = getProcessorTime();
    work();
    return getProcessorTime() - start;
}

void writeView(benchmark::State& state) {
    const SampleView sample(static_cast<int>(state.range(0)));
    kt::ktCadViewSvgWriter writer;
    std::string file;
    std::string numbers;
    std::vector<double> writing;
    std::vector<double> formatting;
    std::size_t allocations = 0;
    writer.write(sample.getView(), file);
    if (countNumbers(file) != sample.getNumbers().size()) {
        state.SkipWithError("the numbers are not those of the file");
        return;
    }
    for (auto _ : state) {
        const std::size_t allocationsBefore = sAllocations;
        writing.push_back(measure([&] { writer.write(sample.getView(), file); }));
        allocations = sAllocations - allocationsBefore;
        formatting.push_back(measure([&] { formatNumbers(sample.getNumbers(), numbers); }));
        benchmark::DoNotOptimize(file.data());
        benchmark::DoNotOptimize(numbers.data());
        state.SetIterationTime(writing.back());
    }
    constexpr double microseconds = 1e6 / sAnnotationCount;
    const double writingTime = median(writing);
    const double formattingTime = median(formatting);
    state.counters["write_us"] = writingTime * microseconds;
    state.counters["to_chars_us"] = formattingTime * microseconds;
    state.counters["ratio"] = writingTime / formattingTime;
    state.counters["allocs_per_item"] = static_cast<double>(allocations) / static_cast<double>(sample.getItemCount());
    state.counters["bytes"] = static_cast<double>(file.size());
}

}  // namespace

BENCHMARK(writeView)
    ->ArgName("texts")
    ->Arg(8)
    ->Arg(11)
    ->UseManualTime()
    ->Iterations(sRepetitions)
    ->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
