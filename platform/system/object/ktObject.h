#pragma once

/// @file
/// Base of the platform's named objects.

#include "platform/system/object/ktRttiInterface.h"

#include <vector>

namespace kt {

class ktController;

/// A streamable object that may have a name and an id. This base has no controllers: its getters give 0 or null and its
/// setters do nothing.
///
/// The order of the virtual operations is part of the binary interface.
class KT_SYSTEM_API ktObject : public ktRttiInterface {
public:
    static const ktRtti TYPE;

    ~ktObject() override;
    const ktRtti* GetType() const override;
    /// Reads the base record: the name (int32 length, bytes; a length below 1 is the empty name), handed to SetName.
    void Load(ktBaseStream& stream) override;
    void PostLink(ktBaseStream& stream) override;
    void Save(ktBaseStream& stream) const override;
    bool Equals(const ktRttiInterface* other) const override;
    bool Clone(ktRttiInterface*& out) const override;

    virtual int GetControllerQuantity() const;
    virtual ktController* GetController(int index) const;
    virtual void SetControllerQuantity(int quantity);
    virtual void SetController(int index, ktController* controller);
    virtual void AttachController(ktController* controller);
    virtual void DetachController(ktController* controller);
    virtual void DetachAllControllers();

    /// This object when it bears the name, else null.
    virtual ktObject* GetObjectByName(const std::string& name);
    /// Appends this object when it bears the name.
    virtual void GetAllObjectsByName(const std::string& name, std::vector<ktObject*>& objects);
    /// This object when it has the id, else null.
    virtual ktObject* GetObjectByID(unsigned int id);

    /// A plain object keeps no name: SetName does nothing, GetName gives the empty text.
    virtual void SetName(const std::string& name);
    virtual const std::string& GetName() const;
    /// Writes a line about the object to the log, indented by level.
    virtual void debugObject(int level) const;

    /// Process-wide unique id, given at construction.
    unsigned int GetID() const { return mId; }

protected:
    ktObject();
    /// A copy gets an id of its own.
    ktObject(const ktObject& other);
    ktObject& operator=(const ktObject&) noexcept { return *this; }

private:
    unsigned int mId;
};

}  // namespace kt
