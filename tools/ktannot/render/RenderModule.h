#pragma once

/// @file
/// Loading of the module that draws pages.

#include "tools/ktannot/render/PageRenderer.h"

#include <memory>
#include <string>

namespace ktannot {

/// The module beside the tool's libraries that draws PNG and PDF. Loaded when it is asked for first, and kept then.
class RenderModule {
public:
    /// Null when the module cannot be loaded.
    /// @param failure  why, and what to do about it.
    static std::unique_ptr<PageRenderer> createRenderer(std::string& failure);
};

}  // namespace ktannot
