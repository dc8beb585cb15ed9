#pragma once

/// @file
/// Mapping of arrays of points, several points at a time where the processor can.

#include "platform/wm4/Wm4Vector3.h"

#include <cstddef>
#include <type_traits>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace kt::impl {

#if defined(__x86_64__)

/// What vectors save: benchmarks/RESULTS.md, point arrays.
///
/// Eight points of float or four of double as three vectors, one for each coordinate. Both halves of the vectors are
/// sorted at once, so that only shuffles within halves are needed, the cheap ones. Vectors go by reference only: how
/// they are passed by value depends on the processor.
struct FloatPack {
    static constexpr std::size_t sWidth = 8;
    using Vector = __m256;

    [[gnu::target("avx2"), gnu::always_inline]] static inline void load(const float* from, Vector& x, Vector& y,
                                                                        Vector& z) {
        const __m256 a = _mm256_loadu2_m128(from + 12, from);      // x0 y0 z0 x1
        const __m256 b = _mm256_loadu2_m128(from + 16, from + 4);  // y1 z1 x2 y2
        const __m256 c = _mm256_loadu2_m128(from + 20, from + 8);  // z2 x3 y3 z3
        const __m256 xy = _mm256_shuffle_ps(b, c, _MM_SHUFFLE(2, 1, 3, 2));
        const __m256 yz = _mm256_shuffle_ps(a, b, _MM_SHUFFLE(1, 0, 2, 1));
        x = _mm256_shuffle_ps(a, xy, _MM_SHUFFLE(2, 0, 3, 0));
        y = _mm256_shuffle_ps(yz, xy, _MM_SHUFFLE(3, 1, 2, 0));
        z = _mm256_shuffle_ps(yz, c, _MM_SHUFFLE(3, 0, 3, 1));
    }

    [[gnu::target("avx2"), gnu::always_inline]] static inline void store(const Vector& x, const Vector& y,
                                                                         const Vector& z, float* to) {
        const __m256 xy = _mm256_shuffle_ps(x, y, _MM_SHUFFLE(2, 0, 2, 0));
        const __m256 yz = _mm256_shuffle_ps(y, z, _MM_SHUFFLE(3, 1, 3, 1));
        const __m256 zx = _mm256_shuffle_ps(z, x, _MM_SHUFFLE(3, 1, 2, 0));
        _mm256_storeu2_m128(to + 12, to, _mm256_shuffle_ps(xy, zx, _MM_SHUFFLE(2, 0, 2, 0)));
        _mm256_storeu2_m128(to + 16, to + 4, _mm256_shuffle_ps(yz, xy, _MM_SHUFFLE(3, 1, 2, 0)));
        _mm256_storeu2_m128(to + 20, to + 8, _mm256_shuffle_ps(zx, yz, _MM_SHUFFLE(3, 1, 3, 1)));
    }
};

struct DoublePack {
    static constexpr std::size_t sWidth = 4;
    using Vector = __m256d;

    [[gnu::target("avx2"), gnu::always_inline]] static inline void load(const double* from, Vector& x, Vector& y,
                                                                        Vector& z) {
        const __m256d a = _mm256_loadu2_m128d(from + 6, from);       // x0 y0
        const __m256d b = _mm256_loadu2_m128d(from + 8, from + 2);   // z0 x1
        const __m256d c = _mm256_loadu2_m128d(from + 10, from + 4);  // y1 z1
        x = _mm256_shuffle_pd(a, b, 0b1010);
        y = _mm256_shuffle_pd(a, c, 0b0101);
        z = _mm256_shuffle_pd(b, c, 0b1010);
    }

    [[gnu::target("avx2"), gnu::always_inline]] static inline void store(const Vector& x, const Vector& y,
                                                                         const Vector& z, double* to) {
        _mm256_storeu2_m128d(to + 6, to, _mm256_shuffle_pd(x, y, 0b0000));
        _mm256_storeu2_m128d(to + 8, to + 2, _mm256_shuffle_pd(z, x, 0b1010));
        _mm256_storeu2_m128d(to + 10, to + 4, _mm256_shuffle_pd(y, z, 0b1111));
    }
};

/// Maps as many points as fill whole vectors and returns their number.
template <typename Pack, typename Real, typename Step>
[[gnu::target("avx2")]] std::size_t mapPacks(const Step step, std::size_t count, const Wm4::Vector3<Real>* in,
                                             Wm4::Vector3<Real>* out) {
    std::size_t index = 0;
    for (; index + Pack::sWidth <= count; index += Pack::sWidth) {
        typename Pack::Vector x, y, z;
        Pack::load(&in[index].x, x, y, z);
        step(x, y, z);
        Pack::store(x, y, z, &out[index].x);
    }
    return index;
}

#endif

/// Maps count points from `in` to `out`, the same array or one that does not overlap, by a step that changes
/// coordinates x, y and z in place: single numbers, or vectors of them with the same operations in the same order, so
/// that every point gets the same bits on every processor.
template <typename Real, typename Step>
void mapPoints(const Step step, std::size_t count, const Wm4::Vector3<Real>* in, Wm4::Vector3<Real>* out) {
    static_assert(sizeof(Wm4::Vector3<Real>) == 3 * sizeof(Real));
    std::size_t index = 0;
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx2") != 0) {
        using Pack = std::conditional_t<sizeof(Real) == sizeof(float), FloatPack, DoublePack>;
        index = mapPacks<Pack>(step, count, in, out);
    }
#endif
    for (; index < count; ++index) {
        Wm4::Vector3<Real> point = in[index];
        step(point.x, point.y, point.z);
        out[index] = point;
    }
}

}  // namespace kt::impl
