#include "legacy/variant/ktVariantDocumentReader.h"

#include "legacy/variant/VariantReading_p.h"
#include "legacy/variant/ViewMapReading_p.h"
#include "platform/system/json/ktJsonSink.h"

#include <algorithm>
#include <string_view>

namespace ktLegacy {

namespace {

using View = ktVariantDocumentReader::View;
using reading::AnnotationListKey;
using reading::TakenList;
using reading::VariantMap;

std::size_t countEntries(const VariantMap& map, std::span<const TakenList> taken, kt::ktStreamVersion version) {
    std::size_t count = 0;
    for (const AnnotationListKey& key : reading::getAnnotationListKeys(version)) {
        if (const reading::VariantList* list = reading::getList(reading::findKey(map, key.mKey)); list != nullptr) {
            count += list->size();
        }
    }
    for (const TakenList& list : taken) {
        count += list.mEntryCount;
    }
    return count;
}

View makeView(const kt::ktVariant& record, std::span<TakenList> taken) {
    const VariantMap noEntries;
    const VariantMap& map = record.isMap() ? *record.getMap() : noEntries;
    View view;
    view.mHasVersion = map.contains("ver");
    view.mVersion = reading::readVersion(map);
    view.mEntryCount = countEntries(map, taken, view.mVersion);
    view.mView = reading::readView(map, taken, view.mMessages);
    return view;
}

/// Makes the views of one text while it is read.
class ViewSink : public kt::ktJsonSink {
public:
    explicit ViewSink(std::vector<View>& views) : mViews(views) {}

    bool beginList(std::string_view key, std::span<const Entry> entries) override {
        // Of repeated keys the last one counts.
        std::erase_if(mTaken, [key](const TakenList& list) { return list.mList.mKey->mKey == key; });
        const auto isVersion = [](const Entry& entry) { return entry.first == std::string_view("ver"); };
        const auto last = std::find_if(entries.rbegin(), entries.rend(), isVersion);
        if (last == entries.rend()) {
            return false;
        }
        const kt::ktStreamVersion version(reading::VariantText(&last->second).get());
        for (const AnnotationListKey& known : reading::getAnnotationListKeys(version)) {
            if (known.mKey == key) {
                TakenList& list = mTaken.emplace_back();
                list.mList.mKey = &known;
                list.mList.mVersion = version;
                return true;
            }
        }
        return false;
    }

    void takeElement(const kt::ktVariant& element) override {
        TakenList& list = mTaken.back();
        ++list.mEntryCount;
        list.mList.read(element, list.mErrors);
    }

    void takeRecord(const kt::ktVariant& record) override {
        const VariantMap* map = record.getMap();
        for (const TakenList& list : mTaken) {
            // A further "ver" behind a list may tell another version than it was read at.
            mIsRight &= map != nullptr && list.mList.mVersion == reading::readVersion(*map);
        }
        if (mIsRight) {
            mViews.push_back(makeView(record, mTaken));
        }
        mTaken.clear();
    }

    /// Whether the views are those of the whole maps.
    bool isRight() const { return mIsRight; }

private:
    std::vector<View>& mViews;
    std::vector<TakenList> mTaken;  ///< lists of the record that is being read
    bool mIsRight = true;
};

/// Makes the views of a text from its variants.
void makeViews(const kt::ktVariant& value, std::vector<View>& views) {
    views.clear();
    if (const reading::VariantList* records = value.getList(); records != nullptr) {
        for (const kt::ktVariant& record : *records) {
            views.push_back(makeView(record, {}));
        }
    } else {
        views.push_back(makeView(value, {}));
    }
}

}  // namespace

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
        if (!sink.isRight()) {
            mReader.parse(text, value, error);
            makeViews(value, views);
        }
        return Outcome::Read;
    }

private:
    kt::ktJsonReader mReader;
};

ktVariantDocumentReader::ktVariantDocumentReader() : mImpl(std::make_unique<Impl>()) {}

ktVariantDocumentReader::~ktVariantDocumentReader() = default;

ktVariantDocumentReader::Outcome ktVariantDocumentReader::read(std::span<const std::byte> text,
                                                               std::vector<View>& views, kt::ktJsonError& error) {
    return mImpl->read(text, views, error);
}

}  // namespace ktLegacy
