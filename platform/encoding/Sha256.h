#pragma once

/// @file
/// SHA-256 digests.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kt::encoding {

/// The SHA-256 digest (FIPS 180-4) of bytes that come in pieces.
class Sha256 {
public:
    void add(std::string_view bytes);
    /// The digest of all that was added, in lower-case hexadecimal. Nothing may be added afterwards.
    std::string finish();

private:
    static constexpr std::size_t sBlockSize = 64;

    void addBlock(const unsigned char* block);

    std::array<std::uint32_t, 8> mState{0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                                        0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
    std::array<unsigned char, sBlockSize> mBlock{};  ///< begun, not full
    std::uint64_t mLength = 0;                       ///< bytes so far
};

}  // namespace kt::encoding
