#pragma once

/// @file
/// From documents to their drawings.

#include "migration/ktAnnotationMigration.h"
#include "platform/annotation/ktCadViewSvgWriter.h"
#include "tests/support/RecordingLog.h"
#include "tests/svg/XmlTree.h"
#include "tools/ktannot/LegacyDocument.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace ktTest {

/// Migrates every view of a document and writes its drawing, which must be well-formed.
/// @return  how many views could be migrated.
inline std::size_t countDrawings(const ktannot::LegacyDocument& document) {
    const auto giveRaster = [](const std::string& name, std::string& data, void*) {
        data = name;
        return true;
    };
    constexpr int acceptAll = 7;
    ktLegacy::ktAnnotationMigration migration(acceptAll, giveRaster, nullptr, 3.0F);
    const RecordingLog failuresAreExpected;
    std::size_t count = 0;
    for (const ktannot::LegacyDocument::View& view : document.getViews()) {
        kt::ktPointer<kt::ktCadAnnotationView> migrated;
        if (migration.migrateAnnotationView(view.mView, migrated)) {
            std::string file;
            kt::ktCadViewSvgWriter().write(*migrated, file);
            EXPECT_TRUE(kt::test::parseXml(file)) << file;
            ++count;
        }
    }
    return count;
}

}  // namespace ktTest
