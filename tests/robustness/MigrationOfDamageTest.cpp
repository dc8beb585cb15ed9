#include "tests/legacy/LegacyLibraryTest.h"
#include "tests/robustness/DamagedDocuments.h"
#include "tests/robustness/Drawings.h"
#include "tools/ktannot/LegacyDocument.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace ktTest {
namespace {

class MigrationOfDamageTest : public LegacyLibraryTest {
protected:
    /// Draws the document with every step-th byte changed, and cut off at every step-th byte.
    /// @return how many drawings were made.
    static std::size_t drawDamaged(const Bytes& whole, std::size_t step) {
        std::size_t count = 0;
        for (std::size_t offset = 0; offset < whole.size(); offset += step) {
            const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(offset));
            Bytes damaged = whole;
            damaged[offset] ^= static_cast<std::byte>(1 + offset % 255);
            for (const Bytes& document : {cut, damaged}) {
                const Drawings drawings = draw(ktannot::LegacyDocument::load("test", document));
                EXPECT_EQ(drawings.mXmlError, "") << offset << " of " << whole.size();
                count += drawings.mCount;
            }
        }
        return count;
    }
};

TEST_F(MigrationOfDamageTest, DrawingsOfSmallDocumentsAreWellFormed) {
    for (const unsigned int minor : {13U, 16U, 21U, 27U}) {
        EXPECT_GT(drawDamaged(makeSmallDocument(minor), 7), 0U) << minor;
    }
}

TEST_F(MigrationOfDamageTest, DrawingsOfSamplesAreWellFormed) {
    for (const char* sample : {"symbols_from_617_v615.kts", "ftc_11_from_628_v628.kts", "symbols_v626.json"}) {
        EXPECT_GT(drawDamaged(readSample(sample), 97), 0U) << sample;
    }
}

}  // namespace
}  // namespace ktTest
