#include "platform/svg/Node.h"

#include <iterator>
#include <new>

namespace kt::svg {

Node::~Node() {
    // Groups that die with this one hand their children to one list, so that no destructor runs inside another one.
    Children pending = std::move(mChildren);
    try {
        while (!pending.empty()) {
            const std::shared_ptr<ItemInterface> item = std::move(pending.back());
            pending.pop_back();
            if (item && item->getKind() == Kind::Node && item.use_count() == 1) {
                Children& children = static_cast<Node&>(*item).mChildren;
                pending.insert(pending.end(), std::move_iterator(children.begin()), std::move_iterator(children.end()));
                children.clear();
            }
        }
    } catch (const std::bad_alloc&) {
        // Without memory for the list the rest is destroyed level by level.
        pending.clear();
    }
}

}  // namespace kt::svg
