#pragma once

/// @file
/// What a migration is asked to do.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace ktannot {

class InputSet;

/// The options of the migrate command that matter for one document.
struct MigrationOptions {
    enum class Format { Svg, Json, Pdf, Png };
    /// What to do with drawings that are there already.
    enum class Existing { Fail, Skip, Replace };

    bool isToStandardOutput() const { return mOutput == "-"; }
    bool isDump() const { return mFormat == Format::Json; }
    /// Whether a document gives one file, not one for each view.
    bool isOneFile() const { return isDump() || mFormat == Format::Pdf; }
    /// Whether drawings go through the module that draws pages.
    bool isRendered() const { return mFormat == Format::Pdf || mFormat == Format::Png; }
    /// The end of the results' names.
    const char* getSuffix() const {
        constexpr const char* suffixes[] = {".svg", ".json", ".pdf", ".png"};
        return suffixes[static_cast<int>(mFormat)];
    }
    /// Where the results of a document go, without a suffix.
    std::string getPlace(const std::string& documentName) const {
        return (mOutput.ends_with('/') ? mOutput : mOutput + '/') + documentName;
    }
    /// The folder that the results of a document go to.
    std::string getFolder(const std::string& documentName) const {
        const std::string place = getPlace(documentName);
        return isOneFile() ? place.substr(0, place.rfind('/')) : place;
    }

    std::string mOutput = "migrated";           ///< folder, or "-" for standard output
    std::optional<std::string> mRasterFolder;   ///< nothing: the document's folder and its folder "images"
    std::optional<std::uint64_t> mMemoryLimit;  ///< bytes that one document may take
    float mHeadSize = 3.0F;                     ///< of leader heads, in millimetres
    int mAcceptedLosses = 0;                    ///< bits of ktLegacy::ktViewDrawing::Accepted
    Format mFormat = Format::Svg;
    double mDotsPerInch = 150.0;  ///< of PNG pictures
    Existing mExisting = Existing::Fail;
    std::size_t mView = 0;    ///< number of the only view that is wanted of each document; 0: all are
    bool mIsDryRun = false;   ///< do everything but write results
    bool mIsDurable = false;  ///< results are on the disk before they count as written
    bool mHasTextOutlines = false;
    bool mDrawsPictureBackgrounds = false;  ///< whether the black that the model has beneath pictures is drawn
    std::string mBackground;                ///< colour of the page; empty: none
    const InputSet* mInputs = nullptr;      ///< the files that are never written to; null when there are none
};

}  // namespace ktannot
