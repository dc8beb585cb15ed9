#pragma once

/// @file
/// Metadata item that holds the annotation views of a scene.

#include "legacy/ktAnnotationView.h"
#include "platform/system/object/ktMetadataInterface.h"

#include <cstdint>
#include <string>
#include <vector>

namespace ktLegacy {

/// The ordered list of annotation views that a scene carries. It has no name of its own.
///
/// The order of the virtual operations is part of the binary interface.
class KT_ANNOTATION_LEGACY_API ktAnnotationMetaData : public kt::ktMetadataInterface {
public:
    /// "ktCore.ktAnnotationMetaData", derived from kt::ktMetadataInterface. Streams name the class by the factory name
    /// "ktCore.ktAnnotationMetadata"; the two spellings differ on purpose.
    static const kt::ktRtti TYPE;
    static constexpr std::uint32_t MetadataTypeId = 5;

    ktAnnotationMetaData();
    /// A deep copy.
    ktAnnotationMetaData(const ktAnnotationMetaData& other);
    ktAnnotationMetaData& operator=(const ktAnnotationMetaData& other);
    ~ktAnnotationMetaData() override;

    const kt::ktRtti* GetType() const override;
    /// Reads the record: the views are links, resolved when all objects of the document are read.
    void Load(kt::ktBaseStream& stream) override;
    void PostLink(kt::ktBaseStream& stream) override;
    /// Writes nothing: the object is read only. Sets the stream's error flag above version 6.12.
    void Save(kt::ktBaseStream& stream) const override;
    bool Equals(const kt::ktRttiInterface* other) const override;
    /// Gives out (created when null) as many views as this has, each a default view: views do not clone. A full copy is
    /// made by assignment. False when out is of another type, which is left as it is.
    bool Clone(kt::ktRttiInterface*& out) const override;
    kt::ktObject* GetObjectByName(const std::string& name) override;
    void GetAllObjectsByName(const std::string& name, std::vector<kt::ktObject*>& objects) override;
    kt::ktObject* GetObjectByID(unsigned int id) override;
    /// Does nothing.
    void SetName(const std::string& name) override;
    /// Always the empty text.
    const std::string& GetName() const override;

    const std::vector<kt::ktPointer<ktAnnotationView>>& getViews() const { return mViews; }
    std::vector<kt::ktPointer<ktAnnotationView>>& editViews() { return mViews; }

    /// Creates a metadata object and reads its record; also when reading failed, which the stream's error flag tells.
    static kt::ktRttiInterface* Factory(kt::ktBaseStream& stream);
    /// Registers the factory under the name of TYPE.
    static void RegisterFactory();
    static void UnRegisterFactory();

private:
    std::vector<kt::ktPointer<ktAnnotationView>> mViews;  ///< in order; entries may be null
};

}  // namespace ktLegacy
