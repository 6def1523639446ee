// SPDX-License-Identifier: LicenseRef-Halyard
// What a host reads of the effect, and what it may ask at any time.
#include "Audio/CAudioExtParam.h"
#include "Other/FocusOnClick.h"
#include "VstHost.h"

namespace brt {
namespace {

using EffectTest = VstFixture;
using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(EffectTest, hostsOfEachVersionGetTheRecordThatTheyExpect) {
    for (const std::int32_t version : {2, 2299, 2300, 2400}) {
        VstHost host;
        host.version = version;
        ASSERT_TRUE(host.open()) << version;
        const AEffect& effect = host.effect();
        EXPECT_EQ(effect.magic, 0x56737450);
        EXPECT_EQ(effect.uniqueID, 0x717a6b64);
        EXPECT_EQ(effect.flags, 0x1030);
        EXPECT_EQ(effect.version, 1);
        EXPECT_EQ(effect.numPrograms, 7);
        EXPECT_EQ(effect.numParams, kHostParamCount);
        EXPECT_EQ(effect.numInputs, 2);
        EXPECT_EQ(effect.numOutputs, 2);
        EXPECT_EQ(effect.ioRatio, 1.0f);
        EXPECT_EQ(effect.initialDelay, 1667);
        EXPECT_THAT(host.takeJournal(), IsEmpty());
    }
}

TEST_F(EffectTest, refusesWhatIsNoHost) {
    EXPECT_EQ(makeEffect(nullptr), nullptr);
    EXPECT_EQ(makeEffect(
                  [](AEffect*, std::int32_t, std::int32_t, std::intptr_t, void*, float) -> std::intptr_t { return 0; }),
              nullptr);
    VstHost host;
    host.version = 0;
    EXPECT_FALSE(host.open());
    EXPECT_EQ(CProcessInstance::liveCount(), 0);
}

// The version is all that this one tells.
TEST_F(EffectTest, worksInAHostThatAnswersNothingElse) {
    AEffect* const effect = makeEffect([](AEffect*, std::int32_t opcode, std::int32_t, std::intptr_t, void*,
                                          float) -> std::intptr_t { return opcode == audioMasterVersion ? 2400 : 0; });
    ASSERT_NE(effect, nullptr);
    effect->dispatcher(effect, effMainsChanged, 0, 1, nullptr, 0.0f);
    effect->setParameter(effect, kBypass, 1.0f);
    effect->processReplacing(effect, nullptr, nullptr, 64);
    EXPECT_EQ(effect->dispatcher(effect, effClose, 0, 0, nullptr, 0.0f), 1);
}

TEST_F(EffectTest, tellsWhatItIs) {
    VstHost host;
    ASSERT_TRUE(host.open());
    EXPECT_EQ(host.call(effOpen), 0);
    EXPECT_EQ(host.call(effIdentify), 0x4e764566);
    EXPECT_EQ(host.textOf(effGetEffectName, 32), "Halyard");
    EXPECT_EQ(host.textOf(effGetVendorString, 64), "Brontel");
    EXPECT_EQ(host.textOf(effGetProductString, 64), "Brontel Halyard");
    EXPECT_EQ(host.call(effGetVendorVersion), 0x010b00);
    EXPECT_EQ(host.call(effGetPlugCategory), kPlugCategEffect);
    EXPECT_EQ(host.call(effGetVstVersion), 2400);
    EXPECT_EQ(host.call(effGetTailSize), 0);
    EXPECT_EQ(host.call(effCanBeAutomated, 0), 1);
    EXPECT_EQ(host.call(effGetCurrentMidiProgram), -1);
    EXPECT_EQ(host.call(effSetTotalSampleToProcess, 0, 12345), 12345);
    char feature[] = "receiveVstMidiEvent";
    EXPECT_EQ(host.call(effCanDo, 0, 0, feature), 1);
    char extensions[] = "hasCockosExtensions";
    EXPECT_EQ(host.call(effCanDo, 0, 0, extensions), std::intptr_t{0xbeef0000});
    char unknown[] = "bypass";
    EXPECT_EQ(host.call(effCanDo, 0, 0, unknown), 0);

    // No window yet, and features that it lacks.
    for (const std::int32_t opcode : {13, 14, 15, 19, 27, 33, 34, 38, 39, 40, 41, 44, 56, 59, 60,
                                      61, 62, 64, 65, 66, 67, 68, 70, 71, 72, 74, 75, 76, 78, 79})
        EXPECT_EQ(host.call(opcode), 0) << opcode;
}

TEST_F(EffectTest, everyOpcodeBearsAnything) {
    VstHost host;
    ASSERT_TRUE(host.open());
    host.resume();
    const VstHost::Chunk before = host.chunk();
    for (std::int32_t opcode = -3; opcode < 90; ++opcode) {
        if (opcode == effClose || opcode == effSetProgram || opcode == effSetSampleRate) continue;
        for (const std::int32_t index : {-1, 0, 5, INT32_MIN, INT32_MAX}) host.call(opcode, index);
        // Arrangements come as a number; there is nothing at these addresses.
        if (opcode == effSetSpeakerArrangement || opcode == effGetSpeakerArrangement) continue;
        for (const std::intptr_t value : {std::intptr_t{-1}, INTPTR_MIN, INTPTR_MAX})
            host.call(opcode, 0, value, nullptr, NAN);
    }
    for (const std::intptr_t program : {std::intptr_t{-1}, INTPTR_MIN, INTPTR_MAX, std::intptr_t{1} << 32 | 1})
        host.call(effSetProgram, 0, program);
    EXPECT_EQ(host.call(effGetProgram), 0);
    for (const float rate : {0.0f, -48000.0f, NAN, INFINITY, 1e30f}) {
        host.resume(rate);
        host.play(VstHost::tone<float>(64));
    }
    EXPECT_EQ(host.chunk(), before);
    EXPECT_EQ(host.effect().dispatcher(nullptr, effIdentify, 0, 0, nullptr, 0.0f), 0);
    EXPECT_EQ(host.effect().getParameter(nullptr, 0), 0.0f);
}

TEST_F(EffectTest, parametersHaveNamesTextsAndValues) {
    VstHost host;
    ASSERT_TRUE(host.open());
    EXPECT_EQ(host.textOf(effGetParamName, 8, kHardness), "Hardnes");
    EXPECT_EQ(host.textOf(effGetParamDisplay, 8, kHardness), "100.0");
    EXPECT_EQ(host.textOf(effGetParamLabel, 8, kHardness), "%");
    for (const std::int32_t opcode : {effGetParamName, effGetParamDisplay, effGetParamLabel}) {
        EXPECT_EQ(host.textOf(opcode, 8, -1), "");
        EXPECT_EQ(host.textOf(opcode, 8, kHostParamCount), "");
    }
    host.set(kGain, 1.5f);
    EXPECT_EQ(host.get(kGain), 1.0f);
    host.set(kGain, -0.5f);
    EXPECT_EQ(host.get(kGain), 0.0f);
    host.set(kGain, 0.25f);
    for (const float none : {NAN, INFINITY, -INFINITY}) host.set(kGain, none);
    EXPECT_EQ(host.get(kGain), 0.25f);
    host.set(kHostParamCount, 0.5f);
    host.set(-1, 0.5f);
    EXPECT_EQ(host.get(kHostParamCount), 0.0f);
    EXPECT_EQ(host.get(-1), 0.0f);
    EXPECT_THAT(host.takeJournal(), IsEmpty()) << "what a host sets it isn't told";
}

TEST_F(EffectTest, textAndValueOfAnyParameterCanBeAskedFor) {
    VstHost host;
    ASSERT_TRUE(host.open());
    const auto parsed = [&host](std::string text, std::intptr_t param) {
        text.resize(8);
        EXPECT_EQ(host.call(effVendorSpecific, effString2Parameter, param, text.data()), 0xbeef);
        return std::string(text.c_str());
    };
    EXPECT_EQ(parsed("50", kHardness), "0.50000");
    EXPECT_EQ(parsed("50", kHostParamCount), "");
    EXPECT_EQ(parsed("50", -1), "");
    EXPECT_EQ(parsed("50", std::intptr_t{1} << 32), "");
    char display[8] = "#######";
    EXPECT_EQ(host.call(effVendorSpecific, effGetParamDisplay, kHardness, display, 0.25f), 0xbeef);
    EXPECT_STREQ(display, "25.0");
    EXPECT_EQ(host.call(effVendorSpecific, effGetParamDisplay, 99, display, 0.25f), 0xbeef);
    EXPECT_STREQ(display, "");
    EXPECT_EQ(host.call(effVendorSpecific, effGetParamDisplay, kHardness), 0);
    EXPECT_EQ(host.call(effVendorSpecific, effString2Parameter, kHardness), 0);
    EXPECT_EQ(host.get(kHardness), 1.0f) << "asking changes nothing";

    EXPECT_EQ(host.call(effVendorSpecific, 0x73744341, 0x57686565, nullptr, -1.0f), 1);
    EXPECT_EQ(host.call(effVendorSpecific, 0x73744361, 0x57686565, nullptr, 1.0f), 1);
    EXPECT_EQ(host.call(effVendorSpecific, 0x73744341, 0x57686566), 0);
    EXPECT_EQ(host.call(effVendorSpecific, 1234, 0x57686565), 0);
}

TEST_F(EffectTest, programsCanBeNamed) {
    VstHost host;
    ASSERT_TRUE(host.open());
    EXPECT_EQ(host.call(effGetProgram), 0);
    const std::int32_t last = host.effect().numPrograms - 1;
    EXPECT_EQ(host.call(effSetProgram, 0, last + 1), 0);
    EXPECT_EQ(host.call(effGetProgram), 0);
    EXPECT_EQ(host.call(effSetProgram, 0, last), 0);
    EXPECT_EQ(host.call(effGetProgram), last);
    EXPECT_EQ(host.programName(), host.textOf(effGetProgramNameIndexed, 24, last, -1));
    host.call(effSetProgram, 0, 0);
    host.setProgramName("Loud: very");
    EXPECT_EQ(host.programName(), "Loud: very");
    EXPECT_EQ(host.textOf(effGetProgramNameIndexed, 24, 0, -1), "Loud: very");
    host.setProgramName("A name of thirty characters ..");
    EXPECT_EQ(host.programName(), "A name of thirty charac");
    char name[24];
    EXPECT_EQ(host.call(effGetProgramNameIndexed, 0, -1, name), 1);
    for (const std::int32_t index : {-1, host.effect().numPrograms}) {
        EXPECT_EQ(host.call(effGetProgramNameIndexed, index, -1, name), 0);
        EXPECT_STREQ(name, "");
    }
    EXPECT_THAT(host.takeJournal(), testing::Contains("display"));
}

TEST_F(EffectTest, theHostHearsOfChangesThatItHasNotMade) {
    VstHost host;
    ASSERT_TRUE(host.open());
    CAudioWrapper& instance = host.instance();
    CAudioParam& gain = instance.extParam(kGain)->param();
    host.onCall = [&host](std::int32_t opcode, std::int32_t index) {
        // Hosts send back what they hear.
        if (opcode == audioMasterAutomate) host.set(index, host.get(index));
    };
    EXPECT_TRUE(instance.beginEdit(gain, 0, 0));
    gain.setFloat(1.0, 0, this);
    instance.endEdit(gain, 0, 0);
    const std::vector<std::string> journal = host.takeJournal();
    ASSERT_EQ(journal.size(), 3u) << testing::PrintToString(journal);
    EXPECT_EQ(journal[0], "begin 1");
    EXPECT_EQ(journal[1].substr(0, 11), "automate 1 ");
    EXPECT_EQ(journal[2], "end 1");
}

TEST_F(EffectTest, arrangementsAreKeptAndName) {
    VstHost host;
    ASSERT_TRUE(host.open());
    const auto set = [&host](int inputs, int outputs) {
        VstSpeakerArrangement input{};
        VstSpeakerArrangement output{};
        input.numChannels = inputs;
        output.numChannels = outputs;
        std::strcpy(input.speakers[0].name, "Left Front");
        std::strcpy(input.speakers[1].name, "?");
        return host.call(effSetSpeakerArrangement, 0, reinterpret_cast<std::intptr_t>(&input), &output);
    };
    VstSpeakerArrangement* input = nullptr;
    VstSpeakerArrangement* output = nullptr;
    const auto get = [&] {
        return host.call(effGetSpeakerArrangement, 0, reinterpret_cast<std::intptr_t>(&input), &output);
    };
    EXPECT_EQ(get(), 0);
    EXPECT_EQ(input, nullptr);
    EXPECT_EQ(set(0, 0), 0);
    EXPECT_EQ(set(-1, -1), 0);
    EXPECT_EQ(set(3, 3), 0);
    EXPECT_EQ(set(1, 2), 0) << "as many outputs as inputs";
    EXPECT_EQ(get(), 0);
    EXPECT_EQ(set(2, 2), 1);
    ASSERT_EQ(get(), 1);
    EXPECT_EQ(input->numChannels, 2);
    EXPECT_STREQ(input->speakers[0].name, "Left Front");
    EXPECT_EQ(set(3, 3), 0);
    ASSERT_EQ(get(), 1);
    EXPECT_EQ(input->numChannels, 2);
    CAudioParam& names = host.instance().collector().getParam("plugin.modMain.io-params.in-channel-names");
    EXPECT_EQ(names.getString(0, 0), "Left Fr");
    EXPECT_EQ(names.getString(0, 1), "R");

    // Channels reach the graph with the next resume.
    EXPECT_EQ(set(1, 1), 1);
    EXPECT_EQ(host.instance().inputChannelCount(), 2);
    host.resume();
    EXPECT_EQ(host.instance().inputChannelCount(), 1);
}

TEST_F(EffectTest, theLastInstanceTellsWhetherClicksTakeTheKeyboard) {
    VstHost shy;
    shy.vendor = "Steinberg";
    ASSERT_TRUE(shy.open());
    EXPECT_FALSE(focusOnClick());
    VstHost other;
    ASSERT_TRUE(other.open());
    EXPECT_TRUE(focusOnClick());
}

}  // namespace
}  // namespace brt
