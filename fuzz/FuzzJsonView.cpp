/// @file
/// Variant documents, as the front door reads them: JSON text to views. Contract: nothing worse than a refusal or
/// messages, and the views are those that the variants of the whole document give.

#include "document/ktLegacyDocument.h"
#include "legacy/variant/ktVariantDocumentReader.h"
#include "library/ktAnnotationLegacyLibrary.h"
#include "platform/system/variant/ktVariantListImpl.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>
#include <vector>

namespace {

using Reader = ktLegacy::ktVariantDocumentReader;

std::size_t countAnnotations(const kt::ktPointer<ktLegacy::ktAnnotationView>& view) {
    return view ? view->mAnnotations.size() : 0;
}

bool isSame(const Reader::View& view, const kt::ktVariant& map) {
    std::vector<std::string> messages;
    const auto other = ktLegacy::ktAnnotationView::FromVariantMap(map.toMap(), messages);
    return !view.mView == !other && countAnnotations(view.mView) == countAnnotations(other) &&
           view.getMessages() == messages;
}

bool areSame(const std::vector<Reader::View>& views, const kt::ktVariant& document) {
    const kt::ktVariant::ktVariantListImpl* maps = document.getList();
    if (maps == nullptr) {
        return views.size() == (document.isMap() ? 1U : 0U) && (views.empty() || isSame(views.front(), document));
    }
    bool areAllSame = views.size() == maps->size();
    for (std::size_t index = 0; areAllSame && index < views.size(); ++index) {
        areAllSame = isSame(views[index], maps->begin()[index]);
    }
    return areAllSame;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    kt::initializeKtAnnotationLegacyLibrary();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::span<const std::byte> text = std::as_bytes(std::span(data, size));
    ktLegacy::ktLegacyDocument::read(text);
    std::vector<Reader::View> views;
    kt::ktVariant document;
    kt::ktJsonError error;
    const bool isRead = Reader().read(text, views, error) != Reader::Outcome::NotJson;
    if (isRead != kt::ktJsonReader().parse(text, document, error) || (isRead && !areSame(views, document))) {
        std::abort();
    }
    return 0;
}
