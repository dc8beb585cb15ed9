#pragma once

/// @file
/// Documents to damage, and what is left of them.

#include "document/ktLegacyDocument.h"
#include "legacy/ktAnnotationView.h"
#include "platform/system/stream/ktObjectDocument.h"
#include "tests/legacy/StreamBuilder.h"
#include "tests/tool/TemporaryFolder.h"
#include "tools/ktannot/console/TextOutput.h"
#include "tools/ktannot/report/JsonWriter.h"
#include "tools/ktannot/report/LegacyJson.h"

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
inline std::vector<RecordPlace> findRecords(std::span<const std::byte> document) {
    kt::ktBaseStream stream(document, {});
    std::vector<RecordPlace> records;
    for (std::size_t offset = kt::ktObjectDocument::sHeaderSize; offset < document.size();) {
        RecordPlace& record = records.emplace_back(RecordPlace{0, offset, offset + 4, 0, 0, 0});
        std::uint32_t nameSize = 0;
        std::uint64_t size = 0;
        stream.confine(offset, document.size());
        stream.readle(4, 1, &nameSize);
        stream.confine(record.mTypeName + nameSize, document.size());
        stream.readle(4, 1, &record.mId);
        record.mLength = stream.getOffset();
        stream.readle(8, 1, &size);
        record.mBody = stream.getOffset();
        record.mEnd = offset = record.mBody + size;
    }
    return records;
}

/// Puts a document of version 6.minor together from record bodies.
class DocumentBuilder {
public:
    explicit DocumentBuilder(unsigned int minor) : mRecords(minor) {}

    DocumentBuilder& record(std::string_view type, std::uint32_t id, std::span<const std::byte> body) {
        ++mCount;
        mRecords.text(type).u32(id).u64(body.size()).bytes(body);
        return *this;
    }
    DocumentBuilder& view(std::uint32_t id, std::span<const std::byte> body) {
        return record("ktCore.ktAnnotationView", id, body);
    }
    DocumentBuilder& metadata(std::uint32_t id, const std::vector<std::uint32_t>& links) {
        StreamBuilder body = StreamBuilder().text("").u32(5).count(static_cast<std::uint32_t>(links.size()));
        for (const std::uint32_t link : links) {
            body.u32(link);
        }
        return record("ktCore.ktAnnotationMetadata", id, body);
    }
    Bytes build() const {
        StreamBuilder header;
        header.bytes("KTSTREAM").u32(mRecords.getVersion().toInteger()).u32(mCount);
        return header.bytes(mRecords).getBytes();
    }

private:
    std::uint32_t mCount = 0;
    StreamBuilder mRecords;
};

inline StreamBuilder& addProperties(StreamBuilder& body) { return body.properties("F", 50, 1, 0); }

/// One line of two segments, the second with properties of its own.
inline StreamBuilder& addLines(StreamBuilder& body) {
    return addProperties(body.count(1).count(2).segment("x").segmentStart("2", 1).u8(1));
}

/// A list with a text and a map in a map.
inline StreamBuilder& addMap(StreamBuilder& body) {
    body.pieces(1).pieces(1).bytes("k").u8(11);
    return body.pieces(2).u8(3).pieces(1).bytes("v").u8(10).map("i", 1);
}

/// A view with every part that records of the version have: a text and, if there are any, a raster annotation, children
/// and metadata.
inline StreamBuilder makeFullView(unsigned int minor) {
    StreamBuilder body(minor);
    body.viewStart("front").count(1);
    if (!body.isFrom(15)) {
        addProperties(body.isFrom(14) ? body.text("n") : body).count(1).leader(4, 5, 6, 3);
        return addLines(body).placement(1);
    }
    body.count(1).baseStart("n");
    if (body.isFrom(22)) {
        body.count(3).u8(7).u8(0).u8(3).u8(1).base("c").textEnd("y").u8(1).u8(2).base("d").rasterEnd("q");
        addMap(body);
    }
    addLines(addProperties(body)).base("n").rasterEnd("p");
    return body.isFrom(27) ? addMap(body) : body;
}

/// The record of a view without annotations.
inline StreamBuilder makeSmallView(unsigned int minor, std::string_view name) {
    StreamBuilder body(minor);
    body.viewStart(name).count(0);
    StreamBuilder& counted = body.isFrom(15) ? body.count(0) : body;
    return counted.isFrom(27) ? counted.emptyMap() : counted;
}

/// A document of less than 600 bytes: a full view (id 2), a small one (id 3), a metadata object (id 1) that lists both.
inline Bytes makeSmallDocument(unsigned int minor) {
    return DocumentBuilder(minor)
        .view(2, makeFullView(minor))
        .view(3, makeSmallView(minor, "side"))
        .metadata(1, {3, 2})
        .build();
}

/// A file below the project's folder.
inline Bytes readBytes(const std::string& name) {
    return StreamBuilder().bytes(ktannot::test::readFile(KT_SOURCE_DIR "/" + name)).getBytes();
}

/// The views that were read, each with everything in it, by the offset of their records.
/// @param exceptAt  offset of a record that is left out.
inline std::map<std::uint64_t, std::string> dumpViews(const kt::ktObjectDocument& document,
                                                      std::uint64_t exceptAt = 0) {
    std::map<std::uint64_t, std::string> dumps;
    for (const kt::ktObjectDocument::Object& object : document.getObjects()) {
        auto* view = dynamic_cast<ktLegacy::ktAnnotationView*>(object.mObject.get());
        if (view != nullptr && object.mOffset != exceptAt) {
            ktannot::TextOutput output;
            ktannot::JsonWriter json(output);
            ktLegacy::ktLegacyDocument::View entry;
            entry.mView = view;
            ktannot::LegacyJson(json).writeView(entry, ktLegacy::ktLegacyDocument::Kind::Stream);
            dumps[object.mOffset] = output.takeText();
        }
    }
    return dumps;
}

}  // namespace ktTest
