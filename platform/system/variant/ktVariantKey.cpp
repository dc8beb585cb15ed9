#include "platform/system/variant/ktVariantKey.h"

#include "platform/system/variant/ktVariantStorage_p.h"

#include <ostream>

namespace kt {

std::string_view ktVariantKey::getLongText() const noexcept { return impl::ktVariantStorage::loadLongText(mBytes); }

ktVariantKey::Rank ktVariantKey::getLongRank() const noexcept {
    // What the text begins with, and a length beyond those of short texts.
    ktVariantKey beginning(getLongText().substr(0, sMaxInlineText));
    const Rank rank = beginning.getRank();
    return {rank.mHigh, rank.mLow | sLongTag};
}

void ktVariantKey::setLong(std::string_view text) {
    impl::ktVariantStorage::storeLongText(mBytes, text);
    setTag(sLongTag);
}

void ktVariantKey::releaseStorage() noexcept { impl::ktVariantStorage::releaseText(getLongText()); }

std::ostream& operator<<(std::ostream& out, const ktVariantKey& key) { return out << key.view(); }

}  // namespace kt
