#include "tools/ktannot/report/JsonWriter.h"

#include "platform/encoding/Hex.h"
#include "platform/encoding/Utf8.h"
#include "platform/system/variant/ktVariantListImpl.h"
#include "platform/system/variant/ktVariantMapImpl.h"

#include <array>
#include <charconv>
#include <cmath>
#include <vector>

namespace ktannot {

namespace {

using Entry = kt::ktVariant::ktVariantMapImpl::Entry;

/// Printable ASCII that stands for itself within quotes.
bool isPlain(char character) { return character >= 0x20 && character < 0x7F && character != '"' && character != '\\'; }

std::size_t countPlain(std::string_view text) {
    std::size_t count = 0;
    while (count < text.size() && isPlain(text[count])) {
        ++count;
    }
    return count;
}

}  // namespace

/// A map or list that is being written: one of the two ranges is in use.
struct JsonWriter::OpenContainer {
    const Entry* mEntry = nullptr;
    const Entry* mEntriesEnd = nullptr;
    const kt::ktVariant* mElement = nullptr;
    const kt::ktVariant* mElementsEnd = nullptr;
    bool mIsMap = false;

    explicit OpenContainer(const kt::ktVariant::ktVariantMapImpl& map)
        : mEntry(map.begin()), mEntriesEnd(map.end()), mIsMap(true) {}
    explicit OpenContainer(const kt::ktVariant::ktVariantListImpl& list)
        : mElement(list.begin()), mElementsEnd(list.end()) {}

    bool isDone() const { return mEntry == mEntriesEnd && mElement == mElementsEnd; }
};

void JsonWriter::endLine() {
    mOutput.write('\n');
    mNeedsSeparator = false;
}

JsonWriter& JsonWriter::key(std::string_view name) {
    separate();
    if (kt::encoding::isValidUtf8(name)) {
        mOutput.write('"');
        writeQuoted(name);
    } else {
        mOutput.write("\"bytes:");
        writeHex(name);
    }
    mOutput.write("\": ");
    mNeedsSeparator = false;
    return *this;
}

void JsonWriter::text(std::string_view bytes) {
    if (countPlain(bytes) != bytes.size() && !kt::encoding::isValidUtf8(bytes)) {
        separate();
        mOutput.write("{\"bytes\": \"");
        writeHex(bytes);
        mOutput.write("\"}");
        return;
    }
    separate();
    mOutput.write('"');
    writeQuoted(bytes);
    mOutput.write('"');
}

void JsonWriter::number(float value) { writeReal(value); }

void JsonWriter::number(double value) { writeReal(value); }

void JsonWriter::boolean(bool value) {
    separate();
    mOutput.write(value ? std::string_view("true") : std::string_view("false"));
}

void JsonWriter::null() {
    separate();
    mOutput.write("null");
}

void JsonWriter::vector(const Wm4::Vector2<float>& value) {
    beginArray();
    number(value[0]);
    number(value[1]);
    endArray();
}

void JsonWriter::vector(const Wm4::Vector3<float>& value) {
    beginArray();
    number(value[0]);
    number(value[1]);
    number(value[2]);
    endArray();
}

void JsonWriter::color(const Wm4::Vector3<unsigned char>& value) {
    beginArray();
    number(value[0]);
    number(value[1]);
    number(value[2]);
    endArray();
}

void JsonWriter::variant(const kt::ktVariant& value) {
    if (value.isMap()) {
        beginObject();
        containers({OpenContainer(*value.getMap())});
    } else if (value.isList()) {
        beginArray();
        containers({OpenContainer(*value.getList())});
    } else {
        scalar(value);
    }
}

void JsonWriter::variant(const kt::ktVariant::ktVariantMapImpl& map) {
    beginObject();
    containers({OpenContainer(map)});
}

void JsonWriter::containers(std::vector<OpenContainer> path) {
    while (!path.empty()) {
        OpenContainer& container = path.back();
        if (container.isDone()) {
            close(container.mIsMap ? '}' : ']');
            path.pop_back();
            continue;
        }
        if (container.mIsMap) {
            key(container.mEntry->first);
        }
        const kt::ktVariant& value = container.mIsMap ? (container.mEntry++)->second : *container.mElement++;
        if (value.isMap()) {
            beginObject();
            path.emplace_back(*value.getMap());
        } else if (value.isList()) {
            beginArray();
            path.emplace_back(*value.getList());
        } else {
            scalar(value);
        }
    }
}

void JsonWriter::scalar(const kt::ktVariant& value) {
    switch (value.getKind()) {
        case kt::ktVariant::Kind::Boolean:
            boolean(value.toBool());
            break;
        case kt::ktVariant::Kind::Integer:
            number(value.toInteger());
            break;
        case kt::ktVariant::Kind::Real:
            number(value.toReal());
            break;
        case kt::ktVariant::Kind::String:
            text(value.getStringView());
            break;
        default:
            null();
            break;
    }
}

void JsonWriter::writeInteger(std::int64_t value) {
    separate();
    std::array<char, 24> digits{};
    mOutput.write({digits.data(), std::to_chars(digits.begin(), digits.end(), value).ptr});
}

void JsonWriter::writeInteger(std::uint64_t value) {
    separate();
    std::array<char, 24> digits{};
    mOutput.write({digits.data(), std::to_chars(digits.begin(), digits.end(), value).ptr});
}

template <typename Real>
void JsonWriter::writeReal(Real value) {
    if (std::isnan(value)) {
        text("NaN");
    } else if (std::isinf(value)) {
        text(value > 0 ? "Infinity" : "-Infinity");
    } else {
        separate();
        std::array<char, 40> digits{};
        mOutput.write({digits.data(), std::to_chars(digits.begin(), digits.end(), value).ptr});
        // As an integer, zero would lose its sign where it is read.
        if (value == 0 && std::signbit(value)) {
            mOutput.write(".0");
        }
    }
}

void JsonWriter::writeQuoted(std::string_view utf8) {
    while (!utf8.empty()) {
        const std::size_t plain = countPlain(utf8);
        mOutput.write(utf8.substr(0, plain));
        utf8.remove_prefix(plain);
        if (utf8.empty()) {
            break;
        }
        const kt::encoding::Utf8Character character = kt::encoding::decodeUtf8(utf8);
        if (character.mCode == '"' || character.mCode == '\\') {
            mOutput.write('\\');
            mOutput.write(utf8.front());
        } else if (kt::encoding::isUnsafeCharacter(character.mCode)) {
            writeEscape(character.mCode);
        } else {
            mOutput.write(utf8.substr(0, character.mLength));
        }
        utf8.remove_prefix(character.mLength);
    }
}

void JsonWriter::writeHex(std::string_view bytes) {
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        mOutput.write(kt::encoding::sHexDigits[value >> 4U]);
        mOutput.write(kt::encoding::sHexDigits[value & 15U]);
    }
}

void JsonWriter::writeEscape(char32_t code) {
    static constexpr std::string_view sShort = "\b\f\n\r\t";
    static constexpr std::string_view sLetters = "bfnrt";
    if (const std::size_t index = code < 0x80 ? sShort.find(static_cast<char>(code)) : std::string_view::npos;
        index != std::string_view::npos) {
        mOutput.write('\\');
        mOutput.write(sLetters[index]);
        return;
    }
    if (code > 0xFFFF) {
        writeEscape(0xD800 + ((code - 0x10000) >> 10U));
        writeEscape(0xDC00 + ((code - 0x10000) & 0x3FFU));
        return;
    }
    mOutput.write("\\u");
    for (unsigned int shift = 16; shift != 0;) {
        shift -= 4;
        mOutput.write(kt::encoding::sHexDigits[(code >> shift) & 15U]);
    }
}

}  // namespace ktannot
