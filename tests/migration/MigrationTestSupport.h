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
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace kt::svg {
inline void PrintTo(Path::Command command, std::ostream* out) { *out << "MLCAZ"[static_cast<int>(command)]; }
}  // namespace kt::svg

namespace Wm4 {
inline void PrintTo(const Vector2<float>& v, std::ostream* out) { *out << '(' << v.x << ", " << v.y << ')'; }
inline void PrintTo(const Vector3<float>& v, std::ostream* out) {
    *out << '(' << v.x << ", " << v.y << ", " << v.z << ')';
}
}  // namespace Wm4

namespace migrationtest {

using Vector2 = Wm4::Vector2<float>;
using Vector3 = Wm4::Vector3<float>;
using Command = kt::svg::Path::Command;
using testing::ElementsAre;
using testing::IsEmpty;

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

    std::vector<std::string> mMessages;

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
    while (em * 3.175F < units) {
        em = std::nextafter(em, INFINITY);
    }
    while (em * 3.175F > units) {
        em = std::nextafter(em, 0.0F);
    }
    EXPECT_EQ(em * 3.175F, units);
    return em;
}

inline kt::ktPointer<ktLegacy::ktAnnotationRaster> makeRaster(const std::string& name, float width, float height) {
    kt::ktPointer<ktLegacy::ktAnnotationRaster> raster(new ktLegacy::ktAnnotationRaster);
    raster->SetName(name);
    raster->mRasterName = "picture";
    raster->mSizeEm = {emOf(width), emOf(height)};
    return raster;
}

inline void addChild(ktLegacy::ktAnnotationInterface& parent,
                     const kt::ktPointer<ktLegacy::ktAnnotationInterface>& child, int anchor = 2) {
    ktLegacy::ktAnnotationInterface::SubAnnot entry;
    entry.mAnnotation = child;
    entry.mAnchorLocation = static_cast<ktLegacy::ktAnnotationInterface::SubAnnot::AnchorLocation>(anchor);
    parent.editSubAnnots().push_back(entry);
}

inline ktLegacy::ktAnnotationInterface::Leader makeLeader(const Vector3& target, int head) {
    ktLegacy::ktAnnotationInterface::Leader leader(target);
    leader.mHead = static_cast<ktLegacy::ktAnnotationInterface::Leader::HeadType>(head);
    return leader;
}

inline ktLegacy::ktAnnotationInterface::MeasureLeader makeMeasure(const Vector3& a, const Vector3& b, const Vector3& v,
                                                                  int arrows = 0) {
    ktLegacy::ktAnnotationInterface::MeasureLeader measure;
    measure.mPointA = a;
    measure.mPointB = b;
    measure.mOffsetVector = v;
    measure.mArrowDirection = static_cast<ktLegacy::ktAnnotationInterface::MeasureLeader::ArrowDirection>(arrows);
    return measure;
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
    Annotation migrate(const ktLegacy::ktAnnotationInterface* legacy, int flags = 0) {
        return migrateWithBox(legacy, flags).first;
    }
    std::pair<Annotation, kt::svg::BoundingBox> migrateWithBox(const ktLegacy::ktAnnotationInterface* legacy,
                                                               int flags = 0) {
        ktLegacy::ktAnnotationMigration migration(flags, giveRaster, nullptr, 3.0F);
        std::pair<Annotation, kt::svg::BoundingBox> result;
        const bool isGood = migration.createAnnotationFrame(legacy, result.first, result.second);
        EXPECT_EQ(isGood, result.first != nullptr);
        return result;
    }
    std::vector<std::string> takeLog() { return std::exchange(mLog.mMessages, {}); }

    RecordingLog mLog;
};

}  // namespace migrationtest
