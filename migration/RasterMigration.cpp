#include "migration/MigrationSupport_p.h"
#include "migration/ktAnnotationMigration.h"
#include "platform/svg/Image.h"
#include "platform/svg/Rect.h"

#include <memory>
#include <string>
#include <utility>

namespace ktLegacy {

bool ktAnnotationMigration::migrateRasterAnnotation(const ktAnnotationRaster* raster, kt::svg::Node& parent) {
    if (mRasterCallback == nullptr) {
        migration::logFailure() << "No raster callback";
        return false;
    }
    std::string data;
    if (!mRasterCallback(raster->mRasterName, data, mRasterUserData)) {
        migration::logFailure() << "Fail to retrieve raster '" << raster->mRasterName << "'";
        return false;
    }

    auto image = std::make_shared<kt::svg::Image>();
    image->setSize(raster->mSizeEm * migration::sUnitsPerEm);
    image->setSource(std::move(data));
    // A plain black rectangle lies under every image: intended.
    auto background = std::make_shared<kt::svg::Rect>(image->getPosition(), image->getSize());
    background->setColor(migration::sBlackPaint);

    parent.appendChild(std::move(background));
    parent.appendChild(std::move(image));
    return true;
}

}  // namespace ktLegacy
