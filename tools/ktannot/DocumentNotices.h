#pragma once

/// @file
/// What people are told about a document besides its content.

#include "tools/ktannot/Console.h"
#include "tools/ktannot/DocumentLog.h"
#include "tools/ktannot/LegacyDocument.h"

#include <string>
#include <vector>

namespace ktannot {

/// "refused: ..." or "cannot be read: ..." with the document's name in front; for documents without content.
std::string describeRefusal(const LegacyDocument& document);

/// Tells on standard error why a document has no content, which limit it reached, and what was logged while it was
/// read.
void tellNotices(Console& console, const LegacyDocument& document, const std::vector<DocumentLog::Line>& log);

}  // namespace ktannot
