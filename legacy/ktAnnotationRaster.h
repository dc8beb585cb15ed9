#pragma once

/// @file
/// Legacy annotation that shows an image.

#include "legacy/ktAnnotationInterface.h"
#include "platform/wm4/Wm4Vector2.h"

#include <string>

namespace ktLegacy {

/// An image by name. The picture itself comes from the host when the annotation is migrated.
class KT_ANNOTATION_LEGACY_API ktAnnotationRaster : public ktAnnotationInterface {
public:
    ktAnnotationRaster();
    ktAnnotationRaster(const ktAnnotationRaster& other);
    ktAnnotationRaster& operator=(const ktAnnotationRaster& other);
    ~ktAnnotationRaster() override;

    void load(kt::ktBaseStream& stream) override;
    bool loadFromVariant(const kt::ktVariant::ktVariantMapImpl& map, const kt::ktStreamVersion& version,
                         std::vector<std::string>& errors) override;

    std::string mRasterName;                  ///< handed unchanged to the host's raster callback
    Wm4::Vector2<float> mSizeEm{1.0F, 1.0F};  ///< width and height, in em of 3.175 drawing units

private:
    friend class ktAnnotationInterface;
    ktAnnotationRaster(const ktAnnotationRaster& other, WithoutChildren);

    bool loadFromMap(const kt::ktVariant::ktVariantMapImpl& map, kt::ktStreamVersion version,
                     reading::MapReport& report);
};

}  // namespace ktLegacy
