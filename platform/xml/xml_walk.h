#pragma once

namespace qel {

/// Calls @p enter for @p top and everything in it, in document order, with whether it has children; calls @p leave
/// after the children of those that have some. Does not recurse. Node is the parser's handle of a node, which is true
/// unless it is null.
template <class Node, class Enter, class Leave> void WalkXml(Node top, Enter enter, Leave leave) {
    Node node = top;
    for (int depth = 0;;) {
        const Node child = node.first_child();
        const bool hasChildren = static_cast<bool>(child);
        enter(node, hasChildren);
        if (hasChildren) {
            node = child;
            ++depth;
            continue;
        }
        for (;;) {
            if (depth == 0) return;
            if (const Node next = node.next_sibling()) {
                node = next;
                break;
            }
            node = node.parent();
            leave(node);
            --depth;
        }
    }
}

}  // namespace qel
