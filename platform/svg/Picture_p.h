#pragma once

/// @file
/// Pictures for embedding.

#include "platform/svg/SvgWriter.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace kt::svg {

class TextBuffer;

/// What an image's source holds, told by its content: the bytes of a PNG, JPEG, GIF or WebP file, as they are or in a
/// data URI. Nothing else is a picture; above all no SVG and no reference to elsewhere.
class Picture {
public:
    /// Largest picture file, in bytes: as base64 it stays below the 10,000,000 bytes that XML parsers allow an
    /// attribute.
    static constexpr std::size_t sMaxSize = 7'400'000;

    /// The source must outlive the picture.
    explicit Picture(std::string_view source);

    /// Why a picture cannot be embedded.
    struct Problem {
        SvgWriter::Warning::Kind mKind;
        std::string_view mText;
    };

    /// Null when the picture can be embedded.
    const Problem* getProblem() const { return mProblem; }

    /// Whether the file is cut or its head says what cannot be; only when there is no problem. It can be embedded all
    /// the same: readers show what there is.
    bool isDamaged() const;

    /// Bytes of the data URI; only when there is no problem.
    std::size_t getDataUriSize() const;
    /// Appends the picture as a data URI; only when there is no problem.
    void appendDataUri(TextBuffer& buffer) const;

private:
    void readDataUri(std::string_view uri);
    void setType(std::string_view head);

    std::string_view mBytes;      ///< the file, when the source is one
    std::string mBase64;          ///< the file, when the source is a data URI
    std::string_view mMediaType;  ///< by content
    const Problem* mProblem = nullptr;
};

}  // namespace kt::svg
