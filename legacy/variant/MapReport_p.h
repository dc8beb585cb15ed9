#pragma once

/// @file
/// Where the loaders of maps tell what they find.

#include "legacy/variant/ktVariantFinding.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ktLegacy::reading {

/// How many entries lists of nested annotations have, and how many of them became annotations. What belongs to an
/// annotation that could not be read itself does not count.
struct NestedCount {
    std::size_t mEntries = 0;
    std::size_t mLost = 0;
};

/// Receives the findings of one view map or of one annotation map, and keeps the place that is being read: the loaders
/// enter what they read and leave it again. It also counts the levels, which bounds the recursion of the loaders.
class MapReport {
public:
    /// For callers of a single loader: the messages as texts, everything else is left out.
    explicit MapReport(std::vector<std::string>& messages) : mMessages(&messages) {}
    /// For the document reader: everything, with its place.
    explicit MapReport(std::vector<ktVariantFinding>& findings) : mFindings(&findings) {}
    MapReport(const MapReport&) = delete;
    MapReport& operator=(const MapReport&) = delete;
    ~MapReport() = default;

    /// @param detail  takes the place of the sentence's "...".
    static std::string getText(ktFindingCode code, std::string_view detail);

    void tell(ktFindingCode code, std::string_view detail = {});
    /// Takes over what was found in a list that was read by itself.
    /// @param offset  annotations of the view in front of the list.
    void append(std::vector<ktVariantFinding>&& findings, std::size_t offset, const NestedCount& nested);

    /// The annotation that is read from now on. @param index  in the view's annotations.
    void enterAnnotation(std::size_t index) { mAnnotation = index; }
    void leaveAnnotation() { mAnnotation = ktVariantFinding::sNoAnnotation; }
    /// The name of the annotation that is being read; looked at whenever something is told.
    class Named {
    public:
        Named(MapReport& report, const std::string& name) : mReport(report), mOuter(report.mName) {
            report.mName = &name;
        }
        Named(const Named&) = delete;
        Named& operator=(const Named&) = delete;
        ~Named() { mReport.mName = mOuter; }

    private:
        MapReport& mReport;
        const std::string* mOuter;
    };

    /// Reads of the nested annotations of one annotation, for its lifetime.
    class NestedList {
    public:
        NestedList(MapReport& report, std::size_t entryCount);
        NestedList(const NestedList&) = delete;
        NestedList& operator=(const NestedList&) = delete;
        ~NestedList();

        /// The entry that is read from now on.
        void enterEntry(std::uint32_t index) { mReport.mChild.back() = index; }
        /// Whether the entries lie deeper than annotations are read.
        bool isTooDeep() const;

    private:
        MapReport& mReport;
    };

    /// To be asked for before an annotation is read, and to be given back when it is dropped.
    const NestedCount& getNestedCount() const { return mNested; }
    void resetNestedCount(const NestedCount& count) { mNested = count; }
    void loseEntry() { ++mNested.mLost; }

private:
    std::vector<std::string>* mMessages = nullptr;
    std::vector<ktVariantFinding>* mFindings = nullptr;
    std::size_t mAnnotation = ktVariantFinding::sNoAnnotation;
    std::vector<std::uint32_t> mChild;
    const std::string* mName = nullptr;
    NestedCount mNested;
};

}  // namespace ktLegacy::reading
