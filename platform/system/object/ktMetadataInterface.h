#pragma once

/// @file
/// Base of metadata items.

#include "platform/system/object/ktObject.h"

#include <cstdint>

namespace kt {

/// An item of metadata that a scene object carries, with an identifier of its kind.
class KT_SYSTEM_API ktMetadataInterface : public ktObject {
public:
    static const ktRtti TYPE;

    ~ktMetadataInterface() override;
    const ktRtti* GetType() const override;
    /// Reads the ktObject record and the metadata type identifier (uint32). Another identifier than the object's own
    /// sets the stream's error flag.
    void Load(ktBaseStream& stream) override;
    /// True when the other is a metadata item of the same kind.
    bool Equals(const ktRttiInterface* other) const override;
    /// Copies the base part: true when out is a metadata item of the same kind, else false.
    bool Clone(ktRttiInterface*& out) const override;

    std::uint32_t GetMetadataTypeId() const { return mMetadataTypeId; }

protected:
    explicit ktMetadataInterface(std::uint32_t metadataTypeId) : mMetadataTypeId(metadataTypeId) {}
    ktMetadataInterface(const ktMetadataInterface&) = default;
    ktMetadataInterface& operator=(const ktMetadataInterface&) noexcept { return *this; }

private:
    std::uint32_t mMetadataTypeId;
};

}  // namespace kt
