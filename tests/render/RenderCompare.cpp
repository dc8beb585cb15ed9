#include "tests/render/RenderCompare.h"

#include <unistd.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>

namespace kt::test {

namespace {

namespace fs = std::filesystem;

/// A folder of this process only: test cases run side by side.
const fs::path& getScratchFolder() {
    static const fs::path folder = [] {
        fs::path path = fs::path(KT_RENDER_DIR) / std::to_string(getpid());
        fs::create_directories(path);
        return path;
    }();
    return folder;
}

std::string quote(const std::string& argument) {
    std::string quoted = "'";
    quoted.append(std::regex_replace(argument, std::regex("'"), "'\\''")).push_back('\'');
    return quoted;
}

struct CommandResult {
    int mStatus = -1;
    std::string mOutput;  ///< standard output and standard error
};

CommandResult runCommand(const std::string& command) {
    CommandResult result;
    std::FILE* pipe = popen(("{ " + command + "; } 2>&1").c_str(), "r");
    if (pipe == nullptr) {
        return result;
    }
    std::array<char, 4096> buffer{};
    while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe)) {
        result.mOutput.append(buffer.data(), count);
    }
    result.mStatus = pclose(pipe);
    return result;
}

struct PixelSize {
    long mWidth = 100;
    long mHeight = 100;
};

/// The root element's size.
PixelSize getPixelSize(const std::string& svg) {
    std::smatch match;
    if (!std::regex_search(svg, match, std::regex("width=\"([0-9.]+)mm\" height=\"([0-9.]+)mm\""))) {
        return {};
    }
    const auto toPixels = [](const std::string& text) {
        constexpr double pixelsPerMillimetre = 96.0 / 25.4;
        return std::lround(std::strtod(text.c_str(), nullptr) * pixelsPerMillimetre);
    };
    return {toPixels(match[1]), toPixels(match[2])};
}

std::string makeCommand(Renderer renderer, const std::string& svg, const fs::path& source, const fs::path& target) {
    if (renderer == Renderer::Rsvg) {
        return "rsvg-convert --background-color=white -o " + quote(target) + " " + quote(source);
    }
    // Windows have a least size: the picture is cut out of a larger one.
    constexpr long windowMargin = 500;
    const PixelSize size = getPixelSize(svg);
    std::ostringstream command;
    command << "chromium --headless --no-sandbox --disable-gpu --disable-quic --no-first-run "
               "--disable-background-networking --disable-component-update --disable-sync --hide-scrollbars "
               "--user-data-dir="
            << quote(getScratchFolder() / "chromium") << " --window-size=" << size.mWidth + windowMargin << ","
            << size.mHeight + windowMargin << " --screenshot=" << quote(target) << " "
            << quote("file://" + fs::absolute(source).string()) << " && convert " << quote(target) << " -crop "
            << size.mWidth << "x" << size.mHeight << "+0+0 +repage " << quote(target);
    return command.str();
}

}  // namespace

std::string renderDrawing(Renderer renderer, const std::string& svg, const std::string& name) {
    const fs::path source = getScratchFolder() / (name + ".svg");
    const fs::path target = getScratchFolder() / (name + (renderer == Renderer::Rsvg ? ".rsvg.png" : ".chromium.png"));
    std::ofstream(source, std::ios::binary) << svg;
    fs::remove(target);
    const CommandResult result = runCommand(makeCommand(renderer, svg, source, target));
    if (!fs::exists(target)) {
        ADD_FAILURE() << "no picture of " << source << ": " << result.mOutput;
        return {};
    }
    return target;
}

double comparePictures(const std::string& pathA, const std::string& pathB) {
    // Prints the difference as "<absolute> (<relative>)"; the status only says whether there is any.
    const CommandResult result =
        runCommand("compare -alpha off -metric RMSE " + quote(pathA) + " " + quote(pathB) + " null:");
    std::smatch match;
    if (!std::regex_search(result.mOutput, match, std::regex("\\(([0-9.e+-]+)\\)"))) {
        ADD_FAILURE() << "cannot compare " << pathA << " and " << pathB << ": " << result.mOutput;
        return 1.0;
    }
    return std::strtod(match[1].str().c_str(), nullptr);
}

testing::AssertionResult matchesReference(const std::string& svg, const std::string& name, double tolerance) {
    const fs::path reference = fs::path(KT_SOURCE_DIR) / "tests" / "data" / "svg" / (name + ".png");
    const char* bless = std::getenv("KT_BLESS");
    if (bless != nullptr && std::string(bless) == "1") {
        // Without the time of writing, so that the same picture is the same file.
        runCommand("convert " + quote(renderDrawing(Renderer::Rsvg, svg, name)) + " -strip -colors 64 " +
                   quote(reference));
    }
    if (!fs::exists(reference)) {
        return testing::AssertionFailure() << "no reference picture " << reference;
    }
    for (const Renderer renderer : {Renderer::Rsvg, Renderer::Chromium}) {
        const std::string picture = renderDrawing(renderer, svg, name);
        const double difference = picture.empty() ? 1.0 : comparePictures(picture, reference);
        if (!(difference <= tolerance)) {
            return testing::AssertionFailure() << picture << " differs from " << reference << " by " << difference;
        }
    }
    return testing::AssertionSuccess();
}

}  // namespace kt::test
