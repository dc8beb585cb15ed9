#pragma once

/// @file
/// View of the current model.

#include "platform/annotation/ktCadAnnotation.h"
#include "platform/system/object/ktPointer.h"

namespace kt {

/// A named plane with the annotations that stand on it.
class KT_ANNOTATION_API ktCadAnnotationView : public ktObject {
public:
    ktCadAnnotationView() = default;
    ~ktCadAnnotationView() override;

    void SetName(const std::string& name) override { mName = name; }
    const std::string& GetName() const override { return mName; }

    std::string mName;
    Wm4::Vector3<float> mOrigin = Wm4::Vector3<float>::ZERO;    ///< origin of the view's frame
    Wm4::Vector3<float> mNormal = Wm4::Vector3<float>::UNIT_Z;  ///< its z axis
    Wm4::Vector3<float> mAxis = Wm4::Vector3<float>::UNIT_X;    ///< its x axis
    std::vector<ktPointer<ktCadAnnotation>> mAnnotations;       ///< in drawing order, never null
};

}  // namespace kt
