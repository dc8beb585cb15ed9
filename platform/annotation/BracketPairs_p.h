#pragma once

/// @file
/// Brackets that belong together.

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace kt::text {

/// The bracket pairs of a line, as the ordering of its characters sees them: pairs nest, and reach neither into a
/// directional isolate nor out of one. At most 63 are open at a time, as the algorithm says; and what stands between an
/// outermost pair holds at most 256 pairs, so that ordering costs the same per character however long the line is.
/// Brackets beyond these limits have no partner.
class BracketPairs {
public:
    static constexpr std::size_t sNone = static_cast<std::size_t>(-1);

    void find(std::u32string_view line);

    /// Position of the bracket's partner; sNone for a bracket without one and for every other character.
    std::size_t getPartner(std::size_t position) const;
    /// Whether the character is a bracket by its nature.
    static bool isBracket(char32_t character);

private:
    struct Opening {
        char32_t mClosing;
        std::size_t mPosition;
    };

    void close(char32_t character, std::size_t position);
    void leaveIsolate();
    std::size_t getIsolateStart() const { return mIsolateStarts.empty() ? 0 : mIsolateStarts.back(); }

    std::vector<std::uint32_t> mPartners;  ///< by position, 1 above the partner's
    std::vector<Opening> mOpenings;
    std::vector<std::size_t> mIsolateStarts;  ///< numbers of openings
    std::size_t mPairCount = 0;               ///< since none was open
};

}  // namespace kt::text
