/// @file
/// Every binary record on its own, at every version at which its layout changed. The first byte chooses the record, the
/// second the version; the rest is the record. Contract: nothing worse than the stream's error flag or the memory
/// budget.

#include "legacy/ktAnnotationMetaData.h"
#include "legacy/ktAnnotationRaster.h"
#include "legacy/ktAnnotationText.h"
#include "legacy/ktAnnotationView.h"
#include "library/ktAnnotationLegacyLibrary.h"
#include "platform/system/stream/ktBaseStream.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <new>

namespace {

using ktLegacy::ktAnnotationInterface;
using ktLegacy::ktAnnotationText;

constexpr std::array<kt::ktStreamVersion, 10> sVersions{
    {{6, 12}, {6, 13}, {6, 14}, {6, 15}, {6, 16}, {6, 17}, {6, 21}, {6, 22}, {6, 26}, {6, 27}}};

void loadRecord(unsigned int record, kt::ktBaseStream& stream) {
    switch (record) {
        case 0: {
            const kt::ktPointer<ktAnnotationInterface> annotation(new ktAnnotationText);
            annotation->load(stream);
            const kt::ktPointer<ktAnnotationInterface> copy(annotation->cloneAnnotation());
            break;
        }
        case 1:
            kt::ktPointer<ktAnnotationInterface>(new ktLegacy::ktAnnotationRaster)->load(stream);
            break;
        case 2:
            kt::ktPointer<ktAnnotationInterface>(new ktAnnotationInterface(ktAnnotationInterface::Undefined))
                ->load(stream);
            break;
        case 3:
            kt::ktPointer<kt::ktRttiInterface>(ktLegacy::ktAnnotationView::Factory(stream));
            break;
        case 4:
            kt::ktPointer<kt::ktRttiInterface>(ktLegacy::ktAnnotationMetaData::Factory(stream));
            break;
        case 5:
            ktAnnotationInterface::Leader().load(stream);
            break;
        case 6:
            ktAnnotationInterface::MeasureLeader().load(stream);
            break;
        case 7:
            ktAnnotationText::TextSegment().load(stream);
            break;
        default:
            ktAnnotationText::TextProperties().load(stream);
            break;
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    kt::initializeKtAnnotationLegacyLibrary();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) {
        return 0;
    }
    kt::ktBaseStream stream(data + 2, size - 2, sVersions[data[1] % sVersions.size()]);
    // Far less than documents may take, so that runs with claims of memory stay short.
    stream.setMemoryBudget(1U << 20U);
    try {
        loadRecord(data[0] % 9U, stream);
    } catch (const std::bad_alloc&) {
        stream.editPendingLinks().clear();
    }
    return 0;
}
