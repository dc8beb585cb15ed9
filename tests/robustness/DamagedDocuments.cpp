#include "tests/robustness/DamagedDocuments.h"

#include "legacy/ktAnnotationView.h"
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

void addProperties(CountedBody& body, const char* name) {
    body.text(name, "F");
    body.mBody.u16(50).u8(1).u8(0);
}

void addLeaders(CountedBody& body) {
    body.count("leaders", 1);
    body.mBody.leader(4, 5, 6, 3);
}

/// One line of two segments, the second with properties of its own.
void addLines(CountedBody& body) {
    body.count("lines", 1);
    body.count("segments", 2);
    body.mBody.segment("x");
    if (!body.mBody.isFrom(17)) {
        body.mark("segment text", Claim::Text);
    }
    body.mBody.segmentStart("2", 1).u8(1);
    addProperties(body, "font of a segment");
}

void addMap(CountedBody& body) {
    body.mark("map", Claim::Piece);
    body.mBody.u32(1);
    body.mark("map key", Claim::Piece);
    body.mBody.text("k").u8(11);
    body.mark("list in map", Claim::Piece);
    body.mBody.u32(2).u8(3);
    body.mark("text in map", Claim::Piece);
    body.mBody.text("v").u8(10).map("i", 1);
}

void addBase(CountedBody& body, bool hasChildren) {
    body.text("annotation name", "n");
    addLeaders(body);
    if (body.mBody.isFrom(17)) {
        body.count("measure leaders", 1);
        body.mBody.measure(1, 2);
    }
    body.mBody.placement(1);
    if (!body.mBody.isFrom(22)) {
        return;
    }
    body.count("children", hasChildren ? 3 : 0);
    if (hasChildren) {
        body.mBody.u8(7).u8(0);
        body.mBody.u8(3).u8(sTextType).base("c").textEnd("y");
        body.mBody.u8(1).u8(sRasterType).base("d").rasterEnd("q");
    }
    addMap(body);
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

CountedBody makeFullView(unsigned int minor) {
    CountedBody body(minor);
    body.text("view name", "front");
    body.mBody.vector(1, 2, 3).vector(0, 0, 1).vector(1, 0, 0);
    body.count("text annotations", 1);
    if (body.mBody.isFrom(15)) {
        body.count("raster annotations", 1);
        addBase(body, true);
        addProperties(body, "default font");
        addLines(body);
        addBase(body, false);
        body.text("raster name", "p");
        body.mBody.f32(1).f32(1);
    } else {
        if (body.mBody.isFrom(14)) {
            body.text("annotation name", "n");
        }
        addProperties(body, "default font");
        addLeaders(body);
        addLines(body);
        body.mBody.placement(1);
    }
    if (body.mBody.isFrom(27)) {
        addMap(body);
    }
    return body;
}

Bytes makeSmallDocument(unsigned int minor) {
    return DocumentBuilder(minor)
        .view(2, makeFullView(minor).mBody.getBytes())
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
