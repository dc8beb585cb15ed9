#pragma once

/// @file
/// Reads of single values that the map forms share.

#include "platform/system/variant/ktVariant.h"
#include "platform/system/variant/ktVariantListImpl.h"
#include "platform/system/variant/ktVariantMapImpl.h"
#include "platform/wm4/Wm4Vector3.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace ktLegacy::reading {

using VariantMap = kt::ktVariant::ktVariantMapImpl;
using VariantList = kt::ktVariant::ktVariantListImpl;

/// Keys to look for, in ascending byte order.
template <std::size_t Count>
using Keys = std::array<kt::ktVariantKey::Constant, Count>;

/// Makes the keys of a table; it does not compile when they are out of order.
template <typename... Texts>
consteval Keys<sizeof...(Texts)> makeKeys(Texts... texts) {
    const std::array<std::string_view, sizeof...(Texts)> ordered{texts...};
    if (!std::is_sorted(ordered.begin(), ordered.end())) {
        throw std::invalid_argument("keys must ascend");
    }
    return {kt::ktVariantKey::Constant(texts)...};
}

/// Finds all keys in one pass, as the entries of a map ascend too. Absent keys give null. Ranks are compared for speed:
/// benchmarks/RESULTS.md, key ranks.
template <std::size_t Count>
std::array<const kt::ktVariant*, Count> findKeys(const VariantMap& map, const Keys<Count>& keys) {
    std::array<const kt::ktVariant*, Count> values{};
    std::size_t wanted = 0;
    for (const auto& entry : map) {
        const kt::ktVariantKey::Rank rank = entry.first.getRank();
        while (keys[wanted].getRank() < rank) {
            if (++wanted == Count) {
                return values;
            }
        }
        if (keys[wanted].getRank() == rank) {
            values[wanted] = &entry.second;
            if (++wanted == Count) {
                return values;
            }
        }
    }
    return values;
}

/// The value of one key, null when it is absent.
inline const kt::ktVariant* findKey(const VariantMap& map, std::string_view key) {
    const auto entry = map.find(key);
    return entry != map.end() ? &entry->second : nullptr;
}

/// The text of a value: the bytes of a string are looked at in place, other kinds are converted. Null is no text.
class VariantText {
public:
    explicit VariantText(const kt::ktVariant* value) {
        if (value == nullptr) {
            return;
        }
        if (value->isString()) {
            mText = value->getStringView();
        } else {
            mText = mConverted.emplace(value->toString());
        }
    }
    VariantText(const VariantText&) = delete;
    VariantText& operator=(const VariantText&) = delete;
    ~VariantText() = default;

    std::string_view get() const { return mText; }

private:
    std::optional<std::string> mConverted;
    std::string_view mText;
};

/// A switch; absent is off.
inline bool readSwitch(const kt::ktVariant* value) { return value != nullptr && value->toBool(); }

/// The list of a value, null when it is absent or of another kind.
inline const VariantList* getList(const kt::ktVariant* value) { return value != nullptr ? value->getList() : nullptr; }

inline float toFloat(const kt::ktVariant& value) { return static_cast<float>(value.toReal()); }

/// Sets a vector from a list of exactly three values, whatever their kind; else false.
inline bool readTriple(const kt::ktVariant* value, Wm4::Vector3<float>& vector) {
    const VariantList* list = getList(value);
    if (list == nullptr || list->size() != 3) {
        return false;
    }
    vector = {toFloat((*list)[0]), toFloat((*list)[1]), toFloat((*list)[2])};
    return true;
}

/// Sets a vector from a list of exactly three numbers; else false.
inline bool readVector(const kt::ktVariant* value, Wm4::Vector3<float>& vector) {
    const VariantList* list = getList(value);
    return list != nullptr &&
           std::all_of(list->begin(), list->end(), [](const kt::ktVariant& number) { return number.isNumber(); }) &&
           readTriple(value, vector);
}

/// A word of a document and what it stands for.
template <typename Enumeration>
struct Word {
    std::string_view mWord;
    Enumeration mValue;
};

/// The value of a word; words compare exactly.
template <typename Enumeration, std::size_t Count>
Enumeration readWord(std::string_view word, const std::array<Word<Enumeration>, Count>& words, Enumeration otherwise) {
    const auto* found = std::find_if(words.begin(), words.end(),
                                     [word](const Word<Enumeration>& candidate) { return candidate.mWord == word; });
    return found != words.end() ? found->mValue : otherwise;
}

}  // namespace ktLegacy::reading
