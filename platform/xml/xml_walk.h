#pragma once

namespace qel {

/// Calls @p enter for @p top and everything below it, in document order, and @p leave behind the children of each. Does
/// not recurse. Node is the parser's handle of a node, which is true unless it is null.
template <class Node, class Enter, class Leave> void WalkXml(Node top, Enter enter, Leave leave) {
    for (Node node = top;;) {
        enter(node);
        if (const Node child = node.first_child()) {
            node = child;
            continue;
        }
        leave(node);
        while (node != top && !node.next_sibling()) {
            node = node.parent();
            leave(node);
        }
        if (node == top) return;
        node = node.next_sibling();
    }
}

}  // namespace qel
