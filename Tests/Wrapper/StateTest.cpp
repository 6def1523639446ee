// SPDX-License-Identifier: LicenseRef-Halyard
// What hosts keep of an instance, and what becomes of it when it is damaged.
#include "WrapperFixture.h"

#include <map>
#include <random>

#include "Audio/CAudioParam.h"

namespace brt {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Facts = std::map<std::string, std::string>;

class StateTest : public WrapperFixture {
protected:
    static Bytes stateOf(CAudioWrapper& instance, EStateKind kind = EStateKind::kBank) {
        CByteBuffer bytes;
        EXPECT_EQ(messageOf(instance.getState(bytes, kind, true)), "");
        return {bytes.data(), bytes.data() + bytes.size()};
    }
    static std::string load(CAudioWrapper& instance, const Bytes& bytes, EStateKind kind = EStateKind::kBank) {
        return messageOf(instance.setState(bytes.data(), static_cast<int>(bytes.size()), kind, true));
    }
    // All that an instance knows, by parameter and program.
    static Facts factsOf(PlainInstance& instance) {
        Facts facts;
        CSmallArray<CAudioParam*> params;
        instance.collector().listParams(params);
        for (CAudioParam* const param : params) {
            const CRankedLock lock(param->section());
            std::string& fact = facts[text(param->name())];
            const CAudioParamStorage& control = param->control();
            for (int group = 0; group < control.groupCount(); ++group) {
                fact += " |";
                for (const double value : control.values(group))
                    fact += " " + (control.format().dataType == EAudioDataType::kString
                                       ? text(control.data().text(value))
                                       : std::to_string(control.format().isFloat() ? value : 0.0));
            }
        }
        for (int i = 0; i < instance.registry().getProgramCount(); ++i)
            facts["program " + std::to_string(i)] = text(instance.registry().getProgramName(i));
        facts["current"] = std::to_string(instance.registry().getCurrentProgram());
        return facts;
    }

    // What a user might do in an hour.
    static void disturb(PlainInstance& instance, std::mt19937& random) {
        const auto below = [&](int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); };
        for (int i = below(12); i >= 0; --i) {
            switch (below(7)) {
            case 0: instance.registry().setCurrentProgram(below(7), nullptr); break;
            case 1: instance.registry().activateFactoryPreset(below(7)); break;
            case 2: instance.param("io-params.grouping").setFloatAt(0, below(8), below(8), nullptr); break;
            case 3: instance.param("instance-name").setString(0, 0, std::to_string(random()), nullptr); break;
            case 4: instance.param("modHal.ingain").setFloat(1.0 + below(100) * 0.1, below(8), nullptr); break;
            case 5: instance.registry().renamePreset(below(7), std::to_string(random()), nullptr); break;
            default: instance.setExtParam(below(5), below(101) / 100.0); break;
            }
        }
    }
};

TEST_F(StateTest, aThousandComeBackByteForByte) {
    PlainInstance one;
    PlainInstance two;
    one.start();
    two.start();
    std::mt19937 random(11);
    for (int round = 0; round < 1000; ++round) {
        disturb(one, random);
        const EStateKind kind = round % 5 == 0 ? EStateKind::kPreset : EStateKind::kBank;
        const Bytes state = stateOf(one, kind);
        // Which program is the current one is no part of a state: hosts keep it beside.
        two.registry().setCurrentProgram(one.registry().getCurrentProgram(), nullptr);
        ASSERT_EQ(load(two, state, kind), "");
        ASSERT_EQ(stateOf(two, kind), state) << round;
    }
}

TEST_F(StateTest, whatStaysWithTheSessionComesBackToo) {
    PlainInstance one;
    PlainInstance two;
    one.start();
    two.start();
    one.setExtParam(0, 1.0);
    one.param("instance-name").setString(0, 0, "Drum bus", nullptr);
    ASSERT_EQ(load(two, stateOf(one)), "");
    EXPECT_EQ(two.value("bypass-enable"), 1.0);
    EXPECT_EQ(text(two.param("instance-name").getString(0, 0)), "Drum bus");
    // Also where the host is at another program by then.
    one.registry().setCurrentProgram(3, nullptr);
    one.param("instance-name").setString(0, 0, "Master", nullptr);
    ASSERT_EQ(load(two, stateOf(one)), "");
    EXPECT_EQ(text(two.param("instance-name").getString(0, 0)), "Master");
    EXPECT_EQ(two.value("bypass-enable"), 1.0);
}

TEST_F(StateTest, aDamagedOneChangesNothing) {
    PlainInstance source;
    PlainInstance target;
    source.start();
    target.start();
    std::mt19937 random(5);
    disturb(source, random);
    disturb(target, random);
    const Bytes state = stateOf(source);
    Facts before = factsOf(target);
    for (std::size_t size = 17; size < state.size(); size += size < 64 ? 1 : 37) {
        EXPECT_NE(load(target, Bytes(state.begin(), state.begin() + static_cast<std::ptrdiff_t>(size))), "") << size;
        ASSERT_EQ(factsOf(target), before) << size;
    }
    for (std::size_t size = 0; size <= 16; ++size)
        EXPECT_EQ(load(target, Bytes(state.begin(), state.begin() + static_cast<std::ptrdiff_t>(size))), "") << size;
    ASSERT_EQ(factsOf(target), before);

    for (std::size_t place = 16; place < state.size(); ++place) {
        Bytes damaged = state;
        damaged[place] ^= static_cast<std::uint8_t>(1U << random() % 8);
        if (load(target, damaged).empty()) {
            before = factsOf(target);  // a byte that nobody looks at, such as the compressor's level
        } else {
            ASSERT_EQ(factsOf(target), before) << place;
        }
    }
}

TEST_F(StateTest, aStateOfAnotherPluginIsRefused) {
    PlainInstance instance;
    instance.start();
    const Facts before = factsOf(instance);
    CAudioPresetBank bank;
    bank.presets().append(new CAudioPreset("abcd:Default"));
    CWriteSeqBuffer stream(1024);
    const Bytes prefix(16);
    ASSERT_EQ(messageOf(stream.write(prefix.data(), 16)), "");
    ASSERT_EQ(messageOf(bank.savePacked(stream)), "");
    CByteBuffer bytes;
    stream.moveTo(bytes);
    EXPECT_EQ(load(instance, Bytes(bytes.data(), bytes.data() + bytes.size())), "Incompatible bank.");
    EXPECT_EQ(factsOf(instance), before);
}

}  // namespace
}  // namespace brt
