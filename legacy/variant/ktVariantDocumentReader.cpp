#include "legacy/variant/ktVariantDocumentReader.h"

#include "legacy/variant/VariantReading_p.h"
#include "legacy/variant/ViewMapReading_p.h"
#include "platform/system/json/ktJsonSink.h"

#include <algorithm>
#include <string_view>

namespace ktLegacy {

namespace {

using View = ktVariantDocumentReader::View;
using reading::AnnotationList;
using reading::AnnotationListKey;
using reading::MapReport;
using reading::VariantMap;

View makeView(const kt::ktVariant& record, std::span<AnnotationList> taken) {
    const VariantMap noEntries;
    const VariantMap& map = record.isMap() ? *record.getMap() : noEntries;
    View view;
    view.mHasVersion = map.contains("ver");
    view.mVersion = reading::readVersion(map);
    MapReport report(view.mFindings);
    reading::ViewReading reading;
    view.mView = reading::readView(map, taken, report, reading);
    view.mEntryCount = reading.mEntryCount;
    view.mNestedEntryCount = reading.mNested.mEntries;
    view.mNestedLostCount = reading.mNested.mLost;
    return view;
}

/// Makes the views of one text while it is read. The key of a list of annotations tells which versions have it, and
/// among those no annotation differs: so a list is read where it stands, and left out in the end when the version,
/// which may come after it, turns out to have other lists.
class ViewSink : public kt::ktJsonSink {
public:
    explicit ViewSink(std::vector<View>& views) : mViews(views) {}

    bool beginList(std::string_view key) override {
        const AnnotationListKey* known = reading::findAnnotationListKey(key);
        if (known == nullptr) {
            return false;
        }
        // Of repeated keys the last one counts.
        std::erase_if(mTaken, [known](const AnnotationList& list) { return &list.getKey() == known; });
        mTaken.emplace_back(*known);
        return true;
    }

    void takeElement(const kt::ktVariant& element) override {
        AnnotationList& list = mTaken.back();
        MapReport report(list.mFindings);
        report.resetNestedCount(list.mNested);
        list.read(element, report);
        list.mNested = report.getNestedCount();
    }

    void takeRecord(const kt::ktVariant& record) override {
        mViews.push_back(makeView(record, mTaken));
        mTaken.clear();
    }

private:
    std::vector<View>& mViews;
    std::vector<AnnotationList> mTaken;  ///< lists of the record that is being read
};

}  // namespace

std::vector<std::string> View::getMessages() const {
    std::vector<std::string> messages;
    for (const ktVariantFinding& finding : mFindings) {
        if (finding.isMessage()) {
            messages.push_back(finding.getText());
        }
    }
    return messages;
}

class ktVariantDocumentReader::Impl {
public:
    Outcome read(std::span<const std::byte> text, std::vector<View>& views, kt::ktJsonError& error) {
        views.clear();
        ViewSink sink(views);
        kt::ktVariant value;
        if (!mReader.parse(text, value, error, sink)) {
            views.clear();
            return Outcome::NotJson;
        }
        if (value.isMap()) {
            sink.takeRecord(value);
        } else if (!value.isList()) {
            return Outcome::SingleValue;
        }
        return Outcome::Read;
    }

    kt::ktJsonReader mReader;
};

ktVariantDocumentReader::ktVariantDocumentReader() : mImpl(std::make_unique<Impl>()) {}

ktVariantDocumentReader::~ktVariantDocumentReader() = default;

const kt::ktJsonOverflow& ktVariantDocumentReader::getOverflow() const { return mImpl->mReader.getOverflow(); }

ktVariantDocumentReader::Outcome ktVariantDocumentReader::read(std::span<const std::byte> text,
                                                               std::vector<View>& views, kt::ktJsonError& error) {
    return mImpl->read(text, views, error);
}

}  // namespace ktLegacy
