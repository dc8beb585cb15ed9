#include "math/ktPointArrayMapping_p.h"

#include <cstring>
#include <utility>

namespace kt::impl {

namespace {

using Wm4::Matrix3;
using Wm4::Vector3;

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
            storeBlocks(block[index], target + index * sLaneWidth);
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

    [[gnu::always_inline]] static inline void storeBlocks(const Vector& blocks, Real* target) {
        if constexpr (Lanes == 1) {
            std::memcpy(target, &blocks, sizeof(Lane));
        } else {
            constexpr auto indices = std::make_integer_sequence<int, sLaneWidth>();
            Lane lane;
            extract<0>(blocks, lane, indices);
            std::memcpy(target, &lane, sizeof(Lane));
            extract<sLaneWidth>(blocks, lane, indices);
            std::memcpy(target + sBlockDistance, &lane, sizeof(Lane));
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

template <int Lanes, typename Real, typename Step>
[[gnu::always_inline]] inline void mapPacks(const Step& step, std::size_t count, const Vector3<Real>* in,
                                            Vector3<Real>* out) {
    static_assert(sizeof(Vector3<Real>) == 3 * sizeof(Real));
    using Pack = PointPack<Real, Lanes>;
    constexpr auto width = static_cast<std::size_t>(Pack::sWidth);
    std::size_t index = 0;
    for (; index + width <= count; index += width) {
        typename Pack::Vector x;
        typename Pack::Vector y;
        typename Pack::Vector z;
        Pack::load(&in[index].x, x, y, z);
        step(x, y, z);
        Pack::store(x, y, z, &out[index].x);
    }
    for (; index < count; ++index) {
        Vector3<Real> point = in[index];
        step(point.x, point.y, point.z);
        out[index] = point;
    }
}

template <typename Real, typename Step>
void mapBaseline(const Step& step, std::size_t count, const Vector3<Real>* in, Vector3<Real>* out) {
    mapPacks<1>(step, count, in, out);
}

#if defined(__x86_64__)
template <typename Real, typename Step>
[[gnu::target("avx2")]] void mapAvx2(const Step& step, std::size_t count, const Vector3<Real>* in, Vector3<Real>* out) {
    mapPacks<2>(step, count, in, out);
}
#endif

/// Takes the widest vectors that the processor has. Results do not depend on the width: the operations and their order
/// are the same, and no instruction set is enabled that fuses them.
template <typename Real, typename Step>
void mapPoints(const Step& step, std::size_t count, const Vector3<Real>* in, Vector3<Real>* out) {
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx2") != 0) {
        mapAvx2(step, count, in, out);
        return;
    }
#endif
    mapBaseline(step, count, in, out);
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
