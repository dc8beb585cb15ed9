#include "document/JsonRefusal_p.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace ktLegacy {

namespace {

/// Enough of a text to see what it is.
constexpr std::size_t sSampleSize = 4096;

/// Whether the first character that is not blank begins a JSON object or array.
bool looksLikeJson(std::string_view text) {
    if (text.starts_with("\xEF\xBB\xBF")) {
        text.remove_prefix(3);
    }
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    return first != std::string_view::npos && (text[first] == '{' || text[first] == '[');
}

/// By its byte order mark, or by every other byte of ASCII text being NUL.
bool looksLikeUtf16(std::string_view text) {
    if (text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF")) {
        return true;
    }
    const std::string_view sample = text.substr(0, sSampleSize);
    std::size_t nulCounts[2] = {0, 0};
    for (std::size_t index = 0; index < sample.size(); ++index) {
        nulCounts[index % 2] += sample[index] == '\0' ? 1U : 0U;
    }
    const std::size_t half = sample.size() / 2;
    return half >= 2 && (nulCounts[0] == 0 || nulCounts[1] == 0) &&
           std::max(nulCounts[0], nulCounts[1]) * 10 >= half * 9;
}

ktFindingCode findCause(std::string_view text, const kt::ktJsonError& error) {
    if (error.mIsLimit) {
        return ktFindingCode::JsonLimit;
    }
    if (looksLikeUtf16(text)) {
        return ktFindingCode::Utf16Text;
    }
    const bool isAtControlCharacter = error.mOffset < text.size() &&
                                      static_cast<unsigned char>(text[error.mOffset]) < 0x20 &&
                                      text[error.mOffset] != '\0';
    const bool isBlank = text.find_first_not_of(" \t\r\n") == std::string_view::npos;
    if (!looksLikeJson(text) && !isBlank) {
        const bool isNothingButNuls = text.substr(0, sSampleSize).find_first_not_of('\0') == std::string_view::npos;
        return isNothingButNuls ? ktFindingCode::NulBytes : ktFindingCode::NotADocument;
    }
    if (text.substr(0, sSampleSize).find('\0') != std::string_view::npos) {
        return ktFindingCode::NulBytes;
    }
    return isAtControlCharacter && !isBlank ? ktFindingCode::RawControlCharacter : ktFindingCode::InvalidJson;
}

const char* getBeginning(ktFindingCode code) {
    switch (code) {
        case ktFindingCode::JsonLimit:
            return "a limit of the reader was reached at ";
        case ktFindingCode::NulBytes:
            return "the file holds NUL bytes, so it is no text; not valid JSON at ";
        case ktFindingCode::RawControlCharacter:
            return "a control character stands in a text as it is, where JSON wants an escape; not valid JSON at ";
        case ktFindingCode::NotADocument:
            return "neither a binary document (it does not begin with \"KTSTREAM\") nor valid JSON at ";
        default:
            return "not valid JSON at ";
    }
}

const char* getAdvice(ktFindingCode code) {
    switch (code) {
        case ktFindingCode::JsonLimit:
            return "; split the document";
        case ktFindingCode::NulBytes:
            return "; get a whole copy of the document";
        default:
            return "; correct it there or export the document again";
    }
}

}  // namespace

ktLegacyFinding makeJsonRefusal(std::span<const std::byte> bytes, const kt::ktJsonError& error) {
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const ktFindingCode code = findCause(text, error);
    ktLegacyFinding finding(code);
    if (code == ktFindingCode::Utf16Text) {
        finding.mWhat += ": convert it, for example with iconv -f UTF-16 -t UTF-8";
        return finding;
    }
    std::string reason = error.mMessage;
    while (reason.ends_with('.')) {
        reason.pop_back();
    }
    finding.mWhat = getBeginning(code) + ("line " + std::to_string(error.mLine)) + ", column " +
                    std::to_string(error.mColumn) + " (byte " + std::to_string(error.mOffset) + "): " + reason +
                    getAdvice(code);
    finding.mLine = error.mLine;
    finding.mColumn = error.mColumn;
    finding.mOffset = error.mOffset;
    return finding;
}

}  // namespace ktLegacy
