#include "math/ktPointArrayMapping_p.h"

#include <cstdint>
#include <cstring>
#include <utility>

namespace kt::impl {

namespace {

using Wm4::Matrix3;
using Wm4::Vector3;

/// Results of this size and above are written past the caches: they would not stay there, and fetching lines only to
/// overwrite them costs a third of the traffic.
constexpr std::size_t sStreamedSize = 8U << 20U;

/// How far ahead of the reads streamed mappings ask for their input, in bytes.
constexpr std::size_t sPrefetchDistance = 1024;

VectorLevel sWidestVectors = VectorLevel::Avx512;

/// Stores a vector; a streamed one goes past the caches and needs a target aligned to its size.
template <bool IsStreamed, typename Vector, typename Real>
[[gnu::always_inline]] inline void storeVector(const Vector& vector, Real* target) {
#if defined(__x86_64__)
    if constexpr (IsStreamed) {
        Vector& destination = *reinterpret_cast<Vector*>(target);
#if defined(__clang__)
        __builtin_nontemporal_store(vector, &destination);
#else
        // GCC has builtins for single widths only, which cannot be named outside functions for their processor.
        asm volatile("vmovntps %1, %0" : "=m"(destination) : "v"(vector));
#endif
        return;
    }
#endif
    std::memcpy(target, &vector, sizeof(Vector));
}

/// Loads and stores the coordinates of several points: three vectors, one for x, y and z each. A vector consists of
/// `Lanes` lanes of 16 bytes; a lane takes three consecutive blocks of 16 bytes of the array, so that sorting
/// x y z x y z ... into vectors takes only shuffles within lanes, the cheap ones. All operations are inlined into a
/// function for one kind of processor, and vectors are passed by reference only, because how they are passed by value
/// depends on the processor.
template <typename Real, int Lanes>
class PointPack {
public:
    static constexpr int sLaneWidth = 16 / static_cast<int>(sizeof(Real));
    static constexpr int sWidth = Lanes * sLaneWidth;
    static constexpr std::size_t sAlignment = 16;
    typedef Real Vector __attribute__((vector_size(16 * Lanes)));  // NOLINT(modernize-use-using)

    [[gnu::always_inline]] static inline void load(const Real* source, Vector& x, Vector& y, Vector& z) {
        Vector block[3];
        for (int index = 0; index < 3; ++index) {
            loadBlocks(source + index * sLaneWidth, block[index]);
        }
        if constexpr (sLaneWidth == 4) {  // x0 y0 z0 x1 | y1 z1 x2 y2 | z2 x3 y3 z3
            Vector x2y2x3y3;
            Vector y0z0y1z1;
            shuffle<2, 3, 5, 6>(block[1], block[2], x2y2x3y3);
            shuffle<1, 2, 4, 5>(block[0], block[1], y0z0y1z1);
            shuffle<0, 3, 4, 6>(block[0], x2y2x3y3, x);
            shuffle<0, 2, 5, 7>(y0z0y1z1, x2y2x3y3, y);
            shuffle<1, 3, 4, 7>(y0z0y1z1, block[2], z);
        } else {  // x0 y0 | z0 x1 | y1 z1
            shuffle<0, 3>(block[0], block[1], x);
            shuffle<1, 2>(block[0], block[2], y);
            shuffle<0, 3>(block[1], block[2], z);
        }
    }

    template <bool IsStreamed>
    [[gnu::always_inline]] static inline void store(const Vector& x, const Vector& y, const Vector& z, Real* target) {
        Vector block[3];
        if constexpr (sLaneWidth == 4) {
            Vector x0x2y0y2;
            Vector y1y3z1z3;
            Vector z0z2x1x3;
            shuffle<0, 2, 4, 6>(x, y, x0x2y0y2);
            shuffle<1, 3, 5, 7>(y, z, y1y3z1z3);
            shuffle<0, 2, 5, 7>(z, x, z0z2x1x3);
            shuffle<0, 2, 4, 6>(x0x2y0y2, z0z2x1x3, block[0]);
            shuffle<0, 2, 5, 7>(y1y3z1z3, x0x2y0y2, block[1]);
            shuffle<1, 3, 5, 7>(z0z2x1x3, y1y3z1z3, block[2]);
        } else {
            shuffle<0, 2>(x, y, block[0]);
            shuffle<0, 3>(z, x, block[1]);
            shuffle<1, 3>(y, z, block[2]);
        }
        for (int index = 0; index < 3; ++index) {
            storeBlocks<IsStreamed>(block[index], target + index * sLaneWidth);
        }
    }

private:
    typedef Real Lane __attribute__((vector_size(16)));  // NOLINT(modernize-use-using)
    static constexpr int sBlockDistance = 3 * sLaneWidth;

    [[gnu::always_inline]] static inline void loadBlocks(const Real* source, Vector& blocks) {
        Lane first;
        std::memcpy(&first, source, sizeof(Lane));
        if constexpr (Lanes == 1) {
            blocks = first;
        } else {
            Lane second;
            std::memcpy(&second, source + sBlockDistance, sizeof(Lane));
            join(first, second, blocks, std::make_integer_sequence<int, sWidth>());
        }
    }

    template <bool IsStreamed>
    [[gnu::always_inline]] static inline void storeBlocks(const Vector& blocks, Real* target) {
        if constexpr (Lanes == 1) {
            storeVector<IsStreamed>(blocks, target);
        } else {
            constexpr auto indices = std::make_integer_sequence<int, sLaneWidth>();
            Lane lane;
            extract<0>(blocks, lane, indices);
            storeVector<IsStreamed>(lane, target);
            extract<sLaneWidth>(blocks, lane, indices);
            storeVector<IsStreamed>(lane, target + sBlockDistance);
        }
    }

    template <int... Index>
    [[gnu::always_inline]] static inline void join(const Lane& first, const Lane& second, Vector& joined,
                                                   std::integer_sequence<int, Index...> /*indices*/) {
        joined = __builtin_shufflevector(first, second, Index...);
    }

    template <int Offset, int... Index>
    [[gnu::always_inline]] static inline void extract(const Vector& blocks, Lane& lane,
                                                      std::integer_sequence<int, Index...> /*indices*/) {
        lane = __builtin_shufflevector(blocks, blocks, (Offset + Index)...);
    }

    /// Picks elements within each lane: an entry below the lane's width is an element of a, the others are of b.
    template <int... Pattern>
    [[gnu::always_inline]] static inline void shuffle(const Vector& a, const Vector& b, Vector& result) {
        shuffleElements<Pattern...>(a, b, result, std::make_integer_sequence<int, sWidth>());
    }

    template <int... Pattern, int... Index>
    [[gnu::always_inline]] static inline void shuffleElements(const Vector& a, const Vector& b, Vector& result,
                                                              std::integer_sequence<int, Index...> /*indices*/) {
        constexpr int pattern[] = {Pattern...};
        result = __builtin_shufflevector(a, b, findElement(Index, pattern[Index % sLaneWidth])...);
    }

    /// The index of a pattern's entry for the given element, among the elements of both operands.
    static constexpr int findElement(int element, int entry) {
        const int laneBegin = element / sLaneWidth * sLaneWidth;
        return laneBegin + (entry < sLaneWidth ? entry : sWidth + entry - sLaneWidth);
    }
};

/// The same for vectors of 64 bytes, whose processors pick elements from anywhere in two operands at once.
template <typename Real>
class WidePointPack {
public:
    static constexpr int sWidth = 64 / static_cast<int>(sizeof(Real));
    static constexpr std::size_t sAlignment = 64;
    typedef Real Vector __attribute__((vector_size(64)));  // NOLINT(modernize-use-using)

    [[gnu::always_inline]] static inline void load(const Real* source, Vector& x, Vector& y, Vector& z) {
        Vector block[3];
        std::memcpy(block, source, sizeof(block));
        gather<0>(block, x, Indices());
        gather<1>(block, y, Indices());
        gather<2>(block, z, Indices());
    }

    template <bool IsStreamed>
    [[gnu::always_inline]] static inline void store(const Vector& x, const Vector& y, const Vector& z, Real* target) {
        Vector block[3];
        spread<0>(x, y, z, block[0], Indices());
        spread<1>(x, y, z, block[1], Indices());
        spread<2>(x, y, z, block[2], Indices());
        for (int index = 0; index < 3; ++index) {
            storeVector<IsStreamed>(block[index], target + index * sWidth);
        }
    }

private:
    using Indices = std::make_integer_sequence<int, sWidth>;

    /// One coordinate of all points: what the first two blocks hold of it, then the rest from the third.
    template <int Coordinate, int... Index>
    [[gnu::always_inline]] static inline void gather(const Vector (&block)[3], Vector& result,
                                                     std::integer_sequence<int, Index...> /*indices*/) {
        const Vector begin = __builtin_shufflevector(
            block[0], block[1], (3 * Index + Coordinate < 2 * sWidth ? 3 * Index + Coordinate : 0)...);
        result = __builtin_shufflevector(
            begin, block[2], (3 * Index + Coordinate < 2 * sWidth ? Index : 3 * Index + Coordinate - sWidth)...);
    }

    /// One block of the array: its x and y, then its z between them.
    template <int Block, int... Index>
    [[gnu::always_inline]] static inline void spread(const Vector& x, const Vector& y, const Vector& z, Vector& result,
                                                     std::integer_sequence<int, Index...> /*indices*/) {
        const Vector xy = __builtin_shufflevector(x, y, findInXY(Block * sWidth + Index)...);
        result = __builtin_shufflevector(
            xy, z, ((Block * sWidth + Index) % 3 == 2 ? sWidth + (Block * sWidth + Index) / 3 : Index)...);
    }

    /// Where a number of the array comes from among x and y; anywhere when it is a z.
    static constexpr int findInXY(int number) {
        const int point = number / 3;
        return number % 3 == 1 ? sWidth + point : point;
    }
};

/// Coordinates x, y and z, each one number or a vector of them, mapped in place by a matrix.
template <typename Real, typename Value>
[[gnu::always_inline]] inline void multiply(const Matrix3<Real>& matrix, Value& x, Value& y, Value& z) {
    const Value mappedX = matrix(0, 0) * x + matrix(0, 1) * y + matrix(0, 2) * z;
    const Value mappedY = matrix(1, 0) * x + matrix(1, 1) * y + matrix(1, 2) * z;
    const Value mappedZ = matrix(2, 0) * x + matrix(2, 1) * y + matrix(2, 2) * z;
    x = mappedX;
    y = mappedY;
    z = mappedZ;
}

template <typename Real, typename Value>
[[gnu::always_inline]] inline void scale(const Vector3<Real>& factor, Value& x, Value& y, Value& z) {
    x = factor.x * x;
    y = factor.y * y;
    z = factor.z * z;
}

/// Leaves points as they are.
struct CopyStep {
    template <typename Value>
    [[gnu::always_inline]] inline void operator()(Value& /*x*/, Value& /*y*/, Value& /*z*/) const {}
};

template <typename Real, bool IsScaled, bool IsTranslated>
struct ForwardStep {
    Matrix3<Real> mMatrix;
    Vector3<Real> mScale;
    Vector3<Real> mTranslate;

    template <typename Value>
    [[gnu::always_inline]] inline void operator()(Value& x, Value& y, Value& z) const {
        if constexpr (IsScaled) {
            scale(mScale, x, y, z);
        }
        multiply(mMatrix, x, y, z);
        if constexpr (IsTranslated) {
            x = x + mTranslate.x;
            y = y + mTranslate.y;
            z = z + mTranslate.z;
        }
    }
};

template <typename Real, bool IsScaled>
struct BackwardStep {
    Vector3<Real> mTranslate;
    Matrix3<Real> mMatrix;
    Vector3<Real> mFactor;

    template <typename Value>
    [[gnu::always_inline]] inline void operator()(Value& x, Value& y, Value& z) const {
        x = x - mTranslate.x;
        y = y - mTranslate.y;
        z = z - mTranslate.z;
        multiply(mMatrix, x, y, z);
        if constexpr (IsScaled) {
            scale(mFactor, x, y, z);
        }
    }
};

template <typename Real, typename Step>
[[gnu::always_inline]] inline void mapPoint(const Step& step, const Vector3<Real>& in, Vector3<Real>& out) {
    Vector3<Real> point = in;
    step(point.x, point.y, point.z);
    out = point;
}

template <typename Pack, bool IsStreamed, typename Real, typename Step>
[[gnu::always_inline]] inline void mapPacks(const Step& commonStep, std::size_t count, const Vector3<Real>* in,
                                            Vector3<Real>* out) {
    static_assert(sizeof(Vector3<Real>) == 3 * sizeof(Real));
    constexpr auto width = static_cast<std::size_t>(Pack::sWidth);
    const Step step = commonStep;  // A copy of its own cannot be changed by the stores, so it stays in registers.
    std::size_t index = 0;
    if constexpr (IsStreamed) {
        for (; index < count && reinterpret_cast<std::uintptr_t>(&out[index]) % Pack::sAlignment != 0; ++index) {
            mapPoint(step, in[index], out[index]);
        }
    }
    for (; index + width <= count; index += width) {
        if constexpr (IsStreamed) {
            const auto* ahead = reinterpret_cast<const char*>(&in[index]) + sPrefetchDistance;
            for (std::size_t offset = 0; offset < sizeof(Vector3<Real>) * width; offset += 64) {
                __builtin_prefetch(ahead + offset, 0, 0);
            }
        }
        typename Pack::Vector x;
        typename Pack::Vector y;
        typename Pack::Vector z;
        Pack::load(&in[index].x, x, y, z);
        step(x, y, z);
        Pack::template store<IsStreamed>(x, y, z, &out[index].x);
    }
    for (; index < count; ++index) {
        mapPoint(step, in[index], out[index]);
    }
}

#if defined(__x86_64__)
template <bool IsStreamed, typename Real, typename Step>
[[gnu::target("avx512f")]] void mapAvx512(const Step& step, std::size_t count, const Vector3<Real>* in,
                                          Vector3<Real>* out) {
    mapPacks<WidePointPack<Real>, IsStreamed>(step, count, in, out);
}

template <bool IsStreamed, typename Real, typename Step>
[[gnu::target("avx2")]] void mapAvx2(const Step& step, std::size_t count, const Vector3<Real>* in, Vector3<Real>* out) {
    mapPacks<PointPack<Real, 2>, IsStreamed>(step, count, in, out);
}

/// Maps with the widest vectors that the processor has and the limit allows; false when those are the ones of every
/// processor.
template <bool IsStreamed, typename Real, typename Step>
bool mapWide(const Step& step, std::size_t count, const Vector3<Real>* in, Vector3<Real>* out) {
    if (sWidestVectors >= VectorLevel::Avx512 && __builtin_cpu_supports("avx512f") != 0) {
        mapAvx512<IsStreamed>(step, count, in, out);
    } else if (sWidestVectors >= VectorLevel::Avx2 && __builtin_cpu_supports("avx2") != 0) {
        mapAvx2<IsStreamed>(step, count, in, out);
    } else {
        return false;
    }
    if constexpr (IsStreamed) {
        __builtin_ia32_sfence();  // Streamed stores become visible to other threads like ordinary ones.
    }
    return true;
}
#endif

template <typename Real>
bool isStreamed(std::size_t count, const Vector3<Real>* in, const Vector3<Real>* out) {
    return in != out && count >= sStreamedSize / sizeof(*out);
}

/// Results do not depend on the processor: the operations and their order are the same for every width of vector, and
/// no instruction set is enabled that fuses them.
template <typename Real, typename Step>
void mapPoints(const Step& step, std::size_t count, const Vector3<Real>* in, Vector3<Real>* out) {
#if defined(__x86_64__)
    if (isStreamed(count, in, out) ? mapWide<true>(step, count, in, out) : mapWide<false>(step, count, in, out)) {
        return;
    }
#endif
    mapPacks<PointPack<Real, 1>, false>(step, count, in, out);
}

template <typename Real>
void copy(std::size_t count, const Vector3<Real>* in, Vector3<Real>* out) {
#if defined(__x86_64__)
    // Faster than the C library, whose large copies do not ask for their input ahead.
    if (isStreamed(count, in, out) && mapWide<true>(CopyStep(), count, in, out)) {
        return;
    }
#endif
    if (in != out) {
        std::memmove(out, in, count * sizeof(*in));
    }
}

template <typename Real>
void mapForward(const ForwardMap<Real>& map, std::size_t count, const Vector3<Real>* in, Vector3<Real>* out) {
    const Vector3<Real> scale = map.scale != nullptr ? *map.scale : Vector3<Real>::ONE;
    const Vector3<Real> translate = map.translate != nullptr ? *map.translate : Vector3<Real>::ZERO;
    if (map.scale != nullptr && map.translate != nullptr) {
        mapPoints(ForwardStep<Real, true, true>{map.matrix, scale, translate}, count, in, out);
    } else if (map.scale != nullptr) {
        mapPoints(ForwardStep<Real, true, false>{map.matrix, scale, translate}, count, in, out);
    } else if (map.translate != nullptr) {
        mapPoints(ForwardStep<Real, false, true>{map.matrix, scale, translate}, count, in, out);
    } else {
        mapPoints(ForwardStep<Real, false, false>{map.matrix, scale, translate}, count, in, out);
    }
}

template <typename Real>
void mapBackward(const BackwardMap<Real>& map, std::size_t count, const Vector3<Real>* in, Vector3<Real>* out) {
    if (map.factor != nullptr) {
        mapPoints(BackwardStep<Real, true>{map.translate, map.matrix, *map.factor}, count, in, out);
    } else {
        mapPoints(BackwardStep<Real, false>{map.translate, map.matrix, Vector3<Real>::ONE}, count, in, out);
    }
}

}  // namespace

void limitVectors(VectorLevel widest) { sWidestVectors = widest; }

void copyPoints(std::size_t count, const Vector3<float>* in, Vector3<float>* out) { copy(count, in, out); }

void copyPoints(std::size_t count, const Vector3<double>* in, Vector3<double>* out) { copy(count, in, out); }

void mapPointsForward(const ForwardMap<float>& map, std::size_t count, const Vector3<float>* in, Vector3<float>* out) {
    mapForward(map, count, in, out);
}

void mapPointsForward(const ForwardMap<double>& map, std::size_t count, const Vector3<double>* in,
                      Vector3<double>* out) {
    mapForward(map, count, in, out);
}

void mapPointsBackward(const BackwardMap<float>& map, std::size_t count, const Vector3<float>* in,
                       Vector3<float>* out) {
    mapBackward(map, count, in, out);
}

void mapPointsBackward(const BackwardMap<double>& map, std::size_t count, const Vector3<double>* in,
                       Vector3<double>* out) {
    mapBackward(map, count, in, out);
}

}  // namespace kt::impl
