#pragma once

/// @file
/// Key of a variant map.

#include "platform/system/ktSystemExport.h"

#include <bit>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iosfwd>
#include <string_view>

namespace kt {

namespace impl {
class ktVariantBuilder;
class ktVariantStorage;
}  // namespace impl

/// A text of any bytes in 16 bytes; up to 15 lie inside. Compares in byte order.
class KT_SYSTEM_API ktVariantKey {
public:
    /// Longest text that needs no storage of its own.
    static constexpr std::size_t sMaxInlineText = 15;

    explicit ktVariantKey(std::string_view text) {
        if (text.size() > sMaxInlineText) {
            setLong(text);
        } else {
            if (!text.empty()) {
                std::memcpy(mBytes, text.data(), text.size());
            }
            setTag(static_cast<std::uint8_t>(text.size()));
        }
    }
    ktVariantKey(const ktVariantKey& other) {
        if (other.isLong()) {
            setLong(other.view());
        } else {
            std::memcpy(mBytes, other.mBytes, sizeof(mBytes));
        }
    }
    ktVariantKey(ktVariantKey&& other) noexcept {
        std::memcpy(mBytes, other.mBytes, sizeof(mBytes));
        std::memset(other.mBytes, 0, sizeof(mBytes));
    }
    ktVariantKey& operator=(const ktVariantKey&) = delete;
    ~ktVariantKey() {
        if (isLong()) {
            releaseStorage();
        }
    }

    std::string_view view() const noexcept {
        return isLong() ? getLongText() : std::string_view(reinterpret_cast<const char*>(mBytes), getTag());
    }
    operator std::string_view() const noexcept { return view(); }
    const char* data() const noexcept { return view().data(); }
    std::size_t size() const noexcept { return view().size(); }
    bool empty() const noexcept { return getTag() == 0; }

    friend bool operator==(const ktVariantKey& a, const ktVariantKey& b) noexcept {
        return a.isLong() || b.isLong() ? a.view() == b.view() : std::memcmp(a.mBytes, b.mBytes, sizeof(mBytes)) == 0;
    }
    friend bool operator==(const ktVariantKey& a, std::string_view b) noexcept { return a.view() == b; }
    friend std::strong_ordering operator<=>(const ktVariantKey& a, const ktVariantKey& b) noexcept {
        if (a.isLong() || b.isLong()) {
            return a.view() <=> b.view();
        }
        // Unused bytes are 0 and the length comes last: as two numbers, most significant byte first, short texts
        // compare as texts do.
        const std::strong_ordering order = a.loadNumber(0) <=> b.loadNumber(0);
        return order != 0 ? order : a.loadNumber(sizeof(std::uint64_t)) <=> b.loadNumber(sizeof(std::uint64_t));
    }
    friend std::strong_ordering operator<=>(const ktVariantKey& a, std::string_view b) noexcept {
        return a.view() <=> b;
    }

    /// Stands for a text where it is compared with constants: two numbers that compare as the texts do.
    struct Rank {
        std::uint64_t mHigh = 0;
        std::uint64_t mLow = 0;

        bool operator==(const Rank& other) const noexcept { return ((mHigh ^ other.mHigh) | (mLow ^ other.mLow)) == 0; }
        bool operator<(const Rank& other) const noexcept {
            return mHigh != other.mHigh ? mHigh < other.mHigh : mLow < other.mLow;
        }
    };
    Rank getRank() const noexcept {
        return isLong() ? getLongRank() : Rank{loadNumber(0), loadNumber(sizeof(std::uint64_t))};
    }

    /// A short text to look for, as a constant.
    class Constant {
    public:
        consteval Constant(const char* text) : mText(text) {
            if (mText.size() > sMaxInlineText) {
                throw "too long for a constant";
            }
            for (std::size_t index = 0; index < sMaxInlineText; ++index) {
                const auto byte = index < mText.size() ? static_cast<unsigned char>(mText[index]) : 0U;
                std::uint64_t& number = index < sizeof(std::uint64_t) ? mRank.mHigh : mRank.mLow;
                number = number << 8 | byte;
            }
            mRank.mLow = mRank.mLow << 8 | mText.size();
        }

        constexpr std::string_view view() const noexcept { return mText; }
        constexpr const Rank& getRank() const noexcept { return mRank; }

    private:
        std::string_view mText;
        Rank mRank;
    };

    friend KT_SYSTEM_API std::ostream& operator<<(std::ostream& out, const ktVariantKey& key);

private:
    friend class impl::ktVariantBuilder;
    friend class impl::ktVariantStorage;

    static constexpr std::size_t sTagOffset = 15;
    static constexpr std::uint8_t sLongTag = 0xFF;

    std::uint8_t getTag() const noexcept { return static_cast<std::uint8_t>(mBytes[sTagOffset]); }
    void setTag(std::uint8_t tag) noexcept { mBytes[sTagOffset] = std::byte{tag}; }
    bool isLong() const noexcept { return getTag() == sLongTag; }
    std::uint64_t loadNumber(std::size_t offset) const noexcept {
        std::uint64_t number = 0;
        std::memcpy(&number, mBytes + offset, sizeof(number));
        return std::endian::native == std::endian::little ? __builtin_bswap64(number) : number;
    }
    std::string_view getLongText() const noexcept;
    Rank getLongRank() const noexcept;
    void setLong(std::string_view text);
    void releaseStorage() noexcept;

    // The last byte is the length of a short text, whose bytes come first and are followed by zeros; or sLongTag after
    // pointer and length (48 bits).
    alignas(8) std::byte mBytes[16]{};
};

static_assert(sizeof(ktVariantKey) == 16);

}  // namespace kt
