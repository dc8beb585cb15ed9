/// Loading of views from both stored forms, measured against peers on the same bytes:
///
///   binary  the stream's loader to a plain loader into standard containers, and to a copy of the bytes
///   JSON    text to model to the parser's own document tree; and the two halves of the way by variants of the whole
///           document, text to variants and variants to model
///
/// A measurement loads as many documents of one size as hold 100,000 annotations and keeps them all, so that the sizes
/// differ in nothing but the length of the document. Cold: each measurement is the first of a fresh process. Warm:
/// the process and its allocators have loaded the documents before. The peers take turns; the figures are medians of
/// processor time, page faults included.
///
///   LoadingBenchmark [--million] [--repetitions=N]

#include "benchmarks/loading/PlainLoader.h"
#include "benchmarks/loading/SampleDocuments.h"
#include "legacy/ktAnnotationView.h"
#include "legacy/variant/ktVariantDocumentReader.h"
#include "library/ktAnnotationLegacyLibrary.h"
#include "platform/system/json/ktVariantJson.h"
#include "platform/system/memory/ktLimits.h"
#include "platform/system/stream/ktBaseStream.h"

#include <malloc.h>
#include <simdjson.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace {

using ktLegacy::ktAnnotationView;
using ViewPointer = kt::ktPointer<ktAnnotationView>;

constexpr int sAnnotationsPerMeasurement = 100'000;
constexpr kt::ktStreamVersion sVersion{6, 27};

[[noreturn]] void fail(const char* what) {
    std::fprintf(stderr, "LoadingBenchmark: %s\n", what);
    std::_Exit(1);
}

/// Runs work in a process of its own.
template <typename Work>
void runInProcess(Work work) {
    const pid_t process = ::fork();
    if (process == 0) {
        work();
        std::_Exit(0);
    }
    int status = 0;
    if (process < 0 || ::waitpid(process, &status, 0) != process || status != 0) {
        fail("a process ended early");
    }
}

/// Bytes that another process has made, so that they leave no trace in the allocators of this one.
class SharedBytes {
public:
    template <typename Make>
    explicit SharedBytes(Make make) {
        const int file = ::memfd_create("document", 0);
        runInProcess([&] {
            const std::string bytes = make();
            for (std::size_t written = 0; written < bytes.size();) {
                const ssize_t count = ::write(file, bytes.data() + written, bytes.size() - written);
                if (count <= 0) {
                    fail("a document cannot be stored");
                }
                written += static_cast<std::size_t>(count);
            }
        });
        mSize = static_cast<std::size_t>(::lseek(file, 0, SEEK_END));
        // The parser may read a little beyond the text.
        if (::ftruncate(file, static_cast<off_t>(mSize + simdjson::SIMDJSON_PADDING)) != 0) {
            fail("a document cannot be padded");
        }
        mBytes = ::mmap(nullptr, getMappedSize(), PROT_READ, MAP_SHARED, file, 0);
        ::close(file);
        if (mBytes == MAP_FAILED) {
            fail("a document cannot be mapped");
        }
    }
    SharedBytes(const SharedBytes&) = delete;
    SharedBytes& operator=(const SharedBytes&) = delete;
    ~SharedBytes() { ::munmap(mBytes, getMappedSize()); }

    std::span<const std::byte> get() const { return {static_cast<const std::byte*>(mBytes), mSize}; }

private:
    std::size_t getMappedSize() const { return mSize + simdjson::SIMDJSON_PADDING; }

    void* mBytes;
    std::size_t mSize;
};

/// Documents of one size in both forms.
class Documents {
public:
    explicit Documents(int size) : mSize(size) {
        for (int number = 0; number < std::max(1, sAnnotationsPerMeasurement / size); ++number) {
            mBinary.push_back(make(number, ktBenchmark::appendBinary));
            mJson.push_back(make(number, ktBenchmark::appendJson));
        }
    }

    int getSize() const { return mSize; }
    const std::vector<std::unique_ptr<SharedBytes>>& getBinary() const { return mBinary; }
    const std::vector<std::unique_ptr<SharedBytes>>& getJson() const { return mJson; }
    double getAnnotationCount() const { return static_cast<double>(mBinary.size()) * mSize; }

    /// Maps the pages of the documents into this process.
    void touch() const {
        unsigned int sum = 0;
        for (const auto* documents : {&mBinary, &mJson}) {
            for (const auto& document : *documents) {
                for (std::size_t offset = 0; offset < document->get().size(); offset += 4096) {
                    sum += static_cast<unsigned int>(document->get()[offset]);
                }
            }
        }
        volatile unsigned int result = sum;
        static_cast<void>(result);
    }

private:
    using Append = void (*)(const ktBenchmark::SampleView&, std::string&);

    std::unique_ptr<SharedBytes> make(int number, Append append) const {
        return std::make_unique<SharedBytes>([this, number, append] {
            std::string bytes;
            append(ktBenchmark::makeSampleView(number, mSize), bytes);
            return bytes;
        });
    }

    int mSize;
    std::vector<std::unique_ptr<SharedBytes>> mBinary;
    std::vector<std::unique_ptr<SharedBytes>> mJson;
};

/// One way to load the documents.
class Peer {
public:
    Peer() = default;
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;
    virtual ~Peer() = default;
    /// Makes what load() starts from; not measured.
    virtual void prepare(const Documents& /*documents*/) {}
    virtual void load(const Documents& documents) = 0;
    /// Annotations that were loaded, where the peer knows.
    virtual std::size_t count() const { return 0; }
    virtual void release() = 0;
};

class CopyPeer : public Peer {
public:
    void load(const Documents& documents) override {
        for (const auto& document : documents.getBinary()) {
            const std::span<const std::byte> bytes = document->get();
            // Not a vector: it would write the bytes twice.
            auto& copy = mCopies.emplace_back(std::make_unique_for_overwrite<std::byte[]>(bytes.size()));
            std::memcpy(copy.get(), bytes.data(), bytes.size());
        }
    }
    void release() override { mCopies.clear(); }

private:
    std::vector<std::unique_ptr<std::byte[]>> mCopies;
};

class PlainPeer : public Peer {
public:
    void load(const Documents& documents) override {
        for (const auto& document : documents.getBinary()) {
            mViews.push_back(std::make_unique<ktBenchmark::PlainView>());
            if (!ktBenchmark::loadPlainView(document->get(), *mViews.back())) {
                fail("the plain loader refuses a document");
            }
        }
    }
    std::size_t count() const override {
        std::size_t sum = 0;
        for (const auto& view : mViews) {
            sum += view->mAnnotations.size();
        }
        return sum;
    }
    void release() override { mViews.clear(); }

private:
    std::vector<std::unique_ptr<ktBenchmark::PlainView>> mViews;
};

/// A peer whose results are views.
class ViewPeer : public Peer {
public:
    std::size_t count() const override {
        std::size_t sum = 0;
        for (const ViewPointer& view : mViews) {
            sum += view->mAnnotations.size();
        }
        return sum;
    }
    void release() override { mViews.clear(); }

protected:
    void addView(const kt::ktVariant& document) {
        std::vector<std::string> errors;
        mViews.push_back(ktAnnotationView::FromVariantMap(*document.getMap(), errors));
        if (mViews.back() == nullptr || !errors.empty()) {
            fail("the variant loader refuses a document");
        }
    }

    std::vector<ViewPointer> mViews;
};

class BinaryPeer : public ViewPeer {
public:
    void load(const Documents& documents) override {
        for (const auto& document : documents.getBinary()) {
            kt::ktBaseStream stream(document->get(), sVersion);
            stream.setMemoryBudget(kt::getMemoryBudget(document->get().size()));
            ViewPointer view(new ktAnnotationView);
            view->Load(stream);
            if (stream.hasStreamError()) {
                fail("the stream's loader refuses a document");
            }
            mViews.push_back(std::move(view));
        }
    }
};

/// The parser's document tree; the parser keeps its memory from one document to the next where there is only one
/// document at a time.
class TreePeer : public Peer {
public:
    void load(const Documents& documents) override {
        mParsers.resize(documents.getJson().size());
        for (std::size_t index = 0; index < mParsers.size(); ++index) {
            const std::span<const std::byte> text = documents.getJson()[index]->get();
            simdjson::dom::element root;
            const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
            if (mParsers[index].parse(bytes, text.size(), false).get(root) != simdjson::SUCCESS) {
                fail("the parser refuses a document");
            }
        }
    }
    void release() override {}

private:
    std::vector<simdjson::dom::parser> mParsers;
};

/// JSON to variants.
class VariantPeer : public Peer {
public:
    void load(const Documents& documents) override {
        for (const auto& document : documents.getJson()) {
            kt::ktJsonError error;
            if (!mReader.parse(document->get(), mVariants.emplace_back(), error)) {
                fail("the reader refuses a document");
            }
        }
    }
    void release() override { mVariants.clear(); }

private:
    kt::ktJsonReader mReader;
    std::vector<kt::ktVariant> mVariants;
};

/// Variants to model.
class ModelPeer : public ViewPeer {
public:
    void prepare(const Documents& documents) override {
        if (mVariants.empty()) {
            kt::ktJsonReader reader;
            kt::ktJsonError error;
            for (const auto& document : documents.getJson()) {
                reader.parse(document->get(), mVariants.emplace_back(), error);
            }
        }
    }
    void load(const Documents& /*documents*/) override {
        for (const kt::ktVariant& variant : mVariants) {
            addView(variant);
        }
    }

private:
    std::vector<kt::ktVariant> mVariants;
};

/// JSON to model, as a caller does it who wants the views only.
class JsonPeer : public ViewPeer {
public:
    void load(const Documents& documents) override {
        for (const auto& document : documents.getJson()) {
            std::vector<ktLegacy::ktVariantDocumentReader::View> views;
            kt::ktJsonError error;
            mReader.read(document->get(), views, error);
            if (views.size() != 1 || views[0].mView == nullptr || !views[0].mFindings.empty()) {
                fail("the document reader refuses a document");
            }
            mViews.push_back(std::move(views[0].mView));
        }
    }

private:
    ktLegacy::ktVariantDocumentReader mReader;
};

struct PeerKind {
    const char* mName;
    std::unique_ptr<Peer> (*mMake)();
    std::size_t mReference;  ///< index of the peer that the ratio is formed with
};

template <typename Kind>
std::unique_ptr<Peer> makePeer() {
    return std::make_unique<Kind>();
}

enum PeerIndex : std::size_t { Copy, Plain, Binary, Tree, Variants, Model, Json, PeerCount };

constexpr std::array<PeerKind, PeerCount> sPeers{{
    {"copy of the bytes", makePeer<CopyPeer>, Plain},
    {"plain loader", makePeer<PlainPeer>, Plain},
    {"binary to model", makePeer<BinaryPeer>, Plain},
    {"parser's tree", makePeer<TreePeer>, Tree},
    {"JSON to variants", makePeer<VariantPeer>, Tree},
    {"variants to model", makePeer<ModelPeer>, Tree},
    {"JSON to model", makePeer<JsonPeer>, Tree},
}};

/// Figures of one measurement, per annotation.
struct Sample {
    double mLoadTime = 0.0;     ///< nanoseconds
    double mReleaseTime = 0.0;  ///< nanoseconds
    double mKept = 0.0;         ///< bytes
};

/// Bytes of memory of its own that the process holds, without mapped files.
std::int64_t getOwnMemory() {
    std::int64_t total = 0;
    std::int64_t resident = 0;
    std::int64_t shared = 0;
    std::ifstream("/proc/self/statm") >> total >> resident >> shared;
    return (resident - shared) * ::sysconf(_SC_PAGESIZE);
}

/// Nanoseconds that the process has run.
std::int64_t getProcessorTime() {
    timespec time{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

Sample measure(Peer& peer, const Documents& documents) {
    const auto perAnnotation = [&documents](auto value) {
        return static_cast<double>(value) / documents.getAnnotationCount();
    };
    peer.prepare(documents);
    const std::int64_t memory = getOwnMemory();
    const std::int64_t begin = getProcessorTime();
    peer.load(documents);
    const std::int64_t loaded = getProcessorTime();
    Sample sample;
    sample.mKept = perAnnotation(getOwnMemory() - memory);
    const std::size_t count = peer.count();
    if (count != 0 && static_cast<double>(count) != documents.getAnnotationCount()) {
        fail("annotations are missing");
    }
    const std::int64_t counted = getProcessorTime();
    peer.release();
    sample.mReleaseTime = perAnnotation(getProcessorTime() - counted);
    sample.mLoadTime = perAnnotation(loaded - begin);
    return sample;
}

/// Samples of every peer, written by other processes.
class SampleTable {
public:
    explicit SampleTable(std::size_t repetitions) : mRepetitions(repetitions) {
        void* memory = ::mmap(nullptr, getSize(), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) {
            fail("no memory for the figures");
        }
        mSamples = static_cast<Sample*>(memory);
    }
    SampleTable(const SampleTable&) = delete;
    SampleTable& operator=(const SampleTable&) = delete;
    ~SampleTable() { ::munmap(mSamples, getSize()); }

    std::size_t getRepetitions() const { return mRepetitions; }
    Sample& at(std::size_t peer, std::size_t repetition) { return mSamples[peer * mRepetitions + repetition]; }

    double getMedian(std::size_t peer, double Sample::*figure) const {
        std::vector<double> figures;
        for (std::size_t repetition = 0; repetition < mRepetitions; ++repetition) {
            figures.push_back(mSamples[peer * mRepetitions + repetition].*figure);
        }
        std::sort(figures.begin(), figures.end());
        return figures[figures.size() / 2];
    }

private:
    std::size_t getSize() const { return PeerCount * mRepetitions * sizeof(Sample); }

    std::size_t mRepetitions;
    Sample* mSamples;
};

void measureCold(const Documents& documents, SampleTable& table) {
    for (std::size_t repetition = 0; repetition < table.getRepetitions(); ++repetition) {
        for (std::size_t index = 0; index < PeerCount; ++index) {
            runInProcess([&] {
                documents.touch();
                const std::unique_ptr<Peer> peer = sPeers[index].mMake();
                table.at(index, repetition) = measure(*peer, documents);
            });
        }
    }
}

void measureWarm(const Documents& documents, SampleTable& table) {
    runInProcess([&] {
        // The peers that use the heap keep its memory, too.
        ::mallopt(M_MMAP_MAX, 0);
        ::mallopt(M_TRIM_THRESHOLD, -1);
        documents.touch();
        std::vector<std::unique_ptr<Peer>> peers;
        for (const PeerKind& kind : sPeers) {
            peers.push_back(kind.mMake());
            measure(*peers.back(), documents);
        }
        for (std::size_t repetition = 0; repetition < table.getRepetitions(); ++repetition) {
            for (std::size_t index = 0; index < PeerCount; ++index) {
                table.at(index, repetition) = measure(*peers[index], documents);
            }
        }
    });
}

/// What is compared between the sizes.
using LoadTimes = std::map<int, std::array<double, PeerCount>>;

void measureSize(int size, std::size_t repetitions, LoadTimes& coldTimes, LoadTimes& warmTimes) {
    const Documents documents(size);
    SampleTable cold(repetitions);
    SampleTable warm(repetitions);
    measureCold(documents, cold);
    measureWarm(documents, warm);
    std::printf("\n%d annotations a document; binary %.0f, JSON %.0f bytes an annotation\n", size,
                static_cast<double>(documents.getBinary()[0]->get().size()) / size,
                static_cast<double>(documents.getJson()[0]->get().size()) / size);
    std::printf("%-20s %9s %7s %9s %9s %7s %9s %9s\n", "", "cold ns", "ratio", "freed ns", "warm ns", "ratio",
                "freed ns", "kept");
    for (std::size_t index = 0; index < PeerCount; ++index) {
        coldTimes[size][index] = cold.getMedian(index, &Sample::mLoadTime);
        warmTimes[size][index] = warm.getMedian(index, &Sample::mLoadTime);
        const std::size_t reference = sPeers[index].mReference;
        std::printf("%-20s %9.1f %7.2f %9.1f %9.1f %7.2f %9.1f %9.0f\n", sPeers[index].mName, coldTimes[size][index],
                    coldTimes[size][index] / cold.getMedian(reference, &Sample::mLoadTime),
                    cold.getMedian(index, &Sample::mReleaseTime), warmTimes[size][index],
                    warmTimes[size][index] / warm.getMedian(reference, &Sample::mLoadTime),
                    warm.getMedian(index, &Sample::mReleaseTime), cold.getMedian(index, &Sample::mKept));
    }
    std::fflush(stdout);
}

void printFlatness(const char* title, const LoadTimes& times) {
    std::printf("\n%-20s", title);
    for (const auto& entry : times) {
        std::printf(" %9d", entry.first);
    }
    std::printf(" %9s\n", "max/min");
    for (const std::size_t index : {Binary, Json}) {
        std::vector<double> figures;
        std::printf("%-20s", sPeers[index].mName);
        for (const auto& entry : times) {
            figures.push_back(entry.second[index]);
            std::printf(" %9.1f", figures.back());
        }
        const auto [least, most] = std::minmax_element(figures.begin(), figures.end());
        std::printf(" %9.2f\n", *most / *least);
    }
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<int> sizes{1'000, 10'000, 100'000};
    std::size_t repetitions = 11;
    for (int index = 1; index < argc; ++index) {
        const std::string_view argument = argv[index];
        constexpr std::string_view sRepetitions = "--repetitions=";
        if (argument == "--million") {
            sizes.push_back(1'000'000);
        } else if (argument.starts_with(sRepetitions)) {
            repetitions = std::max(1UL, std::strtoul(argv[index] + sRepetitions.size(), nullptr, 10));
        } else {
            std::fprintf(stderr, "usage: %s [--million] [--repetitions=N]\n", argv[0]);
            return 2;
        }
    }
    kt::initializeKtAnnotationLegacyLibrary();
    LoadTimes coldTimes;
    LoadTimes warmTimes;
    for (const int size : sizes) {
        measureSize(size, repetitions, coldTimes, warmTimes);
    }
    printFlatness("cold ns by size", coldTimes);
    printFlatness("warm ns by size", warmTimes);
    kt::terminateKtAnnotationLegacyLibrary();
    return 0;
}
