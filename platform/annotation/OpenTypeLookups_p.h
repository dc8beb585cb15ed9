#pragma once

/// @file
/// What a font's layout lookups are, as far as HarfBuzz does not tell.

#include <hb.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace kt::text {

/// Reads the lookup list of a GSUB or GPOS table. Whatever lies outside the table reads as 0.
class OpenTypeLookups {
public:
    /// Lookup types of GSUB.
    enum class Substitution : unsigned {
        Single = 1,
        Multiple,
        Alternate,
        Ligature,
        Context,
        ChainContext,
        Extension,
        Reverse
    };
    /// Lookup types of GPOS.
    enum class Positioning : unsigned {
        Single = 1,
        Pair,
        Cursive,
        MarkToBase,
        MarkToLigature,
        MarkToMark,
        Context,
        ChainContext,
        Extension
    };

    struct GlyphPair {
        hb_codepoint_t mFirst;
        hb_codepoint_t mSecond;
    };

    /// @param table  'GSUB' or 'GPOS'.
    OpenTypeLookups(hb_face_t* face, hb_tag_t table);

    /// The type of the lookup, that of its content when it is an extension lookup.
    unsigned getType(unsigned lookup) const;
    /// Whether the lookup looks past base glyphs or ligatures, so that its neighbours need not be adjacent.
    bool skipsLetters(unsigned lookup) const;
    /// Whether any pair positioning of the lookup has a place for the second glyph.
    bool positionsSecondGlyph(unsigned lookup) const;
    /// Appends the glyphs that any pair positioning of the lookup takes for the first of a pair.
    void appendPairFirsts(unsigned lookup, std::vector<hb_codepoint_t>& glyphs) const;
    /// Appends the first two components of all ligatures of the lookup.
    void appendLigatureStarts(unsigned lookup, std::vector<GlyphPair>& pairs) const;

private:
    struct BlobDeleter {
        void operator()(hb_blob_t* blob) const { hb_blob_destroy(blob); }
    };

    unsigned read16(std::size_t offset) const;
    std::size_t read32(std::size_t offset) const;
    std::size_t getLookupOffset(unsigned lookup) const;
    std::vector<std::size_t> getSubtables(unsigned lookup) const;
    std::vector<hb_codepoint_t> getCoveredGlyphs(std::size_t coverage) const;

    std::unique_ptr<hb_blob_t, BlobDeleter> mBlob;
    std::string_view mBytes;
    unsigned mExtensionType;
};

/// Whether the font's 'kern' table, if it has one, holds lists of pairs only.
bool hasOnlyKerningPairs(hb_face_t* face);

}  // namespace kt::text
