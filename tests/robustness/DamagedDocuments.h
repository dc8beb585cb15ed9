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
    std::size_t mLength;    ///< of the body length
    std::size_t mBody;
    std::size_t mEnd;
};

/// The records of a sound document in their order.
std::vector<RecordPlace> findRecords(std::span<const std::byte> document);

/// Puts a document of version 6.minor together from record bodies.
class DocumentBuilder {
public:
    explicit DocumentBuilder(unsigned int minor) : mRecords(minor) {}

    DocumentBuilder& record(std::string_view type, std::uint32_t id, std::span<const std::byte> body);
    DocumentBuilder& view(std::uint32_t id, std::span<const std::byte> body) {
        return record("ktCore.ktAnnotationView", id, body);
    }
    DocumentBuilder& metadata(std::uint32_t id, const std::vector<std::uint32_t>& links);
    Bytes build() const;

private:
    std::uint32_t mCount = 0;
    StreamBuilder mRecords;
};

/// A view with every part that records of the version have: a text and, if there are any, a raster annotation, children
/// and metadata.
StreamBuilder makeFullView(unsigned int minor);

/// The record of a view without annotations.
StreamBuilder makeSmallView(unsigned int minor, std::string_view name);

/// A document of less than 600 bytes: a full view (id 2), a small one (id 3), a metadata object (id 1) that lists both.
Bytes makeSmallDocument(unsigned int minor);

/// A file below the project's folder.
Bytes readBytes(const std::string& name);

/// The views that were read, each with everything in it, by the offset of their records.
/// @param exceptAt  offset of a record that is left out.
std::map<std::uint64_t, std::string> dumpViews(const kt::ktObjectDocument& document, std::uint64_t exceptAt = 0);

}  // namespace ktTest
