// SPDX-License-Identifier: LicenseRef-Halyard
// A client that speaks the protocol word by word.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "Audio/CParamMessage.h"
#include "Core/CMemoryReader.h"
#include "Core/TreeFixture.h"
#include "Other/CParamInterfaceBaseConnectorUni.h"

namespace brt {

// One message that has come, and its fields.
class Received {
public:
    explicit Received(std::unique_ptr<CParamPacket> packet)
        : m_packet(std::move(packet)), m_reader(m_packet->bytes.data(), m_packet->bytes.size()) {
        EXPECT_EQ(messageOf(m_reader.readString(name)), "");
    }

    template <class Field>
    Field next() {
        Field field{};
        EXPECT_EQ(messageOf(readField(m_reader, field)), "");
        return field;
    }
    CMemoryReader& reader() { return m_reader; }
    bool isAtEnd() { return m_reader.getBytesLeft() == 0; }

    CString name;

private:
    std::unique_ptr<CParamPacket> m_packet;
    CMemoryReader m_reader;
};

class RawClient {
public:
    explicit RawClient(CParamInterfaceBaseConnectorUni& connector)
        : m_connector(connector), m_id(connector.addClient()) {}
    ~RawClient() { m_connector.removeClient(m_id); }

    int id() const { return m_id; }
    ParamHandle handle(int number) const { return makeHandle(m_id, number); }

    // The error, "" for success.
    template <class... Fields>
    std::string send(CStringView name, const Fields&... fields) {
        CParamMessage message(name, fields...);
        return send(message);
    }
    std::string send(CParamMessage& message) {
        std::unique_ptr<CParamPacket> packet;
        EXPECT_EQ(messageOf(message.finish(packet)), "");
        return messageOf(m_connector.processClientData(packet->bytes));
    }

    std::deque<Received> take() {
        CPacketList packets;
        m_connector.takeMessages(m_id, packets);
        std::deque<Received> result;
        while (std::unique_ptr<CParamPacket> packet = packets.takeFirst()) result.emplace_back(std::move(packet));
        return result;
    }
    std::vector<std::string> takeNames() {
        std::vector<std::string> names;
        for (const Received& message : take()) names.push_back(text(message.name));
        return names;
    }
    int waitingCount() { return m_connector.waitingCount(m_id); }

private:
    CParamInterfaceBaseConnectorUni& m_connector;
    const int m_id;
};

}  // namespace brt
