#pragma once

/// @file
/// JSON text to variants.

#include "platform/system/ktSystemExport.h"
#include "platform/system/variant/ktVariant.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace kt {

class ktJsonSink;

/// Why a text was refused.
struct ktJsonError {
    std::uint64_t mLine = 0;    ///< from 1; lines end with a line feed
    std::uint64_t mColumn = 0;  ///< characters from 1
    std::uint64_t mOffset = 0;  ///< bytes from the first byte of the text
    std::string mMessage;       ///< an English sentence without the place
    bool mIsLimit = false;      ///< a limit of the reader was reached; the text may be valid JSON
};

/// Numbers of a text that are beyond double.
struct ktJsonOverflow {
    std::uint64_t mCount = 0;
    ktJsonError mFirst;  ///< line, column and offset of the first one
};

/// Reads JSON texts (RFC 8259, in UTF-8) and nothing else: every byte is checked, a byte order mark is skipped. Objects
/// become maps, of repeated keys the last value counts; arrays become lists, null becomes undefined. Numbers without
/// fraction and exponent that fit 64 bits become integers, all others reals; numbers beyond double become infinite,
/// and are counted. Escapes of lone surrogates are refused. Nesting needs memory, but no call stack.
///
/// A reader keeps its working memory from one text to the next; it is used by one thread at a time.
class KT_SYSTEM_API ktJsonReader {
public:
    ktJsonReader();
    ktJsonReader(const ktJsonReader&) = delete;
    ktJsonReader& operator=(const ktJsonReader&) = delete;
    ~ktJsonReader();

    /// Reads one text into value. False, with the reason in error and value undefined, when it is refused.
    /// Throws std::bad_alloc.
    bool parse(std::span<const std::byte> text, ktVariant& value, ktJsonError& error);
    /// The same, with what the sink takes left out of value. Also throws what the sink throws.
    bool parse(std::span<const std::byte> text, ktVariant& value, ktJsonError& error, ktJsonSink& sink);

    /// The numbers of the text that was read last which are beyond double.
    const ktJsonOverflow& getOverflow() const;

private:
    class Impl;

    bool parseFor(ktJsonSink* sink, std::span<const std::byte> text, ktVariant& value, ktJsonError& error);

    std::unique_ptr<Impl> mImpl;
};

}  // namespace kt
