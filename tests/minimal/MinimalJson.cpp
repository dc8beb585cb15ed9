#include "platform/system/json/ktJsonSink.h"
#include "platform/system/json/ktVariantJson.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace kt {

namespace {

using Map = ktVariant::ktVariantMapImpl;
using List = ktVariant::ktVariantListImpl;

/// Reads JSON that is well formed; anything else is refused where it is met.
class Parser {
public:
    Parser(std::string_view text, ktJsonSink* sink) : mText(text), mSink(sink) {}

    bool parse(ktVariant& value) {
        if (mText.starts_with("\xEF\xBB\xBF")) {
            mText.remove_prefix(3);
        }
        const bool isRead = next() == '[' && mSink != nullptr ? readRecords(value) : readValue(value, true);
        return isRead && next() == '\0' && mText.empty();
    }
    std::size_t getRemaining() const { return mText.size(); }

private:
    char next() {
        mText.remove_prefix(std::min(mText.find_first_not_of(" \t\r\n"), mText.size()));
        return mText.empty() ? '\0' : mText.front();
    }
    bool take(std::string_view token) {
        next();
        if (!mText.starts_with(token)) {
            return false;
        }
        mText.remove_prefix(token.size());
        return true;
    }
    /// The elements between brackets.
    template <typename ReadElement>
    bool readSequence(std::string_view open, std::string_view close, const ReadElement& readElement) {
        if (!take(open)) {
            return false;
        }
        if (take(close)) {
            return true;
        }
        do {
            if (!readElement()) {
                return false;
            }
        } while (take(","));
        return take(close);
    }

    bool readRecords(ktVariant& value) {
        value = List();
        return readSequence("[", "]", [this] {
            ktVariant record;
            const bool isRead = readValue(record, true);
            if (isRead) {
                mSink->takeRecord(record);
            }
            return isRead;
        });
    }

    bool readValue(ktVariant& value, bool isRecord) {
        switch (next()) {
            case '{':
                return readMap(value, isRecord);
            case '[':
                return readList(value);
            case '"': {
                std::string text;
                const bool isRead = readText(text);
                value = text;
                return isRead;
            }
            case 't':
            case 'f':
                value = next() == 't';
                return take("true") || take("false");
            case 'n':
                value = ktVariant();
                return take("null");
            default:
                return readNumber(value);
        }
    }

    bool readMap(ktVariant& value, bool isRecord) {
        Map map;
        const bool isRead = readSequence("{", "}", [&] {
            std::string key;
            ktVariant element;
            if (next() != '"' || !readText(key) || !take(":")) {
                return false;
            }
            const bool isOffered = isRecord && mSink != nullptr && next() == '[' && mSink->beginList(key);
            const bool isElementRead = isOffered ? offerList(element) : readValue(element, false);
            map[key] = std::move(element);
            return isElementRead;
        });
        value = std::move(map);
        return isRead;
    }

    bool offerList(ktVariant& value) {
        value = List();
        return readSequence("[", "]", [this] {
            ktVariant element;
            const bool isRead = readValue(element, false);
            if (isRead) {
                mSink->takeElement(element);
            }
            return isRead;
        });
    }

    bool readList(ktVariant& value) {
        List list;
        const bool isRead = readSequence("[", "]", [&] { return readValue(list.emplace_back(), false); });
        value = std::move(list);
        return isRead;
    }

    bool readText(std::string& text) {
        for (mText.remove_prefix(1); !mText.empty() && mText.front() != '"'; mText.remove_prefix(1)) {
            if (mText.front() != '\\') {
                text += mText.front();
                continue;
            }
            mText.remove_prefix(1);
            constexpr std::string_view sLetters = "\"\\/bfnrt";
            const std::size_t letter = mText.empty() ? std::string_view::npos : sLetters.find(mText.front());
            if (letter != std::string_view::npos) {
                text += "\"\\/\b\f\n\r\t"[letter];
            } else if (!readUnit(text)) {
                return false;
            }
        }
        return take("\"");
    }

    /// A character of two or three bytes that is written as "\uXXXX"; the u stands in front.
    bool readUnit(std::string& text) {
        unsigned unit = 0;
        if (mText.size() < 5 || std::from_chars(&mText[1], &mText[1] + 4, unit, 16).ptr != &mText[1] + 4) {
            return false;
        }
        if (unit >= 0x800) {
            text += static_cast<char>(0xE0U | (unit >> 12U));
            text += static_cast<char>(0x80U | (unit >> 6U & 0x3FU));
        } else if (unit >= 0x80) {
            text += static_cast<char>(0xC0U | (unit >> 6U));
        }
        text += static_cast<char>(unit < 0x80 ? unit : (0x80U | (unit & 0x3FU)));
        mText.remove_prefix(4);
        return true;
    }

    bool readNumber(ktVariant& value) {
        const std::string_view digits = mText.substr(0, mText.find_first_not_of("-+.eE0123456789"));
        const char* const end = digits.data() + digits.size();
        std::int64_t integer = 0;
        double real = 0.0;
        if (std::from_chars(digits.data(), end, integer).ptr == end && !digits.empty()) {
            value = integer;
        } else if (const auto [last, failure] = std::from_chars(digits.data(), end, real);
                   last == end && failure == std::errc{} && !digits.empty()) {
            value = real;
        } else {
            return false;
        }
        mText.remove_prefix(digits.size());
        return true;
    }

    std::string_view mText;
    ktJsonSink* mSink;
};

}  // namespace

class ktJsonReader::Impl {};

/// Numbers beyond double are refused here, as what cannot be read.
const ktJsonOverflow& ktJsonReader::getOverflow() const {
    static const ktJsonOverflow sNone{};
    return sNone;
}

ktJsonReader::ktJsonReader() = default;
ktJsonReader::~ktJsonReader() = default;
ktJsonSink::~ktJsonSink() = default;

bool ktJsonReader::parse(std::span<const std::byte> text, ktVariant& value, ktJsonError& error) {
    return parseFor(nullptr, text, value, error);
}

bool ktJsonReader::parse(std::span<const std::byte> text, ktVariant& value, ktJsonError& error, ktJsonSink& sink) {
    return parseFor(&sink, text, value, error);
}

bool ktJsonReader::parseFor(ktJsonSink* sink, std::span<const std::byte> text, ktVariant& value, ktJsonError& error) {
    Parser parser({reinterpret_cast<const char*>(text.data()), text.size()}, sink);
    const bool isRead = parser.parse(value);
    error.mOffset = text.size() - parser.getRemaining();
    error.mMessage = isRead ? "" : "This is no JSON.";
    return isRead;
}

}  // namespace kt
