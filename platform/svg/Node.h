#pragma once

/// @file
/// Group of items.

#include "platform/svg/ItemInterface.h"
#include "platform/svg/SmallVector.h"

#include <memory>

namespace kt::svg {

/// A group: its children are drawn in order, later ones on top, in the group's coordinates. Children are shared and
/// never null. Copying a group shares its children. Destroying a tree of any depth needs constant stack.
class KT_SVG_API Node final : public ItemInterface {
public:
    using Children = SmallVector<std::shared_ptr<ItemInterface>, 4>;

    Node() : ItemInterface(Kind::Node) {}
    Node(const Node&) = default;
    Node& operator=(const Node&) = default;
    ~Node() override;

    const Children& getChildren() const { return mChildren; }
    Children& editChildren() { return mChildren; }
    void appendChild(std::shared_ptr<ItemInterface> item) { mChildren.push_back(std::move(item)); }
    /// Puts the item behind everything that the group draws so far.
    void prependChild(std::shared_ptr<ItemInterface> item) { mChildren.insert(mChildren.begin(), std::move(item)); }

private:
    /// Moves the groups that nothing else holds from children to dying, and lets go of the others.
    static void takeDyingGroups(Children& children, Children& dying);

    Children mChildren;
};

}  // namespace kt::svg
