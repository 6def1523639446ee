// SPDX-License-Identifier: LicenseRef-Halyard
// What it costs that objects talk: events on one thread and to another, observers, references, bindings.
#include <memory>
#include <string>

#include "BenchTree.h"
#include "Core/CError.h"
#include "Core/CObjectAddress.h"
#include "Core/CUpdateListener.h"
#include "Core/CoreTags.h"
#include "Platform/CAutoResetEvent.h"
#include "Platform/CMessageLoop.h"
#include "Platform/CNativeThread.h"
#include "Targets.h"

namespace {

using namespace brt;

const bool kTargets =
    bench::addTarget({"event fired with nobody to hear it, ns", "event/fire/0", "", bench::Target::kAtMost, 120, 80}) &&
    bench::addTarget({"event with one listener, ns", "event/fire/1", "", bench::Target::kAtMost, 500, 300}) &&
    bench::addTarget(
        {"event with ten listeners against one", "event/fire/10", "event/fire/1", bench::Target::kAtMost, 3.0, 2.2}) &&
    bench::addTarget(
        {"event posted and handled on one thread, ns", "event/post", "", bench::Target::kAtMost, 1200, 700}) &&
    bench::addTarget({"event to another thread and back, against a message", "event/round-trip/real_time",
                      "loop/round-trip/real_time", bench::Target::kAtMost, 1.6, 1.3}) &&
    bench::addTarget({"observer told, ns", "event/notify/1", "", bench::Target::kAtMost, 50, 30});

class CBenchActor : public CObject {
public:
    static void describeClass(CClassInfo& info) {
        CObject::describeClass(info);
        static constexpr CAttrInfo kAttributes[] = {attr::number("width").runs<&CBenchActor::attrWidth>()};
        static constexpr CEventInfo kEvents[] = {event<&CBenchActor::onCount>("count"),
                                                 event<&CBenchActor::onAnswer>("answer")};
        info.addAttributes(kAttributes);
        info.addEvents(kEvents);
    }

    std::int64_t count = 0;
    CAutoResetEvent answered;

private:
    CError* attrWidth(const CAttrValue& value) { return count += value.asInteger() > 0, nullptr; }
    CError* onCount() { return ++count, nullptr; }
    CError* onAnswer() { return answered.signal(), nullptr; }
};

// A tree of this thread's, with as many actors and subscriptions as a window of the product has.
class CBenchTree {
public:
    explicit CBenchTree(benchmark::State& state) : m_state(state) {
        bench::startApplication();
        if (discardError(CApplication::initRootObject(m_root, "")) ||
            discardError(m_root->createChild(m_bridge, "ui:ui-event-bridge", "ui", kTemplateOptional))) {
            fail();
            return;
        }
        constexpr int kOthers = 200;
        for (int i = 0; i < kOthers; ++i) {
            const CString name = CString("view-").append(std::to_string(i));
            if (CBenchActor* const other = actor(name)) other->listenObject(other->getFullName(), "changed", "count");
        }
    }
    ~CBenchTree() { CObject::release(m_root); }
    CBenchTree(const CBenchTree&) = delete;
    CBenchTree& operator=(const CBenchTree&) = delete;

    CBenchActor* actor(CStringView name) {
        CBenchActor* made = nullptr;
        if (m_bridge == nullptr || discardError(m_bridge->createChild(made, "bench:actor", name, kTemplateOptional)))
            fail();
        return made;
    }

    bool isComplete() const { return !m_hasFailed; }

private:
    void fail() {
        m_hasFailed = true;
        m_state.SkipWithError("the tree can't be built");
    }

    benchmark::State& m_state;
    CObject* m_root = nullptr;
    CObject* m_bridge = nullptr;
    bool m_hasFailed = false;
};

void fire(benchmark::State& state) {
    CBenchTree tree(state);
    CBenchActor* const sender = tree.actor("sender");
    CBenchActor* const listeners[10] = {tree.actor("a"), tree.actor("b"), tree.actor("c"), tree.actor("d"),
                                        tree.actor("e"), tree.actor("f"), tree.actor("g"), tree.actor("h"),
                                        tree.actor("i"), tree.actor("j")};
    if (!tree.isComplete()) return;
    for (int i = 0; i < state.range(0); ++i) listeners[i]->listenObject("ui.sender", "tick", "count");
    CAttrMap args;
    args.findOrInsert("value").setDouble(0.5);
    for (auto _ : state) discardError(sender->fireEvent("tick", args));
    for (int i = 0; i < state.range(0); ++i)
        if (listeners[i]->count != state.iterations()) state.SkipWithError("events were lost");
}
BENCHMARK(fire)->Name("event/fire")->Arg(0)->Arg(1)->Arg(10);

void post(benchmark::State& state) {
    constexpr int kBatch = 64;
    CBenchTree tree(state);
    CBenchActor* const listener = tree.actor("listener");
    const auto loop = CMessageLoop::current();
    if (!tree.isComplete() || !loop) return;
    CAttrMap args;
    args.findOrInsert("value").setDouble(0.5);
    for (auto _ : state) {
        for (int i = 0; i < kBatch; ++i) listener->postEvent("bench", "count", args);
        loop->pump();
    }
    if (listener->count != state.iterations() * kBatch) state.SkipWithError("events were lost");
    state.SetItemsProcessed(state.iterations() * kBatch);
}
BENCHMARK(post)->Name("event/post");

// A tree on a thread of its own, which sleeps in its loop.
struct Runner {
    explicit Runner(benchmark::State& aState) : state(aState) {}

    static void main(void* context) {
        auto& self = *static_cast<Runner*>(context);
        CBenchTree tree(self.state);
        self.actor = tree.actor("actor");
        const auto loop = CMessageLoop::current();
        if (tree.isComplete() && loop) {
            self.address = self.actor->address();
            self.loop = loop->address();
        }
        self.isReady.signal();
        if (self.address) static_cast<void>(loop->run());  // ended by `quit`
    }

    benchmark::State& state;
    CBenchActor* actor = nullptr;
    CRef<CObjectAddress> address;
    CLoopAddress loop;
    CAutoResetEvent isReady;
};

void roundTrip(benchmark::State& state) {
    Runner runner(state);
    CNativeThread thread;
    if (thread.start(&Runner::main, &runner) != 0) return state.SkipWithError("no thread");
    runner.isReady.wait();
    for (auto _ : state) {
        if (!runner.address) break;
        runner.address->post("bench", "answer");
        runner.actor->answered.wait();
    }
    runner.loop.quit();
    thread.join();
}
BENCHMARK(roundTrip)->Name("event/round-trip")->UseRealTime();

class CCountingListener final : public CUpdateListener {
public:
    ~CCountingListener() override { detach(); }
    void update(const CUpdateData*) override { ++count; }
    std::int64_t count = 0;
};

void notify(benchmark::State& state) {
    CUpdateNotifier notifier;
    CCountingListener listeners[10];
    for (int i = 0; i < state.range(0); ++i) listeners[i].attach(&notifier);
    for (auto _ : state) notifier.notify();
    if (listeners[0].count != state.iterations()) state.SkipWithError("updates were lost");
}
BENCHMARK(notify)->Name("event/notify")->Arg(1)->Arg(10);

void expand(benchmark::State& state) {
    CBenchTree tree(state);
    CBenchActor* const view = tree.actor("view");
    if (!tree.isComplete() || discardError(view->parent()->setAttr("tone", "12.5", kImmediate))) return;
    for (auto _ : state) discardError(view->setAttr("text", "{/^ tone?7}", kImmediate));
    if (view->getAttrString("text") != "12.5") state.SkipWithError("the reference isn't resolved");
}
BENCHMARK(expand)->Name("event/expand_reference");

void follow(benchmark::State& state) {
    CBenchTree tree(state);
    CBenchActor* const source = tree.actor("source");
    CBenchActor* const follower = tree.actor("follower");
    if (!tree.isComplete() || discardError(follower->setAttr("width", "{*/ui.source width}", kImmediate))) return;
    for (auto _ : state) discardError(source->setAttr("width", "40", kImmediate));
    if (follower->count < state.iterations()) state.SkipWithError("the follower wasn't told");
}
BENCHMARK(follow)->Name("event/bound_attribute");

}  // namespace

std::span<const CCreatorRow> bench::eventTags() noexcept {
    static constexpr CCreatorRow kTags[] = {creatorRow<CBenchActor>("bench:actor")};
    return kTags;
}
