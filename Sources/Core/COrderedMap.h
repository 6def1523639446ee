// SPDX-License-Identifier: LicenseRef-Halyard
// Ordered containers with unique keys: COrderedMap of keys and values, COrderedSet of keys. Each is a red-black tree
// whose nodes come one by one from the block allocator; a value stays where it is until it is erased.
//
// Keys are CString in the order of its `compare`, or integers, enumerations or pointers, ordered as unsigned numbers.
// Range-for visits in ascending order:
//     for (auto& [name, value] : map) ...       for (const CString& name : set) ...
// Lookup, bounds, erasing and iterators are those of COrderedTree.
// Owner: the object that holds it as a member. Threads: those of its owner; not locked.
#pragma once

#include "Core/COrderedTree.h"

namespace brt {

template <class Key, class Value>
struct CMapEntry {
    explicit CMapEntry(typename CKeyOrder<Key>::Lookup lookup) : key(lookup), value() {}

    const Key key;
    Value value;
};

template <class Key>
struct CSetEntry {
    explicit CSetEntry(typename CKeyOrder<Key>::Lookup lookup) : key(lookup) {}

    const Key key;
};

template <class Key, class Value>
class COrderedMap : public COrderedTree<Key, CMapEntry<Key, Value>> {
public:
    using Lookup = typename CKeyOrder<Key>::Lookup;

    // The value of that key; null if there is none.
    Value* find(Lookup key) noexcept {
        const auto place = this->locate(key);
        return place ? &place->value : nullptr;
    }
    const Value* find(Lookup key) const noexcept {
        const auto place = this->locate(key);
        return place ? &place->value : nullptr;
    }

    // The value of that key; a new one is value-initialised (zero, null, empty).
    Value& findOrInsert(Lookup key) {
        bool isNew;
        return this->findOrInsertEntry(key, isNew).value;
    }
    Value& findOrInsert(Lookup key, bool& isNew) { return this->findOrInsertEntry(key, isNew).value; }
};

template <class Key>
class COrderedSet : public COrderedTree<Key, CSetEntry<Key>> {
public:
    using Lookup = typename CKeyOrder<Key>::Lookup;

    // False if it was there already.
    bool insert(Lookup key) {
        bool isNew;
        this->findOrInsertEntry(key, isNew);
        return isNew;
    }
};

}  // namespace brt
