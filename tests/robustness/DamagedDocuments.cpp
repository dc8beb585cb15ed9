#include "tests/robustness/DamagedDocuments.h"

#include "legacy/ktAnnotationView.h"
#include "tests/legacy/StreamBuilder.h"
#include "tools/ktannot/JsonWriter.h"
#include "tools/ktannot/LegacyDocument.h"
#include "tools/ktannot/LegacyJson.h"
#include "tools/ktannot/TextOutput.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace ktTest {

namespace {

constexpr unsigned int sTextType = 1;
constexpr unsigned int sRasterType = 2;

template <typename Number>
Number readNumber(std::span<const std::byte> bytes, std::size_t offset) {
    Number number;
    std::memcpy(&number, bytes.subspan(offset, sizeof(Number)).data(), sizeof(Number));
    return number;
}

void append(Bytes& bytes, std::span<const std::byte> more) { bytes.insert(bytes.end(), more.begin(), more.end()); }

/// One line of two segments, the second with properties of its own.
void addLines(StreamBuilder& body) {
    body.u32(1).u32(2).segment("x").segmentStart("2", 1).u8(1).properties("F", 50, 1, 0);
}

void addText(StreamBuilder& body) {
    if (body.isFrom(15)) {
        body.baseStart("t");
        if (body.isFrom(22)) {
            body.u32(2);
            body.u8(3).u8(sTextType).base("c").textEnd("y");
            body.u8(1).u8(sRasterType).base("d").rasterEnd("q");
            body.map("k", 7);
        }
        body.properties("Arial", 100, 0, 0);
        addLines(body);
        return;
    }
    if (body.isFrom(14)) {
        body.text("t");
    }
    body.properties("Arial", 100, 0, 0).u32(1).leader(4, 5, 6, 0);
    addLines(body);
    body.placement(1);
}

}  // namespace

std::vector<RecordPlace> findRecords(std::span<const std::byte> document) {
    std::vector<RecordPlace> records;
    std::size_t offset = kt::ktObjectDocument::sHeaderSize;
    while (offset < document.size()) {
        RecordPlace record{};
        record.mBegin = offset;
        record.mTypeName = offset + 4;
        record.mIdBegin = record.mTypeName + readNumber<std::uint32_t>(document, record.mBegin);
        record.mId = readNumber<std::uint32_t>(document, record.mIdBegin);
        record.mLength = record.mIdBegin + 4;
        record.mBody = record.mLength + 8;
        record.mEnd = record.mBody + readNumber<std::uint64_t>(document, record.mLength);
        records.push_back(record);
        offset = record.mEnd;
    }
    return records;
}

DocumentBuilder& DocumentBuilder::view(std::uint32_t id, std::span<const std::byte> body) {
    return record("ktCore.ktAnnotationView", id, body);
}

DocumentBuilder& DocumentBuilder::metadata(std::uint32_t id, const std::vector<std::uint32_t>& links) {
    StreamBuilder body(mMinor);
    body.text("").u32(5).u32(static_cast<std::uint32_t>(links.size()));
    for (const std::uint32_t link : links) {
        body.u32(link);
    }
    return record("ktCore.ktAnnotationMetadata", id, body.getBytes());
}

DocumentBuilder& DocumentBuilder::record(std::string_view type, std::uint32_t id, std::span<const std::byte> body) {
    StreamBuilder head(mMinor);
    head.text(type).u32(id).u32(static_cast<std::uint32_t>(body.size())).u32(0);
    append(mRecords, head.getBytes());
    append(mRecords, body);
    ++mCount;
    return *this;
}

Bytes DocumentBuilder::build() const {
    StreamBuilder header(mMinor);
    header.bytes("KTSTREAM").u16(mMinor).u16(6).u32(mCount);
    Bytes document(header.getBytes().begin(), header.getBytes().end());
    append(document, mRecords);
    return document;
}

Bytes makeSmallViewBody(unsigned int minor, std::string_view name) {
    StreamBuilder body(minor);
    body.viewStart(name).u32(0);
    if (body.isFrom(15)) {
        body.u32(0);
    }
    if (body.isFrom(27)) {
        body.emptyMap();
    }
    return {body.getBytes().begin(), body.getBytes().end()};
}

Bytes makeSmallDocument(unsigned int minor) {
    StreamBuilder body(minor);
    body.viewStart("front").u32(1);
    if (body.isFrom(15)) {
        body.u32(1);
    }
    addText(body);
    if (body.isFrom(15)) {
        body.base("r").rasterEnd("pic");
    }
    if (body.isFrom(27)) {
        body.u32(2).text("a").u8(11).u32(2).u8(1).u8(1).u8(3).text("s").text("m").u8(10).map("i", 1);
    }
    return DocumentBuilder(minor)
        .view(2, body.getBytes())
        .view(3, makeSmallViewBody(minor, "side"))
        .metadata(1, {3, 2})
        .build();
}

Bytes readSample(const std::string& name) {
    std::ifstream file(KT_SAMPLES_DIR "/" + name, std::ios::binary);
    const std::vector<char> content{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (content.empty()) {
        throw std::runtime_error("no sample " + name);
    }
    const auto bytes = std::as_bytes(std::span(content));
    return {bytes.begin(), bytes.end()};
}

Bytes resizeBody(const Bytes& document, const RecordPlace& record, std::size_t size) {
    const std::size_t kept = std::min(size, record.mEnd - record.mBody);
    Bytes result(document.begin(), document.begin() + static_cast<std::ptrdiff_t>(record.mBody + kept));
    const std::uint64_t length = size;
    std::memcpy(result.data() + record.mLength, &length, sizeof(length));
    result.resize(record.mBody + size);
    append(result, std::span(document).subspan(record.mEnd));
    return result;
}

std::map<std::uint64_t, std::string> dumpViews(const kt::ktObjectDocument& document, std::uint64_t exceptAt) {
    std::map<std::uint64_t, std::string> dumps;
    for (const kt::ktObjectDocument::Object& object : document.getObjects()) {
        auto* view = dynamic_cast<ktLegacy::ktAnnotationView*>(object.mObject.get());
        if (view != nullptr && object.mOffset != exceptAt) {
            ktannot::TextOutput output;
            ktannot::JsonWriter json(output);
            ktannot::LegacyDocument::View entry;
            entry.mView = view;
            ktannot::LegacyJson(json).writeView(entry, ktannot::LegacyDocument::Kind::Stream);
            dumps[object.mOffset] = output.takeText();
        }
    }
    return dumps;
}

}  // namespace ktTest
