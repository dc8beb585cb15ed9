#pragma once

/// @file
/// Legacy annotations, captured logs and looks at new ones for the migration tests.

#include "migration/ktAnnotationMigration.h"
#include "tests/legacy/LegacyLibraryTest.h"
#include "tests/support/RecordingLog.h"
#include "tests/svg/MakeItems.h"

#include <cmath>
#include <string>
#include <utility>
#include <vector>

namespace migrationtest {

using Vector2 = Wm4::Vector2<float>;
using Vector3 = Wm4::Vector3<float>;
using Legacy = ktLegacy::ktAnnotationInterface;
using Raster = kt::ktPointer<ktLegacy::ktAnnotationRaster>;
using kt::test::lettersOf;
using ktLegacy::addChild;
using Strings = std::vector<std::string>;
using testing::ElementsAre;

/// Any raster name is good but "missing"; the data is the name again.
inline bool giveRaster(const std::string& name, std::string& data, void*) {
    data = name;
    return name != "missing";
}

/// The size in em that becomes exactly these drawing units.
inline float emOf(float units) {
    float em = units / 3.175F;
    for (int step = 0; step < 4 && em * 3.175F != units; ++step) {
        em = std::nextafter(em, em * 3.175F < units ? INFINITY : 0.0F);
    }
    EXPECT_EQ(em * 3.175F, units);
    return em;
}

inline Raster makeRaster(const std::string& name, float width, float height) {
    Raster raster(new ktLegacy::ktAnnotationRaster);
    raster->SetName(name);
    raster->mRasterName = "picture";
    raster->mSizeEm = {emOf(width), emOf(height)};
    return raster;
}

inline Legacy::Leader makeLeader(const Vector3& target, int head) {
    Legacy::Leader leader(target);
    leader.mHead = static_cast<Legacy::Leader::HeadType>(head);
    return leader;
}

inline Legacy::MeasureLeader makeMeasure(const Vector3& a, const Vector3& b, const Vector3& v, int arrows = 0) {
    return {a, b, v, static_cast<Legacy::MeasureLeader::ArrowDirection>(arrows)};
}

/// The item as that kind of item; null when it is another kind.
template <typename Item>
const Item* as(const std::shared_ptr<kt::svg::ItemInterface>& item) {
    return dynamic_cast<const Item*>(item.get());
}

/// The library is initialised, its log recorded, and there is a migration that accepts nothing.
class MigrationTest : public ktTest::LegacyLibraryTest {
protected:
    using Annotation = kt::ktPointer<kt::ktCadAnnotation>;

    /// The annotation with its sub-annotations; null when it failed.
    Annotation migrate(const Legacy* legacy, int flags = 0) { return migrateWithBox(legacy, flags).first; }
    std::pair<Annotation, kt::svg::BoundingBox> migrateWithBox(const Legacy* legacy, int flags = 0) {
        ktLegacy::ktAnnotationMigration migration(flags, giveRaster, nullptr, 3.0F);
        std::pair<Annotation, kt::svg::BoundingBox> result;
        const bool isGood = migration.createAnnotationFrame(legacy, result.first, result.second);
        EXPECT_EQ(isGood, result.first != nullptr);
        return result;
    }
    Strings takeLog() { return mLog.takeMessages(kt::ktLog::Error); }

    ktTest::RecordingLog mLog;
};

}  // namespace migrationtest
