#include "tests/legacy/LegacyLibraryTest.h"
#include "tests/robustness/DamagedDocuments.h"
#include "tests/robustness/Drawings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace ktTest {
namespace {

using Dumps = std::map<std::uint64_t, std::string>;

/// The minor versions of small documents, which are damaged in every way, and samples, which are in a few.
const char* const sDocuments[] = {"13",
                                  "14",
                                  "16",
                                  "21",
                                  "22",
                                  "27",
                                  "ctc_01_from_617_v613.kts",
                                  "symbols_from_617_v615.kts",
                                  "ftc_11_from_628_v628.kts"};

class StreamDamageTest : public LegacyLibraryTest, public testing::WithParamInterface<const char*> {
protected:
    StreamDamageTest()
        : mBytes(isSmall() ? makeSmallDocument(static_cast<unsigned int>(std::stoi(GetParam())))
                           : readBytes("samples/" + std::string(GetParam()))),
          mRecords(findRecords(mBytes)),
          mWhole(dumpViews(kt::ktObjectDocument(mBytes))) {}

    static bool isSmall() { return std::string_view(GetParam()).size() == 2; }

    /// Of a document in which the given record was damaged and the later ones may have moved: the offset of the first
    /// other record that is not as it was, 0 when there is none. Records that found no memory do not count.
    std::size_t findOtherDamage(const kt::ktObjectDocument& document, const RecordPlace& damaged,
                                std::size_t bytesCut = 0) const {
        const Dumps dumps = dumpViews(document, damaged.mBegin);
        for (const auto& [offset, dump] : mWhole) {
            const auto found = dumps.find(offset > damaged.mBegin ? offset - bytesCut : offset);
            const bool isIntact = found != dumps.end() ? found->second == dump : document.isLimitReached();
            if (offset != damaged.mBegin && !isIntact) {
                return offset;
            }
        }
        return 0;
    }

    const Bytes mBytes;
    const std::vector<RecordPlace> mRecords;
    const Dumps mWhole;
};

INSTANTIATE_TEST_SUITE_P(Documents, StreamDamageTest, testing::ValuesIn(sDocuments));

TEST_P(StreamDamageTest, FileMayEndAnywhere) {
    for (std::size_t size = 0; size <= mBytes.size(); ++size) {
        // A block of just that size, so that the address sanitizer sees the first byte read too many.
        const Bytes cut(mBytes.begin(), mBytes.begin() + static_cast<std::ptrdiff_t>(size));
        const kt::ktObjectDocument document(cut);
        ASSERT_EQ(document.isRefused(), size < kt::ktObjectDocument::sHeaderSize) << size;
        if (document.isRefused()) {
            continue;
        }
        ASSERT_EQ(document.getProblems().empty(), size == mBytes.size()) << size;
        const auto isCut = [size](const RecordPlace& record) { return record.mBody <= size && size < record.mEnd; };
        ASSERT_EQ(document.hasStreamError(), std::any_of(mRecords.begin(), mRecords.end(), isCut)) << size;
        const Dumps dumps = dumpViews(document);
        for (const RecordPlace& record : mRecords) {
            const auto whole = mWhole.find(record.mBegin);
            if (record.mEnd <= size && whole != mWhole.end()) {
                ASSERT_EQ(dumps.at(record.mBegin), whole->second) << size;
            }
        }
    }
}

TEST_P(StreamDamageTest, RecordMayEndAnywhere) {
    for (const RecordPlace& record : mRecords) {
        const std::size_t length = record.mEnd - record.mBody;
        const std::size_t step = isSmall() ? 1 : 7;
        for (std::size_t keep = 0; keep < length; keep += step) {
            // Body length and later records go with it.
            const std::span whole(mBytes);
            StreamBuilder cut;
            cut.bytes(whole.first(record.mLength)).u64(keep).bytes(whole.subspan(record.mBody, keep));
            const kt::ktObjectDocument document(cut.bytes(whole.subspan(record.mEnd)));
            ASSERT_TRUE(document.hasStreamError()) << record.mId << ' ' << keep;
            ASSERT_EQ(document.getProblems().size(), 1U) << record.mId << ' ' << keep;
            const kt::ktObjectDocument::Problem& problem = document.getProblems().front();
            ASSERT_EQ(problem.mObjectId, record.mId) << keep;
            ASSERT_GE(problem.mOffset, record.mBody) << keep;
            ASSERT_LE(problem.mOffset, record.mBody + keep);
            ASSERT_EQ(findOtherDamage(document, record, length - keep), 0U) << record.mId << ' ' << keep;
        }
    }
}

TEST_P(StreamDamageTest, AnyByteMayBeAnother) {
    // A low budget, so that counts made large cost little time.
    constexpr std::uint64_t budget = 64ULL * 1024;
    Bytes damaged = mBytes;
    for (std::size_t offset = 0; offset < mBytes.size(); ++offset) {
        const auto record = std::find_if(mRecords.begin(), mRecords.end(),
                                         [offset](const RecordPlace& place) { return offset < place.mEnd; });
        const bool isInHead = offset < record->mTypeName || (offset >= record->mLength && offset < record->mBody);
        for (unsigned int change = isSmall() ? 1 : 255; change < 256; ++change) {
            damaged[offset] = mBytes[offset] ^ static_cast<std::byte>(change);
            const kt::ktObjectDocument document(damaged, budget);
            // A damaged head may hide where the next record begins; nothing more is asked of it than to be survived.
            if (!isInHead && !document.isRefused()) {
                ASSERT_EQ(findOtherDamage(document, *record), 0U) << offset << " changed by " << change;
            }
        }
        damaged[offset] = mBytes[offset];
    }
}

TEST_P(StreamDamageTest, DrawingsAreWellFormed) {
    const std::size_t step = isSmall() ? 7 : 97;
    std::size_t count = 0;
    for (std::size_t offset = 0; offset < mBytes.size() && !HasFailure(); offset += step) {
        const Bytes cut(mBytes.begin(), mBytes.begin() + static_cast<std::ptrdiff_t>(offset));
        Bytes damaged = mBytes;
        damaged[offset] ^= static_cast<std::byte>(1 + offset % 255);
        count += countDrawings(ktLegacy::ktLegacyDocument::read(cut));
        count += countDrawings(ktLegacy::ktLegacyDocument::read(damaged));
    }
    EXPECT_GT(count, 0U);
}

}  // namespace
}  // namespace ktTest
