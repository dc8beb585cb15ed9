#pragma once

/// @file
/// Variants of the minimal platform: standard containers.

#include "platform/system/ktSystemExport.h"
#include "platform/system/variant/ktVariantKey.h"

#include <concepts>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kt {

class ktVariant {
public:
    enum class Kind : std::uint8_t { Undefined, Boolean, Integer, String, Real, Map = 10, List = 11 };
    class ktVariantMapImpl;
    class ktVariantListImpl;

    ktVariant();
    ktVariant(bool value);
    template <std::integral Integer>
    requires(!std::same_as<Integer, bool>) ktVariant(Integer value)
        : ktVariant(Kind::Integer, static_cast<std::int64_t>(value), 0.0) {}
    ktVariant(double value);
    ktVariant(std::string_view text);
    ktVariant(const std::string& text) : ktVariant(std::string_view(text)) {}
    ktVariant(const char* text) : ktVariant(std::string_view(text != nullptr ? text : "")) {}
    ktVariant(ktVariantMapImpl map);
    ktVariant(ktVariantListImpl list);
    ktVariant(const ktVariant& other);
    ktVariant(ktVariant&& other) noexcept;
    ktVariant& operator=(ktVariant other) noexcept;
    ~ktVariant();

    Kind getKind() const { return mKind; }
    bool isString() const { return mKind == Kind::String; }
    bool isNumber() const { return mKind == Kind::Integer || mKind == Kind::Real; }
    bool isMap() const { return mKind == Kind::Map; }
    bool isList() const { return mKind == Kind::List; }
    std::string toString() const;
    bool toBool() const;
    double toReal() const;
    ktVariantMapImpl toMap() const;
    std::string_view getStringView() const { return mText; }
    const ktVariantMapImpl* getMap() const { return mMap.get(); }
    const ktVariantListImpl* getList() const { return mList.get(); }

private:
    ktVariant(Kind kind, std::int64_t integer, double real);

    Kind mKind;
    std::int64_t mInteger = 0;  ///< of booleans, too
    double mReal = 0.0;
    std::string mText;
    std::unique_ptr<ktVariantMapImpl> mMap;
    std::unique_ptr<ktVariantListImpl> mList;
};

class ktVariant::ktVariantMapImpl : public std::map<ktVariantKey, ktVariant, std::less<>> {
public:
    using Entry = value_type;
    ktVariant& operator[](std::string_view key) { return try_emplace(ktVariantKey(key)).first->second; }
};

class ktVariant::ktVariantListImpl : public std::vector<ktVariant> {};

}  // namespace kt
