/// @file
/// Variant documents, as the tool reads them: JSON text to views. Contract: nothing worse than a refusal or messages.

#include "library/ktAnnotationLegacyLibrary.h"
#include "tools/ktannot/LegacyDocument.h"

#include <cstddef>
#include <cstdint>
#include <span>

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    kt::initializeKtAnnotationLegacyLibrary();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ktannot::LegacyDocument::load("fuzz", std::as_bytes(std::span(data, size)));
    return 0;
}
