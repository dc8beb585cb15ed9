// Maps arrays of points with the generic transformation, with the same loop written with GLM, and copies them. All
// peers run in one process with their repetitions interleaved; the table at the end gives ratios of medians.

#include "math/ktGenericTransformation.h"

#include <benchmark/benchmark.h>
#include <glm/glm.hpp>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

namespace {

using Transformation = kt::ktGenericTransformation<float>;
using Point = Wm4::Vector3<float>;

enum class Shape : std::uint8_t { Identity, RS, General };

struct NamedShape {
    Shape shape;
    const char* name;
};

constexpr NamedShape sShapes[] = {{Shape::Identity, "identity"}, {Shape::RS, "RS"}, {Shape::General, "general"}};
constexpr int sCounts[] = {1'000, 1'000'000, 10'000'000};

// A turn about (1, 2, 2) / 3 by 90 degrees.
constexpr float sRotation[3][3] = {{1.0F / 9.0F, -4.0F / 9.0F, 8.0F / 9.0F},
                                   {8.0F / 9.0F, 4.0F / 9.0F, 1.0F / 9.0F},
                                   {-4.0F / 9.0F, 7.0F / 9.0F, 4.0F / 9.0F}};
constexpr float sScale[3] = {2.0F, 3.0F, 0.5F};
constexpr float sTranslate[3] = {10.0F, -20.0F, 30.0F};

/// Source and destination, allocated and touched once for each kind of point and each count.
template <typename Vector>
struct Arrays {
    std::vector<Vector> in;
    std::vector<Vector> out;

    static Arrays& get(int count) {
        static std::map<int, Arrays> sArrays;
        Arrays& arrays = sArrays[count];
        if (arrays.in.empty()) {
            arrays.out.resize(static_cast<std::size_t>(count));
            arrays.in.reserve(static_cast<std::size_t>(count));
            for (int index = 0; index < count; ++index) {
                const auto value = static_cast<float>(index % 1000);
                arrays.in.push_back(Vector(value, value + 0.5F, 1000.0F - value));
            }
        }
        return arrays;
    }
};

Transformation makeTransformation(Shape shape) {
    Transformation transformation;
    if (shape == Shape::Identity) {
        return transformation;
    }
    Wm4::Matrix3<float> matrix;
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            matrix[row][column] = sRotation[row][column] * (shape == Shape::General ? sScale[column] : 1.0F);
        }
    }
    if (shape == Shape::RS) {
        transformation.SetRotate(matrix);
        transformation.SetScale({sScale[0], sScale[1], sScale[2]});
    } else {
        transformation.SetMatrix(matrix);
    }
    transformation.SetTranslate({sTranslate[0], sTranslate[1], sTranslate[2]});
    return transformation;
}

void mapWithTransformation(benchmark::State& state, Shape shape, int count) {
    const Transformation transformation = makeTransformation(shape);
    auto& [in, out] = Arrays<Point>::get(count);
    for ([[maybe_unused]] auto iteration : state) {
        transformation.ApplyForward(count, in.data(), out.data(), true);
        benchmark::ClobberMemory();
    }
}

void mapWithGlm(benchmark::State& state, Shape shape, int count) {
    const Transformation transformation = makeTransformation(shape);
    glm::mat3 matrix;
    glm::vec3 scale;
    glm::vec3 translate;
    for (int row = 0; row < 3; ++row) {
        scale[row] = transformation.GetScale()[row];
        translate[row] = transformation.GetTranslate()[row];
        for (int column = 0; column < 3; ++column) {
            matrix[column][row] = transformation.GetMatrix()[row][column];
        }
    }
    auto& [in, out] = Arrays<glm::vec3>::get(count);
    const std::size_t size = in.size();
    for ([[maybe_unused]] auto iteration : state) {
        if (shape == Shape::RS) {
            for (std::size_t index = 0; index < size; ++index) {
                out[index] = matrix * (scale * in[index]) + translate;
            }
        } else {
            for (std::size_t index = 0; index < size; ++index) {
                out[index] = matrix * in[index] + translate;
            }
        }
        benchmark::ClobberMemory();
    }
}

void copyPoints(benchmark::State& state, int count) {
    auto& [in, out] = Arrays<Point>::get(count);
    for ([[maybe_unused]] auto iteration : state) {
        std::memcpy(out.data(), in.data(), in.size() * sizeof(Point));
        benchmark::ClobberMemory();
    }
}

std::string makeName(const char* peer, const char* shape, int count) {
    return std::string(peer) + "/" + shape + "/" + std::to_string(count);
}

/// Prints as usual and keeps the times of the repetitions.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration && !run.error_occurred) {
                mTimes[run.run_name.function_name].push_back(run.GetAdjustedCPUTime());
            }
        }
    }

    void Finalize() override {
        std::printf("\n%-10s %10s %14s %14s %14s\n", "shape", "points", "ns per point", "to GLM", "to memcpy");
        for (const int count : sCounts) {
            for (const NamedShape& entry : sShapes) {
                const double time = findMedian(makeName("kt", entry.name, count));
                std::printf("%-10s %10d %14.3f %14.2f %14.2f\n", entry.name, count, time / count,
                            time / findMedian(makeName("glm", entry.name, count)),
                            time / findMedian(makeName("memcpy", "", count)));
            }
        }
    }

private:
    double findMedian(const std::string& name) {
        std::vector<double>& times = mTimes[name];
        std::sort(times.begin(), times.end());
        return times.empty() ? 0.0 : times[times.size() / 2];
    }

    std::map<std::string, std::vector<double>> mTimes;
};

void registerBenchmarks() {
    for (const int count : sCounts) {
        benchmark::RegisterBenchmark(makeName("memcpy", "", count).c_str(), copyPoints, count);
        for (const NamedShape& entry : sShapes) {
            benchmark::RegisterBenchmark(makeName("kt", entry.name, count).c_str(), mapWithTransformation, entry.shape,
                                         count);
            benchmark::RegisterBenchmark(makeName("glm", entry.name, count).c_str(), mapWithGlm, entry.shape, count);
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    // Defaults first, so that the command line can replace them.
    std::string defaults[] = {"--benchmark_repetitions=15", "--benchmark_enable_random_interleaving=true",
                              "--benchmark_min_time=0.02", "--benchmark_report_aggregates_only=false"};
    std::vector<char*> arguments{argv[0]};
    for (std::string& argument : defaults) {
        arguments.push_back(argument.data());
    }
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) {
        return 1;
    }
    registerBenchmarks();
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
