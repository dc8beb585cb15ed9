// Legacy model to current model, and the share of each part of the conversion. All times are also given per annotation.

#include "legacy/ktAnnotationRaster.h"
#include "legacy/ktAnnotationText.h"
#include "legacy/ktAnnotationView.h"
#include "library/ktAnnotationLegacyLibrary.h"
#include "migration/ktAnnotationMigration.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

namespace {

using ktLegacy::ktAnnotationInterface;
using ktLegacy::ktAnnotationMigration;
using ktLegacy::ktAnnotationRaster;
using ktLegacy::ktAnnotationText;
using ktLegacy::ktAnnotationView;

constexpr float sHeadSize = 3.0F;

bool giveEmptyRaster(const std::string&, std::string&, void*) { return true; }

/// Frames and heads of all kinds, a leader each and a dimension for every fourth.
void decorate(ktAnnotationInterface& annotation, int index) {
    const auto place = static_cast<float>(index);
    annotation.SetName("annotation " + std::to_string(index));
    annotation.mPosition = {place, 0.5F * place, 0.0F};
    annotation.mColor = {255, 255, static_cast<unsigned char>(index)};
    annotation.mFrameShape = static_cast<ktAnnotationInterface::FrameShape>(index % 15);
    auto& leader = annotation.mLeaders.emplace_back(Wm4::Vector3<float>(place + 20.0F, 15.0F, 0.0F));
    leader.mHead = static_cast<ktAnnotationInterface::Leader::HeadType>(index % 7);
    if (index % 4 == 0) {
        auto& measure = annotation.mMeasureLeaders.emplace_back();
        measure.mPointA = {place, -10.0F, 0.0F};
        measure.mPointB = {place + 30.0F, -10.0F, 0.0F};
        measure.mOffsetVector = {0.0F, 8.0F, 0.0F};
    }
}

kt::ktPointer<ktAnnotationView> makeTextView(int count) {
    kt::ktPointer<ktAnnotationView> view(new ktAnnotationView);
    for (int index = 0; index < count; ++index) {
        kt::ktPointer<ktAnnotationText> text(new ktAnnotationText);
        decorate(*text, index);
        text->setText("Note " + std::to_string(index) + "\n" + std::to_string(index) + ".25 +0.1/-0.05");
        view->mAnnotations.emplace_back(text);
    }
    return view;
}

kt::ktPointer<ktAnnotationView> makeRasterView(int count) {
    kt::ktPointer<ktAnnotationView> view(new ktAnnotationView);
    for (int index = 0; index < count; ++index) {
        kt::ktPointer<ktAnnotationRaster> raster(new ktAnnotationRaster);
        decorate(*raster, index);
        view->mAnnotations.emplace_back(raster);
    }
    return view;
}

void setPerAnnotation(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.counters["per_annotation"] =
        benchmark::Counter(static_cast<double>(state.range(0)),
                           benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void migrateView(benchmark::State& state, const kt::ktPointer<ktAnnotationView>& view) {
    ktAnnotationMigration migration(0, giveEmptyRaster, nullptr, sHeadSize);
    for (auto _ : state) {
        kt::ktPointer<kt::ktCadAnnotationView> result;
        if (!migration.migrateAnnotationView(view, result)) {
            state.SkipWithError("the view was not migrated");
            break;
        }
        benchmark::DoNotOptimize(result.get());
    }
    setPerAnnotation(state);
}

/// The whole conversion of annotations with text.
void wholeView(benchmark::State& state) { migrateView(state, makeTextView(static_cast<int>(state.range(0)))); }

/// Everything but text: driver, frames and leaders around empty pictures.
void withoutText(benchmark::State& state) { migrateView(state, makeRasterView(static_cast<int>(state.range(0)))); }

/// One part of the conversion for every annotation of a view of texts.
template <typename Part>
void runPart(benchmark::State& state, Part convert) {
    const auto view = makeTextView(static_cast<int>(state.range(0)));
    ktAnnotationMigration migration(0, giveEmptyRaster, nullptr, sHeadSize);
    for (auto _ : state) {
        for (const auto& annotation : view->mAnnotations) {
            convert(migration, *annotation);
        }
    }
    setPerAnnotation(state);
}

void textAlone(benchmark::State& state) {
    runPart(state, [](ktAnnotationMigration& migration, const ktAnnotationInterface& annotation) {
        kt::svg::Node parent;
        migration.migrateTextAnnotation(static_cast<const ktAnnotationText*>(&annotation), parent, {0, 0, 0});
        benchmark::DoNotOptimize(parent.getChildren().data());
    });
}

void contentAndFrame(benchmark::State& state) {
    runPart(state, [](ktAnnotationMigration& migration, const ktAnnotationInterface& annotation) {
        kt::ktPointer<kt::ktCadAnnotation> created;
        kt::svg::BoundingBox box;
        migration.createAnnotationFrame(&annotation, created, box);
        benchmark::DoNotOptimize(created.get());
    });
}

void leadersAlone(benchmark::State& state) {
    runPart(state, [](ktAnnotationMigration& migration, const ktAnnotationInterface& annotation) {
        kt::ktCadAnnotation target;
        migration.createLeaders(annotation.mLeaders, target, annotation.mPosition, {});
        migration.createMeasureLeaders(annotation.mMeasureLeaders, target, annotation.mPosition, {});
        benchmark::DoNotOptimize(target.mSegments.data());
    });
}

BENCHMARK(wholeView)->Arg(100)->Arg(1000)->Arg(10000);
BENCHMARK(withoutText)->Arg(100)->Arg(1000)->Arg(10000);
BENCHMARK(contentAndFrame)->Arg(100)->Arg(1000)->Arg(10000);
BENCHMARK(textAlone)->Arg(100)->Arg(1000)->Arg(10000);
BENCHMARK(leadersAlone)->Arg(100)->Arg(1000)->Arg(10000);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    kt::initializeKtAnnotationLegacyLibrary();
    benchmark::RunSpecifiedBenchmarks();
    kt::terminateKtAnnotationLegacyLibrary();
}
