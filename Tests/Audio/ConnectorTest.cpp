// SPDX-License-Identifier: LicenseRef-Halyard
// The way of messages to clients: numbers, queues, what takes the place of what.
#include <thread>

#include "Audio/CParamMessageHandler.h"
#include "Other/CParamInterfaceClientConnectorUni.h"
#include "Other/OtherTags.h"
#include "Platform/CMessageLoop.h"
#include "RawClient.h"

namespace brt {
namespace {

// Writes down the names of messages, and whose clients go; does what a test wants.
class Reader final : public CParamMessageHandler {
public:
    CError* handleMessage(const CByteBuffer& bytes) override {
        CMemoryReader reader(bytes.data(), bytes.size());
        CString name;
        BRT_TRY("", reader.readString(name));
        names.push_back(text(name));
        if (name == "end") CObject::release(std::exchange(window, nullptr));
        if (name == "host call") deferCall(std::make_unique<CHostCall>(names));
        if (name == "fail") return makeError(nullptr, __FILE__, __LINE__, "", "@brtstr_Reader_fail It fails.");
        names.push_back("-");
        return nullptr;
    }
    void onClientGone(int clientId) override { names.push_back("gone " + std::to_string(clientId)); }

    struct CHostCall final : CDeferredCall {
        explicit CHostCall(std::vector<std::string>& list) : names(list) {}
        void run() override { names.push_back("host"); }
        std::vector<std::string>& names;
    };

    std::vector<std::string> names;
    CObject* window = nullptr;
};

class ConnectorTest : public TreeFixture {
protected:
    using Names = std::vector<std::string>;

    void SetUp() override {
        TreeFixture::SetUp();
        start("", otherTags());
        m_connector = static_cast<CParamInterfaceBaseConnectorUni*>(
            add(root(), "connector", "other:param-interface-base-connector-uni"));
        m_connector->setBase(&m_reader);
    }

    // A window's connector, below a bridge to this thread.
    CParamInterfaceClientConnectorUni& window(const char* timerTag = "") {
        CObject* const bridge = add(root(), "ui", "ui:ui-event-bridge");
        CAttrMap attributes;
        for (const auto& [key, value] :
             {std::pair("base-connector", "connector"), std::pair("fps", "200"), std::pair("timer-tag", timerTag)})
            attributes.findOrInsert(key).setText(value);
        CParamInterfaceClientConnectorUni* made = nullptr;
        EXPECT_EQ(messageOf(bridge->createChild(made, "other:param-interface-client-connector-uni", "window",
                                                kTemplateOptional, nullptr, &attributes)),
                  "");
        made->setClient(&m_windowReader);
        m_windowReader.window = bridge;
        return *made;
    }
    static void pump() {
        const auto loop = CMessageLoop::current();
        while (loop && loop->pump()) {
        }
    }

    void put(int clientId, CStringView name, CPacketTopic topic = {}) {
        CParamMessage message(name);
        std::unique_ptr<CParamPacket> packet;
        EXPECT_EQ(messageOf(message.finish(packet, topic)), "");
        connector().sendToClient(clientId, std::move(packet));
    }
    CParamInterfaceBaseConnectorUni& connector() { return *m_connector; }

    Reader m_reader;        // of the instance
    Reader m_windowReader;  // of a window

private:
    CParamInterfaceBaseConnectorUni* m_connector = nullptr;
};

TEST(Handles, wrapAroundAndLeaveOutWhatIsInUse) {
    int last = 0;
    const auto isFree = [](int) { return false; };
    EXPECT_EQ(nextFreeNumber(last, isFree), 1);
    EXPECT_EQ(makeHandle(1, 1), 0x00010001U);
    last = 0xFFFD;
    EXPECT_EQ(nextFreeNumber(last, isFree), 0xFFFE);
    EXPECT_EQ(nextFreeNumber(last, [](int number) { return number < 3; }), 3);
    EXPECT_EQ(nextFreeNumber(last, [](int) { return true; }), 0);
    EXPECT_EQ(clientOf(makeHandle(0xFFFE, 0xFFFE)), 0xFFFE);
}

TEST_F(ConnectorTest, clientsGetNumbersInTurnAndNoneThatIsTaken) {
    const int first = connector().addClient();
    EXPECT_EQ(first, 1);
    for (int i = 2; i <= kLastClientId; ++i) {
        ASSERT_EQ(connector().addClient(), i);
        connector().removeClient(i);
    }
    EXPECT_EQ(connector().addClient(), 2);
}

TEST_F(ConnectorTest, messagesWaitForTheirClientAloneAndInOrder) {
    RawClient one(connector());
    RawClient two(connector());
    put(one.id(), "a");
    put(kAllClients, "b");
    put(two.id(), "c");
    put(77, "nobody");
    connector().sendToClient(one.id(), std::make_unique<CParamPacket>());
    EXPECT_EQ(one.takeNames(), (Names{"a", "b"}));
    EXPECT_EQ(two.takeNames(), (Names{"b", "c"}));
    EXPECT_EQ(one.takeNames(), Names{});
}

TEST_F(ConnectorTest, aNewerMessageOfATopicTakesTheOlderOnesPlaceAtTheEnd) {
    RawClient client(connector());
    const ParamHandle handle = client.handle(1);
    const ParamHandle other = client.handle(2);
    put(client.id(), "group 0", CPacketTopic::ofGroup(handle, 0));
    put(client.id(), "group 1", CPacketTopic::ofGroup(handle, 1));
    put(client.id(), "other", CPacketTopic::ofGroup(other, 0));
    put(client.id(), "registry", CPacketTopic::ofRegistry(handle, false));
    put(client.id(), "no topic");
    EXPECT_TRUE(connector().isWaiting(client.id(), CPacketTopic::ofGroup(handle, 0)));
    EXPECT_FALSE(connector().isWaiting(client.id(), CPacketTopic::ofGroup(handle, 2)));
    put(client.id(), "group 0 again", CPacketTopic::ofGroup(handle, 0));
    EXPECT_EQ(client.waitingCount(), 5);
    EXPECT_EQ(client.takeNames(), (Names{"group 1", "other", "registry", "no topic", "group 0 again"}));
    EXPECT_FALSE(connector().isWaiting(client.id(), CPacketTopic::ofGroup(handle, 0)));

    // The whole parameter says all that its groups have said, and begins anew.
    put(client.id(), "group 0", CPacketTopic::ofGroup(handle, 0));
    put(client.id(), "other", CPacketTopic::ofGroup(other, 0));
    put(client.id(), "group 31", CPacketTopic::ofGroup(handle, 31));
    put(client.id(), "whole", CPacketTopic::ofParam(handle));
    put(client.id(), "group 2", CPacketTopic::ofGroup(handle, 2));
    put(client.id(), "whole again", CPacketTopic::ofParam(handle));
    EXPECT_EQ(client.takeNames(), (Names{"other", "whole again"}));
}

TEST_F(ConnectorTest, messagesOfAClientAreHandledWhenTheCallReturns) {
    CParamInterfaceClientConnectorUni& client = window();
    EXPECT_EQ(client.clientId(), 1);
    CParamMessage good("good");
    CParamMessage bad("fail");
    std::unique_ptr<CParamPacket> packet;
    EXPECT_EQ(messageOf(good.finish(packet)), "");
    EXPECT_TRUE(client.sendToBase(packet->bytes));
    EXPECT_EQ(messageOf(bad.finish(packet)), "");
    EXPECT_FALSE(client.sendToBase(packet->bytes));
    CObject::release(std::exchange(m_windowReader.window, nullptr));
    EXPECT_FALSE(connector().isConnected(1));
    EXPECT_EQ(m_reader.names, (Names{"good", "-", "fail", "gone 1"}));

    RawClient raw(connector());
    connector().setBase(nullptr);
    EXPECT_EQ(raw.send("good"), "No base object defined.");
}

TEST_F(ConnectorTest, messagesComeAfterATickEachByItself) {
    CParamInterfaceClientConnectorUni& client = window();
    for (const char* const name : {"one", "fail", "host call", "two"}) put(kAllClients, name);
    client.poll();
    EXPECT_EQ(m_windowReader.names, Names{});
    pump();
    EXPECT_EQ(m_windowReader.names, (Names{"one", "-", "fail", "host call", "-", "host", "two", "-"}))
        << "a failure loses none behind it; a host is called between messages";

    client.setClient(nullptr);
    put(kAllClients, "three");
    client.poll();
    EXPECT_EQ(messageOf(client.onProcessBaseData()), "No client object defined.");
}

TEST_F(ConnectorTest, aHandlerMayEndTheWindow) {
    CParamInterfaceClientConnectorUni& client = window();
    for (const char* const name : {"end", "not any more"}) put(kAllClients, name);
    client.poll();
    pump();
    EXPECT_EQ(m_windowReader.names, (Names{"end", "-"}));
    EXPECT_EQ(m_reader.names, Names{"gone 1"});
}

TEST_F(ConnectorTest, aTimerPolls) {
    CParamInterfaceClientConnectorUni& client = window("core:timer");
    EXPECT_EQ(messageOf(client.setFps(500.0)), "");
    put(kAllClients, "one");
    for (int i = 0; i < 5000 && m_windowReader.names.empty(); ++i) {
        pump();
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_EQ(m_windowReader.names, (Names{"one", "-"}));
}

}  // namespace
}  // namespace brt
