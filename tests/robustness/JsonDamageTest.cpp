#include "document/ktLegacyDocument.h"
#include "platform/system/json/ktVariantJson.h"
#include "tests/legacy/LegacyLibraryTest.h"
#include "tests/robustness/DamagedDocuments.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>

namespace ktTest {
namespace {

using ktLegacy::ktLegacyDocument;

/// Every kind of value, an escape, a character of several bytes and a line break; and a sample.
const std::string sSmall = "tests/data/documents/every_value.json";
const std::string sSample = "samples/symbols_v626.json";

class JsonDamageTest : public LegacyLibraryTest {
protected:
    /// Refused with a place in the text, or made into views.
    static void expectHandled(const Bytes& text) {
        kt::ktVariant value;
        kt::ktJsonError error;
        const bool isRead = kt::ktJsonReader().parse(text, value, error);
        ASSERT_TRUE(isRead || (!error.mMessage.empty() && value.isUndefined()));
        ASSERT_TRUE(isRead || (error.mOffset <= text.size() && error.mLine >= 1 && error.mColumn >= 1));
        const ktLegacyDocument document = ktLegacyDocument::read(text);
        ASSERT_TRUE(isRead || document.getOutcome() == ktLegacy::ktOutcome::Refused);
        for (const ktLegacyDocument::View& view : document.getViews()) {
            ASSERT_EQ(view.mIsMissing, !view.mView);
        }
    }
};

TEST_F(JsonDamageTest, TextThatEndsEarlyIsRefused) {
    for (const Bytes& whole : {readBytes(sSmall), readBytes(sSample)}) {
        ASSERT_TRUE(ktLegacyDocument::read(whole).isLoaded());
        const auto last =
            std::find_if(whole.rbegin(), whole.rend(), [](std::byte byte) { return byte > std::byte{' '}; });
        const std::ptrdiff_t end = whole.rend() - last;
        for (std::ptrdiff_t size = 0; size < end; ++size) {
            const Bytes cut(whole.begin(), whole.begin() + size);
            ASSERT_NO_FATAL_FAILURE(expectHandled(cut)) << size;
            ASSERT_EQ(ktLegacyDocument::read(cut).getOutcome(), ktLegacy::ktOutcome::Refused) << size;
        }
    }
}

TEST_F(JsonDamageTest, AnyByteMayBeAnother) {
    for (const auto& [whole, step] : {std::pair(readBytes(sSmall), 1U), {readBytes(sSample), 127U}}) {
        Bytes text = whole;
        for (std::size_t offset = 0; offset < text.size(); ++offset) {
            for (unsigned int change = 1; change < 256; change += step) {
                text[offset] = whole[offset] ^ static_cast<std::byte>(change);
                ASSERT_NO_FATAL_FAILURE(expectHandled(text)) << offset << " changed by " << change;
            }
            text[offset] = whole[offset];
        }
    }
}

}  // namespace
}  // namespace ktTest
