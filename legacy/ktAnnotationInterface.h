#pragma once

/// @file
/// Base of every legacy annotation.

#include "legacy/ktAnnotationLegacyExport.h"
#include "math/ktGenericTransformation.h"
#include "platform/system/object/ktObject.h"
#include "platform/system/object/ktPointer.h"
#include "platform/system/stream/ktStreamVersion.h"
#include "platform/system/variant/ktVariant.h"
#include "platform/system/variant/ktVariantMapImpl.h"
#include "platform/wm4/Wm4Vector3.h"

#include <cstdint>
#include <list>
#include <string>
#include <vector>

namespace ktLegacy {

namespace reading {
class MapReport;
}

/// A note at a point of a view's plane: colour, name, frame, leaders that point from the note to places in the model,
/// measure leaders that dimension the distance between two points, free-form metadata, and a tree of child annotations
/// anchored to its sides. Concrete annotations are ktAnnotationText and ktAnnotationRaster.
///
/// Places and offsets are in drawing units (millimetres) in the frame of the view's plane, x along its axis and z along
/// its normal. Heights of text and sizes of images are in em; one em is 1/8 inch, 3.175 drawing units, the usual
/// lettering height of drawings.
///
/// Annotations are created with new and held through kt::ktPointer: a walk or a view that meets an annotation which
/// nobody holds deletes it. A tree is used by one thread at a time. Copying and destroying a tree needs no stack in
/// proportion to its depth. An annotation must not become a child in its own tree: nothing checks it, copies and walks
/// of such a tree do not end, and its members hold each other for ever.
///
/// The order of the virtual operations and of the data members is part of the binary interface.
class KT_ANNOTATION_LEGACY_API ktAnnotationInterface : public kt::ktObject {
public:
    /// Concrete kind of an annotation.
    enum Type : std::uint8_t {
        Undefined = 0,  ///< none: a sub-annotation entry of this type holds no annotation
        Text = 1,       ///< ktAnnotationText
        Raster = 2,     ///< ktAnnotationRaster
    };

    /// Shape of the frame around the note; four bits.
    enum FrameShape : std::uint8_t {
        FrameNone = 0,
        FrameRectangle = 1,
        FrameSquare = 2,
        FrameDiamond = 3,
        FrameTriangle = 4,
        FrameFlagRight = 5,
        FrameFlagLeft = 6,
        FrameFlagBoth = 7,
        FrameParallelogram = 8,
        FrameHexagon = 9,
        FramePentagon = 10,
        FrameCircle = 11,
        FrameOblong = 12,
        FrameOblongLeft = 13,
        FrameOblongRight = 14,
    };

    /// A line from the note to a point of the model. A plain value.
    struct KT_ANNOTATION_LEGACY_API Leader {
        /// Drawing at the leader's end. Streams may hold values beyond these; they are kept.
        enum HeadType : std::int32_t {
            HeadNone = 0,
            HeadSquare = 1,
            HeadCircle = 2,
            HeadArrow = 3,
            HeadPlus = 4,
            HeadCross = 5,
            HeadTriangle = 6,
        };

        Leader() = default;
        // Not explicit: a place alone is a leader without a head.
        Leader(const Wm4::Vector3<float>& position) : mPosition(position) {}  // NOLINT(google-explicit-constructor)

        /// Reads one leader of a binary stream; the layout follows the stream's version.
        void load(kt::ktBaseStream& stream);
        /// Reads a leader value of a variant document; false rejects the value.
        bool loadFromVariant(const kt::ktVariant& value, const kt::ktStreamVersion& version);

        Wm4::Vector3<float> mPosition =
            Wm4::Vector3<float>::ZERO;  ///< the point that the leader points at, in drawing units
        HeadType mHead = HeadNone;
    };

    /// A dimension between two points. A plain value.
    struct KT_ANNOTATION_LEGACY_API MeasureLeader {
        /// Senses of the arrow heads. Streams may hold values beyond these; they are kept.
        enum ArrowDirection : std::int32_t {
            ArrowsUnspecified = 0,
            ArrowsOutOut = 1,
            ArrowsInOut = 2,
            ArrowsOutIn = 3,
        };

        /// Reads one measure leader of a binary stream; the layout follows the stream's version.
        void load(kt::ktBaseStream& stream);
        /// Reads a measure leader value of a variant document; false rejects the value, what was valid before stays
        /// set.
        bool loadFromVariant(const kt::ktVariant& value, const kt::ktStreamVersion& version);

        Wm4::Vector3<float> mPointA = Wm4::Vector3<float>::ZERO;          ///< first measured point, in drawing units
        Wm4::Vector3<float> mPointB = Wm4::Vector3<float>::ZERO;          ///< second measured point, in drawing units
        Wm4::Vector3<float> mOffsetVector = Wm4::Vector3<float>::UNIT_X;  ///< from the measured points to the dimension
                                                                          ///< line, in drawing units; a vector
        ArrowDirection mArrowDirection = ArrowsUnspecified;
    };

    /// One child annotation and where it sits on its parent. Holding an entry holds one reference to the child.
    struct SubAnnot {
        /// Place of the child on its parent's outline. Streams may hold values beyond these; they are kept.
        enum AnchorLocation : std::int32_t {
            AnchorNone = 0,
            AnchorBottomLeft = 1,
            AnchorBottomCenter = 2,
            AnchorBottomRight = 3,
            AnchorTopLeft = 4,
            AnchorTopCenter = 5,
            AnchorTopRight = 6,
            AnchorLeftBottom = 7,
            AnchorLeftCenter = 8,
            AnchorLeftTop = 9,
            AnchorRightBottom = 10,
            AnchorRightCenter = 11,
            AnchorRightTop = 12,
        };

        kt::ktPointer<ktAnnotationInterface> mAnnotation;
        AnchorLocation mAnchorLocation = AnchorBottomLeft;
    };

    /// @param type  Text and Raster are for ktAnnotationText and ktAnnotationRaster and classes derived from them: it
    ///              decides what copies are made as.
    explicit ktAnnotationInterface(Type type);
    /// Copies the other's tree; the kind is the other's.
    ktAnnotationInterface(const ktAnnotationInterface& other);
    /// Copies everything but the kind. Children are cloned by their own kind; children of undefined kind are shared.
    ktAnnotationInterface& operator=(const ktAnnotationInterface& other);
    ~ktAnnotationInterface() override;

    void SetName(const std::string& name) override;
    const std::string& GetName() const override;

    /// Reads the annotation's record from a binary stream into this annotation. Problems show in the stream's error
    /// flag.
    virtual void load(kt::ktBaseStream& stream);
    /// Reads the annotation's map of a variant document into this annotation.
    /// @param version  the document's version.
    /// @param errors   receives one message per problem.
    /// @return false when the annotation must not be used.
    virtual bool loadFromVariant(const kt::ktVariant::ktVariantMapImpl& map, const kt::ktStreamVersion& version,
                                 std::vector<std::string>& errors);

    /// A new annotation of the same kind with a copy of the tree; null for an annotation of undefined kind. The caller
    /// takes it into a kt::ktPointer.
    ktAnnotationInterface* cloneAnnotation() const;

    /// The children, in order. An annotation without any gives the shared empty list, which exists while the library is
    /// initialised.
    const std::list<SubAnnot>& getSubAnnots() const { return mSubAnnots != nullptr ? *mSubAnnots : *sDummySubAnnots; }
    unsigned int getSubAnnotsCount() const;
    /// The annotation's own list of children, created at the first call.
    std::list<SubAnnot>& editSubAnnots();
    /// Releases all children and the list. Children that nobody else holds are destroyed; each has its own children
    /// until its destructors have run, and a child that lives on keeps them. Called while an annotation is destroyed
    /// together with its parent, the children are released as soon as that one is gone.
    void removeSubAnnots() noexcept;

    /// Moves leaders, measure leaders and the position by the transformation; offset vectors turn and scale but do not
    /// move. Children, name, colour, flags and metadata stay as they are.
    void transform(const kt::ktGenericTransformation<float>& transformation);
    /// Makes each measure leader's offset vector reach to the annotation's position: the vector keeps its line and
    /// becomes the projection of the way from point A to the position. A zero vector stays zero.
    void recomputeOffsetVectorLength();

    /// The flags byte as the binary record stores it: frame shape in bits 0 to 3, bit 4 as read, then the switches
    /// mIsIgnoreZTest (0x20), mIsScaleLocked (0x40) and mIsFrameLocked (0x80).
    std::uint8_t getFlags() const;
    void setFlags(std::uint8_t flags);

    /// The kind that the "type" of an annotation's map names; Undefined for every word that names none.
    static Type readTypeFromMap(const kt::ktVariant::ktVariantMapImpl& map);
    /// Creates an annotation of that kind (Text or Raster) from its map; null when it must not be used.
    static kt::ktPointer<ktAnnotationInterface> createFromMap(Type type, const kt::ktVariant::ktVariantMapImpl& map,
                                                              kt::ktStreamVersion version, reading::MapReport& report);

    /// Creates the shared empty list; part of the library's initialisation.
    static void InitDummySubAnnots();
    /// Destroys the shared empty list; part of the library's termination.
    static void ClearDummySubAnnots() noexcept;

    std::vector<Leader> mLeaders;                               ///< in drawing order
    std::vector<MeasureLeader> mMeasureLeaders;                 ///< in drawing order
    Wm4::Vector3<float> mPosition = Wm4::Vector3<float>::ZERO;  ///< anchor point of the note, in drawing units
    Wm4::Vector3<unsigned char> mColor{255, 255, 255};          ///< red, green, blue, 0 to 255
    std::string mName;
    kt::ktVariant::ktVariantMapImpl mMetadata;  ///< free-form key/value pairs

private:
    std::list<SubAnnot>* mSubAnnots = nullptr;  ///< owned; null until first needed

public:
    const Type mType;  ///< concrete kind
    FrameShape mFrameShape : 4;
    std::uint8_t mReservedFlag : 1;  ///< bit 4 of the flags byte: no meaning, kept as read
    bool mIsIgnoreZTest : 1;
    bool mIsScaleLocked : 1;
    bool mIsFrameLocked : 1;

    /// The shared empty list; null while the library is not initialised.
    static std::list<SubAnnot>* sDummySubAnnots;

protected:
    /// Asks a copy constructor for a copy without the children.
    struct WithoutChildren {};

    /// Copies everything but the children.
    ktAnnotationInterface(const ktAnnotationInterface& other, WithoutChildren);

    /// Gives an annotation without children, as the constructor above leaves it, copies of the other's.
    void copyChildrenOf(const ktAnnotationInterface& other);

    /// Exchanges everything but the kind.
    void swapContent(ktAnnotationInterface& other) noexcept;

    /// Does the work of loadFromVariant().
    bool loadBaseFromMap(const kt::ktVariant::ktVariantMapImpl& map, kt::ktStreamVersion version,
                         reading::MapReport& report);

    /// Reads the leader list of a record.
    void loadLeaders(kt::ktBaseStream& stream);
    /// Reads position, colour and flags of a record.
    void loadPlacement(kt::ktBaseStream& stream);

private:
    static kt::ktPointer<ktAnnotationInterface> copyWithoutChildren(const kt::ktPointer<ktAnnotationInterface>& source);
    static void releaseSubAnnots(std::list<SubAnnot>* subAnnots) noexcept;

    void loadMeasureLeaders(kt::ktBaseStream& stream);
    bool loadSubAnnots(kt::ktBaseStream& stream);
    /// Reads the value of the children's key, if it is a list; false when an entry is no map.
    bool loadSubAnnotsFromMaps(const kt::ktVariant* value, kt::ktStreamVersion version, reading::MapReport& report);
    /// Null when the entry does not become an annotation.
    static kt::ktPointer<ktAnnotationInterface> loadSubAnnotFromMap(const kt::ktVariant::ktVariantMapImpl& map,
                                                                    kt::ktStreamVersion version, bool isTooDeep,
                                                                    reading::MapReport& report);
};

}  // namespace ktLegacy
