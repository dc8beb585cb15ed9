#pragma once

/// @file
/// What people are told about a document besides its content.

#include "tools/ktannot/console/Console.h"
#include "tools/ktannot/report/SourceDocument.h"

#include <string>

namespace ktannot {

/// "refused: ..." or "cannot be read: ..." with the document's name in front; for documents without content.
std::string describeRefusal(const SourceDocument& document);

/// Tells on standard error why a document has no content, or which limit it reached; nothing when all is well.
void tellRefusal(Console& console, const SourceDocument& document);

}  // namespace ktannot
