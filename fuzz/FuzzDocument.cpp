/// @file
/// Whole binary documents, as the front door reads them. Contract: nothing worse than a refusal or reported problems.

#include "document/ktLegacyDocument.h"
#include "library/ktAnnotationLegacyLibrary.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    kt::initializeKtAnnotationLegacyLibrary();
    return 0;
}

/// Far less than documents may take, so that runs with claims of memory stay short; sound inputs need less still.
constexpr std::uint64_t sMemoryLimit = 1U << 20U;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static constexpr char sMagic[] = {'K', 'T', 'S', 'T', 'R', 'E', 'A', 'M'};
    std::vector<std::uint8_t> document(data, data + size);
    // Inputs without the magic would only exercise the other reader.
    for (std::size_t index = 0; index < sizeof(sMagic) && index < size; ++index) {
        document[index] = static_cast<std::uint8_t>(sMagic[index]);
    }
    ktLegacy::ktLegacyDocument::read(std::as_bytes(std::span(document)),
                                     {.mMemoryLimit = sMemoryLimit, .mIsMapped = false});
    return 0;
}
