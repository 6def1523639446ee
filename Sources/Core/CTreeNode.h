// SPDX-License-Identifier: LicenseRef-Halyard
// The part of a red-black tree with parent pointers that doesn't depend on its keys: balance and order of visit. The
// containers of COrderedMap.h stand on it.
// Rules of such a tree: the root is black; a red node has black children; every way from the root to a missing child
// meets equally many black nodes. (Cormen, Leiserson, Rivest, Stein: Introduction to Algorithms, red-black trees.)
#pragma once

#include <cstdint>

namespace brt {

struct CTreeNode {
    enum Colour : std::uint32_t { kBlack = 0, kRed = 1 };

    CTreeNode* left;
    CTreeNode* right;
    CTreeNode* parent;
    Colour colour;
};

// A tree. The caller finds the place, owns the nodes and keeps the count.
struct CTreeLinks {
    CTreeNode* root = nullptr;

    // Hangs a new node at `*place`, which is the root or an empty child of `parent`, and restores the balance.
    void insert(CTreeNode* node, CTreeNode* parent, CTreeNode** place) noexcept;

    // Takes a node out and restores the balance. The node itself isn't touched further.
    void remove(CTreeNode* node) noexcept;

    // In the order of the keys; null where there is none.
    CTreeNode* first() const noexcept;
    CTreeNode* last() const noexcept;
    static CTreeNode* next(const CTreeNode* node) noexcept;
    static CTreeNode* previous(const CTreeNode* node) noexcept;

private:
    using Side = CTreeNode* CTreeNode::*;

    void replaceChild(const CTreeNode* parent, const CTreeNode* oldChild, CTreeNode* newChild) noexcept;
    void rotate(CTreeNode* node, Side down, Side up) noexcept;
    void balanceAfterRemoval(CTreeNode* node, CTreeNode* parent) noexcept;
};

}  // namespace brt
