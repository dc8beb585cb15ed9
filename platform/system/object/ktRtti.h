#pragma once

/// @file
/// Run-time type record.

#include "platform/system/ktSystemExport.h"

#include <string>

namespace kt {

/// Names a class and its base class. One static record per class; records are compared by identity.
class KT_SYSTEM_API ktRtti {
public:
    /// @param name    the class's name, for example "ktCore.ktAnnotationView".
    /// @param parent  the base class's record, null for the root. Only its address is taken, so records may be built in
    ///                any order of initialisation.
    ktRtti(const char* name, const ktRtti* parent) : mName(name), mParent(parent) {}
    ktRtti(const ktRtti&) = delete;
    ktRtti& operator=(const ktRtti&) = delete;

    const std::string& GetName() const { return mName; }
    const ktRtti* GetParent() const { return mParent; }

    /// True when this is type or derives from it.
    bool IsDerived(const ktRtti& type) const {
        for (const ktRtti* record = this; record != nullptr; record = record->mParent) {
            if (record == &type) {
                return true;
            }
        }
        return false;
    }

private:
    std::string mName;
    const ktRtti* mParent;
};

}  // namespace kt
