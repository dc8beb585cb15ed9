#pragma once

/// @file
/// Migration of one document after the other.

#include "migration/ktAnnotationMigration.h"
#include "platform/annotation/ktCadViewSvgWriter.h"
#include "tools/ktannot/batch/MigrationOptions.h"
#include "tools/ktannot/files/PictureFolder.h"
#include "tools/ktannot/report/DocumentResult.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace ktannot {

/// Turns documents into drawings or dumps. Keeps the migration with its fonts and measured texts, so each thread has
/// one migrator and uses it for many documents.
class DocumentMigrator {
public:
    /// Hears of each view that is done, with its number from 1.
    using ViewListener = std::function<void(std::size_t number, const ViewResult& view)>;

    /// @param options  must outlive the migrator.
    explicit DocumentMigrator(const MigrationOptions& options);
    DocumentMigrator(const DocumentMigrator&) = delete;
    DocumentMigrator& operator=(const DocumentMigrator&) = delete;
    ~DocumentMigrator();

    /// Reads a document, migrates its views and writes them. A view that fails does not stop the others; a request to
    /// stop ends the work between two views.
    /// @param onView  called after each view.
    DocumentResult migrate(const Input& input, const ViewListener& onView = {});

private:
    using CadView = kt::ktPointer<kt::ktCadAnnotationView>;

    static bool provideRaster(const std::string& rasterName, std::string& rasterData, void* userData);

    bool isDump() const { return mOptions.mFormat == MigrationOptions::Format::Json; }

    bool isWanted(std::size_t view) const { return mOptions.mView == 0 || mOptions.mView == view + 1; }

    /// Why a document of that many views has none to make; empty when all is well.
    std::string findWrongView(std::size_t count) const;
    void migrateViews(const Input& input, DocumentResult& result, const ViewListener& onView);
    /// Lists the views with the files that they will be drawn to; true when one of the files is there already.
    bool planFiles(const Input& input, DocumentResult& result) const;
    /// Whether a result that is there already stays.
    bool isKept(const std::string& path) const;
    /// Tells of drawings of earlier runs that no view has any more.
    void findStaleDrawings(const Input& input, DocumentResult& result) const;
    /// Writes what became of a view, or keeps it for the dump.
    void finishView(CadView view, ViewResult& viewResult, DocumentResult& result, std::vector<CadView>& dumped);
    CadView migrateView(const LegacyDocument& document, const LegacyDocument::View& view, ViewResult& viewResult);
    void writeDrawing(const kt::ktCadAnnotationView& view, ViewResult& viewResult, DocumentResult& result);
    void writeDump(const std::vector<CadView>& views, const Input& input, DocumentResult& result);
    /// @param number  of the view within the document, from 1.
    std::string getDrawingPath(const Input& input, std::size_t number, const std::string& viewName) const;
    std::string getDumpPath(const Input& input) const;

    const MigrationOptions& mOptions;
    ktLegacy::ktAnnotationMigration mMigration;
    kt::ktCadViewSvgWriter mWriter;
    PictureFolder* mPictures = nullptr;  ///< of the document at work
    std::vector<std::string> mLog;       ///< of the document at work
    std::string mFile;                   ///< text of a drawing; kept for its capacity
};

}  // namespace ktannot
