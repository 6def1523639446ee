// SPDX-License-Identifier: LicenseRef-Halyard
// A tree with a bridge to the test's thread, and objects whose handlers a test writes in place.
#pragma once

#include <functional>

#include "Core/CEventArgs.h"
#include "Core/CEventRegistry.h"
#include "Core/CObjectAddress.h"
#include "Core/CObjectContext.h"
#include "Core/CStdEventBridge.h"
#include "Platform/CMessageLoop.h"
#include "TreeFixture.h"

namespace brt {

inline std::string argText(const CAttrMap& args, CStringView name) {
    const CAttrValue* const value = args.find(name);
    return value ? text(value->asString()) : "-";
}

inline CAttrMap& withText(CAttrMap& args, CStringView name, CStringView value) {
    args.findOrInsert(name).setText(value);
    return args;
}

// Has the events "on-x", "on-y" and "on-z" and the attributes "x", "y" and "z", each with a handler that writes the
// journal and then does what the test wants.
class CActor : public CObject {
public:
    static void describeClass(CClassInfo& info) {
        CObject::describeClass(info);
        static constexpr CAttrInfo kAttributes[] = {
            attr::text("x").runs<&CActor::attrX>(),
            attr::text("y").runs<&CActor::attrY>(),
            attr::text("z").runs<&CActor::attrZ>(),
        };
        static constexpr CEventInfo kEvents[] = {
            event<&CActor::onX>("on-x"),
            event<&CActor::onY>("on-y"),
            event<&CActor::onZ>("on-z"),
        };
        info.addAttributes(kAttributes);
        info.addEvents(kEvents);
    }

    // What its handlers do; copied before they run, as they may release the actor.
    std::function<CError*(const CAttrMap& args)> onEvent;
    std::function<CError*()> onSet;

    static inline std::vector<std::string> s_journal;

private:
    CError* runs(const char* name, const CAttrMap& args) {
        s_journal.push_back(text(getShortName()) + " " + name + " " + argText(args, "event-name") + " " +
                            argText(args, "what"));
        const auto action = onEvent;
        return action ? action(args) : nullptr;
    }
    CError* sets(const char* name, const CAttrValue& value) {
        s_journal.push_back(text(getShortName()) + "." + name + "=" + text(value.asString()));
        const auto action = onSet;
        return action ? action() : nullptr;
    }

    CError* onX(const CAttrMap& args) { return runs("on-x", args); }
    CError* onY(const CAttrMap& args) { return runs("on-y", args); }
    CError* onZ() { return runs("on-z", {}); }
    CError* attrX(const CAttrValue& value) { return sets("x", value); }
    CError* attrY(const CAttrValue& value) { return sets("y", value); }
    CError* attrZ(const CAttrValue& value) { return sets("z", value); }
};

class EventFixture : public TreeFixture {
protected:
    using Journal = std::vector<std::string>;

    void SetUp() override {
        TreeFixture::SetUp();
        CActor::s_journal.clear();
        static constexpr CCreatorRow kTags[] = {creatorRow<CActor>("test:actor")};
        start("", kTags);
    }

    // The bridge to this thread; made when it is first asked for.
    CObject& ui() {
        CObject* const bridge = root().findChild("ui");
        return bridge ? *bridge : *add(root(), "ui", "ui:ui-event-bridge");
    }
    CActor& actor(CStringView name) { return actor(name, ui()); }
    CActor& actor(CStringView name, CObject& parent) { return dynamic_cast<CActor&>(*add(parent, name, "test:actor")); }

    // Handles what waits in this thread's loop.
    static bool pump() {
        const auto loop = CMessageLoop::current();
        return loop && loop->pump();
    }

    CEventRegistry& registry() { return root().context()->events(); }
    bool isLogged(const std::string& part) {
        for (const std::string& line : log())
            if (line.find(part) != std::string::npos) return true;
        return false;
    }

    static Journal takeJournal() { return std::exchange(CActor::s_journal, {}); }
};

}  // namespace brt
