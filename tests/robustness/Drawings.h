#pragma once

/// @file
/// From documents to their drawings.

#include "document/ktLegacyDocument.h"
#include "document/ktViewDrawing.h"
#include "tests/support/RecordingLog.h"
#include "tests/svg/XmlTree.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace ktTest {

/// Migrates every view of a document and writes its drawing, which must be well-formed.
/// @return  how many views could be migrated.
inline std::size_t countDrawings(const ktLegacy::ktLegacyDocument& document) {
    ktLegacy::ktViewDrawing::Options options;
    options.mAccepted = 7;
    ktLegacy::ktViewDrawing drawing(options, [](const std::string& name, std::string& data) {
        data = name;
        return true;
    });
    const RecordingLog failuresAreExpected;
    std::size_t count = 0;
    for (const ktLegacy::ktLegacyDocument::View& view : document.getViews()) {
        if (view.mView != nullptr && drawing.draw(*view.mView)) {
            EXPECT_TRUE(kt::test::parseXml(drawing.getSvg())) << drawing.getSvg();
            ++count;
        }
    }
    return count;
}

}  // namespace ktTest
