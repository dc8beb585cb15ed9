#pragma once

/// @file
/// Fixture of tests that need the library initialised.

#include "library/ktAnnotationLegacyLibrary.h"

#include <gtest/gtest.h>

namespace ktTest {

class LegacyLibraryTest : public testing::Test {
protected:
    LegacyLibraryTest() { kt::initializeKtAnnotationLegacyLibrary(); }
    ~LegacyLibraryTest() override { kt::terminateKtAnnotationLegacyLibrary(); }
};

}  // namespace ktTest
