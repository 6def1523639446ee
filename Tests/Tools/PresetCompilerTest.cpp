// SPDX-License-Identifier: LicenseRef-Halyard
// `docc presets`: what the text of presets may say, what is refused, and the two files that the product links in.
#include <gmock/gmock.h>

#include <fstream>

#include "Audio/CAudioParam.h"
#include "Audio/CAudioParamDef.h"
#include "Audio/CAudioPresetBank.h"
#include "Audio/PresetStream.h"
#include "Core/CApplication.h"
#include "Core/CResourceReader.h"
#include "Documents/ProductTags.h"
#include "Documents/Resources.h"
#include "Tools/Docc/PresetCompiler.h"
#include "Tools/HalyardRunner.h"

namespace brt {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class PresetCompilerTest : public testing::Test {
protected:
    static void SetUpTestSuite() { CApplication::start({productTags(), kHalyardResources}); }

    static constexpr const char* kHead = "kind = bank\nid = qzkd\ndefinitions = audio.modMain\n";

    // The bank; empty, with `m_errors`, if the text is refused.
    void compile(const std::string& text) {
        const CSourceText source("a.presets", text);
        CDiagnostics diagnostics(source);
        const auto bytes = compilePresets(source, *CApplication::sharedObject(), diagnostics);
        m_errors = diagnostics.lines();
        m_bank.presets().clear();
        EXPECT_EQ(bytes.empty(), diagnostics.hasErrors());
        if (bytes.empty()) return;
        CMemoryReader reader(bytes.data(), static_cast<int>(bytes.size()));
        ASSERT_EQ(m_bank.loadPacked(reader), nullptr);
    }

    // The first line of what is said of one preset's lines.
    std::string errorOf(const std::string& lines) {
        compile(std::string(kHead) + "[A]\n" + lines + "\n");
        return m_errors.substr(0, m_errors.find('\n'));
    }

    static void load(CAudioParamBlock& block, const CAudioPreset& preset, const char* key) {
        const CByteBuffer* const bytes = preset.entries().find(key);
        CAudioParamDef* definition = nullptr;
        const CString path = CString("audio.modMain.").append(key);
        ASSERT_EQ(CApplication::sharedObject()->findObjectChecked(definition, path), nullptr);
        ASSERT_NE(bytes, nullptr) << key;
        CMemoryReader reader(bytes->data(), bytes->size());
        ASSERT_EQ(block.load(reader, definition->info()), nullptr);
        EXPECT_EQ(reader.getBytesLeft(), 0);
        EXPECT_EQ(block.definitionName, path);
    }

    // The text of an element, or the number.
    static std::string textOf(const CAudioPreset& preset, const char* key, int group = 0, int element = 0) {
        CAudioParamBlock block;
        load(block, preset, key);
        if (element >= block.values.elementCount(group)) return "(nothing)";
        const double value = block.values.values(group)[static_cast<std::size_t>(element)];
        if (block.values.format().isFloat()) return std::to_string(value);
        return dynamic_cast<const CAudioParamDataItemString&>(*block.values.data().find(value)).text().toUtf8();
    }

    CAudioPresetBank m_bank;
    std::string m_errors;
};

TEST_F(PresetCompilerTest, valuesGoTheWayOfTheirConverters) {
    compile(std::string(kHead) +
            "groups = 3\n# a comment\n[*]\nmodHal.ingain = 6\r\npreset-name = {name} of {name}\ninstance-name=\n"
            "io-params.group-names = A, B C ,\n\n[ One=1 ]\nmodHal.residue = on\nbypass-enable\nmodHal.outgain=-6;-1.5"
            "\n[Two]\nmodHal.hardness = 12.5\nmodHal.ingain = 24");
    ASSERT_EQ(m_errors, "");
    ASSERT_EQ(m_bank.count(), 2);
    const CAudioPreset& one = m_bank[0];
    EXPECT_EQ(one.name(), CStringView("qzkd:One=1"));
    EXPECT_EQ(textOf(one, "modHal.ingain"), "1.995262");
    EXPECT_EQ(textOf(one, "modHal.ingain", 2), "1.995262") << "one value is that of all groups";
    EXPECT_EQ(textOf(one, "modHal.ingain", 3), "(nothing)");
    EXPECT_EQ(textOf(one, "modHal.outgain", 1), "0.841395");
    EXPECT_EQ(textOf(one, "modHal.outgain", 2), "(nothing)") << "several values are those of their groups";
    EXPECT_EQ(textOf(one, "modHal.residue"), "1.000000");
    EXPECT_EQ(textOf(one, "bypass-enable"), "0.000000");
    EXPECT_EQ(textOf(one, "preset-name"), "One=1 of One=1");
    EXPECT_EQ(textOf(one, "instance-name"), "");
    EXPECT_EQ(textOf(one, "io-params.group-names", 0, 1), "B C");
    EXPECT_EQ(textOf(one, "io-params.group-names", 0, 2), "");
    EXPECT_EQ(textOf(m_bank[1], "modHal.hardness"), "0.125000");
    EXPECT_EQ(textOf(m_bank[1], "modHal.ingain"), "15.848932") << "a preset's own line counts";
}

TEST_F(PresetCompilerTest, whatIsWrongIsToldWithItsPlace) {
    EXPECT_EQ(errorOf("modHal.hardnes = 1"),
              "a.presets:5:1: error: unknown key 'modHal.hardnes'; did you mean 'modHal.hardness'?");
    EXPECT_EQ(errorOf("modHal.ingain = 24.1"),
              "a.presets:5:17: error: '24.1' is out of the range of 'modHal.ingain', which is from 0.0 to 24.0 dB");
    EXPECT_EQ(errorOf("\n  modHal.outgain = 3 dB"),
              "a.presets:6:20: error: '3 dB' is no value of 'modHal.outgain'; "
              "write a number from -24.0 to 0.0 dB");
    EXPECT_THAT(errorOf("modHal.ingain ="), HasSubstr("'' is no value of"));
    EXPECT_THAT(errorOf("modHal.residue = onn"), HasSubstr("'onn' is no value of"));
    EXPECT_THAT(errorOf("modHal.residue = 2"), HasSubstr("'2' is out of the range of 'modHal.residue'"));
    EXPECT_THAT(errorOf("modHal.modInGain.gain = 2"), HasSubstr("neither storable nor persistent"));
    EXPECT_THAT(errorOf("modHal = 2"), HasSubstr("unknown key 'modHal'"));
    EXPECT_THAT(errorOf("bypass-enable = 0,0"), HasSubstr("is a single value; leave out ','"));
    EXPECT_THAT(errorOf("io-params.grouping = 0;0"), HasSubstr("one value for all channel groups"));
    EXPECT_EQ(errorOf("groupsel\ngroupsel = 1"), "a.presets:6:1: error: key 'groupsel' stands here twice");
    EXPECT_EQ(errorOf("[A]"), "a.presets:5:1: error: preset 'A' stands here twice; give each a name of its own");
    EXPECT_THAT(errorOf("[*]"), HasSubstr("stands once, before all presets"));
    EXPECT_THAT(errorOf("[B"), HasSubstr("']' is missing"));
    EXPECT_THAT(errorOf("[ ]"), HasSubstr("a preset needs a name"));
    EXPECT_THAT(errorOf("= 1"), HasSubstr("a key is missing"));

    compile("kind = banc\ngroups = 33\nid = a:b\nkin = 1\nkind = bank\ndefinitions = audio.nothing\nnumbers = x 1\n");
    EXPECT_EQ(m_errors,
              "a.presets:1:1: error: there is no preset; each begins with its name, as [Default]\n"
              "a.presets:1:8: error: 'banc' is neither 'bank' nor 'list'\n"
              "a.presets:2:10: error: '33' is no number of groups from 1 to 32\n"
              "a.presets:3:6: error: an id is a word without ':'\n"
              "a.presets:4:1: error: unknown setting 'kin'; did you mean 'kind'?\n"
              "a.presets:5:1: error: 'kind' stands here twice\n"
              "a.presets:6:15: error: the shared document has no object 'audio.nothing'\n"
              "a.presets:7:11: error: write a key, its least and its greatest number here, as 'numbers = "
              "ms-pairs 0 16'\n");
    compile("[*]\nx = 1\n[A]\n[B]\n");
    EXPECT_THAT(m_errors, HasSubstr("1:1: error: 'definitions = ...' is missing before the presets"));
    compile("kind = bank\n\xFF");
    EXPECT_THAT(m_errors, HasSubstr("a.presets:2:1: error: no preset can hold this byte"));
    compile(std::string(kHead) + "numbers = pairs 0 3\n[*]\npairs\n[A]\npairs = 1,4\n[B]\n");
    EXPECT_EQ(m_errors,
              "a.presets:6:1: error: 'pairs' has no default; give it a value, as 'pairs = 0,0'\n"
              "a.presets:8:9: error: '4' is out of the range of 'pairs', which is from 0 to 3\n");
}

TEST_F(PresetCompilerTest, theFactoryBank) {
    CResourceReader reader;
    ASSERT_EQ(reader.open("FactoryROM.cbf"), nullptr);
    CByteBuffer plain;
    ASSERT_EQ(reader.readCompressedData(plain, kBankTag), nullptr);
    static constexpr char kBegin[] = "\4\0\0\0Bank\7\0\0\0\x0C\0\0\0qzkd:Default\x0E\0\0\0\x0D\0\0\0bypass-enable";
    ASSERT_GE(plain.size(), static_cast<int>(sizeof kBegin));
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(plain.data()), sizeof kBegin - 1),
              std::string(kBegin, sizeof kBegin - 1));

    CAudioPresetBank bank;
    CMemoryReader bytes(plain.data(), plain.size());
    ASSERT_EQ(bank.load(bytes), nullptr);
    EXPECT_EQ(bytes.getBytesLeft(), 0);
    std::vector<std::string> names;
    for (int i = 0; i < bank.count(); ++i) {
        names.push_back(bank[i].name().toUtf8());
        std::vector<std::string> keys;
        for (const auto& [key, block] : bank[i].entries()) {
            keys.push_back(key.toUtf8());
            EXPECT_NE(textOf(bank[i], keys.back().c_str()), "(nothing)");
        }
        EXPECT_THAT(keys, ElementsAre("bypass-enable", "groupsel", "instance-name", "io-params.group-names",
                                      "io-params.grouping", "io-params.in-channel-names", "io-params.in-routing",
                                      "io-params.out-routing", "io-params.show-all-channels", "modHal.hardness",
                                      "modHal.ingain", "modHal.outgain", "modHal.residue", "preset-name"));
        EXPECT_EQ("qzkd:" + textOf(bank[i], "preset-name"), names.back());
    }
    EXPECT_THAT(names, ElementsAre("qzkd:Default", "qzkd:+3dB Hard-Clip", "qzkd:+3dB Soft-Clip", "qzkd:+5dB Hard-Clip",
                                   "qzkd:+5dB Soft-Clip", "qzkd:+8dB Hard-Clip", "qzkd:+8dB Soft-Clip"));
    EXPECT_EQ(textOf(bank[0], "modHal.hardness", 7), "1.000000");
    EXPECT_EQ(textOf(bank[1], "modHal.outgain", 7), "0.707946");
}

TEST_F(PresetCompilerTest, theRoutingPresets) {
    CResourceReader reader;
    ASSERT_EQ(reader.open("AppDataGlobal_routing-presets-sys"), nullptr);
    CByteBuffer plain;
    ASSERT_EQ(reader.readCompressedData(plain, appDataTag::kPresetList), nullptr);
    CMemoryReader bytes(plain.data(), plain.size());
    COwnedArray<CAudioPresetBank> banks;
    ASSERT_EQ(CAudioPresetBank::loadList(bytes, banks), nullptr);
    EXPECT_EQ(bytes.getBytesLeft(), 0);
    ASSERT_EQ(banks.count(), 1);
    const CAudioPresetBank& bank = *banks.begin()[0];
    EXPECT_EQ(bank.name(), CStringView(""));
    std::vector<std::string> names;
    for (int i = 0; i < bank.count(); ++i) {
        names.push_back(bank[i].name().toUtf8());
        const bool hasSideChain = names.back().find("Side-Chain") != std::string::npos;
        EXPECT_EQ(bank[i].entries().count(), hasSideChain ? 9 : 7) << names.back();
        for (const char* const key : {"group-names", "grouping", "in-channel-names", "in-routing", "ms-pairs",
                                      "out-routing", "show-all-channels"})
            EXPECT_NE(bank[i].entries().find(key), nullptr) << key;
    }
    EXPECT_THAT(
        names,
        ElementsAre("BTIO:Stereo", "BTIO:2.1 Stereo", "BTIO:5.1 Surround (Multi)", "BTIO:5.1 Surround (Groups)",
                    "BTIO:7.1 Surround (Multi)", "BTIO:7.1 Surround (Groups)", "BTIO:Dual Mono", "BTIO:Mid-Side Stereo",
                    "BTIO:Mid-Side Linked", "BTIO:Mono To Stereo", "BTIO:Stereo Side-Chain", "BTIO:Mono Side-Chain",
                    "BTIO:Force Mono", "BTIO:Stereo Swap", "BTIO:Stereo To Mono"));
}

class DoccPresets : public HalyardTest {};

TEST_F(DoccPresets, theSameBytesEachTimeAndNothingWhereSomethingIsWrong) {
    CResourceReader shared;
    ASSERT_EQ(shared.open("SharedData.xml"), nullptr);
    std::ofstream(path("shared.bin"), std::ios::binary)
        .write(static_cast<const char*>(shared.getDirectData()), shared.getBytesLeft());
    std::ofstream(path("a.presets"))
        << "kind = list\nid = BTIO\ndefinitions = audio.modMain.io-params\n[A]\ngrouping\n";
    runWell("presets a.presets -o a --shared shared.bin");
    runWell("presets a.presets -o b --shared shared.bin");
    EXPECT_EQ(bytes("a"), bytes("b"));
    EXPECT_EQ(bytes("a").substr(0, 4), "alst");

    std::ofstream(path("a.presets")) << "kind = list\n[A]\n";
    const std::pair<const char*, const char*> cases[] = {
        {"presets a.presets -o a --shared shared.bin", "a.presets:1:1: error: 'id = ...' is missing"},
        {"presets a.presets -o a --shared a.presets", "docc: error: no definitions can be read from 'a.presets'"},
        {"presets a.presets -o a.presets --shared shared.bin", "the output would replace 'a.presets'"},
    };
    for (const auto& [arguments, errors] : cases) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.status, 1) << arguments;
        EXPECT_THAT(outcome.errors, HasSubstr(errors)) << arguments;
    }
    EXPECT_EQ(bytes("a"), bytes("b"));
}

}  // namespace
}  // namespace brt
