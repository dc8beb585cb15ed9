#include "migration/SvgColor_p.h"
#include "migration/Units_p.h"
#include "migration/Workspace_p.h"
#include "platform/svg/Image.h"
#include "platform/svg/PathBuilder.h"
#include "platform/svg/Rect.h"

#include <memory>
#include <string>
#include <utility>

namespace ktLegacy {

namespace {

/// A box with its diagonals, at the place of the image.
std::shared_ptr<kt::svg::ItemInterface> makeCrossedBox(const Wm4::Vector2<float>& size) {
    kt::svg::PathBuilder builder;
    builder.startContour();
    builder.appendSegmentListMove({Wm4::Vector2<float>::ZERO, {size.x, 0.0F}, size, {0.0F, size.y}});
    builder.endContour(false);
    builder.appendLine(Wm4::Vector2<float>::ZERO, size);
    builder.appendLine({size.x, 0.0F}, {0.0F, size.y});
    auto box = builder.createPathItem(true);
    box->setColor(migration::sNoPaint);
    box->setStyleOption(kt::svg::ItemInterface::sStyleNonScalingStroke);
    return box;
}

}  // namespace

bool ktAnnotationMigration::migrateRasterAnnotation(const ktAnnotationRaster* raster, kt::svg::Node& parent) {
    const migration::FailureLog::Call call(mWorkspace->mLog);
    if (mRasterCallback == nullptr) {
        mWorkspace->mLog.tell(ktFindingCode::NoRasterCallback) << "No raster callback";
        return mWorkspace->mReplacesMissingPictures && replacePicture(*raster, parent);
    }
    std::string data;
    if (!mRasterCallback(raster->mRasterName, data, mRasterUserData)) {
        mWorkspace->mLog.tell(ktFindingCode::RasterMissing)
            << "Fail to retrieve raster '" << raster->mRasterName << "'";
        return mWorkspace->mReplacesMissingPictures && replacePicture(*raster, parent);
    }

    auto image = std::make_shared<kt::svg::Image>();
    image->setSize(raster->mSizeEm * migration::sUnitsPerEm);
    image->setSource(std::move(data));
    // A plain black rectangle lies under every image: old viewers showed images on black. Intended.
    auto background = std::make_shared<kt::svg::Rect>(image->getPosition(), image->getSize());
    background->setColor(migration::sBlackPaint);

    parent.appendChild(std::move(background));
    parent.appendChild(std::move(image));
    return true;
}

bool ktAnnotationMigration::replacePicture(const ktAnnotationRaster& raster, kt::svg::Node& parent) {
    const Wm4::Vector2<float> size = raster.mSizeEm * migration::sUnitsPerEm;
    const auto box = makeCrossedBox(size);
    if (box == nullptr) {
        return false;
    }
    parent.appendChild(box);

    ktAnnotationText name;
    name.mDefaultTextProperties.mHeight = sMissingPictureTextHeight;
    name.setText(raster.mRasterName);
    auto label = std::make_shared<kt::svg::Node>();
    if (migrateTextAnnotation(&name, *label, {0, 0, 0})) {
        label->translate(size * 0.5F);
        parent.appendChild(std::move(label));
    }
    return true;
}

}  // namespace ktLegacy
