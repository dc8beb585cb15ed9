#pragma once

/// @file
/// Legacy documents for people.

#include "legacy/ktAnnotationInterface.h"
#include "tools/ktannot/report/SourceDocument.h"
#include "tools/ktannot/report/TextTree.h"

#include <cstddef>
#include <string>
#include <vector>

namespace ktannot {

/// Shows a loaded document as a tree of views and annotations, with the findings where they belong.
class LegacyTree {
public:
    LegacyTree(TextOutput& output, bool isColored) : mTree(output, isColored) {}

    void print(const SourceDocument& document);

private:
    void printView(const ktLegacy::ktLegacyDocument::View& view, std::size_t number,
                   const std::vector<std::string>& findings);
    void printFindings(const std::vector<std::string>& findings);
    /// @param anchor  where a child sits on its parent, with a blank behind; empty for a top annotation.
    void printAnnotation(const ktLegacy::ktAnnotationInterface* annotation, const std::string& anchor);
    std::string describeView(const ktLegacy::ktLegacyDocument::View& view, std::size_t number) const;
    std::string describeAnnotation(const ktLegacy::ktAnnotationInterface& annotation, const std::string& anchor) const;

    TextTree mTree;
};

}  // namespace ktannot
