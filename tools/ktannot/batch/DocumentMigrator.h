#pragma once

/// @file
/// Migration of one document after the other.

#include "document/ktViewDrawing.h"
#include "platform/annotation/ktCadAnnotationView.h"
#include "tools/ktannot/batch/Input.h"
#include "tools/ktannot/batch/MigrationOptions.h"
#include "tools/ktannot/files/PictureFolder.h"
#include "tools/ktannot/render/PageRenderer.h"
#include "tools/ktannot/report/DocumentResult.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace ktannot {

/// Turns documents into drawings or dumps. Keeps fonts and measured texts, so each thread has
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
    /// Draws a view, or migrates it for the dump.
    void migrateView(std::size_t index, DocumentResult& result, std::vector<CadView>& dumped);
    /// Takes over what was found with the view that was worked on last.
    void takeFindings(std::size_t index, ViewResult& viewResult);
    /// Adds the drawing that was made last to the document's PDF file, if there is one.
    void addPage(ViewResult& viewResult, DocumentResult& result);
    void writeDrawing(ViewResult& viewResult, DocumentResult& result);
    void writeDump(const std::vector<CadView>& views, const Input& input, DocumentResult& result);
    void writePdf(const Input& input, DocumentResult& result);
    /// Writes the one file of a document.
    void writeDocument(std::string text, const Input& input, DocumentResult& result) const;
    /// @param number  of the view within the document, from 1.
    std::string getDrawingPath(const Input& input, std::size_t number, const std::string& viewName) const;
    /// Of the one file of a document.
    std::string getDocumentPath(const Input& input) const;

    const MigrationOptions& mOptions;
    PictureFolder* mPictures = nullptr;  ///< of the document at work
    std::vector<std::string> mLog;       ///< of the document at work
    ktLegacy::ktViewDrawing mDrawing;
    std::unique_ptr<PageRenderer> mRenderer;  ///< null when nothing goes through it
    std::size_t mPageCount = 0;               ///< of the PDF file at work
};

}  // namespace ktannot
