/// From the bytes of a variant document to the bytes of its drawing, measured against graphics libraries that draw the
/// same texts, frames and leaders. The libraries get the layout for nothing: positions, frames and leaders come from
/// the migrated view, in their own types; once with and once without measuring each
/// text, which a layout of their own could not do without. All take turns in one process, with fonts and caches warm;
/// processor time counts, and of each the median.
///
///     EndToEndBenchmark [DOCUMENT...]
///     EndToEndBenchmark --chain RUNS [DOCUMENT]
///
/// Without documents it makes some of 100, 1,000 and 10,000 annotations, callouts first, then tables. Of documents with
/// several views the libraries draw the last one only, so give such with one. --chain runs the chain alone, so many
/// times, for a profiler.

#include "benchmarks/end-to-end/FlatDrawing.h"
#include "benchmarks/end-to-end/Painter.h"
#include "benchmarks/end-to-end/SampleDocument.h"
#include "legacy/variant/ktVariantDocumentReader.h"
#include "library/ktAnnotationLegacyLibrary.h"
#include "migration/ktAnnotationMigration.h"
#include "platform/annotation/ktCadViewSvgWriter.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <functional>
#include <iterator>
#include <span>
#include <string>
#include <vector>

namespace {

using ktBenchmark::Painter;
using ktBenchmark::SampleContent;
using ktBenchmark::TextWork;

constexpr float sHeadSize = 3.0F;

/// The library's own way, as an application with many documents goes it.
class Chain {
public:
    /// The last view of the document, migrated.
    kt::ktPointer<kt::ktCadAnnotationView> migrate(const std::string& document) {
        kt::ktPointer<kt::ktCadAnnotationView> migrated;
        run(document, [&migrated](const kt::ktPointer<kt::ktCadAnnotationView>& view) { migrated = view; });
        if (migrated == nullptr || migrated->mAnnotations.empty()) {
            fail("the document ends without a view that has annotations");
        }
        return migrated;
    }

    const std::string& draw(const std::string& document) {
        run(document, [this](const kt::ktPointer<kt::ktCadAnnotationView>& view) { mWriter.write(*view, mFile); });
        return mFile;
    }

private:
    template <typename Finish>
    void run(const std::string& document, Finish finish) {
        using Outcome = ktLegacy::ktVariantDocumentReader::Outcome;
        kt::ktJsonError error;
        if (mReader.read(std::as_bytes(std::span(document)), mViews, error) != Outcome::Read) {
            fail("the document cannot be read");
        }
        for (const auto& read : mViews) {
            kt::ktPointer<kt::ktCadAnnotationView> migrated;
            if (!mMigration.migrateAnnotationView(read.mView, migrated)) {
                fail("the view cannot be migrated");
            }
            finish(migrated);
            if (!read.mFindings.empty() || !mWriter.getWarnings().empty()) {
                fail("the document is not all well");
            }
        }
        mViews.clear();
    }

    [[noreturn]] static void fail(const char* reason) {
        std::fprintf(stderr, "%s\n", reason);
        std::exit(1);
    }

    ktLegacy::ktVariantDocumentReader mReader;
    ktLegacy::ktAnnotationMigration mMigration{0, nullptr, nullptr, sHeadSize};
    kt::ktCadViewSvgWriter mWriter;
    std::vector<ktLegacy::ktVariantDocumentReader::View> mViews;
    std::string mFile;
};

double getProcessorTime() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// One of those that are compared.
struct Contestant {
    const char* mName;
    std::function<std::size_t()> mDraw;  ///< gives the number of bytes
    std::vector<double> mTimes{};
    std::size_t mBytes = 0;

    void takeTurn() {
        const double begin = getProcessorTime();
        mBytes = mDraw();
        mTimes.push_back(getProcessorTime() - begin);
    }
    double getMedian() {
        const auto middle = mTimes.begin() + std::ssize(mTimes) / 2;
        std::nth_element(mTimes.begin(), middle, mTimes.end());
        return *middle;
    }
};

std::string readFile(const char* path) {
    std::ifstream stream(path, std::ios::binary);
    if (!stream) {
        std::fprintf(stderr, "%s cannot be read\n", path);
        std::exit(1);
    }
    return {std::istreambuf_iterator<char>(stream), {}};
}

void compare(Chain& chain, const std::string& document) {
    const kt::ktPointer<kt::ktCadAnnotationView> view = chain.migrate(document);
    const std::size_t annotationCount = view->mAnnotations.size();
    const ktBenchmark::FlatDrawing drawing = ktBenchmark::flatten(*view);
    // The same work for each size, with three rounds at least.
    constexpr std::size_t annotationsInAll = 10'000;
    const std::size_t rounds = std::clamp<std::size_t>(annotationsInAll / annotationCount, 3, 51);
    std::vector<Contestant> contestants{{"JSON to SVG", [&] { return chain.draw(document).size(); }}};
    std::vector<std::unique_ptr<Painter>> painters;
    const auto addPainter = [&](const char* name, std::unique_ptr<Painter> painter) {
        contestants.push_back({name, [raw = painter.get()] { return raw->paint().size(); }});
        painters.push_back(std::move(painter));
    };
#ifdef KT_BENCHMARK_HAS_QT
    addPainter("Qt, drawing alone", ktBenchmark::createQtPainter(drawing, TextWork::Draw));
    addPainter("Qt, texts measured", ktBenchmark::createQtPainter(drawing, TextWork::Measure));
#endif
#ifdef KT_BENCHMARK_HAS_CAIRO
    addPainter("Cairo, drawing alone", ktBenchmark::createCairoPainter(drawing, TextWork::Draw));
    addPainter("Cairo, texts measured", ktBenchmark::createCairoPainter(drawing, TextWork::Measure));
#endif
    for (Contestant& contestant : contestants) {
        contestant.mDraw();
    }
    for (std::size_t round = 0; round < rounds; ++round) {
        for (Contestant& contestant : contestants) {
            contestant.takeTurn();
        }
    }
    std::printf("%zu annotations (%zu texts, %zu outlines, %zu lines), %zu bytes of JSON, %zu rounds\n",
                annotationCount, drawing.mTexts.size(), drawing.mOutlines.size(), drawing.mLines.size(),
                document.size(), rounds);
    const double own = contestants.front().getMedian();
    for (Contestant& contestant : contestants) {
        std::printf("  %-21s %9.3f ms  %8.2f us per annotation  ratio %7.2f  %9zu bytes of SVG\n", contestant.mName,
                    contestant.getMedian() * 1e3, contestant.getMedian() * 1e6 / static_cast<double>(annotationCount),
                    contestant.getMedian() / own, contestant.mBytes);
    }
}

void profileChain(Chain& chain, const std::string& document, int runs) {
    const std::size_t annotationCount = chain.migrate(document)->mAnnotations.size();
    const double begin = getProcessorTime();
    for (int run = 0; run < runs; ++run) {
        chain.draw(document);
    }
    std::printf("%.2f us per annotation\n",
                (getProcessorTime() - begin) * 1e6 / static_cast<double>(annotationCount) / runs);
}

}  // namespace

int main(int argc, char** argv) {
    kt::initializeKtAnnotationLegacyLibrary();
    {
        Chain chain;
        if (argc > 2 && std::string(argv[1]) == "--chain") {
            profileChain(chain, argc > 3 ? readFile(argv[3]) : makeSampleDocument(SampleContent::Callouts, 1000, 1),
                         std::atoi(argv[2]));
        } else {
#ifdef KT_BENCHMARK_HAS_QT
            ktBenchmark::startQt(argc, argv);
#endif
            if (argc > 1) {
                std::for_each(argv + 1, argv + argc, [&](const char* path) { compare(chain, readFile(path)); });
            } else {
                for (const SampleContent content : {SampleContent::Callouts, SampleContent::Tables}) {
                    for (const int annotationCount : {100, 1000, 10'000}) {
                        compare(chain, ktBenchmark::makeSampleDocument(content, annotationCount, 1));
                    }
                }
            }
        }
    }
    kt::terminateKtAnnotationLegacyLibrary();
}
