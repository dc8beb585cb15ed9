#include "tests/render/RenderCompare.h"

#include <unistd.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <regex>
#include <sstream>
#include <utility>

namespace kt::test {

namespace {

namespace fs = std::filesystem;

enum class Renderer { Rsvg, Chromium };

/// A folder of this process only: test cases run side by side.
const fs::path& getScratchFolder() {
    static const fs::path folder = [] {
        fs::path path = fs::path(KT_RENDER_DIR) / std::to_string(getpid());
        fs::create_directories(path);
        return path;
    }();
    return folder;
}

/// For the shell; folders of builds hold no quotes.
std::string quote(const std::string& argument) { return "'" + argument + "'"; }

/// What a command prints to standard output and standard error.
std::string runCommand(const std::string& command) {
    std::string output;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(popen(("{ " + command + "; } 2>&1").c_str(), "r"),
                                                               pclose);
    std::array<char, 4096> buffer{};
    while (const std::size_t count = pipe ? std::fread(buffer.data(), 1, buffer.size(), pipe.get()) : 0) {
        output.append(buffer.data(), count);
    }
    return output;
}

/// The root element's width and height in pixels.
std::pair<long, long> getPixelSize(const std::string& svg) {
    std::smatch match;
    if (!std::regex_search(svg, match, std::regex("width=\"([0-9.]+)mm\" height=\"([0-9.]+)mm\""))) {
        return {100, 100};
    }
    constexpr double pixelsPerMillimetre = 96.0 / 25.4;
    return {std::lround(std::stod(match[1]) * pixelsPerMillimetre),
            std::lround(std::stod(match[2]) * pixelsPerMillimetre)};
}

std::string makeCommand(Renderer renderer, const std::string& svg, const fs::path& source, const fs::path& target) {
    if (renderer == Renderer::Rsvg) {
        return "rsvg-convert --background-color=white -o " + quote(target) + " " + quote(source);
    }
    // Windows have a least size: the picture is cut out of a larger one.
    constexpr long windowMargin = 500;
    const auto [width, height] = getPixelSize(svg);
    std::ostringstream command;
    command << "chromium --headless --no-sandbox --disable-gpu --disable-quic --no-first-run "
               "--disable-background-networking --disable-component-update --disable-sync --hide-scrollbars "
               "--user-data-dir="
            << quote(getScratchFolder() / "chromium") << " --window-size=" << width + windowMargin << ","
            << height + windowMargin << " --screenshot=" << quote(target) << " "
            << quote("file://" + fs::absolute(source).string()) << " && convert " << quote(target) << " -crop " << width
            << "x" << height << "+0+0 +repage " << quote(target);
    return command.str();
}

/// The path of the PNG file; empty, after a test failure, when the renderer is missing or fails.
std::string renderDrawing(Renderer renderer, const std::string& svg, const std::string& name) {
    const fs::path source = getScratchFolder() / (name + ".svg");
    const fs::path target = getScratchFolder() / (name + (renderer == Renderer::Rsvg ? ".rsvg.png" : ".chromium.png"));
    std::ofstream(source, std::ios::binary) << svg;
    fs::remove(target);
    const std::string output = runCommand(makeCommand(renderer, svg, source, target));
    if (!fs::exists(target)) {
        ADD_FAILURE() << "no picture of " << source << ": " << output;
        return {};
    }
    return target;
}

/// How much two pictures differ; 1 as well when they cannot be compared.
double comparePictures(const std::string& pathA, const std::string& pathB) {
    // Renderers round the size of a picture in their own ways. The difference is printed as "<absolute> (<relative>)".
    const std::string scratch = getScratchFolder() / "blurred-";
    const std::string output =
        runCommand("size=$(identify -format %wx%h " + quote(pathB) + ") && convert " + quote(pathA) + " " +
                   quote(pathB) + " -alpha off -colorspace Gray -extent $size -blur 0x3 " + quote(scratch + "%d.png") +
                   " && compare -metric PAE " + quote(scratch + "0.png") + " " + quote(scratch + "1.png") + " null:");
    std::smatch match;
    if (!std::regex_search(output, match, std::regex("\\(([0-9.e+-]+)\\)"))) {
        ADD_FAILURE() << "cannot compare " << pathA << " and " << pathB << ": " << output;
        return 1.0;
    }
    return std::stod(match[1]);
}

}  // namespace

testing::AssertionResult matchesReference(const std::string& svg, const std::string& name, double tolerance) {
    const fs::path reference = fs::path(KT_SOURCE_DIR) / "tests" / "data" / "svg" / (name + ".png");
    if (const char* bless = std::getenv("KT_BLESS"); bless != nullptr && std::string(bless) == "1") {
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
