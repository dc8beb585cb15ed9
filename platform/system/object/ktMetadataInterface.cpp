#include "platform/system/object/ktMetadataInterface.h"

#include "platform/system/stream/ktBaseStream.h"

namespace kt {

const ktRtti ktMetadataInterface::TYPE("ktCore.ktMetadataInterface", &ktObject::TYPE);

ktMetadataInterface::~ktMetadataInterface() = default;

const ktRtti* ktMetadataInterface::GetType() const { return &TYPE; }

void ktMetadataInterface::Load(ktBaseStream& stream) {
    ktObject::Load(stream);
    std::uint32_t metadataTypeId = 0;
    stream.readle(4, 1, &metadataTypeId);
    if (metadataTypeId != mMetadataTypeId) {
        stream.setStreamError(ktStreamFault::WrongTypeIdentifier);
    }
}

bool ktMetadataInterface::Equals(const ktRttiInterface* other) const {
    const auto* metadata = dynamic_cast<const ktMetadataInterface*>(other);
    return metadata != nullptr && metadata->mMetadataTypeId == mMetadataTypeId;
}

bool ktMetadataInterface::Clone(ktRttiInterface*& out) const { return Equals(out); }

}  // namespace kt
