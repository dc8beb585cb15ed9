#include "platform/system/object/ktRttiInterface.h"

#include "platform/system/memory/ktBlockPool.h"

#include <functional>
#include <mutex>
#include <shared_mutex>
#include <unordered_map>

namespace kt {

namespace {

struct NameHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view name) const noexcept { return std::hash<std::string_view>()(name); }
};

/// The factories by name. Lookups run at the same time, changes one by one.
class FactoryRegistry {
public:
    void insert(const std::string& name, ktRttiInterface::FactoryFunction factory) {
        const std::unique_lock lock(mMutex);
        mFactories.insert_or_assign(name, factory);
    }

    void erase(const std::string& name) {
        const std::unique_lock lock(mMutex);
        mFactories.erase(name);
    }

    ktRttiInterface::FactoryFunction find(std::string_view name) const {
        const std::shared_lock lock(mMutex);
        const auto found = mFactories.find(name);
        return found == mFactories.end() ? nullptr : found->second;
    }

private:
    mutable std::shared_mutex mMutex;
    std::unordered_map<std::string, ktRttiInterface::FactoryFunction, NameHash, std::equal_to<>> mFactories;
};

/// Never destroyed: other libraries may register and remove factories while static objects are made and destroyed.
FactoryRegistry& getRegistry() {
    static FactoryRegistry& registry = *new FactoryRegistry;
    return registry;
}

}  // namespace

const std::string ktRttiInterface::sEmptyString;
const ktRtti ktRttiInterface::TYPE("ktCore.ktRttiInterface", nullptr);

ktRttiInterface::~ktRttiInterface() = default;

const ktRtti* ktRttiInterface::GetType() const { return &TYPE; }

void ktRttiInterface::IncrementReferences() { ++mReferences; }

void ktRttiInterface::DecrementReferences() {
    if (--mReferences == 0) {
        delete this;
    }
}

int ktRttiInterface::GetReferences() const { return mReferences; }

void ktRttiInterface::Load(ktBaseStream& /*stream*/) {}

void ktRttiInterface::PostLink(ktBaseStream& /*stream*/) {}

void ktRttiInterface::Save(ktBaseStream& /*stream*/) const {}

bool ktRttiInterface::Equals(const ktRttiInterface* other) const {
    return other != nullptr && other->GetType() == GetType();
}

bool ktRttiInterface::Clone(ktRttiInterface*& /*out*/) const { return false; }

void ktRttiInterface::RegisterFactoryFunction(const std::string& name, FactoryFunction factory) {
    getRegistry().insert(name, factory);
}

void ktRttiInterface::UnregisterFactoryFunction(const std::string& name) { getRegistry().erase(name); }

ktRttiInterface::FactoryFunction ktRttiInterface::FindFactoryFunction(std::string_view name) {
    return getRegistry().find(name);
}

void* ktRttiInterface::operator new(std::size_t size) { return ktBlockPool::allocateObject(size); }

void* ktRttiInterface::operator new(std::size_t size, std::align_val_t alignment) {
    return ::operator new(size, alignment);
}

void* ktRttiInterface::operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    try {
        return ktBlockPool::allocateObject(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void* ktRttiInterface::operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t& tag) noexcept {
    return ::operator new(size, alignment, tag);
}

void ktRttiInterface::operator delete(void* block, std::size_t /*size*/) noexcept { ktBlockPool::releaseObject(block); }

void ktRttiInterface::operator delete(void* block, std::size_t /*size*/, std::align_val_t alignment) noexcept {
    ::operator delete(block, alignment);
}

// g++ 12 looks for this one, and no sized one, when the constructor of an object throws.
void ktRttiInterface::operator delete(void* block, std::align_val_t alignment) noexcept {
    ::operator delete(block, alignment);
}

void ktRttiInterface::operator delete(void* block, const std::nothrow_t& /*tag*/) noexcept {
    ktBlockPool::releaseObject(block);
}

void ktRttiInterface::operator delete(void* block, std::align_val_t alignment, const std::nothrow_t& tag) noexcept {
    ::operator delete(block, alignment, tag);
}

}  // namespace kt
