// SPDX-License-Identifier: LicenseRef-Halyard
// What an object knows of others, and they of it, beyond the tree: what it listens to, its bridge to another thread,
// the attributes it follows and those that follow its own. Most objects have nothing of the kind and so no record.
// Owner: the object. Threads: the object's.
#pragma once

#include "Core/CObjectAddress.h"
#include "Core/COrderedMap.h"

namespace brt {

class CObject;

// An attribute of another object that follows one of this object.
struct CFollower {
    CObject* object = nullptr;
    CString attrName;
};

// Those that follow one attribute.
struct CFollowedAttr {
    // By the follower's id, then by the order of binding.
    static std::uint64_t keyOf(int followerId, std::uint32_t order) noexcept {
        return static_cast<std::uint64_t>(static_cast<std::uint32_t>(followerId + 1)) << 32 | order;
    }
    static std::uint32_t orderOf(std::uint64_t key) noexcept { return static_cast<std::uint32_t>(key); }

    COrderedMap<std::uint64_t, CFollower> followers;
    std::uint32_t lastOrder = 0;
    bool isNotifying = false;
    bool isLoopLogged = false;
};

class CObjectLinks : public CBrtMemAllocator {
public:
    // Has an attribute of `object` follow the attribute `name` of this one. What stands already stays as it is.
    void addFollower(CStringView name, CObject& object, CStringView attrName);
    void removeFollower(const CObject& object);

    CRef<CObjectEventBridge> bridge;  // of this object itself; null for all but bridges
    CRef<CObjectAddress> address;     // made when it is first asked for
    bool isReleasePosted = false;

    COrderedMap<CString, COrderedSet<CString>> listened;  // names of events, by the full name of their sender
    COrderedMap<CString, CFollowedAttr> followed;         // by attribute of this object; entries stay
    COrderedSet<CObject*> sources;                        // objects that this one follows
};

}  // namespace brt
