#pragma once

/// @file
/// Keys of the minimal platform: texts.

#include <string>
#include <string_view>

namespace kt {

class ktVariantKey : public std::string {
public:
    using Rank = std::string_view;

    ktVariantKey(std::string_view text) : std::string(text) {}
    std::string_view view() const { return *this; }
    Rank getRank() const { return *this; }

    class Constant {
    public:
        consteval Constant(const char* text) : mText(text) {}
        constexpr std::string_view view() const { return mText; }
        constexpr Rank getRank() const { return mText; }

    private:
        std::string_view mText;
    };
};

}  // namespace kt
