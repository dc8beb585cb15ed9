#pragma once

/// @file
/// Legacy annotations on one plane.

#include "legacy/ktAnnotationInterface.h"

#include <cstdint>
#include <string>
#include <vector>

namespace ktLegacy {

/// A named group of annotations that lie on one plane of the scene. Normal and axis are kept as given, neither
/// normalised nor made perpendicular. Like every kt::ktObject, a view on the stack must not be put into a
/// kt::ktPointer: pointers delete what they hold last.
///
/// The order of the virtual operations and of the data members is part of the binary interface.
class KT_ANNOTATION_LEGACY_API ktAnnotationView : public kt::ktObject {
public:
    /// "ktCore.ktAnnotationView", derived from kt::ktObject.
    static const kt::ktRtti TYPE;

    /// What copyFrom() does with the other view's annotations. Every value but the first two counts as NoAnnotations.
    enum AnnotationCopyMode : std::int32_t {
        ShareAnnotations = 0,  ///< hold the same objects
        CloneAnnotations = 1,  ///< hold deep copies
        NoAnnotations = 2,     ///< hold none
    };

    ktAnnotationView();
    /// A deep copy.
    ktAnnotationView(const ktAnnotationView& other);
    ktAnnotationView& operator=(const ktAnnotationView& other);
    ~ktAnnotationView() override;

    const kt::ktRtti* GetType() const override;
    /// Reads the view's record; records older than 6.13 set the stream's error flag and leave the view as it is.
    void Load(kt::ktBaseStream& stream) override;
    void PostLink(kt::ktBaseStream& stream) override;
    /// Writes nothing: views are read only. Sets the stream's error flag above version 6.26.
    void Save(kt::ktBaseStream& stream) const override;
    /// Always false.
    bool Equals(const kt::ktRttiInterface* other) const override;
    /// Always false; out stays as it is.
    bool Clone(kt::ktRttiInterface*& out) const override;
    /// Looks at the view itself only, not at its annotations; so do the two functions below.
    kt::ktObject* GetObjectByName(const std::string& name) override;
    void GetAllObjectsByName(const std::string& name, std::vector<kt::ktObject*>& objects) override;
    kt::ktObject* GetObjectByID(unsigned int id) override;
    void SetName(const std::string& name) override;
    const std::string& GetName() const override;

    /// Copies name, plane and metadata, and the annotations as the mode says.
    void copyFrom(const ktAnnotationView& other, AnnotationCopyMode mode);

    /// Moves the plane: origin, normal and axis are mapped by the linear part (the normal too, not by its inverse
    /// transpose), the origin also by the translation. Nothing is normalised; annotations stay as they are.
    void transform(const kt::ktGenericTransformation<float>& transformation);
    /// The plane's frame: columns axis, normal x axis and normal, translation to the origin. Flagged as a rotation even
    /// when the vectors are not orthonormal.
    void getPlaneTransform(kt::ktGenericTransformation<float>& out) const;

    /// Builds a view from a map of a variant document; null when the map cannot be read.
    /// @param errors  receives one message per problem.
    static kt::ktPointer<ktAnnotationView> FromVariantMap(const kt::ktVariant::ktVariantMapImpl& map,
                                                          std::vector<std::string>& errors);

    /// Creates a view and reads its record; also when reading failed, which the stream's error flag tells.
    static kt::ktRttiInterface* Factory(kt::ktBaseStream& stream);
    /// Registers the factory under the name of TYPE.
    static void RegisterFactory();
    static void UnRegisterFactory();

    std::string mName;
    Wm4::Vector3<float> mOrigin = Wm4::Vector3<float>::ZERO;         ///< origin of the plane's frame, in scene units
    Wm4::Vector3<float> mNormal = Wm4::Vector3<float>::UNIT_Z;       ///< z axis of the frame, without unit
    Wm4::Vector3<float> mAxis = Wm4::Vector3<float>::UNIT_X;         ///< x axis of the frame, without unit
    std::vector<kt::ktPointer<ktAnnotationInterface>> mAnnotations;  ///< in order; entries may be null
    kt::ktVariant::ktVariantMapImpl mMetadata;
};

}  // namespace ktLegacy
