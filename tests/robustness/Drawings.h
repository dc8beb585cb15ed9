#pragma once

/// @file
/// From documents to their drawings.

#include "tools/ktannot/LegacyDocument.h"

#include <cstddef>
#include <string>

namespace ktTest {

struct Drawings {
    std::size_t mCount = 0;      ///< views that could be migrated and written
    std::string mXmlError = {};  ///< of the first drawing that is not well-formed; empty when all are
};

/// Migrates every view of a document and writes its drawing. What the migration logs is dropped: failures are what the
/// documents are made for.
Drawings draw(const ktannot::LegacyDocument& document);

}  // namespace ktTest
