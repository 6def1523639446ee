// SPDX-License-Identifier: LicenseRef-Halyard
// What the ordered containers of COrderedMap.h share: a red-black tree of entries with unique keys, ascending visit,
// lookup. An entry stays where it is until it is erased; nodes come one by one from the block allocator.
#pragma once

#include <cstdint>
#include <type_traits>
#include <utility>

#include "Core/CBrtMemAllocator.h"
#include "Core/CTreeNode.h"

namespace brt {

// How keys compare, and as what they are looked up. This form serves class types with a `compare` operation.
template <class Key>
struct CKeyOrder {
    using Lookup = const Key&;
    static int compare(Lookup a, const Key& b) noexcept { return a.compare(b); }
};

template <class Key>
requires std::is_scalar_v<Key>
struct CKeyOrder<Key> {
    using Lookup = Key;
    static int compare(Key a, Key b) noexcept {
        return int{numberOf(a) > numberOf(b)} - int{numberOf(a) < numberOf(b)};
    }

private:
    static std::uint64_t numberOf(Key key) noexcept {
        if constexpr (std::is_pointer_v<Key>)
            return reinterpret_cast<std::uintptr_t>(key);
        else if constexpr (std::is_same_v<Key, bool>)
            return key;
        else
            return static_cast<std::make_unsigned_t<Key>>(key);
    }
};

// `Entry` has a member `key` and is constructed from the key that was looked up.
template <class Key, class Entry>
class COrderedTree {
    struct Node : CTreeNode, CBrtMemAllocator {
        explicit Node(typename CKeyOrder<Key>::Lookup key) : CTreeNode{}, entry(key) {}
        Entry entry;
    };

    static Entry& entryOf(CTreeNode* node) noexcept { return static_cast<Node*>(node)->entry; }

public:
    using Lookup = typename CKeyOrder<Key>::Lookup;

    // A place in the order of the keys, or none. Valid until its entry is erased.
    template <class E>
    class Iterator {
    public:
        Iterator() noexcept = default;
        explicit Iterator(CTreeNode* node) noexcept : m_node(node) {}
        operator Iterator<const E>() const noexcept { return Iterator<const E>(m_node); }

        decltype(auto) operator*() const noexcept {
            if constexpr (requires(E & entry) { entry.value; })
                return static_cast<E&>(entryOf(m_node));
            else
                return static_cast<const Key&>(entryOf(m_node).key);  // a set shows its keys alone
        }
        E* operator->() const noexcept { return &entryOf(m_node); }

        // Past either end it stands nowhere, as `end` does.
        Iterator& operator++() noexcept { return m_node = CTreeLinks::next(m_node), *this; }
        Iterator& operator--() noexcept { return m_node = CTreeLinks::previous(m_node), *this; }

        explicit operator bool() const noexcept { return m_node != nullptr; }
        bool operator==(const Iterator&) const noexcept = default;

    private:
        friend COrderedTree;
        CTreeNode* m_node = nullptr;
    };

    using iterator = Iterator<Entry>;
    using const_iterator = Iterator<const Entry>;

    COrderedTree() noexcept = default;
    ~COrderedTree() { clear(); }
    COrderedTree(const COrderedTree&) = delete;
    COrderedTree& operator=(const COrderedTree&) = delete;

    int count() const noexcept { return m_count; }
    bool isEmpty() const noexcept { return m_count == 0; }

    iterator begin() noexcept { return iterator(m_links.first()); }
    iterator end() noexcept { return iterator(); }
    const_iterator begin() const noexcept { return const_iterator(m_links.first()); }
    const_iterator end() const noexcept { return const_iterator(); }

    // The entry of the greatest key.
    iterator last() noexcept { return iterator(m_links.last()); }
    const_iterator last() const noexcept { return const_iterator(m_links.last()); }

    // The entry of that key; `end` if there is none.
    iterator locate(Lookup key) noexcept { return iterator(nodeAt(key)); }
    const_iterator locate(Lookup key) const noexcept { return const_iterator(nodeAt(key)); }
    bool contains(Lookup key) const noexcept { return nodeAt(key) != nullptr; }

    // The first entry whose key is not below `key`; above `key`.
    iterator lowerBound(Lookup key) noexcept { return iterator(bound(key, 0)); }
    const_iterator lowerBound(Lookup key) const noexcept { return const_iterator(bound(key, 0)); }
    iterator upperBound(Lookup key) noexcept { return iterator(bound(key, -1)); }
    const_iterator upperBound(Lookup key) const noexcept { return const_iterator(bound(key, -1)); }

    // False if there was none.
    bool erase(Lookup key) noexcept {
        CTreeNode* const node = nodeAt(key);
        if (node != nullptr) eraseNode(node);
        return node != nullptr;
    }

    // Returns the place behind it.
    iterator erase(iterator place) noexcept {
        const iterator behind(CTreeLinks::next(place.m_node));
        eraseNode(place.m_node);
        return behind;
    }

    // Entries stay where they are.
    void swap(COrderedTree& other) noexcept {
        std::swap(m_links, other.m_links);
        std::swap(m_count, other.m_count);
    }

    void clear() noexcept {
        // From the leaves up, without the work of balancing.
        CTreeNode* node = m_links.root;
        while (node != nullptr) {
            if (CTreeNode* const child = node->left != nullptr ? node->left : node->right) {
                node = child;
                continue;
            }
            CTreeNode* const parent = node->parent;
            if (parent != nullptr) (parent->left == node ? parent->left : parent->right) = nullptr;
            delete static_cast<Node*>(node);
            node = parent;
        }
        m_links.root = nullptr;
        m_count = 0;
    }

protected:
    // `isNew` tells whether the entry was made by this call.
    Entry& findOrInsertEntry(Lookup key, bool& isNew) {
        CTreeNode* parent = nullptr;
        CTreeNode** place = &m_links.root;
        while (*place != nullptr) {
            parent = *place;
            const int order = CKeyOrder<Key>::compare(key, entryOf(parent).key);
            if (order == 0) {
                isNew = false;
                return entryOf(parent);
            }
            place = order < 0 ? &parent->left : &parent->right;
        }
        Node* const node = new Node(key);
        m_links.insert(node, parent, place);
        ++m_count;
        isNew = true;
        return node->entry;
    }

private:
    CTreeNode* nodeAt(Lookup key) const noexcept {
        CTreeNode* node = m_links.root;
        while (node != nullptr) {
            const int order = CKeyOrder<Key>::compare(key, entryOf(node).key);
            if (order == 0) break;
            node = order < 0 ? node->left : node->right;
        }
        return node;
    }

    // The first node whose comparison gives at most `limit`: 0 for "not below", -1 for "above".
    CTreeNode* bound(Lookup key, int limit) const noexcept {
        CTreeNode* found = nullptr;
        for (CTreeNode* node = m_links.root; node != nullptr;) {
            const bool isCandidate = CKeyOrder<Key>::compare(key, entryOf(node).key) <= limit;
            if (isCandidate) found = node;
            node = isCandidate ? node->left : node->right;
        }
        return found;
    }

    void eraseNode(CTreeNode* node) noexcept {
        m_links.remove(node);
        --m_count;
        delete static_cast<Node*>(node);
    }

    CTreeLinks m_links;
    std::int32_t m_count = 0;
};

}  // namespace brt
