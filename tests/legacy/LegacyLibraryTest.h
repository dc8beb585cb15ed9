#pragma once

/// @file
/// Fixture of tests that need the library initialised, and texts that stand for whole annotations.

#include "legacy/ktAnnotationRaster.h"
#include "legacy/ktAnnotationText.h"
#include "legacy/ktAnnotationView.h"
#include "library/ktAnnotationLegacyLibrary.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <string_view>

namespace ktLegacy {

using kt::ktPointer;
using Point = Wm4::Vector3<float>;
using Segment = ktAnnotationText::TextSegment;
using Properties = ktAnnotationText::TextProperties;
using AnnotationPointer = ktPointer<ktAnnotationInterface>;
using TextPointer = ktPointer<ktAnnotationText>;
using ViewPointer = ktPointer<ktAnnotationView>;

/// An annotation type of a host, of no kind that the library knows.
struct HostAnnotation : ktAnnotationInterface {
    HostAnnotation() : ktAnnotationInterface(Undefined) {}
};

inline TextPointer makeText(const std::string& content, const std::string& name = "") {
    TextPointer text(new ktAnnotationText);
    text->setText(content);
    text->SetName(name);
    return text;
}

inline ktAnnotationInterface& addChild(ktAnnotationInterface& parent, const AnnotationPointer& child, int anchor = 1) {
    parent.editSubAnnots().push_back({child, static_cast<ktAnnotationInterface::SubAnnot::AnchorLocation>(anchor)});
    return parent;
}

}  // namespace ktLegacy

namespace ktTest {

class LegacyLibraryTest : public testing::Test {
protected:
    LegacyLibraryTest() { kt::initializeKtAnnotationLegacyLibrary(); }
    ~LegacyLibraryTest() override { kt::terminateKtAnnotationLegacyLibrary(); }
};

/// Writes annotations as texts that name only what differs from a new annotation, e.g.
/// "raster 'n' at(1 2 3) rgb(0 0 0) flagsfc leader(1 0 0)3 measure(A)(B)(V)0 key=5 [4:text ...] image'i'2x3" and
/// "text Arial/100/0/0 |first line |H+2^1+x{Mono/40/1/0}": a subscript and a segment with properties of its own. A NUL
/// shows as @, a segment without text as ~.
class Shown {
public:
    Shown& add(const ktLegacy::ktAnnotationInterface* annotation) {
        if (annotation == nullptr) {
            mOut << "null";
            return *this;
        }
        const auto& [r, g, b] = annotation->mColor;
        mOut << (annotation->mType == annotation->Text ? "text" : "raster");
        addUnless(annotation->GetName().empty(), " '", annotation->GetName(), "'");
        addUnless(annotation->mPosition == ktLegacy::Point::ZERO, " at", annotation->mPosition);
        addUnless(r == 255 && g == 255 && b == 255, " rgb(", int{r}, " ", int{g}, " ", int{b}, ")");
        addUnless(annotation->getFlags() == 1, " flags", std::hex, int{annotation->getFlags()}, std::dec);
        for (const auto& leader : annotation->mLeaders) {
            addUnless(false, " leader", leader.mPosition, int{leader.mHead});
        }
        for (const auto& measure : annotation->mMeasureLeaders) {
            addUnless(false, " measure", measure.mPointA, measure.mPointB, measure.mOffsetVector,
                      int{measure.mArrowDirection});
        }
        addMetadata(annotation->mMetadata);
        for (const auto& entry : annotation->getSubAnnots()) {
            mOut << " [" << entry.mAnchorLocation << ':';
            add(entry.mAnnotation);
            mOut << ']';
        }
        annotation->mType == annotation->Text
            ? addText(dynamic_cast<const ktLegacy::ktAnnotationText&>(*annotation))
            : addRaster(dynamic_cast<const ktLegacy::ktAnnotationRaster&>(*annotation));
        return *this;
    }
    Shown& add(const ktLegacy::ktAnnotationView* view) {
        if (view == nullptr) {
            mOut << "no view";
            return *this;
        }
        addUnless(false, "view '", view->GetName(), "' ", view->mOrigin, view->mNormal, view->mAxis);
        addMetadata(view->mMetadata);
        for (const auto& annotation : view->mAnnotations) {
            mOut << ' ';
            add(annotation);
        }
        return *this;
    }
    std::string get() const {
        std::string text = mOut.str();
        std::replace(text.begin(), text.end(), '\0', '@');
        return text;
    }

private:
    void put(const ktLegacy::Point& v) { mOut << '(' << v.x << ' ' << v.y << ' ' << v.z << ')'; }
    void put(const ktLegacy::Properties& p) {
        mOut << p.mFontName << '/' << p.mHeight << '/' << int{p.mStyle} << '/' << int{p.mReserved};
    }
    template <typename Value>
    void put(const Value& value) {
        mOut << value;
    }
    void put(std::ios_base& (*manipulator)(std::ios_base&)) { mOut << manipulator; }
    template <typename... Values>
    void addUnless(bool isUsual, const Values&... values) {
        if (!isUsual) {
            (put(values), ...);
        }
    }
    template <typename Map>
    void addMetadata(const Map& map) {
        for (const auto& [key, value] : map) {
            mOut << ' ' << key << '=' << value.toString();
        }
    }
    void addRaster(const ktLegacy::ktAnnotationRaster& raster) {
        const Wm4::Vector2<float>& size = raster.mSizeEm;
        addUnless(raster.mRasterName.empty() && size == Wm4::Vector2<float>(1, 1), " image'", raster.mRasterName, "'",
                  size.x, "x", size.y);
    }
    void addText(const ktLegacy::ktAnnotationText& text) {
        addUnless(text.mDefaultTextProperties == ktLegacy::Properties("Arial", 1.0F), " ", text.mDefaultTextProperties);
        for (const auto& line : text.mLines) {
            mOut << " |";
            for (const ktLegacy::Segment& segment : line) {
                mOut << (&segment == &line.front() ? "" : "+");
                mOut << (segment.mText == nullptr ? "~" : std::string_view(segment.getText(), segment.mLength));
                addUnless(segment.mType == ktLegacy::Segment::Normal, "^", int{segment.mType});
                if (segment.mProperties != nullptr) {
                    addUnless(false, "{", *segment.mProperties, "}");
                }
            }
        }
    }

    std::ostringstream mOut;
};

template <typename Object>
std::string show(const Object& object) {
    return Shown().add(&object).get();
}
template <typename Object>
std::string show(const kt::ktPointer<Object>& object) {
    return Shown().add(object.get()).get();
}

}  // namespace ktTest
