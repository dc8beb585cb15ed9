#include "tests/migration/MigrationTestSupport.h"

namespace migrationtest {
namespace {

class MigrationDriverTest : public MigrationTest {
protected:
    kt::ktPointer<kt::ktCadAnnotationView> migrateView(int flags = 0) {
        ktLegacy::ktAnnotationMigration migration(flags, giveRaster, nullptr, 3.0F);
        kt::ktPointer<kt::ktCadAnnotationView> result;
        const bool isGood = migration.migrateAnnotationView(mView, result);
        EXPECT_EQ(isGood, result != nullptr);
        return result;
    }

    kt::ktPointer<ktLegacy::ktAnnotationView> mView{new ktLegacy::ktAnnotationView};
};

TEST_F(MigrationDriverTest, SkipsNullEntriesAndRefusesNullViewsAndUsedResults) {
    mView->mAnnotations = {nullptr};
    kt::ktPointer<kt::ktCadAnnotationView> result = migrateView();
    ASSERT_NE(result, nullptr);
    EXPECT_TRUE(result->mAnnotations.empty());
    const kt::ktCadAnnotationView* before = result.get();
    ktLegacy::ktAnnotationMigration migration(7, giveRaster, nullptr, 3.0F);
    EXPECT_FALSE(migration.migrateAnnotationView(mView, result));
    EXPECT_EQ(result.get(), before);
    mView.reset();
    EXPECT_EQ(migrateView(), nullptr);
    EXPECT_EQ(takeLog(), Strings());
}

TEST_F(MigrationDriverTest, ConvertsEveryFlagsByte) {
    for (unsigned int byte = 0; byte < 256; ++byte) {
        SCOPED_TRACE(byte);
        const auto raster = makeRaster("r", 10.0F, 4.0F);
        raster->setFlags(static_cast<std::uint8_t>(byte));
        const Annotation annotation = migrate(raster);
        // By the upper three bits: ignore depth 0x20, scale locked 0x40 or else 0x10, frame not locked 0x80.
        constexpr int expected[8] = {0x90, 0xB0, 0xC0, 0xE0, 0x10, 0x30, 0x40, 0x60};
        ASSERT_EQ(annotation != nullptr, (byte & 0x0F) != 0x0F) << "the last frame code is undefined";
        EXPECT_TRUE(annotation == nullptr || annotation->mFlags == expected[byte >> 5]);
    }
    EXPECT_EQ(takeLog(), Strings());
}

}  // namespace
}  // namespace migrationtest
