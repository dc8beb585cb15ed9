#include "tools/ktannot/report/TextTree.h"

#include <array>

namespace ktannot {

namespace {

constexpr std::string_view sBranch = "├─ ";
constexpr std::string_view sLastBranch = "└─ ";
constexpr std::string_view sTrunk = "│  ";
constexpr std::string_view sNoTrunk = "   ";

}  // namespace

void TextTree::root(std::string_view text) {
    mOutput.write(text);
    mOutput.write('\n');
}

void TextTree::enter(std::size_t lineCount) {
    // The first level stands directly below the root.
    if (!mLinesToCome.empty() && mLinesToCome.size() < sMaxDrawnLevels) {
        mIndent += mLinesToCome.back() == 0 ? sNoTrunk : sTrunk;
    }
    mLinesToCome.push_back(lineCount);
}

void TextTree::leave() {
    mLinesToCome.pop_back();
    if (!mLinesToCome.empty() && mLinesToCome.size() < sMaxDrawnLevels) {
        mIndent.resize(mIndent.size() - (mIndent.ends_with(sTrunk) ? sTrunk : sNoTrunk).size());
    }
}

void TextTree::line(std::string_view text) {
    const bool isLast = --mLinesToCome.back() == 0;
    mOutput.write(mIndent);
    mOutput.write(isLast ? sLastBranch : sBranch);
    if (mLinesToCome.size() > sMaxDrawnLevels) {
        mOutput.write("[level " + std::to_string(mLinesToCome.size()) + "] ");
    }
    mOutput.write(text);
    mOutput.write('\n');
}

std::string TextTree::paint(Style style, std::string_view text) const {
    static constexpr std::array<std::string_view, 4> sColors{"\x1b[1m", "\x1b[36m", "\x1b[2m", "\x1b[31m"};
    if (!mIsColored) {
        return std::string(text);
    }
    return std::string(sColors[static_cast<std::size_t>(style)]).append(text).append("\x1b[0m");
}

}  // namespace ktannot
