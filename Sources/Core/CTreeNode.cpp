// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CTreeNode.h"

#include <utility>

namespace brt {

namespace {

constexpr auto kLeft = &CTreeNode::left;
constexpr auto kRight = &CTreeNode::right;

bool isRed(const CTreeNode* node) noexcept { return node != nullptr && node->colour == CTreeNode::kRed; }

CTreeNode* outermost(CTreeNode* node, CTreeNode* CTreeNode::*side) noexcept {
    if (node == nullptr) return nullptr;
    while (node->*side != nullptr) node = node->*side;
    return node;
}

// The nearest node on `side` in the order of the keys.
CTreeNode* neighbour(const CTreeNode* node, CTreeNode* CTreeNode::*side, CTreeNode* CTreeNode::*otherSide) noexcept {
    if (node->*side != nullptr) return outermost(node->*side, otherSide);
    CTreeNode* parent = node->parent;
    while (parent != nullptr && node == parent->*side) {
        node = parent;
        parent = parent->parent;
    }
    return parent;
}

}  // namespace

CTreeNode* CTreeLinks::first() const noexcept { return outermost(root, kLeft); }
CTreeNode* CTreeLinks::last() const noexcept { return outermost(root, kRight); }
CTreeNode* CTreeLinks::next(const CTreeNode* node) noexcept { return neighbour(node, kRight, kLeft); }
CTreeNode* CTreeLinks::previous(const CTreeNode* node) noexcept { return neighbour(node, kLeft, kRight); }

// `parent` null: the root.
void CTreeLinks::replaceChild(const CTreeNode* parent, const CTreeNode* oldChild, CTreeNode* newChild) noexcept {
    if (parent == nullptr)
        root = newChild;
    else if (parent->left == oldChild)
        const_cast<CTreeNode*>(parent)->left = newChild;
    else
        const_cast<CTreeNode*>(parent)->right = newChild;
}

// The child of `node` on the side `up` takes its place; `node` becomes that child's child on the side `down`.
void CTreeLinks::rotate(CTreeNode* node, Side down, Side up) noexcept {
    CTreeNode* const child = node->*up;
    node->*up = child->*down;
    if (child->*down != nullptr) (child->*down)->parent = node;
    child->parent = node->parent;
    replaceChild(node->parent, node, child);
    child->*down = node;
    node->parent = child;
}

void CTreeLinks::insert(CTreeNode* node, CTreeNode* parent, CTreeNode** place) noexcept {
    node->left = node->right = nullptr;
    node->parent = parent;
    node->colour = CTreeNode::kRed;
    *place = node;

    // A red node below a red one: recolour, and go on two levels higher, or rotate, which ends it.
    while (isRed(node->parent)) {
        CTreeNode* above = node->parent;
        CTreeNode* const top = above->parent;  // a red node isn't the root, so it has a parent
        const bool isLeft = above == top->left;
        const Side near = isLeft ? kLeft : kRight;
        const Side far = isLeft ? kRight : kLeft;
        if (CTreeNode* const uncle = top->*far; isRed(uncle)) {
            above->colour = uncle->colour = CTreeNode::kBlack;
            top->colour = CTreeNode::kRed;
            node = top;
            continue;
        }
        if (node == above->*far) {
            rotate(above, near, far);
            std::swap(node, above);
        }
        above->colour = CTreeNode::kBlack;
        top->colour = CTreeNode::kRed;
        rotate(top, far, near);
    }
    root->colour = CTreeNode::kBlack;
}

void CTreeLinks::remove(CTreeNode* node) noexcept {
    CTreeNode* child;   // takes the place of the node that leaves its place
    CTreeNode* parent;  // of that place
    CTreeNode::Colour lost = node->colour;
    if (node->left != nullptr && node->right != nullptr) {
        // The next in order has no left child: it takes the node's place, so its own place is the one that empties.
        CTreeNode* const heir = outermost(node->right, kLeft);
        lost = heir->colour;
        child = heir->right;
        parent = heir->parent == node ? heir : heir->parent;
        if (heir->parent != node) {
            heir->parent->left = child;
            if (child != nullptr) child->parent = heir->parent;
            heir->right = node->right;
            heir->right->parent = heir;
        }
        heir->left = node->left;
        heir->left->parent = heir;
        heir->parent = node->parent;
        heir->colour = node->colour;
        replaceChild(node->parent, node, heir);
    } else {
        child = node->left != nullptr ? node->left : node->right;
        parent = node->parent;
        if (child != nullptr) child->parent = parent;
        replaceChild(parent, node, child);
    }
    if (lost == CTreeNode::kBlack) balanceAfterRemoval(child, parent);
}

// The ways through `node`, a child of `parent` that may be null, lack one black node.
void CTreeLinks::balanceAfterRemoval(CTreeNode* node, CTreeNode* parent) noexcept {
    while (node != root && !isRed(node)) {
        const bool isLeft = node == parent->left;
        const Side near = isLeft ? kLeft : kRight;
        const Side far = isLeft ? kRight : kLeft;
        CTreeNode* sibling = parent->*far;  // never null: its ways have the black node that ours lack
        if (isRed(sibling)) {
            sibling->colour = CTreeNode::kBlack;
            parent->colour = CTreeNode::kRed;
            rotate(parent, near, far);
            sibling = parent->*far;
        }
        if (!isRed(sibling->left) && !isRed(sibling->right)) {
            sibling->colour = CTreeNode::kRed;
            node = parent;
            parent = node->parent;
            continue;
        }
        if (!isRed(sibling->*far)) {
            (sibling->*near)->colour = CTreeNode::kBlack;
            sibling->colour = CTreeNode::kRed;
            rotate(sibling, far, near);
            sibling = parent->*far;
        }
        sibling->colour = parent->colour;
        parent->colour = CTreeNode::kBlack;
        (sibling->*far)->colour = CTreeNode::kBlack;
        rotate(parent, near, far);
        node = root;
    }
    if (node != nullptr) node->colour = CTreeNode::kBlack;
}

}  // namespace brt
