#pragma once

/// @file
/// Mapping of arrays of points, several points at a time.

#include "platform/wm4/Wm4Matrix3.h"
#include "platform/wm4/Wm4Vector3.h"

#include <cstddef>

namespace kt::impl {

/// Kinds of vectors that mappings are made with, the wider ones where the processor has them.
enum class VectorLevel { Every, Avx2, Avx512 };

/// Keeps mappings from using wider vectors than these, so that tests see the narrower ones at work. Not to be called
/// while other threads map.
void limitVectors(VectorLevel widest);

/// matrix (scale * X) + translate; the scale and the translation are left out when null. Referenced values are only
/// used during the call they are passed to.
template <typename Real>
struct ForwardMap {
    const Wm4::Matrix3<Real>& matrix;
    const Wm4::Vector3<Real>* scale;
    const Wm4::Vector3<Real>* translate;
};

/// factor * (matrix (Y - translate)), component by component; the factor is left out when null.
template <typename Real>
struct BackwardMap {
    const Wm4::Vector3<Real>& translate;
    const Wm4::Matrix3<Real>& matrix;
    const Wm4::Vector3<Real>* factor;
};

/// Copies count points from `in` to `out`, the same array or one that does not overlap.
void copyPoints(std::size_t count, const Wm4::Vector3<float>* in, Wm4::Vector3<float>* out);
void copyPoints(std::size_t count, const Wm4::Vector3<double>* in, Wm4::Vector3<double>* out);

/// Maps count points from `in` to `out`, the same array or one that does not overlap. Every point gets the bits that
/// the formula of the map gives when it is evaluated from left to right, whatever the processor.
void mapPointsForward(const ForwardMap<float>& map, std::size_t count, const Wm4::Vector3<float>* in,
                      Wm4::Vector3<float>* out);
void mapPointsForward(const ForwardMap<double>& map, std::size_t count, const Wm4::Vector3<double>* in,
                      Wm4::Vector3<double>* out);

void mapPointsBackward(const BackwardMap<float>& map, std::size_t count, const Wm4::Vector3<float>* in,
                       Wm4::Vector3<float>* out);
void mapPointsBackward(const BackwardMap<double>& map, std::size_t count, const Wm4::Vector3<double>* in,
                       Wm4::Vector3<double>* out);

}  // namespace kt::impl
