// SPDX-License-Identifier: LicenseRef-Halyard
// A link from an object to another one, whose path an attribute may give, with the events that the object listens to
// there. It follows the attribute: the handler of that attribute calls `update`.
//
//     CTarget<CUpdateTimer> m_timer;
//     ...
//     m_timer.addEvent("tick", "timer-tick");
//     m_timer.init(*this, "", "", nullptr, "update-timer");       // in initDone
//     if (CUpdateTimer* timer = m_timer.get()) ...
//
// The object is looked up at each use, and known by its id: one that has gone, or whose name another has got, is null.
// Subscriptions are by name, so they also work for an object that comes later.
// Owner: the object that links, as a member. Threads: the tree's.
#pragma once

#include "Core/CObject.h"

namespace brt {

class CTargetLink : public CCheckedObject {
public:
    CTargetLink() = default;
    // Takes back what it listens to.
    ~CTargetLink() override;

    // `owner` links and listens. The path is that in its attribute `attrName`, or `fixedPath` where the name is empty
    // or the owner has no such attribute. `changeEvent`, unless empty, is run by each `update` on `eventRunner`, an
    // object of the owner's tree, as long as that is there (null: the owner). Does the first `update`.
    void init(CObject& owner, CStringView fixedPath, CStringView changeEvent, CObject* eventRunner,
              CStringView attrName);

    // The path as it is now, as for `CObject::findObject` of the owner. REQUIRES: `init` has run.
    CStringView getPath() const;

    // Has the owner's `handlerName` run at that event of the target. An event that is here already gets the new one.
    void addEvent(CStringView eventName, CStringView handlerName);

    // Looks the path up anew and listens there. An error of the event that it runs is reported.
    void update();

protected:
    CObject* find();

private:
    CObject* eventRunner() const;
    void unlisten();

    CObject* m_owner = nullptr;
    CString m_runnerName;  // path of the object that runs the event; empty: the owner
    int m_runnerId = -1;
    CString m_attrName;
    CString m_fixedPath;
    CString m_changeEvent;
    CString m_path;                            // as of the last `update`
    CString m_targetName;                      // the full name that it leads to; what is listened to
    int m_targetId = -1;                       // -1 as long as nothing has been found there
    COrderedMap<CString, CString> m_handlers;  // by event
};

template <class T>
class CTarget : public CTargetLink {
public:
    // Null if there is none, or if it is of another class.
    T* get() { return dynamic_cast<T*>(find()); }
};

}  // namespace brt
