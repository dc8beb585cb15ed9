#pragma once

/// @file
/// What people are told about a document besides its content.

#include "tools/ktannot/DocumentLog.h"
#include "tools/ktannot/LegacyDocument.h"
#include "tools/ktannot/console/Console.h"

#include <string>
#include <vector>

namespace ktannot {

/// "refused: ..." or "cannot be read: ..." with the document's name in front; for documents without content.
std::string describeRefusal(const LegacyDocument& document);

/// Tells on standard error why a document has no content, or which limit it reached; nothing when all is well.
void tellRefusal(Console& console, const LegacyDocument& document);

/// Tells on standard error what was logged while a document was worked on.
void tellLog(Console& console, const LegacyDocument& document, const std::vector<DocumentLog::Line>& lines);

}  // namespace ktannot
