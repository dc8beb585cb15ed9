#include "platform/system/json/ktJsonDiagnosis_p.h"

// The parser's stack adds to a null pointer before its first allocation: harmless, but not to clang's sanitizer.
#ifdef __clang__
#pragma clang attribute push(__attribute__((no_sanitize("pointer-overflow"))), apply_to = function)
#endif
#include <rapidjson/error/en.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>
#ifdef __clang__
#pragma clang attribute pop
#endif

#include <algorithm>

namespace kt::impl {

void locateJsonError(std::string_view text, ktJsonError& error) {
    const std::string_view before = text.substr(0, error.mOffset);
    const std::size_t lineFeed = before.rfind('\n');
    const std::string_view line = lineFeed == std::string_view::npos ? before : before.substr(lineFeed + 1);
    // Every byte that does not continue a character begins one.
    const auto beginsCharacter = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; };
    error.mLine = 1 + static_cast<std::uint64_t>(std::count(before.begin(), before.end(), '\n'));
    error.mColumn = 1 + static_cast<std::uint64_t>(std::count_if(line.begin(), line.end(), beginsCharacter));
}

void diagnoseJson(std::string_view text, ktJsonError& error) {
    constexpr unsigned int sFlags =
        rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag | rapidjson::kParseNumbersAsStringsFlag;
    rapidjson::MemoryStream memory(text.data(), text.size());
    rapidjson::EncodedInputStream<rapidjson::UTF8<>, rapidjson::MemoryStream> stream(memory);
    rapidjson::BaseReaderHandler<> ignoreValues;
    rapidjson::Reader reader;
    const rapidjson::ParseResult result = reader.Parse<sFlags>(stream, ignoreValues);
    if (result.IsError()) {
        error.mOffset = std::min<std::uint64_t>(result.Offset(), text.size());
        error.mMessage = rapidjson::GetParseError_En(result.Code());
    }
    locateJsonError(text, error);
}

}  // namespace kt::impl
