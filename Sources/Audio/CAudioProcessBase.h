// SPDX-License-Identifier: LicenseRef-Halyard
// The base of all processes of the running graph.
//
// Aims: the graph is rewired while it runs, from definitions, and a process exists only while a path leads through it.
// Samples travel by reference; a process has no buffers of its own.
//
// Each block a process gathers its inputs (`prepare`): rebuilds its layout if a link has changed, lets parameter
// changes in (`update`), brings all channels to one latency, mixes. Then it does its work, and hands its output on.
// A container (`CAudioProcess`, `CAudioProcessStack`) delivers nothing itself: what comes in passes through to those
// children that take from its input, and its connections are made from those children that stand for its output, or,
// without any, from its input.
//
// Owner: the container that holds it, or whoever made the graph. Threads: the audio thread; before there is one, and
// while it stands still, the thread that builds or takes down the graph.
#pragma once

#include <cstdint>
#include <memory>

#include "Audio/CAudioParamStorage.h"
#include "Audio/CAudioPort.h"
#include "Core/CCheckedObject.h"
#include "Core/CString.h"
#include "Core/CStringList.h"

namespace brt {

class CAudioEnv;
class CAudioParamCollector;
class CAudioParamFilter;
class CAudioParamFilterDef;
class CAudioProcessDefBase;
class CAudioVizCollector;
class CError;
class CHalyardCoreStock;
struct CAudioParamUser;

// What all processes of one instance share. Outlives them.
struct CAudioProcessContext {
    CAudioEnv& env;
    CAudioParamCollector& collector;
    CAudioBufferPool& pool;
    CAudioVizCollector* viz = nullptr;   // null: meters measure for nobody
    CHalyardCoreStock* cores = nullptr;  // null: clippers make their own
};

// A parameter as one process reads it: its values on the audio side, and which groups have changed since the process
// last looked.
struct CAudioParamBinding : CBrtMemAllocator {
    const CAudioParamStorage* values = nullptr;
    std::uint32_t changedGroups = 0;  // a bit each
    CAudioParamUser* user = nullptr;  // null: the values are constant
};

class CAudioProcessBase : public CCheckedObject, public CBrtMemAllocator {
public:
    // What `createInstance` of a definition gives to a new process.
    struct CPlace {
        CString path;
        const CAudioProcessDefBase* definition = nullptr;
        const CAudioProcessContext* context = nullptr;
        int group = 0;
        int stackIndex = 0;
        bool isStackMember = false;
    };

    CAudioProcessBase();
    ~CAudioProcessBase() override;

    // Life.
    // [init] Once, before anything else.
    void setPlace(CPlace place) { m_place = std::move(place); }
    virtual void preInit() {}
    // Binds parameters, builds what never changes.
    [[nodiscard]] virtual CError* init();
    // To silence; the structure stays.
    virtual void reset();
    // Lets changes of parameters and structure in.
    virtual void update() {}
    // Runs one block.
    virtual void process() {}
    // Leaves the graph. Before destruction.
    virtual void detach();

    const CString& path() const noexcept { return m_place.path; }
    const CAudioProcessDefBase& definition() const noexcept { return *m_place.definition; }
    const CAudioProcessContext& context() const noexcept { return *m_place.context; }
    CAudioBufferPool& pool() const noexcept { return m_place.context->pool; }
    int group() const noexcept { return m_place.group; }
    int stackIndex() const noexcept { return m_place.stackIndex; }
    bool isStackMember() const noexcept { return m_place.isStackMember; }

    // Structure. Each has its reverse, with the same arguments.
    void connect(CAudioProcessBase& destination, int destinationPort, int sourcePort);
    void disconnect(CAudioProcessBase& destination, int destinationPort, int sourcePort);
    void connectThrough(int inputPort, CAudioProcessBase& destination, int destinationPort);
    void disconnectThrough(int inputPort, CAudioProcessBase& destination, int destinationPort);
    // A child whose output at `childPort` stands for this container's output at `port`.
    void addOutputChild(CAudioProcessBase& child, int childPort, int port);
    void removeOutputChild(CAudioProcessBase& child, int childPort, int port);

    // Where its samples really go now: for a container the ways on from its input. For reports.
    struct CConnection {
        const CAudioProcessBase* destination;
        int destinationPort;
        int sourcePort;
    };
    void listConnections(CSmallArray<CConnection>& connections) const;
    // The processes inside it, in the order in which they run; none but in a container.
    virtual std::span<CAudioProcessBase* const> running() const noexcept { return {}; }

    // A link of its own, for whoever feeds the graph from outside.
    CAudioLink* addInput(int port);

    // The input ports; port 0 is always there. Null if there is none.
    CAudioPort& mainPort() const noexcept { return **m_ports.begin(); }
    CAudioPort* findPort(int number) const noexcept;
    const COwnedArray<CAudioPort>& ports() const noexcept { return m_ports; }

    double sampleRate() const noexcept { return m_sampleRate; }
    int blockLength() const noexcept { return m_blockLength; }
    int largestLatencySamples() const noexcept { return m_largestLatency; }
    int smallestLatencySamples() const noexcept { return m_smallestLatency; }
    // The channels that it delivers itself, by output port and number.
    std::span<const CAudioChannel> outputTable() const noexcept {
        return {m_outputTable.data(), static_cast<std::size_t>(m_outputCount)};
    }

    // Parameters. `name` is relative to the process.
    // A parameter with a definition of its own, or an alias; else the values of the definition's child, which never
    // change. Bindings live as long as the process.
    CAudioParamBinding& bindParam(CStringView name, bool useAllGroups, bool useAllElements);
    // A parameter by its full name, whether anybody has defined it yet or not.
    CAudioParamBinding& bindParamByFullName(CStringView fullName, bool useAllGroups, bool useAllElements);
    // Names that lead elsewhere as long as this process lives.
    [[nodiscard]] CError* addAlias(CStringView name, CStringView target);
    [[nodiscard]] CError* addFilter(const CAudioParamFilterDef& definition, CStringView relativePath);

    // Has `update` run in the next block.
    void requestUpdate() noexcept { m_updateNeeded = 1; }

protected:
    // The input stage of `process`.
    void prepare();
    // Ends the block for the inputs.
    void releaseInputs();

    // For a process that delivers itself. Containers say so in their constructor.
    void setContainer() noexcept { m_deliversItself = false; }
    bool deliversItself() const noexcept { return m_deliversItself; }
    void setOutputTable(std::span<const CAudioChannel> table, double sampleRate);
    void deliver(int port, int channelNumber, CAudioBufferRef buffer);
    void beginDelivery();

    // Channels, latency or sample rate have changed: `update` looks at everything.
    bool isUpdateInProgress() const noexcept { return m_updateInProgress; }

    // Sets `flag` at the start of a block, when that many seconds have gone by.
    void addTimedEvent(double seconds, bool* flag);
    void removeTimedEvents(const bool* flag) noexcept;
    void removeAllTimedEvents() noexcept { m_timedEvents.clear(); }

private:
    struct COutgoing {
        CAudioProcessBase* destination;
        int destinationPort;
        int sourcePort;
        CAudioLink* link;  // of the destination's port; null in a container
    };
    struct COutputChild {
        CAudioProcessBase* child;
        int childPort;
        int port;
        bool operator==(const COutputChild&) const = default;
    };
    struct CTimedEvent {
        double secondsLeft;
        bool* flag;
    };

    CAudioPort& portFor(int number);
    void removeLink(int port, const CAudioLink* link);
    bool rebuildInputs();
    bool removeUnusedPorts();
    void findLatencies() noexcept;
    int deliveredLength() const noexcept;
    void advanceTimedEvents() noexcept;
    void connectChildren(const COutgoing& outgoing, bool isMade);
    void moveConnections(int port, bool toInput);
    bool hasOutputChild(int port) const noexcept;

    CPlace m_place;
    COwnedArray<CAudioPort> m_ports;
    CSmallArray<COutgoing> m_outgoing;
    CSmallArray<COutputChild> m_outputChildren;
    double m_sampleRate = 1.0;
    int m_blockLength = 0;
    int m_largestLatency = 0;
    int m_smallestLatency = 0;
    double m_outputSampleRate = 44100.0;
    std::array<CAudioChannel, kAudioTableLimit> m_outputTable{};
    int m_outputCount = 0;
    std::int32_t m_changes = 1;  // of the input links
    bool m_deliversItself = true;
    bool m_updateInProgress = false;
    bool m_allParamsChanged = true;
    std::uint8_t m_updateNeeded = 1;  // set by parameters too
    COwnedArray<CAudioParamBinding> m_bindings;
    CSmallArray<CTimedEvent> m_timedEvents;
    CStringList m_aliases;  // that this process has entered
    COwnedArray<CAudioParamFilter> m_filters;
};

}  // namespace brt
