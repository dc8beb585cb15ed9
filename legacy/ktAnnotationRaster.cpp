#include "legacy/ktAnnotationRaster.h"

#include "legacy/ktLegacyVersions.h"
#include "legacy/stream/StreamReading_p.h"
#include "legacy/variant/MapReport_p.h"
#include "legacy/variant/VariantReading_p.h"
#include "platform/system/stream/ktBaseStream.h"

namespace ktLegacy {

ktAnnotationRaster::ktAnnotationRaster() : ktAnnotationInterface(Raster) {}

ktAnnotationRaster::ktAnnotationRaster(const ktAnnotationRaster& other, WithoutChildren tag)
    : ktAnnotationInterface(other, tag), mRasterName(other.mRasterName), mSizeEm(other.mSizeEm) {}

ktAnnotationRaster::ktAnnotationRaster(const ktAnnotationRaster& other) : ktAnnotationRaster(other, WithoutChildren{}) {
    copyChildrenOf(other);
}

ktAnnotationRaster& ktAnnotationRaster::operator=(const ktAnnotationRaster& other) {
    if (&other == this) {
        return *this;
    }
    // The copy first: one of the two may be a part of the other's tree.
    ktAnnotationRaster copy(other);
    swapContent(copy);
    mRasterName.swap(copy.mRasterName);
    mSizeEm = copy.mSizeEm;
    return *this;
}

ktAnnotationRaster::~ktAnnotationRaster() = default;

void ktAnnotationRaster::load(kt::ktBaseStream& stream) {
    if (stream.GetVersion() < version::s6_15) {
        stream.setStreamError(kt::ktStreamFault::UnsupportedVersion);
        return;
    }
    ktAnnotationInterface::load(stream);
    reading::readText(stream, mRasterName);
    static_assert(sizeof(mSizeEm) == 2 * sizeof(float));
    mSizeEm = Wm4::Vector2<float>::ZERO;
    stream.readle(4, 2, &mSizeEm);
}

bool ktAnnotationRaster::loadFromVariant(const kt::ktVariant::ktVariantMapImpl& map, const kt::ktStreamVersion& version,
                                         std::vector<std::string>& errors) {
    reading::MapReport report(errors);
    return loadFromMap(map, version, report);
}

bool ktAnnotationRaster::loadFromMap(const kt::ktVariant::ktVariantMapImpl& map, kt::ktStreamVersion version,
                                     reading::MapReport& report) {
    if (!loadBaseFromMap(map, version, report)) {
        return false;
    }
    if (version < version::s6_17) {
        // "text" is intended: readers of messages know this one.
        report.tell(ktFindingCode::InvalidTextVersion);
        return false;
    }
    static constexpr auto keys = reading::makeKeys("rastername", "sizeem");
    const auto [rasterName, size] = reading::findKeys(map, keys);
    if (size != nullptr) {
        const reading::VariantList* list = size->getList();
        if (list == nullptr) {
            report.tell(ktFindingCode::InvalidSize);
            return false;
        }
        if (list->size() != 2) {
            report.tell(ktFindingCode::InvalidSizeLength);
            return false;
        }
        mSizeEm = {reading::toFloat((*list)[0]), reading::toFloat((*list)[1])};
    }
    mRasterName = reading::VariantText(rasterName).get();
    return true;
}

}  // namespace ktLegacy
