#include "legacy/variant/ktVariantFinding.h"

#include "legacy/variant/MapReport_p.h"

namespace ktLegacy {

bool ktVariantFinding::isMessage() const { return isLoaderMessage(mCode); }

std::string ktVariantFinding::getText() const { return reading::MapReport::getText(mCode, mDetail); }

}  // namespace ktLegacy
