#include "tools/ktannot/ToolVersion.h"

namespace ktannot {

const char* getToolVersion() { return KT_TOOL_VERSION; }

}  // namespace ktannot
