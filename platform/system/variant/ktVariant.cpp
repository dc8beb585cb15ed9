#include "platform/system/variant/ktVariant.h"

#include "platform/encoding/JsonNumber.h"
#include "platform/system/variant/ktVariantStorage_p.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace kt {

namespace {

std::string printReal(double number) {
    std::array<char, 32> text{};
    const auto result = std::to_chars(text.data(), text.data() + text.size(), number);
    return {text.data(), result.ptr};
}

double parseReal(std::string_view text) {
    const encoding::JsonNumber number = encoding::JsonNumber::parse(text.data(), text.data() + text.size());
    return number.mEnd != nullptr && number.mEnd == text.data() + text.size() ? number.toReal() : 0.0;
}

std::int64_t cutToInteger(double number) noexcept {
    constexpr double sLimit = 9223372036854775808.0;  // 2^63, the first number above all integers
    if (std::isnan(number)) {
        return 0;
    }
    if (number >= sLimit) {
        return std::numeric_limits<std::int64_t>::max();
    }
    return number < -sLimit ? std::numeric_limits<std::int64_t>::min() : static_cast<std::int64_t>(number);
}

}  // namespace

ktVariant::ktVariant(std::string_view text) { setText(text); }

ktVariant::ktVariant(const char* text) : ktVariant(text != nullptr ? std::string_view(text) : std::string_view()) {}

ktVariant::ktVariant(const ktVariantMapImpl& map) {
    setContainer(Kind::Map, impl::ktVariantStorage::copyTree(Kind::Map, map.mBlock));
}

ktVariant::ktVariant(ktVariantMapImpl&& map) noexcept { setContainer(Kind::Map, std::exchange(map.mBlock, nullptr)); }

ktVariant::ktVariant(const ktVariantListImpl& list) {
    setContainer(Kind::List, impl::ktVariantStorage::copyTree(Kind::List, list.mBlock));
}

ktVariant::ktVariant(ktVariantListImpl&& list) noexcept {
    setContainer(Kind::List, std::exchange(list.mBlock, nullptr));
}

std::string_view ktVariant::getLongText() const noexcept { return impl::ktVariantStorage::loadLongText(mBytes); }

void ktVariant::setText(std::string_view text) {
    if (text.size() > sMaxInlineText) {
        impl::ktVariantStorage::storeLongText(mBytes, text);
        setTag(static_cast<std::uint8_t>(Kind::String) | sOwnsStorage);
        return;
    }
    if (!text.empty()) {
        std::memcpy(mBytes, text.data(), text.size());
    }
    store(sInlineLengthOffset, static_cast<std::uint8_t>(text.size()));
    setTag(static_cast<std::uint8_t>(Kind::String));
}

void ktVariant::copyOwner(const ktVariant& other) {
    if (other.isString()) {
        setText(other.getStringView());
    } else {
        setContainer(other.getKind(),
                     impl::ktVariantStorage::copyTree(other.getKind(), impl::ktVariantStorage::getBlock(other)));
    }
}

void ktVariant::releaseStorage() noexcept {
    if (isString()) {
        impl::ktVariantStorage::releaseText(getLongText());
    } else if (impl::ktVariantBlock* block = impl::ktVariantStorage::getBlock(*this); block != nullptr) {
        impl::ktVariantStorage::destroyTree(getKind(), block);
    }
}

std::string ktVariant::toString() const {
    switch (getKind()) {
        case Kind::String:
            return std::string(getStringView());
        case Kind::Boolean:
            return load<bool>(0) ? "true" : "false";
        case Kind::Integer:
            return std::to_string(load<std::int64_t>(0));
        case Kind::Real:
            return printReal(load<double>(0));
        default:
            return {};
    }
}

bool ktVariant::toBool() const noexcept {
    switch (getKind()) {
        case Kind::Boolean:
            return load<bool>(0);
        case Kind::Integer:
            return load<std::int64_t>(0) != 0;
        case Kind::Real:
            return load<double>(0) != 0.0;
        case Kind::String:
            return getStringView() == "true" || getStringView() == "1";
        default:
            return false;
    }
}

double ktVariant::convertToReal() const noexcept {
    switch (getKind()) {
        case Kind::Boolean:
            return load<bool>(0) ? 1.0 : 0.0;
        case Kind::Integer:
            return static_cast<double>(load<std::int64_t>(0));
        case Kind::Real:
            return load<double>(0);
        case Kind::String:
            return parseReal(getStringView());
        default:
            return 0.0;
    }
}

std::int64_t ktVariant::toInteger() const noexcept {
    return getKind() == Kind::Integer ? load<std::int64_t>(0) : cutToInteger(toReal());
}

ktVariant::ktVariantMapImpl ktVariant::toMap() const {
    const ktVariantMapImpl* map = getMap();
    return map != nullptr ? *map : ktVariantMapImpl();
}

ktVariant::ktVariantListImpl ktVariant::toList() const {
    const ktVariantListImpl* list = getList();
    return list != nullptr ? *list : ktVariantListImpl();
}

bool ktVariant::operator==(const ktVariant& other) const { return impl::ktVariantStorage::equalValues(*this, other); }

}  // namespace kt
