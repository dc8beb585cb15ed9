#pragma once

/// @file
/// Documents to damage, and what is left of them.

#include "platform/system/ktObjectDocument.h"
#include "tests/legacy/StreamBuilder.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ktTest {

using Bytes = std::vector<std::byte>;

/// Where a record of a sound document stands.
struct RecordPlace {
    std::uint32_t mId;
    std::size_t mBegin;     ///< of its head
    std::size_t mTypeName;  ///< first byte of the type name
    std::size_t mIdBegin;
    std::size_t mLength;  ///< of the body length
    std::size_t mBody;
    std::size_t mEnd;
};

/// The records of a sound document in their order.
std::vector<RecordPlace> findRecords(std::span<const std::byte> document);

/// Puts a document of version 6.minor together from record bodies.
class DocumentBuilder {
public:
    explicit DocumentBuilder(unsigned int minor) : mMinor(minor) {}

    DocumentBuilder& view(std::uint32_t id, std::span<const std::byte> body);
    DocumentBuilder& metadata(std::uint32_t id, const std::vector<std::uint32_t>& links);
    DocumentBuilder& record(std::string_view type, std::uint32_t id, std::span<const std::byte> body);
    Bytes build() const;

private:
    unsigned int mMinor;
    std::uint32_t mCount = 0;
    Bytes mRecords;
};

/// What a claim beyond the data leads to.
enum class Claim {
    List,   ///< all at once: the budget ends it
    Text,   ///< all at once, but a negative length is an empty text
    Piece,  ///< piece by piece: the end of the data ends it, or what is then taken for a length of the next field
};

/// A record body and its 32-bit counts.
struct CountedBody {
    struct Field {
        const char* mName;
        std::size_t mOffset;
        Claim mClaim;
    };

    explicit CountedBody(unsigned int minor) : mBody(minor) {}

    void count(const char* name, std::uint32_t value) {
        mark(name, Claim::List);
        mBody.u32(value);
    }
    void text(const char* name, std::string_view value) {
        mark(name, Claim::Text);
        mBody.text(value);
    }
    void mark(const char* name, Claim claim) { mFields.push_back({name, mBody.getSize(), claim}); }

    StreamBuilder mBody;
    std::vector<Field> mFields;
};

/// A view with every part that records of the version have: a text and, if there are any, a raster annotation, children
/// and metadata.
CountedBody makeFullView(unsigned int minor);

/// A document of less than 600 bytes: a full view (id 2), a small one (id 3), a metadata object (id 1) that lists both.
Bytes makeSmallDocument(unsigned int minor);

/// The record of a view without annotations.
Bytes makeSmallViewBody(unsigned int minor, std::string_view name);

Bytes readSample(const std::string& name);

/// The document with the body of a record cut to that size, or filled up to it with NUL bytes. Body length and later
/// records go with it.
Bytes resizeBody(const Bytes& document, const RecordPlace& record, std::size_t size);

/// The views that were read, each with everything in it, by the offset of their records.
/// @param exceptAt  offset of a record that is left out.
std::map<std::uint64_t, std::string> dumpViews(const kt::ktObjectDocument& document, std::uint64_t exceptAt = 0);

}  // namespace ktTest
