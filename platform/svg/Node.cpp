#include "platform/svg/Node.h"

#include <new>

namespace kt::svg {

Node::~Node() {
    // Groups that die with this one are taken out before their parents die, so that no destructor runs deep inside
    // others.
    Children dying;
    try {
        takeDyingGroups(mChildren, dying);
        while (!dying.empty()) {
            const std::shared_ptr<ItemInterface> group = std::move(dying.back());
            dying.pop_back();
            takeDyingGroups(static_cast<Node&>(*group).mChildren, dying);
        }
    } catch (const std::bad_alloc&) {
        // Without memory for the list the rest is destroyed level by level.
        dying.clear();
    }
}

void Node::takeDyingGroups(Children& children, Children& dying) {
    for (std::shared_ptr<ItemInterface>& child : children) {
        if (child && child->getKind() == Kind::Node) {
            if (child.use_count() == 1) {
                dying.push_back(std::move(child));
            } else {
                // The one that shares it may be a later child: that one is the last then.
                child.reset();
            }
        }
    }
}

}  // namespace kt::svg
