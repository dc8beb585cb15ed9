#include "tools/ktannot/render/RenderModule.h"

#include <dlfcn.h>

#include <filesystem>
#include <system_error>

namespace ktannot {

namespace {

/// The module in the tool's own build, or where it is installed, relative to the tool.
void* openModule() {
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
    for (const char* place : {KT_RENDER_MODULE_BUILT, KT_RENDER_MODULE_INSTALLED}) {
        const std::filesystem::path path = folder / place;
        if (std::filesystem::exists(path, error)) {
            return dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
        }
    }
    return nullptr;
}

}  // namespace

std::unique_ptr<PageRenderer> RenderModule::createRenderer(std::string& failure) {
    static void* const sModule = openModule();
    static const std::string sFailure = [] {
        const char* reason = sModule == nullptr ? dlerror() : nullptr;
        return std::string(reason != nullptr ? reason : KT_RENDER_MODULE_BUILT " is not there");
    }();
    void* const create = sModule != nullptr ? dlsym(sModule, sCreatePageRenderer) : nullptr;
    if (create == nullptr) {
        failure = "PDF and PNG are drawn by librsvg and Cairo, which cannot be loaded (" + sFailure +
                  "): install the packages librsvg2-2 and libcairo2";
        return nullptr;
    }
    return std::unique_ptr<PageRenderer>(reinterpret_cast<CreatePageRenderer*>(create)());
}

}  // namespace ktannot
