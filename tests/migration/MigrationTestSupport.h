#pragma once

/// @file
/// Legacy annotations, captured logs and looks at new ones for the migration tests.

#include "legacy/ktAnnotationRaster.h"
#include "legacy/ktAnnotationText.h"
#include "library/ktAnnotationLegacyLibrary.h"
#include "migration/ktAnnotationMigration.h"
#include "platform/svg/Path.h"
#include "platform/system/ktLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace migrationtest {

using Vector2 = Wm4::Vector2<float>;
using Vector3 = Wm4::Vector3<float>;
using Legacy = ktLegacy::ktAnnotationInterface;
using Raster = kt::ktPointer<ktLegacy::ktAnnotationRaster>;
using Strings = std::vector<std::string>;
using testing::ElementsAre;

/// Keeps the messages of type 5 while it lives; a category or context shows in the message.
class RecordingLog final : public kt::ktLog {
public:
    RecordingLog() : mPrevious(kt::ktLog::msInstance.exchange(this)) {}
    ~RecordingLog() override { kt::ktLog::msInstance = mPrevious; }

    void log(const kt::ktLogEntry& entry) noexcept override {
        if (entry.mType == 5) {
            mMessages.push_back(entry.mCategory + entry.mContext + entry.mMessage);
        }
    }

    Strings mMessages;

private:
    kt::ktLog* mPrevious;
};

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

inline void addChild(Legacy& parent, const kt::ktPointer<Legacy>& child, int anchor = 2) {
    parent.editSubAnnots().push_back({child, static_cast<Legacy::SubAnnot::AnchorLocation>(anchor)});
}

inline Legacy::Leader makeLeader(const Vector3& target, int head) {
    Legacy::Leader leader(target);
    leader.mHead = static_cast<Legacy::Leader::HeadType>(head);
    return leader;
}

inline Legacy::MeasureLeader makeMeasure(const Vector3& a, const Vector3& b, const Vector3& v, int arrows = 0) {
    return {a, b, v, static_cast<Legacy::MeasureLeader::ArrowDirection>(arrows)};
}

/// The letters of a path's commands.
inline std::string lettersOf(const kt::svg::Path& path) {
    std::string letters;
    for (const auto command : path.getCommands()) {
        letters += "MLCAZ"[static_cast<int>(command)];
    }
    return letters;
}

/// The item as that kind of item; null when it is another kind.
template <typename Item>
const Item* as(const std::shared_ptr<kt::svg::ItemInterface>& item) {
    return dynamic_cast<const Item*>(item.get());
}

/// The library is initialised, its log recorded, and there is a migration that accepts nothing.
class MigrationTest : public testing::Test {
protected:
    using Annotation = kt::ktPointer<kt::ktCadAnnotation>;

    MigrationTest() { kt::initializeKtAnnotationLegacyLibrary(); }
    ~MigrationTest() override { kt::terminateKtAnnotationLegacyLibrary(); }

    /// The annotation with its sub-annotations; null when it failed.
    Annotation migrate(const Legacy* legacy, int flags = 0) { return migrateWithBox(legacy, flags).first; }
    std::pair<Annotation, kt::svg::BoundingBox> migrateWithBox(const Legacy* legacy, int flags = 0) {
        ktLegacy::ktAnnotationMigration migration(flags, giveRaster, nullptr, 3.0F);
        std::pair<Annotation, kt::svg::BoundingBox> result;
        const bool isGood = migration.createAnnotationFrame(legacy, result.first, result.second);
        EXPECT_EQ(isGood, result.first != nullptr);
        return result;
    }
    Strings takeLog() { return std::exchange(mLog.mMessages, {}); }

    RecordingLog mLog;
};

}  // namespace migrationtest
