// SPDX-License-Identifier: LicenseRef-Halyard
// How processes are connected, and how a container's connections are handed on to its children.
#include "Audio/CAudioProcessBase.h"

namespace brt {

CAudioPort* CAudioProcessBase::findPort(int number) const noexcept {
    for (CAudioPort* const port : m_ports)
        if (port->number() == number) return port;
    return nullptr;
}

CAudioPort& CAudioProcessBase::portFor(int number) {
    CAudioPort* const port = findPort(number);
    return port != nullptr ? *port : *m_ports.append(new CAudioPort(number));
}

CAudioLink* CAudioProcessBase::addInput(int port) {
    ++m_changes;
    return portFor(port).links().append(new CAudioLink(0, m_changes));
}

void CAudioProcessBase::listConnections(CSmallArray<CConnection>& connections) const {
    connections.clear();
    for (const COutgoing& outgoing : m_outgoing)
        if (outgoing.link != nullptr)
            connections.append({outgoing.destination, outgoing.destinationPort, outgoing.sourcePort});
    for (CAudioPort* const port : m_ports)
        for (const CAudioPassThrough& way : port->passThroughs())
            connections.append({way.destination, way.destinationPort, port->number()});
}

void CAudioProcessBase::removeLink(int port, const CAudioLink* link) {
    CAudioPort& from = portFor(port);
    from.links().removeAt(from.links().find(link));
    ++m_changes;
}

void CAudioProcessBase::connect(CAudioProcessBase& destination, int destinationPort, int sourcePort) {
    COutgoing outgoing{&destination, destinationPort, sourcePort, nullptr};
    if (m_deliversItself) {
        ++destination.m_changes;
        outgoing.link =
            destination.portFor(destinationPort).links().append(new CAudioLink(sourcePort, destination.m_changes));
        outgoing.link->setTable(outputTable(), m_outputSampleRate);
    }
    m_outgoing.append(outgoing);
    if (!m_deliversItself) connectChildren(outgoing, true);
}

void CAudioProcessBase::disconnect(CAudioProcessBase& destination, int destinationPort, int sourcePort) {
    for (int i = 0; i < m_outgoing.count(); ++i) {
        const COutgoing outgoing = m_outgoing[i];
        if (outgoing.destination != &destination || outgoing.destinationPort != destinationPort ||
            outgoing.sourcePort != sourcePort)
            continue;
        m_outgoing.removeAt(i);
        if (outgoing.link != nullptr) destination.removeLink(destinationPort, outgoing.link);
        if (!m_deliversItself) connectChildren(outgoing, false);
        return;
    }
}

void CAudioProcessBase::connectThrough(int inputPort, CAudioProcessBase& destination, int destinationPort) {
    CAudioPort& port = portFor(inputPort);
    ++destination.m_changes;
    CAudioLink* const link =
        destination.portFor(destinationPort).links().append(new CAudioLink(0, destination.m_changes));
    port.passThroughs().append({&destination, destinationPort, link});
    link->setTable(port.table(), m_sampleRate);
}

void CAudioProcessBase::disconnectThrough(int inputPort, CAudioProcessBase& destination, int destinationPort) {
    CSmallArray<CAudioPassThrough>& ways = portFor(inputPort).passThroughs();
    for (int i = 0; i < ways.count(); ++i) {
        const CAudioPassThrough way = ways[i];
        if (way.destination != &destination || way.destinationPort != destinationPort) continue;
        ways.removeAt(i);
        destination.removeLink(destinationPort, way.link);
        ++m_changes;
        return;
    }
}

bool CAudioProcessBase::hasOutputChild(int port) const noexcept {
    for (const COutputChild& output : m_outputChildren)
        if (output.port == port) return true;
    return false;
}

// A connection of this container, made or cut from where it really starts.
void CAudioProcessBase::connectChildren(const COutgoing& outgoing, bool isMade) {
    if (!hasOutputChild(outgoing.sourcePort)) {
        if (isMade)
            connectThrough(0, *outgoing.destination, outgoing.destinationPort);
        else
            disconnectThrough(0, *outgoing.destination, outgoing.destinationPort);
        return;
    }
    for (const COutputChild& output : m_outputChildren) {
        if (output.port != outgoing.sourcePort) continue;
        if (isMade)
            output.child->connect(*outgoing.destination, outgoing.destinationPort, output.childPort);
        else
            output.child->disconnect(*outgoing.destination, outgoing.destinationPort, output.childPort);
    }
}

// All connections of an output port start at the container's input from now on, or do so no longer.
void CAudioProcessBase::moveConnections(int port, bool toInput) {
    for (const COutgoing& outgoing : m_outgoing) {
        if (outgoing.sourcePort != port) continue;
        if (toInput)
            connectThrough(0, *outgoing.destination, outgoing.destinationPort);
        else
            disconnectThrough(0, *outgoing.destination, outgoing.destinationPort);
    }
}

void CAudioProcessBase::addOutputChild(CAudioProcessBase& child, int childPort, int port) {
    if (!hasOutputChild(port)) moveConnections(port, false);
    m_outputChildren.append({&child, childPort, port});
    for (const COutgoing& outgoing : m_outgoing)
        if (outgoing.sourcePort == port) child.connect(*outgoing.destination, outgoing.destinationPort, childPort);
}

void CAudioProcessBase::removeOutputChild(CAudioProcessBase& child, int childPort, int port) {
    const int index = m_outputChildren.find({&child, childPort, port});
    if (index < 0) return;
    m_outputChildren.removeAt(index);
    for (const COutgoing& outgoing : m_outgoing)
        if (outgoing.sourcePort == port) child.disconnect(*outgoing.destination, outgoing.destinationPort, childPort);
    if (!hasOutputChild(port)) moveConnections(port, true);
}

}  // namespace brt
