#include "platform/system/object/ktInstanceMetaData.h"
#include "platform/system/stream/ktBaseStream.h"
#include "platform/system/variant/ktVariant.h"

#include <charconv>

namespace kt {

namespace {

template <typename Number>
std::string print(Number number) {
    char text[32];
    return {text, std::to_chars(text, text + sizeof(text), number).ptr};
}

class MapRecord {
public:
    explicit MapRecord(ktBaseStream& stream) : mStream(stream) {}

    bool readMap(ktVariant::ktVariantMapImpl& map, std::uint32_t count, int level) {
        for (; count != 0; --count) {
            mStream.chargeMemory(1, 32);
            std::string key;
            ktVariant value;
            if (!readText(key) || !readValue(value, level)) {
                return false;
            }
            map[key] = std::move(value);
        }
        return true;
    }

private:
    bool readValue(ktVariant& value, int level) {
        std::uint8_t kind = 0;
        std::uint8_t boolean = 0;
        std::int64_t integer = 0;
        double real = 0.0;
        std::string text;
        std::uint32_t count = 0;
        bool isRead = mStream.readByte(kind);
        switch (static_cast<ktVariant::Kind>(kind)) {
            case ktVariant::Kind::Undefined:
                return isRead;
            case ktVariant::Kind::Boolean:
                isRead = mStream.readByte(boolean);
                value = boolean != 0;
                return isRead;
            case ktVariant::Kind::Integer:
                isRead = mStream.readle(8, 1, &integer);
                value = integer;
                return isRead;
            case ktVariant::Kind::Real:
                isRead = mStream.readle(8, 1, &real);
                value = real;
                return isRead;
            case ktVariant::Kind::String:
                isRead = readText(text);
                value = text;
                return isRead;
            case ktVariant::Kind::Map: {
                ktVariant::ktVariantMapImpl map;
                isRead = level < sMaxVariantMapDepth && mStream.readle(4, 1, &count) && readMap(map, count, level + 1);
                value = std::move(map);
                return isRead;
            }
            case ktVariant::Kind::List: {
                ktVariant::ktVariantListImpl list;
                isRead = level < sMaxVariantMapDepth && mStream.readle(4, 1, &count);
                for (; isRead && count != 0; --count) {
                    mStream.chargeMemory(1, 16);
                    isRead = readValue(list.emplace_back(), level + 1);
                }
                value = std::move(list);
                return isRead;
            }
        }
        return false;
    }

    bool readText(std::string& text) {
        std::int32_t length = 0;
        if (!mStream.readle(4, 1, &length)) {
            return false;
        }
        const auto size = static_cast<std::size_t>(length > 0 ? length : 0);
        const std::byte* bytes = mStream.take(size);
        if (bytes != nullptr) {
            mStream.chargeMemory(size, 1);
            text.assign(reinterpret_cast<const char*>(bytes), size);
        }
        return bytes != nullptr;
    }

    ktBaseStream& mStream;
};

}  // namespace

ktVariant::ktVariant(Kind kind, std::int64_t integer, double real) : mKind(kind), mInteger(integer), mReal(real) {}
ktVariant::ktVariant() : ktVariant(Kind::Undefined, 0, 0.0) {}
ktVariant::ktVariant(bool value) : ktVariant(Kind::Boolean, value ? 1 : 0, 0.0) {}
ktVariant::ktVariant(double value) : ktVariant(Kind::Real, 0, value) {}
ktVariant::ktVariant(std::string_view text) : mKind(Kind::String), mText(text) {}
ktVariant::ktVariant(ktVariantMapImpl map)
    : mKind(Kind::Map), mMap(std::make_unique<ktVariantMapImpl>(std::move(map))) {}
ktVariant::ktVariant(ktVariantListImpl list)
    : mKind(Kind::List), mList(std::make_unique<ktVariantListImpl>(std::move(list))) {}
ktVariant::ktVariant(const ktVariant& other)
    : mKind(other.mKind),
      mInteger(other.mInteger),
      mReal(other.mReal),
      mText(other.mText),
      mMap(other.isMap() ? std::make_unique<ktVariantMapImpl>(*other.mMap) : nullptr),
      mList(other.isList() ? std::make_unique<ktVariantListImpl>(*other.mList) : nullptr) {}
ktVariant::ktVariant(ktVariant&& other) noexcept = default;
ktVariant::~ktVariant() = default;

ktVariant& ktVariant::operator=(ktVariant other) noexcept {
    std::swap(mKind, other.mKind);
    std::swap(mInteger, other.mInteger);
    std::swap(mReal, other.mReal);
    mText.swap(other.mText);
    mMap.swap(other.mMap);
    mList.swap(other.mList);
    return *this;
}

std::string ktVariant::toString() const {
    switch (mKind) {
        case Kind::Boolean:
            return mInteger != 0 ? "true" : "false";
        case Kind::Integer:
            return print(mInteger);
        case Kind::Real:
            return print(mReal);
        default:
            return mText;
    }
}

bool ktVariant::toBool() const {
    return mKind == Kind::String ? mText == "true" || mText == "1" : mInteger != 0 || (isNumber() && mReal != 0.0);
}

double ktVariant::toReal() const {
    if (!isString()) {
        return mKind == Kind::Real ? mReal : static_cast<double>(mInteger);
    }
    const char* const end = mText.data() + mText.size();
    const bool isPlain = mText.find_first_not_of("-+.eE0123456789") == std::string::npos && mText.find("-.") != 0;
    double number = 0.0;
    return isPlain && std::from_chars(mText.data(), end, number).ptr == end ? number : 0.0;
}

ktVariant::ktVariantMapImpl ktVariant::toMap() const { return isMap() ? *mMap : ktVariantMapImpl(); }

void ktInstanceMetaData::LoadVariantMap(ktBaseStream& stream, ktVariant::ktVariantMapImpl& map) {
    map.clear();
    std::uint32_t count = 0;
    if (!stream.readle(4, 1, &count) || !MapRecord(stream).readMap(map, count, 1)) {
        stream.setStreamError();
    }
}

}  // namespace kt
