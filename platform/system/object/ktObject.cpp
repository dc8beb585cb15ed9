#include "platform/system/object/ktObject.h"

#include "platform/system/log/ktLog.h"
#include "platform/system/log/ktLogObject.h"
#include "platform/system/stream/ktBaseStream.h"

#include <atomic>
#include <cstdint>
#include <string>

namespace kt {

namespace {

unsigned int makeId() {
    static constinit std::atomic<unsigned int> sLastId{0};
    return sLastId.fetch_add(1, std::memory_order_relaxed) + 1;
}

/// A text of the base record: what a short read does not fill is NUL.
std::string readText(ktBaseStream& stream) {
    std::int32_t length = 0;
    stream.readle(4, 1, &length);
    std::string text;
    if (length < 1) {
        return text;
    }
    const auto size = static_cast<std::size_t>(length);
    stream.chargeMemory(size, 1);
    text.resize(size);
    if (stream.read(text.data(), size) != size) {
        stream.setStreamError();
    }
    return text;
}

}  // namespace

const ktRtti ktObject::TYPE("ktCore.ktObject", &ktRttiInterface::TYPE);

ktObject::ktObject() : mId(makeId()) {}

ktObject::ktObject(const ktObject& other) : ktRttiInterface(other), mId(makeId()) {}

ktObject::~ktObject() = default;

const ktRtti* ktObject::GetType() const { return &TYPE; }

void ktObject::Load(ktBaseStream& stream) { SetName(readText(stream)); }

void ktObject::PostLink(ktBaseStream& stream) { ktRttiInterface::PostLink(stream); }

void ktObject::Save(ktBaseStream& stream) const { ktRttiInterface::Save(stream); }

bool ktObject::Equals(const ktRttiInterface* other) const { return ktRttiInterface::Equals(other); }

bool ktObject::Clone(ktRttiInterface*& out) const { return ktRttiInterface::Clone(out); }

int ktObject::GetControllerQuantity() const { return 0; }

ktController* ktObject::GetController(int /*index*/) const { return nullptr; }

void ktObject::SetControllerQuantity(int /*quantity*/) {}

void ktObject::SetController(int /*index*/, ktController* /*controller*/) {}

void ktObject::AttachController(ktController* /*controller*/) {}

void ktObject::DetachController(ktController* /*controller*/) {}

void ktObject::DetachAllControllers() {}

ktObject* ktObject::GetObjectByName(const std::string& name) { return GetName() == name ? this : nullptr; }

void ktObject::GetAllObjectsByName(const std::string& name, std::vector<ktObject*>& objects) {
    if (GetName() == name) {
        objects.push_back(this);
    }
}

ktObject* ktObject::GetObjectByID(unsigned int id) { return mId == id ? this : nullptr; }

void ktObject::SetName(const std::string& /*name*/) {}

const std::string& ktObject::GetName() const { return sEmptyString; }

void ktObject::debugObject(int level) const {
    const std::string indent(level > 0 ? static_cast<std::size_t>(level) * 2 : 0, ' ');
    ktLogObject(ktLog::Debug, nullptr, ktLog::msInstance, nullptr, false)
        << indent << GetType()->GetName() << " #" << mId << " '" << GetName() << "', " << GetReferences()
        << " references";
}

}  // namespace kt
