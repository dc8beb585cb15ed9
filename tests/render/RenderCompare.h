#pragma once

/// @file
/// Renders drawings with programs that are not ours and compares them with reference pictures.

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <string>

namespace kt::test {

/// The folder for the pictures of this process: test cases run side by side.
inline std::string getScratchFolder() {
    const std::string folder = KT_RENDER_DIR "/" + std::to_string(getpid());
    std::filesystem::create_directories(folder);
    return folder;
}

/// What a command prints to standard output and standard error.
inline std::string runCommand(const std::string& command) {
    std::string output;
    std::FILE* pipe = popen(("{ " + command + "; } 2>&1").c_str(), "r");
    std::array<char, 4096> buffer{};
    while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe)) {
        output.append(buffer.data(), count);
    }
    pclose(pipe);
    return output;
}

/// The command that renders with librsvg.
inline std::string makeRsvgCommand(const std::string& source, const std::string& target) {
    return "rsvg-convert --background-color=white -o '" + target + "' '" + source + "'";
}

/// The command that renders with chromium. Windows have a least size: the picture is cut out of a larger one.
inline std::string makeChromiumCommand(const std::string& svg, const std::string& source, const std::string& target) {
    std::smatch match;
    std::regex_search(svg, match, std::regex("width=\"([0-9.]+)mm\" height=\"([0-9.]+)mm\""));
    const auto getPixels = [&match](std::size_t group) {
        return match.empty() ? 100 : std::lround(std::stod(match[group]) * 96.0 / 25.4);
    };
    const long width = getPixels(1);
    const long height = getPixels(2);
    return "chromium --headless --no-sandbox --disable-gpu --disable-quic --no-first-run "
           "--disable-background-networking "
           "--disable-component-update --disable-sync --hide-scrollbars --user-data-dir='" +
           getScratchFolder() + "/chromium' --window-size=" + std::to_string(width + 500) + "," +
           std::to_string(height + 500) + " --screenshot='" + target + "' 'file://" + source + "' && convert '" +
           target + "' -crop " + std::to_string(width) + "x" + std::to_string(height) + "+0+0 +repage '" + target + "'";
}

/// How much two pictures differ where they differ most: the largest difference, 0 to 1, of the brightness around a
/// point (a Gaussian of 3 pixels). Edges that two renderers draw differently give up to 0.07, a hairline that is
/// missing 0.12 and more. 1 as well when the pictures cannot be compared.
inline double comparePictures(const std::string& pathA, const std::string& pathB) {
    // Renderers round the size of a picture in their own ways. The difference is printed as "<absolute> (<relative>)".
    const std::string scratch = getScratchFolder() + "/blurred-";
    const std::string output =
        runCommand("size=$(identify -format %wx%h '" + pathB + "') && convert '" + pathA + "' '" + pathB +
                   "' -alpha off -colorspace Gray -extent $size -blur 0x3 '" + scratch +
                   "%d.png' && compare -metric PAE '" + scratch + "0.png' '" + scratch + "1.png' null:");
    std::smatch match;
    if (!std::regex_search(output, match, std::regex("\\(([0-9.e+-]+)\\)"))) {
        ADD_FAILURE() << "cannot compare " << pathA << " and " << pathB << ": " << output;
        return 1.0;
    }
    return std::stod(match[1]);
}

/// Renders an SVG file's text at its natural size (96 pixels to an inch) on white with librsvg and chromium and
/// compares with tests/data/svg/<name>.png. With KT_BLESS=1 in the environment the reference is replaced by what
/// rsvg-convert draws: look at it before committing it. A missing reference or renderer is a failure.
inline void expectReference(const std::string& svg, const std::string& name, double tolerance) {
    const std::string reference = KT_SOURCE_DIR "/tests/data/svg/" + name + ".png";
    const std::string source = getScratchFolder() + "/" + name + ".svg";
    std::ofstream(source, std::ios::binary) << svg;
    if (const char* bless = std::getenv("KT_BLESS"); bless != nullptr && std::string(bless) == "1") {
        // Without the time of writing, so that the same picture is the same file.
        runCommand(makeRsvgCommand(source, reference) + " && mogrify -strip -colors 64 '" + reference + "'");
    }
    const std::string target = source + ".png";
    for (const std::string& command : {makeRsvgCommand(source, target), makeChromiumCommand(svg, source, target)}) {
        std::filesystem::remove(target);
        const std::string output = runCommand(command);
        ASSERT_TRUE(std::filesystem::exists(target)) << output;
        EXPECT_LE(comparePictures(target, reference), tolerance) << command;
    }
}

}  // namespace kt::test
