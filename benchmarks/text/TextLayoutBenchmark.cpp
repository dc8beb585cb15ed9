#include "platform/annotation/TextLayout_p.h"
#include "platform/annotation/TextSegmentToSvgConverter.h"

#include <benchmark/benchmark.h>
#include <fontconfig/fontconfig.h>
#include <hb.h>

#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace {

using kt::text::TextArea;
using kt::text::TextProperties;
using kt::text::TextSegment;

constexpr std::size_t sAnnotationCount = 10'000;
constexpr std::size_t sSegmentCount = 82'000;
/// Chance of a segment to bear a number of its own, such that somewhat more than half of the segments differ.
constexpr unsigned sNumberedPercent = 38;

using Callout = std::vector<TextArea::Line>;

std::vector<Callout> readCallouts() {
    const std::map<char, TextSegment::SegmentType> types{
        {'=', TextSegment::Normal}, {'^', TextSegment::Superscript}, {'_', TextSegment::Subscript}};
    std::vector<Callout> callouts(1);
    std::ifstream file(KT_CALLOUTS);
    for (std::string text; std::getline(file, text);) {
        if (text.empty()) {
            callouts.emplace_back();
            continue;
        }
        TextArea::Line& line = callouts.back().emplace_back();
        for (std::size_t start = 0; start < text.size();) {
            const std::size_t end = std::min(text.find('\t', start), text.size());
            line.emplace_back(text.substr(start + 1, end - start - 1).c_str(), types.at(text[start]), nullptr);
            start = end + 1;
        }
    }
    return callouts;
}

/// Ten thousand annotations of stacked callouts with numbers of their own; the same ones in every run.
std::vector<TextArea> makeAnnotations() {
    const std::vector<Callout> callouts = readCallouts();
    std::mt19937 random(4);
    std::vector<TextArea> annotations(sAnnotationCount);
    std::size_t segmentCount = 0;
    for (std::size_t index = 0; index < annotations.size(); ++index) {
        TextArea& annotation = annotations[index];
        while (segmentCount * sAnnotationCount < (index + 1) * sSegmentCount) {
            for (TextArea::Line line : callouts[random() % callouts.size()]) {
                for (TextSegment& segment : line) {
                    std::string text = segment.getText();
                    for (char& character : text) {
                        const bool isDigit = character >= '0' && character <= '9';
                        character = isDigit ? static_cast<char>('0' + random() % 10) : character;
                    }
                    if (random() % 100 < sNumberedPercent) {
                        text.push_back(' ');
                        text.append(std::to_string(random() % 100'000));
                    }
                    segment.setText(text.data(), text.size());
                }
                segmentCount += line.size();
                annotation.mLines.push_back(std::move(line));
            }
        }
    }
    return annotations;
}

const std::vector<TextArea>& getAnnotations() {
    static const std::vector<TextArea> sAnnotations = makeAnnotations();
    return sAnnotations;
}

std::vector<const std::string*> getStrings() {
    std::vector<const std::string*> strings;
    for (const TextArea& annotation : getAnnotations()) {
        for (const TextArea::Line& line : annotation.mLines) {
            for (const TextSegment& segment : line) {
                strings.push_back(&segment.getText());
            }
        }
    }
    return strings;
}

/// Raw shaping with the font that stands for the default family.
class RawShaper {
public:
    RawShaper() : mBuffer(hb_buffer_create()) {
        FcPattern* request = FcNameParse(reinterpret_cast<const FcChar8*>(TextProperties().mFontName.c_str()));
        FcConfigSubstitute(nullptr, request, FcMatchPattern);
        FcDefaultSubstitute(request);
        FcResult result = FcResultNoMatch;
        FcPattern* match = FcFontMatch(nullptr, request, &result);
        FcChar8* path = nullptr;
        FcPatternGetString(match, FC_FILE, 0, &path);
        hb_blob_t* blob = hb_blob_create_from_file(reinterpret_cast<const char*>(path));
        hb_face_t* face = hb_face_create(blob, 0);
        mFont = hb_font_create(face);
        hb_face_destroy(face);
        hb_blob_destroy(blob);
        FcPatternDestroy(match);
        FcPatternDestroy(request);
    }
    RawShaper(const RawShaper&) = delete;
    RawShaper& operator=(const RawShaper&) = delete;
    ~RawShaper() {
        hb_font_destroy(mFont);
        hb_buffer_destroy(mBuffer);
    }

    std::int64_t measure(const std::string& text) {
        hb_buffer_clear_contents(mBuffer);
        hb_buffer_add_utf8(mBuffer, text.data(), static_cast<int>(text.size()), 0, static_cast<int>(text.size()));
        hb_buffer_guess_segment_properties(mBuffer);
        hb_shape(mFont, mBuffer, nullptr, 0);
        unsigned count = 0;
        const hb_glyph_position_t* positions = hb_buffer_get_glyph_positions(mBuffer, &count);
        std::int64_t advance = 0;
        for (unsigned index = 0; index < count; ++index) {
            advance += positions[index].x_advance;
        }
        return advance;
    }

private:
    hb_buffer_t* mBuffer;
    hb_font_t* mFont = nullptr;
};

void countAnnotations(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(getAnnotations().size()));
}

void shapeRaw(benchmark::State& state) {
    const std::vector<const std::string*> strings = getStrings();
    RawShaper shaper;
    for (auto _ : state) {
        for (const std::string* text : strings) {
            benchmark::DoNotOptimize(shaper.measure(*text));
        }
    }
    countAnnotations(state);
}

void shapeWithStringCache(benchmark::State& state) {
    const std::vector<const std::string*> strings = getStrings();
    RawShaper shaper;
    for (auto _ : state) {
        std::unordered_map<std::string, std::int64_t> advances;
        for (const std::string* text : strings) {
            const auto [entry, isNew] = advances.try_emplace(*text);
            if (isNew) {
                entry->second = shaper.measure(*text);
            }
            benchmark::DoNotOptimize(entry->second);
        }
    }
    countAnnotations(state);
}

/// Positions only. Fonts are open, nothing else is remembered from one iteration to the next.
void layOut(benchmark::State& state) {
    for (auto _ : state) {
        kt::text::TextLayout layout;
        for (const TextArea& annotation : getAnnotations()) {
            benchmark::DoNotOptimize(layout.layOut(annotation));
        }
    }
    countAnnotations(state);
}

void layOutWithItems(benchmark::State& state) {
    for (auto _ : state) {
        const kt::text::TextSegmentToSvgConverter converter;
        for (const TextArea& annotation : getAnnotations()) {
            kt::svg::Node group;
            benchmark::DoNotOptimize(converter.convertTextAreaToSvg(annotation, group, nullptr, "box"));
        }
    }
    countAnnotations(state);
}

/// Prints the medians' ratios to the first benchmark's after the usual report.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.aggregate_name == "median") {
                mMedians.emplace_back(run.run_name.function_name, run.GetAdjustedCPUTime());
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }

    void Finalize() override {
        for (const auto& [name, time] : mMedians) {
            GetOutputStream() << name << " / " << mMedians.front().first << ": " << time / mMedians.front().second
                              << '\n';
        }
        ConsoleReporter::Finalize();
    }

private:
    std::vector<std::pair<std::string, double>> mMedians;
};

void describeAnnotations() {
    const std::vector<const std::string*> strings = getStrings();
    std::unordered_set<std::string_view> different;
    for (const std::string* text : strings) {
        different.insert(*text);
    }
    std::cout << getAnnotations().size() << " annotations, " << strings.size() << " segments, " << different.size()
              << " different\n";
}

}  // namespace

BENCHMARK(shapeRaw)->Unit(benchmark::kMillisecond)->Repetitions(9)->ReportAggregatesOnly();
BENCHMARK(shapeWithStringCache)->Unit(benchmark::kMillisecond)->Repetitions(9)->ReportAggregatesOnly();
BENCHMARK(layOut)->Unit(benchmark::kMillisecond)->Repetitions(9)->ReportAggregatesOnly();
BENCHMARK(layOutWithItems)->Unit(benchmark::kMillisecond)->Repetitions(9)->ReportAggregatesOnly();

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    describeAnnotations();
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
