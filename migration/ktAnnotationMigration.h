#pragma once

/// @file
/// Conversion of legacy views to the current annotation model.

#include "legacy/ktAnnotationInterface.h"
#include "legacy/ktAnnotationLegacyExport.h"
#include "legacy/ktAnnotationRaster.h"
#include "legacy/ktAnnotationText.h"
#include "legacy/ktAnnotationView.h"
#include "legacy/ktFindingCode.h"
#include "platform/annotation/FontProblem.h"
#include "platform/annotation/ktCadAnnotation.h"
#include "platform/annotation/ktCadAnnotationView.h"
#include "platform/svg/BoundingBox.h"
#include "platform/svg/Node.h"
#include "platform/system/object/ktPointer.h"
#include "platform/wm4/Wm4Vector2.h"
#include "platform/wm4/Wm4Vector3.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace ktLegacy {

/// Turns legacy annotation views into views of the current model. Construct one, migrate any number of views with it;
/// it keeps fonts and measured text. One object serves one thread at a time.
///
/// Failures are written to the log at type 5 and told by a false result; the first failure ends a view.
class KT_ANNOTATION_LEGACY_API ktAnnotationMigration {
public:
    /// Gives the data of the image with that name; false when there is none. The data is copied into the drawing as it
    /// is.
    using RasterCallback = bool (*)(const std::string& rasterName, std::string& rasterData, void* userData);

    /// Legacy metadata that may be dropped; without the bit, a view or annotation that carries it is refused.
    enum Flag : int {
        AcceptViewMetadata = 1,   ///< any metadata of views
        AcceptKnownMetadata = 2,  ///< metadata of annotations under the well-known keys
        AcceptOtherMetadata = 4,  ///< metadata of annotations under any other key
    };

    /// @param flags           Flag bits; others are ignored.
    /// @param rasterCallback  may be null: then raster annotations fail.
    /// @param rasterUserData  handed to the callback.
    /// @param headSize        of leaders, in drawing units.
    ktAnnotationMigration(int flags, RasterCallback rasterCallback, void* rasterUserData, float headSize);
    ktAnnotationMigration(const ktAnnotationMigration&) = delete;
    ktAnnotationMigration& operator=(const ktAnnotationMigration&) = delete;
    ~ktAnnotationMigration();

    /// A line that was written to the log.
    struct LogLine {
        ktFindingCode mCode;
        std::string mText;
    };

    /// Draws a crossed box with the picture's name where a picture is missing, instead of failing. The log gets the
    /// same line as without. At first they are not replaced.
    void setMissingPicturesReplaced(bool areReplaced);

    /// What the last call told the log, in order: of a failure the cause first, then where it struck; also lines of a
    /// call that went well. Valid until the next call.
    const std::vector<LogLine>& getLogLines() const;
    /// What kept fonts from being used since the last call: texts may be set in other fonts than they should be.
    std::vector<kt::text::FontProblem> takeFontProblems();
    /// Where the last call failed, when it failed in a nested annotation: its indices in the lists of sub-annotations,
    /// outermost first.
    const std::vector<unsigned int>& getFailedSubAnnot() const;

    /// Whether the flags accept that the view's own metadata is dropped; if not, the log is told.
    bool acceptViewMetadata(const ktAnnotationView& view);
    /// Converts one annotation of a view with its sub-annotations, leaders and measure leaders.
    /// @param viewName  for the log.
    /// @param result    receives the new annotation on success, else is left as it is.
    bool migrateAnnotation(const ktAnnotationInterface& annotation, const std::string& viewName,
                           kt::ktPointer<kt::ktCadAnnotation>& result);

    /// Converts a whole view. Returns false, creating nothing, when view is null or result already holds a view.
    bool migrateAnnotationView(const kt::ktPointer<ktAnnotationView>& view,
                               kt::ktPointer<kt::ktCadAnnotationView>& result);

    /// Converts one annotation with its tree of sub-annotations, without its own leaders.
    /// @param result  receives the new annotation on success, else is left as it is.
    /// @param box     receives the outline in the annotation's own frame, the frame item included.
    bool createAnnotationFrame(const ktAnnotationInterface* annotation, kt::ktPointer<kt::ktCadAnnotation>& result,
                               kt::svg::BoundingBox& box);

    /// Adds leaders to target: a segment and an anchor record each, and a head shape where there is one.
    /// @param anchor  where the leaders start, in the view's frame.
    /// @param offset  the same point in target's content.
    bool createLeaders(const std::vector<ktAnnotationInterface::Leader>& leaders, kt::ktCadAnnotation& target,
                       const Wm4::Vector3<float>& anchor, const Wm4::Vector2<float>& offset);
    /// Adds dimension lines, arrow heads and extension lines to target; false at the first measure leader that has no
    /// direction or whose lines do not meet.
    bool createMeasureLeaders(const std::vector<ktAnnotationInterface::MeasureLeader>& leaders,
                              kt::ktCadAnnotation& target, const Wm4::Vector3<float>& anchor,
                              const Wm4::Vector2<float>& offset);

    /// Appends the text as a group to parent. @param colour  of text in the annotation's default properties.
    bool migrateTextAnnotation(const ktAnnotationText* text, kt::svg::Node& parent,
                               const Wm4::Vector3<unsigned char>& colour);
    /// Appends a rectangle and the image to parent.
    bool migrateRasterAnnotation(const ktAnnotationRaster* raster, kt::svg::Node& parent);

private:
    struct OpenAnnotation;
    using Path = std::vector<OpenAnnotation>;
    struct Workspace;

    bool convertView(const ktAnnotationView& view, kt::ktCadAnnotationView& result);
    /// Converts an annotation and its sub-annotations. Walks the tree without recursion, because its depth is the
    /// caller's choice and the stack is not.
    /// @param path  empty; receives the annotation alone on success, on failure the ancestors of the one that failed.
    bool convertTree(const ktAnnotationInterface& annotation, Path& path);
    /// Converts everything but the sub-annotations.
    bool convertOwnContent(OpenAnnotation& annotation);
    bool convertByType(const ktAnnotationInterface& legacy, kt::svg::Node& root,
                       const Wm4::Vector3<unsigned char>& textColor, Wm4::Vector2<float>& margin);
    /// Adds a converted sub-annotation with its leaders to its parent.
    bool attachSubAnnotation(OpenAnnotation& parent, const OpenAnnotation& child);
    /// Adds the frame item behind everything in root.
    /// @param frameCode  0 to 14; any other code adds nothing.
    /// @param content    the centred content with its margin.
    /// @param outline    receives the box that sub-annotations are placed at.
    /// @param textColor  not used.
    /// @return 1 when the item was added, else 0.
    int buildAnnotationFrame(int frameCode, const kt::svg::BoundingBox& content, kt::svg::BoundingBox& outline,
                             kt::svg::Node& root, const Wm4::Vector3<unsigned char>& color,
                             const Wm4::Vector3<unsigned char>& textColor);

    /// Appends what stands for a missing picture; false when it has no extent.
    bool replacePicture(const ktAnnotationRaster& raster, kt::svg::Node& parent);

    /// Height of the name on the place of a missing picture, in hundredths of an em.
    static constexpr std::uint16_t sMissingPictureTextHeight = 100;

    int mFlags;
    RasterCallback mRasterCallback;
    void* mRasterUserData;
    float mHeadSize;
    std::unique_ptr<Workspace> mWorkspace;
    std::unique_ptr<Path> mSparePath;  ///< empty; its memory serves annotation after annotation
};

}  // namespace ktLegacy
