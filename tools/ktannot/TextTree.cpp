#include "tools/ktannot/TextTree.h"

#include <array>

namespace ktannot {

namespace {

constexpr std::string_view sBranch = "├─ ";
constexpr std::string_view sLastBranch = "└─ ";
constexpr std::string_view sTrunk = "│  ";
constexpr std::string_view sNoTrunk = "   ";

}  // namespace

void TextTree::root(std::string_view line) {
    mOutput.write(line);
    mOutput.write('\n');
}

void TextTree::line(std::string_view line, bool isLast) {
    mOutput.write(mIndent);
    mOutput.write(isLast ? sLastBranch : sBranch);
    if (mLevel > sMaxDrawnLevels) {
        mOutput.write("[level " + std::to_string(mLevel) + "] ");
    }
    mOutput.write(line);
    mOutput.write('\n');
}

void TextTree::enter(bool isLast) {
    if (++mLevel <= sMaxDrawnLevels) {
        mIndent += isLast ? sNoTrunk : sTrunk;
    }
}

void TextTree::leave() {
    if (mLevel-- <= sMaxDrawnLevels) {
        const bool isTrunk = mIndent.ends_with(sTrunk);
        mIndent.resize(mIndent.size() - (isTrunk ? sTrunk : sNoTrunk).size());
    }
}

std::string TextTree::paint(Style style, std::string_view text) const {
    static constexpr std::array<std::string_view, 4> sColors{"\x1b[1m", "\x1b[36m", "\x1b[2m", "\x1b[31m"};
    if (!mIsColored) {
        return std::string(text);
    }
    return std::string(sColors[static_cast<std::size_t>(style)]).append(text).append("\x1b[0m");
}

}  // namespace ktannot
