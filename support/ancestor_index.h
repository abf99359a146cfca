// Ancestors in a tree of any depth, in logarithmic time: for the groups of a diagram, which a document can nest
// 100,000 deep. Used by the layout, the check of a document, and the drawing. Nothing here recurses.
#pragma once

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace tessera_support {

// A tree over the numbers 0 ... size - 1. Each node knows its parent and one ancestor further away, at the
// distances of a skew-binary counter: two jumps of one length make a longer one, so that O(log depth) jumps
// and steps lead to any ancestor, with constant memory and time for each node that is added.
//
// A parent is set before its children. The root is its own parent, at depth 0. Node numbers are not tested: one
// that is not below size() is undefined behaviour. Not for two threads at once while nodes are added; after
// that for any number.
//     AncestorIndex<> tree;                        // the root is 0
//     const auto group = tree.append(0);
//     const auto a = tree.append(group), b = tree.append(group);
//     tree.lowestCommonAncestor(a, b);             // group
template <std::unsigned_integral Index = std::uint32_t>
class AncestorIndex {
  public:
    // A tree of `size` nodes of which only the root is set so far: for nodes whose numbers do not follow their
    // nesting. REQUIRES: root < size.
    explicit AncestorIndex(std::size_t size = 1, Index root = 0) : m_nodes(size, Node{root, root, 0}) {}

    // Adds a node at the end; returns its number. REQUIRES: `parent` is set.
    Index append(Index parent) {
        m_nodes.push_back(nodeUnder(parent));
        return static_cast<Index>(m_nodes.size() - 1);
    }

    // Sets the parent of a node that has no descendants yet. REQUIRES: `parent` is set, and is not `node`.
    void setParent(Index node, Index parent) { m_nodes[node] = nodeUnder(parent); }

    // Allocates for that many nodes at once; append() is faster then.
    void reserve(std::size_t size) { m_nodes.reserve(size); }

    // All nodes, those that are not set yet included: their parent is the root, and their depth 0.
    [[nodiscard]] std::size_t size() const noexcept { return m_nodes.size(); }
    // Constant time, both. Each step down adds 1 to the depth.
    [[nodiscard]] Index parent(Index node) const { return m_nodes[node].parent; }
    [[nodiscard]] Index depth(Index node) const { return m_nodes[node].depth; }

    // The ancestor of `node` at the depth, or `node` itself. REQUIRES: depth <= that of `node`.
    [[nodiscard]] Index ancestorAtDepth(Index node, Index depth) const {
        while (m_nodes[node].depth > depth) {
            const Index jump = m_nodes[node].jump;
            node = m_nodes[jump].depth >= depth ? jump : m_nodes[node].parent;
        }
        return node;
    }

    // The deepest node that contains both, which may be one of them. Logarithmic time.
    [[nodiscard]] Index lowestCommonAncestor(Index a, Index b) const {
        levelOut(a, b);
        while (a != b)
            stepUp(a, b, m_nodes[a].jump != m_nodes[b].jump);
        return a;
    }

    // The ancestors of the two, or the two themselves, that have the same parent. Where one contains the
    // other, both results are the outer one.
    [[nodiscard]] std::pair<Index, Index> liftedToCommonGroup(Index a, Index b) const {
        levelOut(a, b);
        while (m_nodes[a].parent != m_nodes[b].parent)
            stepUp(a, b, m_nodes[a].jump != m_nodes[b].jump);
        return {a, b};
    }

  private:
    struct Node {
        Index parent;
        Index jump;  // an ancestor, or the node itself if it is the root; how far away, its depth decides
        Index depth;
    };

    // A child of `parent`, whose jump joins the parent's jump and the next one when both are of one length.
    [[nodiscard]] Node nodeUnder(Index parent) const {
        const Node& near = m_nodes[parent];
        const Node& far = m_nodes[near.jump];
        const bool joins = near.depth - far.depth == far.depth - m_nodes[far.jump].depth;
        return {parent, joins ? far.jump : parent, static_cast<Index>(near.depth + 1)};
    }

    // Lifts the deeper one to the depth of the other.
    void levelOut(Index& a, Index& b) const {
        const Index depth = std::min(m_nodes[a].depth, m_nodes[b].depth);
        a = ancestorAtDepth(a, depth);
        b = ancestorAtDepth(b, depth);
    }

    // Nodes of one depth have jumps of one length.
    void stepUp(Index& a, Index& b, bool isJump) const {
        a = isJump ? m_nodes[a].jump : m_nodes[a].parent;
        b = isJump ? m_nodes[b].jump : m_nodes[b].parent;
    }

    std::vector<Node> m_nodes;
};

}  // namespace tessera_support
