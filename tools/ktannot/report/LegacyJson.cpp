#include "tools/ktannot/report/LegacyJson.h"

#include "tools/ktannot/report/FindingJson.h"

namespace ktannot {

using ktLegacy::ktAnnotationInterface;
using ktLegacy::ktAnnotationRaster;
using ktLegacy::ktAnnotationText;
using ktLegacy::ktLegacyDocument;

const char* LegacyJson::getKindWord(ktLegacyDocument::Kind kind) {
    return kind == ktLegacyDocument::Kind::Stream ? "stream" : "variant";
}

void LegacyJson::writeDocument(const SourceDocument& source) {
    const ktLegacyDocument& document = source.mDocument;
    mJson.beginObject();
    if (!document.isLoaded()) {
        writeRefusal(source);
    } else {
        mJson.key("source").text(source.mSource);
        mJson.key("kind").text(getKindWord(document.getKind()));
        if (document.getKind() == ktLegacyDocument::Kind::Stream) {
            mJson.key("version").text(document.getVersion().toString());
        }
        mJson.key("streamError").boolean(document.hasStreamError());
        writeFindings(document);
        mJson.key("views").beginArray();
        for (const ktLegacyDocument::View& view : document.getViews()) {
            writeView(view, document.getKind());
        }
        mJson.endArray();
    }
    mJson.endObject();
    mJson.endLine();
}

void LegacyJson::writeRefusal(const SourceDocument& document) {
    mJson.key("source").text(document.mSource);
    mJson.key("refused").text(document.getReason());
    mJson.key("findings");
    writeFindingsJson(mJson, document.mDocument.getFindings());
}

void LegacyJson::writeFindings(const ktLegacyDocument& document) {
    mJson.key("messages").beginArray();
    for (const std::string& message : document.getMessages()) {
        mJson.text(message);
    }
    mJson.endArray();
    mJson.key("problems").beginArray();
    for (const ktLegacyDocument::Problem& problem : document.getProblems()) {
        mJson.beginObject();
        mJson.key("object").number(problem.mObject);
        mJson.key("offset").number(problem.mOffset);
        mJson.key("what").text(problem.mWhat);
        mJson.endObject();
    }
    mJson.endArray();
    mJson.key("findings");
    writeFindingsJson(mJson, document.getFindings());
    if (!document.getLimit().empty()) {
        mJson.key("limit").text(document.getLimit());
    }
}

void LegacyJson::writeView(const ktLegacyDocument::View& view, ktLegacyDocument::Kind kind) {
    if (!view.mView) {
        mJson.null();
        return;
    }
    mJson.beginObject();
    if (kind == ktLegacyDocument::Kind::Variant) {
        mJson.key("version").text(view.mVersion.toString());
    }
    mJson.key("name").text(view.mView->mName);
    mJson.key("origin").vector(view.mView->mOrigin);
    mJson.key("normal").vector(view.mView->mNormal);
    mJson.key("axis").vector(view.mView->mAxis);
    mJson.key("annotations").beginArray();
    for (const kt::ktPointer<ktAnnotationInterface>& annotation : view.mView->mAnnotations) {
        writeAnnotation(annotation.get());
    }
    mJson.endArray();
    mJson.key("metadata").variant(view.mView->mMetadata);
    mJson.endObject();
}

// The readers bound the nesting of annotations, so recursion is safe here.
void LegacyJson::writeAnnotation(const ktAnnotationInterface* annotation) {
    if (annotation == nullptr) {
        mJson.null();
        return;
    }
    const auto* text = dynamic_cast<const ktAnnotationText*>(annotation);
    mJson.beginObject();
    mJson.key("type").text(text != nullptr ? "text" : "raster");
    mJson.key("name").text(annotation->mName);
    mJson.key("position").vector(annotation->mPosition);
    mJson.key("color").color(annotation->mColor);
    mJson.key("flags").number(annotation->getFlags());
    writeLeaders(*annotation);
    writeMeasureLeaders(*annotation);
    writeChildren(*annotation);
    mJson.key("metadata").variant(annotation->mMetadata);
    if (text != nullptr) {
        writeText(*text);
    } else if (const auto* raster = dynamic_cast<const ktAnnotationRaster*>(annotation)) {
        mJson.key("rasterName").text(raster->mRasterName);
        mJson.key("sizeEm").vector(raster->mSizeEm);
    }
    mJson.endObject();
}

void LegacyJson::writeLeaders(const ktAnnotationInterface& annotation) {
    mJson.key("leaders").beginArray();
    for (const ktAnnotationInterface::Leader& leader : annotation.mLeaders) {
        mJson.beginObject();
        mJson.key("position").vector(leader.mPosition);
        mJson.key("head").number(static_cast<std::int32_t>(leader.mHead));
        mJson.endObject();
    }
    mJson.endArray();
}

void LegacyJson::writeMeasureLeaders(const ktAnnotationInterface& annotation) {
    mJson.key("measures").beginArray();
    for (const ktAnnotationInterface::MeasureLeader& measure : annotation.mMeasureLeaders) {
        mJson.beginObject();
        mJson.key("a").vector(measure.mPointA);
        mJson.key("b").vector(measure.mPointB);
        mJson.key("v").vector(measure.mOffsetVector);
        mJson.key("arrows").number(static_cast<std::int32_t>(measure.mArrowDirection));
        mJson.endObject();
    }
    mJson.endArray();
}

void LegacyJson::writeChildren(const ktAnnotationInterface& annotation) {
    mJson.key("children").beginArray();
    for (const ktAnnotationInterface::SubAnnot& child : annotation.getSubAnnots()) {
        mJson.beginObject();
        mJson.key("anchor").number(static_cast<std::int32_t>(child.mAnchorLocation));
        mJson.key("annotation");
        writeAnnotation(child.mAnnotation.get());
        mJson.endObject();
    }
    mJson.endArray();
}

void LegacyJson::writeText(const ktAnnotationText& text) {
    mJson.key("defaults");
    writeProperties(text.mDefaultTextProperties);
    mJson.key("lines").beginArray();
    for (const ktAnnotationText::Line& line : text.mLines) {
        mJson.beginArray();
        for (const ktAnnotationText::TextSegment& segment : line) {
            writeSegment(segment);
        }
        mJson.endArray();
    }
    mJson.endArray();
}

void LegacyJson::writeSegment(const ktAnnotationText::TextSegment& segment) {
    mJson.beginObject();
    mJson.key("text").text({segment.getText(), segment.mLength});
    mJson.key("type").number(static_cast<std::uint8_t>(segment.mType));
    mJson.key("properties");
    if (segment.mProperties != nullptr) {
        writeProperties(*segment.mProperties);
    } else {
        mJson.null();
    }
    mJson.endObject();
}

void LegacyJson::writeProperties(const ktAnnotationText::TextProperties& properties) {
    mJson.beginObject();
    mJson.key("font").text(properties.mFontName);
    mJson.key("height").number(properties.mHeight);
    mJson.key("style").number(properties.mStyle);
    mJson.key("reserved").number(properties.mReserved);
    mJson.endObject();
}

}  // namespace ktannot
