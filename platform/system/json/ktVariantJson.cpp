#include "platform/system/json/ktVariantJson.h"

#include "platform/encoding/Hex.h"
#include "platform/encoding/JsonNumber.h"
#include "platform/encoding/Utf8.h"
#include "platform/system/json/ktJsonDiagnosis_p.h"
#include "platform/system/json/ktJsonSink.h"
#include "platform/system/memory/ktBlockPool.h"
#include "platform/system/memory/ktLimits.h"
#include "platform/system/variant/ktVariantBuilder_p.h"

#include <simdjson.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <new>
#include <string_view>

namespace kt {

namespace {

constexpr std::string_view sByteOrderMark = "\xEF\xBB\xBF";

bool isBlank(char character) { return character == ' ' || character == '\n' || character == '\r' || character == '\t'; }

/// Turns the escapes of a text into the bytes they stand for.
class Unescaper {
public:
    /// The text without escapes, valid until the next call; null data when an escape is wrong.
    std::string_view unescape(std::string_view text) {
        mText.clear();
        while (!text.empty()) {
            const std::size_t plain = std::min(text.find('\\'), text.size());
            mText.append(text.substr(0, plain));
            text.remove_prefix(plain);
            const char* escape = text.data();
            if (!text.empty() && !readEscape(text)) {
                mFault = escape;
                return {};
            }
        }
        return mText;
    }

    /// Where the wrong escape stands.
    const char* getFault() const { return mFault; }

private:
    static constexpr std::uint32_t sNoCode = 0xFFFFFFFF;

    bool readEscape(std::string_view& text) {
        if (text.size() < 2) {
            return false;
        }
        constexpr std::string_view sLetters = "\"\\/bfnrt";
        constexpr std::string_view sMeanings = "\"\\/\b\f\n\r\t";
        if (text[1] == 'u') {
            return readCodePoint(text);
        }
        const std::size_t letter = sLetters.find(text[1]);
        if (letter == std::string_view::npos) {
            return false;
        }
        mText += sMeanings[letter];
        text.remove_prefix(2);
        return true;
    }

    /// The code unit of an escape "\uXXXX" at the front of text, which it is taken from.
    static std::uint32_t takeCodeUnit(std::string_view& text) {
        constexpr std::size_t sEscapeSize = 6;
        if (text.size() < sEscapeSize || text[0] != '\\' || text[1] != 'u') {
            return sNoCode;
        }
        std::uint32_t unit = 0;
        const char* end = text.data() + sEscapeSize;
        for (const char* digit = text.data() + 2; digit != end; ++digit) {
            const int value = encoding::hexValue(*digit);
            if (value < 0) {
                return sNoCode;
            }
            unit = unit * 16 + static_cast<std::uint32_t>(value);
        }
        text.remove_prefix(sEscapeSize);
        return unit;
    }

    bool readCodePoint(std::string_view& text) {
        std::uint32_t code = takeCodeUnit(text);
        if (code == sNoCode || (code >= 0xDC00 && code <= 0xDFFF)) {
            return false;
        }
        if (code >= 0xD800 && code <= 0xDBFF) {
            const std::uint32_t low = takeCodeUnit(text);
            if (low < 0xDC00 || low > 0xDFFF) {
                return false;
            }
            code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
        }
        encoding::appendUtf8(code, mText);
        return true;
    }

    std::string mText;
    const char* mFault = nullptr;
};

/// Goes from token to token of a text. Held in registers while the text is read, so it is handed only to functions that
/// are inlined.
struct Tokens {
    const char* mText;
    const std::uint32_t* mNext;  ///< offset of the next token
    const std::uint32_t* mLast;  ///< behind the last token stands the size of the text
    bool mExpectsValue = true;

    char character() const { return mNext == mLast ? '\0' : mText[*mNext]; }
    const char* position() const { return mText + *mNext; }
};

}  // namespace

/// Goes over the text twice: the first stage of simdjson checks the encoding and the quotes and lists where tokens
/// begin; the second builds the variants from token to token.
class ktJsonReader::Impl {
public:
    bool parse(std::string_view text, ktJsonSink* sink, ktVariant& value, ktJsonError& error) {
        const Cleanup cleanup(*this);
        mText = text;
        mSink = sink;
        mOverflow = ktJsonOverflow();
        if (!findTokens(error)) {
            return false;
        }
        const std::uint32_t* first = mIndex->structural_indexes.get();
        Tokens tokens{mText.data(), first, first + mIndex->n_structural_indexes};
        const char* fault = readDocument(tokens);
        if (fault != nullptr) {
            error.mOffset = getFaultOffset(tokens, fault);
            error.mMessage = fault;
            error.mIsLimit = fault == sTooDeep;
            return false;
        }
        value = mBuilder.take();
        return true;
    }

    ktJsonOverflow mOverflow;

private:
    /// Leaves nothing of a text behind, however its reading ends.
    class Cleanup {
    public:
        explicit Cleanup(Impl& impl) : mImpl(impl) {}
        Cleanup(const Cleanup&) = delete;
        Cleanup& operator=(const Cleanup&) = delete;
        ~Cleanup() {
            mImpl.mScratch.leave();
            mImpl.mBuilder.clear();
        }

    private:
        Impl& mImpl;
    };

    static constexpr const char* sWrongEscape = "Invalid escape in string.";
    static constexpr const char* sTooDeep = "Arrays and objects are nested deeper than this reader accepts.";

    bool findTokens(ktJsonError& error) {
        if (mText.size() > std::numeric_limits<std::uint32_t>::max() - simdjson::SIMDJSON_PADDING) {
            error.mMessage = "The text is larger than the 4 GiB that this reader accepts.";
            error.mIsLimit = true;
            return false;
        }
        growIndex();
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(mText.data());
        const simdjson::error_code code = mIndex->stage1(bytes, mText.size(), simdjson::stage1_mode::regular);
        if (code == simdjson::MEMALLOC) {
            throw std::bad_alloc();
        }
        if (code != simdjson::SUCCESS) {
            error.mMessage = simdjson::error_message(code);
            return false;
        }
        return true;
    }

    void growIndex() {
        if (mIndex != nullptr && mIndex->capacity() >= mText.size()) {
            return;
        }
        // The depth concerns the parser's own second stage, which is not used.
        constexpr std::size_t sUnusedDepth = 1;
        mIndex.reset();
        const simdjson::implementation* active = simdjson::get_active_implementation();
        if (active->create_dom_parser_implementation(mText.size(), sUnusedDepth, mIndex) != simdjson::SUCCESS) {
            throw std::bad_alloc();
        }
    }

    std::size_t getFaultOffset(const Tokens& tokens, const char* fault) const {
        if (fault == sWrongEscape) {
            return static_cast<std::size_t>(mUnescaper.getFault() - mText.data());
        }
        return tokens.mNext == tokens.mLast ? mText.size() : *tokens.mNext;
    }

    /// Reads the one value of the text. Null, or what is wrong at the next token. Each step reads one token or two and
    /// says whether a value comes next; no step calls another for a nested value.
    const char* readDocument(Tokens& allTokens) {
        Tokens tokens = allTokens;
        const char* fault = nullptr;
        while (fault == nullptr && (tokens.mExpectsValue || mBuilder.getDepth() != 0)) {
            if (tokens.mExpectsValue) {
                fault = readValue(tokens);
            } else {
                fault = mBuilder.isInMap() ? readMapPart(tokens) : readListPart(tokens);
            }
        }
        if (fault == nullptr && tokens.mNext != tokens.mLast) {
            fault = "The document must end after its one value.";
        }
        allTokens = tokens;
        return fault;
    }

    /// What follows a value in a map.
    [[gnu::always_inline]] const char* readMapPart(Tokens& tokens) {
        switch (tokens.character()) {
            case '}':
                ++tokens.mNext;
                mBuilder.end();
                return nullptr;
            case ',':
                ++tokens.mNext;
                return readKey(tokens);
            default:
                return "Missing a comma or } after an object member.";
        }
    }

    /// What follows a value in a list.
    [[gnu::always_inline]] const char* readListPart(Tokens& tokens) {
        const bool isOffered = mBuilder.isInOfferedList();
        if (isOffered) {
            offerElement();
        }
        switch (tokens.character()) {
            case ']':
                ++tokens.mNext;
                endList(isOffered);
                return nullptr;
            case ',':
                ++tokens.mNext;
                tokens.mExpectsValue = true;
                return nullptr;
            default:
                return "Missing a comma or ] after an array element.";
        }
    }

    /// Reads a key and its colon.
    [[gnu::always_inline]] const char* readKey(Tokens& tokens) {
        if (tokens.character() != '"') {
            return "Missing a name for object member.";
        }
        const bool isRead = readText(tokens, [this](const auto& key) { mBuilder.addKey(key); });
        if (!isRead) {
            return sWrongEscape;
        }
        if (tokens.character() != ':') {
            return "Missing a colon after a name of object member.";
        }
        ++tokens.mNext;
        tokens.mExpectsValue = true;
        return nullptr;
    }

    [[gnu::always_inline]] const char* readValue(Tokens& tokens) {
        tokens.mExpectsValue = false;
        switch (tokens.character()) {
            case '{':
                return beginMap(tokens);
            case '[':
                return beginList(tokens);
            case '"':
                return readString(tokens);
            case 't':
                return readWord(tokens, "true", true);
            case 'f':
                return readWord(tokens, "false", false);
            case 'n':
                return readWord(tokens, "null", ktVariant());
            default:
                return readNumber(tokens);
        }
    }

    bool isTooDeep() const { return mBuilder.getDepth() == sMaxJsonDepth; }

    [[gnu::always_inline]] const char* beginMap(Tokens& tokens) {
        if (isTooDeep()) {
            return sTooDeep;
        }
        ++tokens.mNext;
        mBuilder.beginMap();
        if (tokens.character() == '}') {
            ++tokens.mNext;
            mBuilder.end();
            return nullptr;
        }
        return readKey(tokens);
    }

    [[gnu::always_inline]] const char* beginList(Tokens& tokens) {
        if (isTooDeep()) {
            return sTooDeep;
        }
        ++tokens.mNext;
        const bool isOffered = mSink != nullptr && mBuilder.getDepth() <= sMaxRecordDepth && beginOfferedList();
        if (!isOffered) {
            mBuilder.beginList();
        }
        if (tokens.character() == ']') {
            ++tokens.mNext;
            endList(isOffered);
            return nullptr;
        }
        tokens.mExpectsValue = true;
        return nullptr;
    }

    void endList(bool isOffered) {
        if (isOffered) {
            mScratch.leave();
        }
        mBuilder.end();
    }

    /// Begins a list whose elements go to the sink; false when the list is not such a one.
    [[gnu::noinline]] bool beginOfferedList() {
        if (mBuilder.getDepth() == 0) {
            mBuilder.beginOfferedList();
            return true;
        }
        if (!mBuilder.isInRecord() || !mSink->beginList(mBuilder.getLooseKey())) {
            return false;
        }
        mBuilder.beginOfferedList();
        mScratch.rewind();
        mScratch.enter();
        return true;
    }

    /// Hands the element that was read last to the sink and drops it.
    [[gnu::noinline]] void offerElement() {
        if (mBuilder.getDepth() == 1) {
            mSink->takeRecord(mBuilder.getLastValue());
            mBuilder.dropLastValue();
            return;
        }
        mScratch.leave();
        mSink->takeElement(mBuilder.getLastValue());
        if (mScratch.isCompact()) {
            mBuilder.forgetLastValue();
        } else {
            mBuilder.dropLastValue();
        }
        mScratch.rewind();
        mScratch.enter();
    }

    [[gnu::always_inline]] const char* readString(Tokens& tokens) {
        return readText(tokens, [this](const auto& text) { mBuilder.addValue(text); }) ? nullptr : sWrongEscape;
    }

    /// Passes over the string token and gives its text to add; false when an escape is wrong.
    template <typename Add>
    [[gnu::always_inline]] bool readText(Tokens& tokens, Add add) {
        // Behind the string there are only blanks before the next token, so its closing quote is found from there.
        const std::size_t begin = *tokens.mNext + std::size_t{1};
        std::size_t end = tokens.mNext[1] - std::size_t{1};
        while (mText[end] != '"') {
            --end;
        }
        const std::size_t size = end - begin;
        if (impl::ktShortText::sIsSupported && size <= impl::ktShortText::sMaxSize &&
            mText.size() - begin >= impl::ktShortText::sReadableSize) {
            const impl::ktShortText text(mText.data() + begin, size);
            if (!text.hasBackslash()) {
                ++tokens.mNext;
                add(text);
                return true;
            }
        }
        if (!addLongText(mText.substr(begin, size), add)) {
            return false;
        }
        ++tokens.mNext;
        return true;
    }

    template <typename Add>
    [[gnu::noinline]] bool addLongText(std::string_view text, Add add) {
        if (text.find('\\') != std::string_view::npos) {
            text = mUnescaper.unescape(text);
            if (text.data() == nullptr) {
                return false;
            }
        }
        add(text);
        return true;
    }

    template <typename Value>
    [[gnu::always_inline]] const char* readWord(Tokens& tokens, std::string_view word, Value&& value) {
        if (mText.compare(*tokens.mNext, word.size(), word) != 0 ||
            !endsToken(mText.data() + *tokens.mNext + word.size())) {
            return "Invalid value.";
        }
        ++tokens.mNext;
        mBuilder.addValue(std::forward<Value>(value));
        return nullptr;
    }

    [[gnu::always_inline]] const char* readNumber(Tokens& tokens) {
        const std::size_t begin = *tokens.mNext;
        if (mText.size() - begin >= encoding::JsonNumber::sShortReadableSize) [[likely]] {
            const encoding::JsonNumber number = encoding::JsonNumber::parseShort(mText.data() + begin);
            if (number.mEnd != nullptr && endsToken(number.mEnd)) [[likely]] {
                ++tokens.mNext;
                addNumber(number);
                return nullptr;
            }
        }
        return readLongNumber(tokens);
    }

    void addNumber(const encoding::JsonNumber& number) {
        if (number.mIsInteger) {
            mBuilder.addValue(number.mInteger);
        } else {
            mBuilder.addValue(number.mReal);
        }
    }

    [[gnu::always_inline]] const char* readLongNumber(Tokens& tokens) {
        const char* end = mText.data() + mText.size();
        const encoding::JsonNumber number = tokens.mNext == tokens.mLast
                                                ? encoding::JsonNumber()
                                                : encoding::JsonNumber::parse(mText.data() + *tokens.mNext, end);
        if (number.mEnd == nullptr || !endsToken(number.mEnd)) {
            return "Invalid value.";
        }
        if (std::isinf(number.mReal) && mOverflow.mCount++ == 0) {
            mOverflow.mFirst.mOffset = *tokens.mNext;
        }
        ++tokens.mNext;
        addNumber(number);
        return nullptr;
    }

    /// Whether a number or word may end before position: nothing of the same token follows.
    bool endsToken(const char* position) const {
        if (position == mText.data() + mText.size()) {
            return true;
        }
        const char next = *position;
        return next == ',' || next == '}' || next == ']' || isBlank(next);
    }

    /// Maps and lists around the entries of a record.
    static constexpr std::size_t sMaxRecordDepth = 2;

    std::string_view mText;
    ktJsonSink* mSink = nullptr;
    std::unique_ptr<simdjson::internal::dom_parser_implementation> mIndex;
    impl::ktVariantBuilder mBuilder;
    ktBlockPool::Scratch mScratch;  ///< entered within a list of elements that the sink takes, but not for the sink
    Unescaper mUnescaper;
};

ktJsonReader::ktJsonReader() : mImpl(std::make_unique<Impl>()) {}

ktJsonReader::~ktJsonReader() = default;

const ktJsonOverflow& ktJsonReader::getOverflow() const { return mImpl->mOverflow; }

bool ktJsonReader::parse(std::span<const std::byte> text, ktVariant& value, ktJsonError& error) {
    return parseFor(nullptr, text, value, error);
}

bool ktJsonReader::parse(std::span<const std::byte> text, ktVariant& value, ktJsonError& error, ktJsonSink& sink) {
    return parseFor(&sink, text, value, error);
}

bool ktJsonReader::parseFor(ktJsonSink* sink, std::span<const std::byte> text, ktVariant& value, ktJsonError& error) {
    std::string_view characters(reinterpret_cast<const char*>(text.data()), text.size());
    const bool hasMark = characters.starts_with(sByteOrderMark);
    characters.remove_prefix(hasMark ? sByteOrderMark.size() : 0);
    value = ktVariant();
    error = ktJsonError();
    if (mImpl->parse(characters, sink, value, error)) {
        if (mImpl->mOverflow.mCount != 0) {
            impl::locateJsonError(characters, mImpl->mOverflow.mFirst);
            mImpl->mOverflow.mFirst.mOffset += hasMark ? sByteOrderMark.size() : 0;
        }
        return true;
    }
    if (error.mIsLimit) {
        impl::locateJsonError(characters, error);
    } else {
        impl::diagnoseJson(characters, error);
    }
    error.mOffset += hasMark ? sByteOrderMark.size() : 0;
    return false;
}

}  // namespace kt
