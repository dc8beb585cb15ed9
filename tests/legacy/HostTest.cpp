// What hosts may do with the library's objects.

#include "platform/system/log/ktLog.h"
#include "tests/legacy/LegacyLibraryTest.h"

#include <array>
#include <cstdint>
#include <memory>
#include <new>
#include <stdexcept>
#include <type_traits>
#include <utility>
#include <vector>

namespace ktLegacy {
namespace {

using ktTest::show;
using testing::ElementsAre;

class Host : public ktTest::LegacyLibraryTest {};

/// A class of a host's with that alignment and size, which may refuse to be made.
template <std::size_t Alignment, std::size_t Size>
struct alignas(Alignment) Sized : HostAnnotation {
    explicit Sized(bool isRefused = false) {
        if (isRefused) {
            throw std::runtime_error("refused");
        }
    }
    std::array<unsigned char, Size> mBytes{};
};

template <typename Class>
void checkStorage() {
    std::vector<AnnotationPointer> objects;
    for (int count = 0; count < 20; ++count) {
        for (auto* object : {new Class, new (std::nothrow) Class}) {
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(object) % alignof(Class), 0U);
            object->mBytes.fill(static_cast<unsigned char>(count));
            objects.emplace_back(object);
        }
        EXPECT_THROW(new Class(true), std::runtime_error);
        EXPECT_THROW(new (std::nothrow) Class(true), std::runtime_error);
    }
    EXPECT_EQ(dynamic_cast<Class&>(*objects[3]).mBytes.back(), 1);
    alignas(Class) std::array<std::byte, sizeof(Class)> place;
    std::destroy_at(new (static_cast<void*>(place.data())) Class);
}

TEST_F(Host, ClassesOfEveryAlignmentAndSizeAreStored) {
    checkStorage<Sized<8, 1>>();
    checkStorage<Sized<32, 1>>();
    checkStorage<Sized<64, 5000>>();
    checkStorage<Sized<16, 5000>>();
}

template <typename Member, typename Value>
constexpr bool isWritable = std::is_assignable_v<Member, Value>;

TEST_F(Host, OwnedMembersAreReadOnlyAndLieInTheirOrder) {
    Segment segment("abc", Segment::Subscript);
    static_assert(!isWritable<decltype((segment.mText)), char*> && !isWritable<decltype((segment.mLength)), int> &&
                  !isWritable<decltype((segment.mProperties)), Properties*>);
    static_assert(!isWritable<decltype((std::declval<ktAnnotationText&>().mType)), ktAnnotationInterface::Type>);
    const auto offset = [&segment](const auto& member) {
        return reinterpret_cast<const char*>(&member) - reinterpret_cast<const char*>(&segment);
    };
    EXPECT_THAT((std::vector{offset(segment.mText), offset(segment.mProperties), offset(segment.mLength),
                             offset(segment.mType), static_cast<long>(sizeof(segment))}),
                ElementsAre(0, 8, 16, 18, 24));
    // The letters and the properties themselves belong to whoever has the segment.
    segment.mText[1] = 'B';
    segment.setTextProperties(Properties("Serif", 1));
    segment.mProperties->mHeight = 7;
    EXPECT_EQ(std::string_view(segment.mText, segment.mLength), "aBc");
    EXPECT_EQ((*segment.mProperties).mHeight, 7);
}

TEST_F(Host, PointersOfRelatedClassesCompareAndConvert) {
    const TextPointer text = makeText("a");
    const AnnotationPointer same = text;
    const ktPointer<ktAnnotationRaster> other(new ktAnnotationRaster);
    EXPECT_TRUE(text == same && same == text && same != other && text == same.get() && same != other.get());
    static_assert(std::is_convertible_v<TextPointer, AnnotationPointer>);
    static_assert(!std::is_constructible_v<TextPointer, const AnnotationPointer&>);
    static_assert(!std::is_constructible_v<TextPointer, const ViewPointer&>);
    static_assert(!std::equality_comparable_with<TextPointer, ViewPointer>);
    const ktAnnotationInterface::Leader leader = Point(1, 2, 3);
    EXPECT_EQ(leader.mPosition.z, 3);
}

/// Writes down its own name, its view's metadata and its children's names when it is destroyed.
struct Witness : HostAnnotation {
    Witness(const std::string& name, std::vector<std::string>& log, const ktAnnotationView* view = nullptr)
        : mLog(log), mView(view) {
        SetName(name);
    }
    ~Witness() override {
        std::string line = GetName() + (mView != nullptr ? mView->mMetadata.find("key")->second.toString() : "");
        for (const SubAnnot& entry : getSubAnnots()) {
            line += ' ' + entry.mAnnotation->GetName();
        }
        mLog.push_back(line);
    }
    std::vector<std::string>& mLog;
    const ktAnnotationView* mView;
};

TEST_F(Host, ChildrenAreThereUntilTheirParentIsGone) {
    std::vector<std::string> log;
    const auto make = [&log](const char* name, const AnnotationPointer& child) {
        const AnnotationPointer parent(new Witness(name, log));
        addChild(*parent, child);
        addChild(*parent, AnnotationPointer(new Witness("end", log)));
        return parent;
    };
    AnnotationPointer kept = make("kept", make("below", AnnotationPointer(new Witness("last", log))));
    {
        const AnnotationPointer top = make("top", kept);
        top->editSubAnnots().front().mAnnotation = make("old", kept);
        top->removeSubAnnots();
        EXPECT_EQ(top->getSubAnnotsCount(), 0U);
        EXPECT_THAT(std::exchange(log, {}), ElementsAre("old kept end", "end", "end"));
    }
    EXPECT_THAT(std::exchange(log, {}), ElementsAre("top"));
    EXPECT_EQ(kept->getSubAnnots().front().mAnnotation->getSubAnnotsCount(), 2U) << "what lives on keeps its children";
    kept.reset();
    EXPECT_THAT(log, ElementsAre("kept below end", "below last end", "end", "last", "end"));
}

TEST_F(Host, AnnotationsAreGoneBeforeTheRestOfTheirView) {
    std::vector<std::string> log;
    ViewPointer view(new ktAnnotationView);
    // So long that freed storage does not keep it.
    const std::string value(5000, 'v');
    view->mMetadata["key"] = value;
    view->mAnnotations = {AnnotationPointer(new Witness("a", log, view)),
                          AnnotationPointer(new Witness("b", log, view))};
    view.reset();
    EXPECT_THAT(log, ElementsAre("a" + value, "b" + value));
}

TEST(HostLog, IsReplacedWhenItEnds) {
    struct SilentLog final : kt::ktLog {
        void log(const kt::ktLogEntry& /*entry*/) noexcept override {}
    };
    kt::ktLog* const before = kt::ktLog::msInstance;
    {
        SilentLog other;
        SilentLog log;
        kt::ktLog::msInstance = &log;
    }
    EXPECT_EQ(kt::ktLog::msInstance.exchange(before), &kt::ktLog::getBundledLog());
}

}  // namespace
}  // namespace ktLegacy
