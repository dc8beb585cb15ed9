#pragma once

/// @file
/// Stand-in for the run-time type record that tells the test when records come into being and go. It is found before
/// the real header.

#include "platform/system/ktSystemExport.h"

#include <string>

namespace kt {

class ktRtti {
public:
    ktRtti(const char* name, const ktRtti* parent);
    ktRtti(const ktRtti&) = delete;
    ktRtti& operator=(const ktRtti&) = delete;
    ~ktRtti();

    const std::string& GetName() const { return mName; }
    const ktRtti* GetParent() const { return mParent; }

private:
    std::string mName;
    const ktRtti* mParent;
};

}  // namespace kt
