// SPDX-License-Identifier: LicenseRef-Halyard
// The protocol, word by word: what each message of a client does, and what comes back.
#include "InterfaceFixture.h"

namespace brt {
namespace {

using Names = std::vector<std::string>;
using Values = std::vector<double>;

class InterfaceMessages : public InterfaceFixture {
protected:
    void listen(RawClient& client, const char* name, int number) {
        EXPECT_EQ(client.send(toBase::kListenParam, CStringView(name), client.handle(number)), "");
    }
    static void expectUpdate(Received& message, ParamHandle handle, int group, int first, const Values& wanted) {
        EXPECT_EQ(text(message.name), "update-param");
        EXPECT_EQ(message.next<ParamHandle>(), handle);
        CAudioParamUpdateCopy copy;
        EXPECT_EQ(messageOf(copy.load(message.reader())), "");
        const CAudioParamUpdate& update = copy.update();
        EXPECT_EQ(update.group, group);
        EXPECT_EQ(update.firstElement, first);
        EXPECT_EQ(Values(update.values, update.values + update.valueCount()), wanted);
        EXPECT_TRUE(message.isAtEnd());
    }
    // The definition's name; "" without one. The defaults of the whole parameter.
    static std::string takeInfo(Received& message, ParamHandle handle, Values& defaults, const CObject& owner) {
        EXPECT_EQ(text(message.name), "update-param-info");
        EXPECT_EQ(message.next<ParamHandle>(), handle);
        CAudioParamInfo info;
        if (message.next<bool>()) {
            EXPECT_EQ(messageOf(info.load(message.reader(), owner)), "");
        }
        if (message.next<bool>()) {
            CAudioParamUpdateCopy copy;
            EXPECT_EQ(messageOf(copy.load(message.reader(), EUpdateScope::kGroupOrWhole)), "");
            EXPECT_EQ(copy.update().group, kWholeParam);
            EXPECT_TRUE(copy.update().isSetCount);
            defaults.assign(copy.update().values, copy.update().values + copy.update().valueCount());
        }
        EXPECT_TRUE(message.isAtEnd());
        return text(info.name);
    }
};

TEST_F(InterfaceMessages, aListenerGetsTheDefinitionAndEachGroupAndThenEveryChange) {
    CAudioParam& gain = param("gain");
    gain.setFloat(3, 2, nullptr);
    RawClient client(connector());
    EXPECT_EQ(client.handle(1), 0x00010001U);
    listen(client, "gain", 1);
    listen(client, "gain", 1);  // a handle that is known is ignored
    std::deque<Received> messages = client.take();
    ASSERT_EQ(messages.size(), 4U);
    Values defaults;
    EXPECT_EQ(takeInfo(messages[0], client.handle(1), defaults, root()), "audio.gain");
    EXPECT_EQ(defaults, Values{10});
    expectUpdate(messages[1], client.handle(1), 0, 0, {});
    expectUpdate(messages[2], client.handle(1), 1, 0, {});
    expectUpdate(messages[3], client.handle(1), 2, 0, {3});

    gain.setFloatAt(0, 2, 7, nullptr);
    messages = client.take();
    ASSERT_EQ(messages.size(), 1U);
    expectUpdate(messages[0], client.handle(1), 0, 0, {10, 10, 7});

    // As long as nobody fetches them, messages tell of the whole group.
    gain.setFloatAt(0, 0, 1, nullptr);
    gain.setFloatAt(0, 1, 2, nullptr);
    messages = client.take();
    ASSERT_EQ(messages.size(), 1U);
    expectUpdate(messages[0], client.handle(1), 0, 0, {1, 2, 7});

    EXPECT_EQ(client.send(toBase::kUnlistenParam, client.handle(1)), "");
    gain.setFloat(9, 0, nullptr);
    EXPECT_EQ(client.takeNames(), Names{});
}

TEST_F(InterfaceMessages, aDefinitionMayComeLater) {
    RawClient client(connector());
    listen(client, "gain", 1);
    std::deque<Received> messages = client.take();
    ASSERT_EQ(messages.size(), 1U);
    Values defaults;
    EXPECT_EQ(takeInfo(messages[0], client.handle(1), defaults, root()), "");
    param("gain");
    messages = client.take();
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(takeInfo(messages[0], client.handle(1), defaults, root()), "audio.gain");
    EXPECT_EQ(defaults, Values{10});
}

TEST_F(InterfaceMessages, aChangeReachesEverybodyWhoListens) {
    CAudioParam& gain = param("gain");
    RawClient one(connector());
    RawClient two(connector());
    listen(one, "gain", 1);
    listen(two, "gain", 5);
    one.take(), two.take();
    const Values values{4, 5};
    EXPECT_EQ(one.send(toBase::kChangeParam, one.handle(1), ParamHandle{0}, update(gain, values, 3)), "");
    EXPECT_EQ(InterfaceFixture::values(gain.control(), 3), values);
    std::deque<Received> messages = one.take();
    ASSERT_EQ(messages.size(), 1U);
    expectUpdate(messages[0], one.handle(1), 3, 0, values);
    messages = two.take();
    ASSERT_EQ(messages.size(), 1U);
    expectUpdate(messages[0], two.handle(5), 3, 0, values);

    CAudioParamUpdate empty = update(gain, {}, 3);
    empty.isSetCount = true;
    EXPECT_EQ(one.send(toBase::kChangeParam, one.handle(1), ParamHandle{0}, empty), "");
    EXPECT_EQ(gain.control().elementCount(3), 0);
    EXPECT_EQ(gain.getFloat(3, 0, -1), 10);
}

TEST_F(InterfaceMessages, changesThatDoNotFitAreIgnored) {
    CAudioParam& gain = param("gain");
    RawClient client(connector());
    listen(client, "gain", 1);
    listen(client, "nothing", 2);
    client.take();
    const Values values{1, 2};
    CAudioParamUpdate change = update(gain, values);
    EXPECT_EQ(client.send(toBase::kChangeParam, client.handle(9), ParamHandle{0}, change), "");
    EXPECT_EQ(client.send(toBase::kChangeParam, client.handle(2), ParamHandle{0}, change), "");
    change.format.elementSize = 2;
    change.elementCount = 1;
    EXPECT_EQ(client.send(toBase::kChangeParam, client.handle(1), ParamHandle{0}, change), "");
    change = update(gain, values);
    change.format.isSingleGroup = true;
    EXPECT_EQ(client.send(toBase::kChangeParam, client.handle(1), ParamHandle{0}, change), "");
    for (const int group : {-1, 32, kWholeParam}) {
        change = update(gain, values, group);
        EXPECT_NE(client.send(toBase::kChangeParam, client.handle(1), ParamHandle{0}, change), "") << group;
    }
    const Values notFinite{1, NAN};
    EXPECT_NE(client.send(toBase::kChangeParam, client.handle(1), ParamHandle{0}, update(gain, notFinite)), "");
    for (const auto& [group, element] : {std::pair(-2, 0), std::pair(32, 0), std::pair(0, -2), std::pair(0, 1024)})
        EXPECT_EQ(client.send(toBase::kResetParam, client.handle(1), group, element, ParamHandle{0}, false), "");
    EXPECT_EQ(client.takeNames(), Names{});
    EXPECT_EQ(gain.control().groupCount(), 0);
}

// Every message, cut off after each of its bytes, is an error that changes nothing.
TEST_F(InterfaceMessages, shortMessagesAreErrors) {
    CAudioParam& gain = param("gain");
    RawClient client(connector());
    listen(client, "gain", 1);
    const ParamHandle handle = client.handle(1);
    client.take();
    const Values values{1};
    const CStringView word("abc");
    CParamMessage messages[] = {
        CParamMessage(toBase::kListenParam, word, client.handle(2)),
        CParamMessage(toBase::kUnlistenParam, handle),
        CParamMessage(toBase::kChangeParam, handle, handle, update(gain, values)),
        CParamMessage(toBase::kResetParam, handle, -1, -1, handle, false),
        CParamMessage(toBase::kListenViz, -1, word, client.handle(2)),
        CParamMessage(toBase::kUnlistenViz, handle),
        CParamMessage(toBase::kRequestVizData, client.id(), 40.0),
        CParamMessage(toBase::kRequestExportSlotNames, client.id()),
        CParamMessage(toBase::kRequestInternalChannelCount, client.id()),
        CParamMessage(toBase::kRequestGroupCount, client.id()),
        CParamMessage(toBase::kRequestIoChannelCounts, client.id()),
        CParamMessage(toBase::kRequestSampleRate, client.id()),
    };
    for (CParamMessage& message : messages) {
        std::unique_ptr<CParamPacket> packet;
        ASSERT_EQ(messageOf(message.finish(packet)), "");
        for (int size = 0; size < packet->bytes.size(); ++size) {
            CByteBuffer bytes;
            bytes.assign(packet->bytes.data(), size);
            EXPECT_NE(messageOf(connector().processClientData(bytes)), "") << size;
        }
    }
    EXPECT_EQ(client.takeNames(), Names{});
    EXPECT_EQ(gain.control().groupCount(), 0);
    EXPECT_EQ(client.send("no-such-message"), "Unknown event 'no-such-message'.");
}

TEST_F(InterfaceMessages, anInstanceTellsOfItself) {
    HostProbe host;
    RawClient client(connector());
    RawClient other(connector());
    const auto ask = [&] {
        for (const CStringView request : {toBase::kRequestInternalChannelCount, toBase::kRequestGroupCount,
                                          toBase::kRequestIoChannelCounts, toBase::kRequestSampleRate})
            EXPECT_EQ(client.send(request, client.id()), "");
        std::deque<Received> messages = client.take();
        EXPECT_EQ(messages.size(), 4U);
        std::vector<int> counts{messages[0].next<int>(), messages[1].next<int>(), messages[2].next<int>(),
                                messages[2].next<int>(), messages[2].next<int>()};
        counts.push_back(static_cast<int>(messages[3].next<double>()));
        for (Received& message : messages) EXPECT_TRUE(message.isAtEnd());
        return counts;
    };
    EXPECT_EQ(ask(), (std::vector<int>{1, 1, 1, 1, 0, 44100}));
    base().setDataProvider(&host);
    EXPECT_EQ(ask(), (std::vector<int>{6, 8, 4, 2, 1, 96000}));
    EXPECT_EQ(other.takeNames(), Names{});
    EXPECT_EQ(client.send(toBase::kImportChannelLabels), "");
    EXPECT_EQ(host.take(), Names{"import"});

    // What is true of the instance is said to all, and once.
    for (int i = 0; i < 3; ++i) {
        base().sendStartViz(), base().sendClearClient(), base().sendStopViz();
        base().sendSampleRate(), base().sendIoChannelCounts();
    }
    EXPECT_EQ(other.takeNames(),
              (Names{"start-viz", "clear-client", "stop-viz", "update-sample-rate", "update-io-channel-counts"}));
    base().setDataProvider(nullptr);
}

TEST_F(InterfaceMessages, displaysAreCountedAndFed) {
    VizSlot& slot = viz().getSlot("meter");
    {
        RawClient client(connector());
        EXPECT_EQ(client.send(toBase::kListenViz, -1, CStringView("meter"), client.handle(1)), "");
        EXPECT_EQ(client.send(toBase::kListenViz, -1, CStringView("meter"), client.handle(1)), "");
        EXPECT_EQ(client.send(toBase::kListenViz, -1, CStringView("meter"), client.handle(2)), "");
        EXPECT_EQ(client.send(toBase::kListenViz, 4, CStringView("meter"), client.handle(3)), "");
        beginBlock(0.5);
        EXPECT_EQ(slot.listenerCount, 2);
        EXPECT_EQ(client.send(toBase::kUnlistenViz, client.handle(2)), "");
        beginBlock(0.5);
        EXPECT_EQ(slot.listenerCount, 1);

        EXPECT_EQ(client.send(toBase::kRequestVizData, client.id(), NAN), "");
        EXPECT_EQ(client.send(toBase::kRequestExportSlotNames, client.id()), "");
        std::deque<Received> messages = client.take();
        ASSERT_EQ(messages.size(), 2U);
        EXPECT_EQ(text(messages[0].name), "viz-data");
        EXPECT_EQ(messages[0].next<double>(), 0.5);
        EXPECT_EQ(messages[0].next<int>(), 0);
        EXPECT_TRUE(messages[0].isAtEnd());
        EXPECT_EQ(text(messages[1].name), "export-slot-names");
    }
    beginBlock(1.0);
    EXPECT_EQ(slot.listenerCount, 0) << "the client has gone";
}

TEST_F(InterfaceMessages, whatComesForAClientThatIsNotThereLeavesNothing) {
    CAudioParam& gain = param("gain");
    RawClient client(connector());
    const ParamHandle strange = makeHandle(client.id() + 1, 1);
    EXPECT_EQ(client.send(toBase::kListenParam, CStringView("gain"), strange), "");
    EXPECT_EQ(client.send(toBase::kListenParam, CStringView("unheard-of"), ParamHandle{0}), "");
    EXPECT_EQ(params().findParam("unheard-of"), nullptr);
    const Values values{1};
    EXPECT_EQ(client.send(toBase::kChangeParam, strange, ParamHandle{0}, update(gain, values)), "");
    EXPECT_EQ(gain.control().groupCount(), 0);
}

}  // namespace
}  // namespace brt
