#include "platform/annotation/OpenTypeLookups_p.h"

namespace kt::text {

namespace {

constexpr hb_tag_t sSubstitutionTable = HB_TAG('G', 'S', 'U', 'B');
constexpr unsigned sIgnoreBaseGlyphs = 0x2;
constexpr unsigned sIgnoreLigatures = 0x4;

unsigned readNumber(std::string_view bytes, std::size_t offset, unsigned size) {
    if (offset > bytes.size() || bytes.size() - offset < size) {
        return 0;
    }
    unsigned number = 0;
    for (unsigned index = 0; index < size; ++index) {
        number = (number << 8) | static_cast<unsigned char>(bytes[offset + index]);
    }
    return number;
}

std::string_view getBytes(hb_blob_t* blob) {
    unsigned length = 0;
    const char* data = hb_blob_get_data(blob, &length);
    return {data, length};
}

}  // namespace

OpenTypeLookups::OpenTypeLookups(hb_face_t* face, hb_tag_t table)
    : mBlob(hb_face_reference_table(face, table)),
      mBytes(getBytes(mBlob.get())),
      mExtensionType(static_cast<unsigned>(table == sSubstitutionTable
                                               ? static_cast<unsigned>(Substitution::Extension)
                                               : static_cast<unsigned>(Positioning::Extension))) {}

unsigned OpenTypeLookups::read16(std::size_t offset) const { return readNumber(mBytes, offset, 2); }

std::size_t OpenTypeLookups::read32(std::size_t offset) const { return readNumber(mBytes, offset, 4); }

std::size_t OpenTypeLookups::getLookupOffset(unsigned lookup) const {
    const std::size_t list = read16(8);
    return list + read16(list + 2 + 2 * std::size_t{lookup});
}

unsigned OpenTypeLookups::getType(unsigned lookup) const {
    const std::size_t offset = getLookupOffset(lookup);
    const unsigned type = read16(offset);
    return type == mExtensionType ? read16(offset + read16(offset + 6) + 2) : type;
}

bool OpenTypeLookups::skipsLetters(unsigned lookup) const {
    return (read16(getLookupOffset(lookup) + 2) & (sIgnoreBaseGlyphs | sIgnoreLigatures)) != 0;
}

std::vector<std::size_t> OpenTypeLookups::getSubtables(unsigned lookup) const {
    const std::size_t offset = getLookupOffset(lookup);
    const bool isExtension = read16(offset) == mExtensionType;
    std::vector<std::size_t> subtables(read16(offset + 4));
    for (std::size_t index = 0; index < subtables.size(); ++index) {
        const std::size_t subtable = offset + read16(offset + 6 + 2 * index);
        subtables[index] = isExtension ? subtable + read32(subtable + 4) : subtable;
    }
    return subtables;
}

bool OpenTypeLookups::positionsSecondGlyph(unsigned lookup) const {
    for (const std::size_t subtable : getSubtables(lookup)) {
        if (read16(subtable + 6) != 0) {
            return true;
        }
    }
    return false;
}

void OpenTypeLookups::appendPairFirsts(unsigned lookup, std::vector<hb_codepoint_t>& glyphs) const {
    for (const std::size_t subtable : getSubtables(lookup)) {
        const std::vector<hb_codepoint_t> firsts = getCoveredGlyphs(subtable + read16(subtable + 2));
        glyphs.insert(glyphs.end(), firsts.begin(), firsts.end());
    }
}

void OpenTypeLookups::appendLigatureStarts(unsigned lookup, std::vector<GlyphPair>& pairs) const {
    for (const std::size_t subtable : getSubtables(lookup)) {
        const std::vector<hb_codepoint_t> firsts = getCoveredGlyphs(subtable + read16(subtable + 2));
        for (std::size_t set = 0; set < read16(subtable + 4) && set < firsts.size(); ++set) {
            const std::size_t setOffset = subtable + read16(subtable + 6 + 2 * set);
            for (std::size_t ligature = 0; ligature < read16(setOffset); ++ligature) {
                const std::size_t ligatureOffset = setOffset + read16(setOffset + 2 + 2 * ligature);
                if (read16(ligatureOffset + 2) > 1) {
                    pairs.push_back({firsts[set], read16(ligatureOffset + 4)});
                }
            }
        }
    }
}

std::vector<hb_codepoint_t> OpenTypeLookups::getCoveredGlyphs(std::size_t coverage) const {
    std::vector<hb_codepoint_t> glyphs;
    const unsigned count = read16(coverage + 2);
    if (read16(coverage) == 1) {
        for (std::size_t index = 0; index < count; ++index) {
            glyphs.push_back(read16(coverage + 4 + 2 * index));
        }
        return glyphs;
    }
    for (std::size_t index = 0; index < count; ++index) {
        const std::size_t range = coverage + 4 + 6 * index;
        for (hb_codepoint_t glyph = read16(range); glyph <= read16(range + 2); ++glyph) {
            glyphs.push_back(glyph);
        }
    }
    return glyphs;
}

bool hasOnlyKerningPairs(hb_face_t* face) {
    constexpr unsigned sPairList = 0;
    constexpr unsigned sPairClasses = 2;
    hb_blob_t* blob = hb_face_reference_table(face, HB_TAG('k', 'e', 'r', 'n'));
    const std::string_view bytes = getBytes(blob);
    bool isPairsOnly = bytes.empty() || readNumber(bytes, 0, 2) == 0;
    const unsigned count = isPairsOnly ? readNumber(bytes, 2, 2) : 0;
    std::size_t offset = 4;
    for (unsigned index = 0; index < count && offset < bytes.size(); ++index) {
        const unsigned format = readNumber(bytes, offset + 4, 1);
        isPairsOnly = isPairsOnly && (format == sPairList || format == sPairClasses);
        // The length of a single large table does not fit its field; nothing follows such a table.
        offset += count == 1 ? bytes.size() : readNumber(bytes, offset + 2, 2);
    }
    hb_blob_destroy(blob);
    return isPairsOnly;
}

}  // namespace kt::text
