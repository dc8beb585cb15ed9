#include "tools/ktannot/report/DocumentCensus.h"

#include "legacy/annotation/CountAnnotationFunctor.h"

namespace ktannot {

void DocumentCensus::add(const SourceDocument& source) {
    using ktLegacy::ktLegacyDocument;
    if (source.mIsSkipped) {
        ++mSkippedFiles;
        return;
    }
    const ktLegacyDocument& document = source.mDocument;
    ++mDocuments;
    mRefusedDocuments += document.getState() == ktLegacyDocument::State::Refused ? 1U : 0U;
    mUnreadableDocuments += document.getState() == ktLegacyDocument::State::Unreadable ? 1U : 0U;
    mFindings += document.isLoaded() ? document.getFindings().size() : 0;
    for (const ktLegacyDocument::View& view : document.getViews()) {
        if (!view.mView) {
            ++mRefusedViews;
            continue;
        }
        ++mViews;
        unsigned int tree = 0;
        ktLegacy::annotation::CountAnnotationFunctor(tree).iterateOverAnnotationTree(view.mView->mAnnotations);
        mAnnotations += view.mView->mAnnotations.size();
        mChildren += tree - view.mView->mAnnotations.size();
    }
}

std::string DocumentCensus::describeContent() const {
    std::string text = countOf(mViews, "view") + ", " + countOf(mAnnotations, "annotation");
    if (mChildren != 0) {
        text += mChildren == 1 ? " (and 1 child)" : " (and " + std::to_string(mChildren) + " children)";
    }
    return text;
}

}  // namespace ktannot
