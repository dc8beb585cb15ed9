#pragma once

/// @file
/// Root of all reference-counted, streamable objects, and the registry of their factories.

#include "platform/system/ktSystemExport.h"
#include "platform/system/object/ktRtti.h"

#include <cstddef>
#include <new>
#include <string>
#include <string_view>

namespace kt {

class ktBaseStream;

/// An object with a run-time type, an intrusive reference count and the stream operations. Objects are created with new
/// and delete themselves when the last reference goes. The count starts at 0: the first ktPointer takes the object into
/// possession, and the end of the last one is the end of the object.
///
/// An object that was not made with new (on the stack, a member, in storage of the caller's) must therefore never meet
/// a ktPointer, not even a temporary one as it is made by a walk over it or by a list that it is put into: the pointer
/// would delete it. An object with count 0 is deleted by the first ktPointer that comes and goes. Objects that hold
/// each other in a circle are never deleted.
///
/// The order of the virtual operations is part of the binary interface.
class KT_SYSTEM_API ktRttiInterface {
public:
    /// Creates an object and reads its record from the stream; never null. A failed read shows in the stream's error
    /// flag.
    using FactoryFunction = ktRttiInterface* (*)(ktBaseStream& stream);

    static const ktRtti TYPE;
    /// The empty text that getters of nameless objects refer to.
    static const std::string sEmptyString;

    virtual ~ktRttiInterface();
    virtual const ktRtti* GetType() const;
    virtual void IncrementReferences();
    virtual void DecrementReferences();
    virtual int GetReferences() const;
    virtual void Load(ktBaseStream& stream);
    /// Called once all objects of a document are read and their links resolved.
    virtual void PostLink(ktBaseStream& stream);
    virtual void Save(ktBaseStream& stream) const;
    virtual bool Equals(const ktRttiInterface* other) const;
    /// Copies this into out, creating an object when out is null; false when that is not possible.
    virtual bool Clone(ktRttiInterface*& out) const;

    /// Registers a factory under a name; a factory registered before under that name is replaced. Safe to call from
    /// several threads, as are the two functions below.
    static void RegisterFactoryFunction(const std::string& name, FactoryFunction factory);
    /// Removes a factory; unknown names are ignored.
    static void UnregisterFactoryFunction(const std::string& name);
    /// The factory of that name, null when there is none.
    static FactoryFunction FindFactoryFunction(std::string_view name);

    /// @name Storage
    /// Objects of every class lie in blocks of ktBlockPool; those of a class with an alignment beyond the pool's come
    /// from the heap.
    /// @{
    static void* operator new(std::size_t size);
    static void* operator new(std::size_t size, std::align_val_t alignment);
    static void* operator new(std::size_t size, const std::nothrow_t& tag) noexcept;
    static void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t& tag) noexcept;
    /// In storage of the caller's: such an object is destroyed by the caller and never held by a ktPointer.
    static void* operator new(std::size_t /*size*/, void* place) noexcept { return place; }

    static void operator delete(void* block, std::size_t size) noexcept;
    static void operator delete(void* block, std::size_t size, std::align_val_t alignment) noexcept;
    static void operator delete(void* block, std::align_val_t alignment) noexcept;
    static void operator delete(void* block, const std::nothrow_t& tag) noexcept;
    static void operator delete(void* block, std::align_val_t alignment, const std::nothrow_t& tag) noexcept;
    static void operator delete(void* /*block*/, void* /*place*/) noexcept {}
    /// @}

protected:
    ktRttiInterface() = default;
    /// A copy starts with a count of its own.
    ktRttiInterface(const ktRttiInterface&) noexcept {}
    ktRttiInterface& operator=(const ktRttiInterface&) noexcept { return *this; }

private:
    int mReferences = 0;
};

}  // namespace kt
