// SPDX-License-Identifier: LicenseRef-Halyard
// Presets, programs and banks: what they hold, what activating them changes, and what bad ones must not.
#include <random>

#include "Core/CAppData.h"
#include "PresetFixture.h"

namespace brt {
namespace {

using Groups = std::vector<std::vector<double>>;

class PresetRegistry : public PresetFixture {
protected:
    // All that a preset or bank which fails must leave alone.
    struct Everything {
        State values;
        std::string history;
        Bytes bank;
        int paramCount;
        bool operator==(const Everything&) const = default;
        friend void PrintTo(const Everything& all, std::ostream* out) {
            *out << all.history << " " << all.paramCount << " " << ::testing::PrintToString(all.values) << " bank of "
                 << all.bank.size() << " bytes";
        }
    };
    Everything everything() {
        CSmallArray<CAudioParam*> all;
        params().listParams(all);
        return {state(), history(), sessionBank(master()), all.count()};
    }

    // A preset of the master with values for several kinds of parameters.
    static void fill(CAudioPreset& preset) {
        preset.setName("qzkd:Mine");
        put(preset, "gain", {{1, 2}, {}, {3}});
        put(preset, "modHal.hardness", {{0.25}});
        put(preset, "io-params.grouping", {{4}});
        putText(preset, "preset-name", "Stored");
    }
    std::string programName(int index) { return text(master().getProgramName(index)); }
};

TEST_F(PresetRegistry, programsKeepTheirValuesWhileOthersAreCurrent) {
    EXPECT_EQ(master().getProgramCount(), 7);
    EXPECT_EQ(io().getProgramCount(), 0);
    EXPECT_EQ(value("gain"), 0);
    EXPECT_EQ(text(master().getCurrentProgramName()), "qzkd:P0");
    mod("gain").setFloat(42, 2, nullptr);
    mod("persistent").setFloat(5, 0, nullptr);
    master().setCurrentProgram(3, nullptr);
    EXPECT_EQ(value("gain"), 3);
    EXPECT_EQ(value("gain", 2), 10) << "a group that the program doesn't have reads the default";
    EXPECT_EQ(value("persistent"), 5) << "what stays with the session";
    EXPECT_EQ(shown("preset-name"), "P3");
    EXPECT_EQ(heard(), state());
    mod("modHal.hardness").setFloat(0.9, 0, nullptr);

    // None of these is another program.
    const Everything before = everything();
    for (const int index : {3, -1, 7, INT_MIN, INT_MAX}) master().setCurrentProgram(index, nullptr);
    io().setCurrentProgram(0, nullptr);
    EXPECT_EQ(everything(), before);

    master().setCurrentProgram(0, nullptr);
    EXPECT_EQ(value("gain", 2), 42);
    EXPECT_EQ(value("modHal.hardness"), 0.0);
    master().setCurrentProgram(3, nullptr);
    EXPECT_EQ(value("modHal.hardness"), 0.9);
    EXPECT_EQ(programName(7) + programName(-1) + text(io().getCurrentProgramName()), "");
    EXPECT_EQ(heard(), state());
}

TEST_F(PresetRegistry, aProgramIsRenamedFromAllSides) {
    master().renamePreset(0, "Mine", nullptr);
    EXPECT_EQ(programName(0) + " " + shown("preset-name"), "qzkd:Mine Mine");
    EXPECT_EQ(history(), "Program name change@1");
    mod("preset-name").setString(0, 0, "a:b", nullptr);
    EXPECT_EQ(programName(0), "qzkd:a:b");
    base().setHistoryPos(0, true);
    EXPECT_EQ(programName(0) + " " + shown("preset-name"), "qzkd:P0 P0");
    base().setHistoryPos(1, true);
    EXPECT_EQ(programName(0) + " " + shown("preset-name"), "qzkd:Mine Mine");

    // Another one: its name alone, and no step.
    master().renamePreset(4, "Four", nullptr);
    EXPECT_EQ(programName(4) + " " + shown("preset-name"), "qzkd:Four Mine");
    master().setCurrentProgram(4, nullptr);
    EXPECT_EQ(programName(4) + " " + shown("preset-name"), "qzkd:Four Four");
    EXPECT_EQ(history(), "@0");
    const Everything before = everything();
    for (const int index : {-1, 7, INT_MAX}) master().renamePreset(index, "Nobody", nullptr);
    io().renamePreset(0, "Nobody", nullptr);
    EXPECT_EQ(everything(), before);
}

TEST_F(PresetRegistry, whatAPresetLeavesOutGoesBackToItsDefinition) {
    mod("gain").setFloat(7, 1, nullptr);
    mod("single").setFloat(8, 0, nullptr);
    CAudioPreset userDefault("qzkd:Default");
    put(userDefault, "modHal.hardness", {{77}});
    const Bytes bytes = bytesOf(userDefault);
    CMemoryReader reader(bytes.data(), static_cast<int>(bytes.size()));
    master().setDefaultPreset(reader);
    EXPECT_EQ(value("modHal.hardness"), 0.0) << "values stay";

    CAudioPreset preset("qzkd:Nothing");
    EXPECT_EQ(activate(master(), preset), "");
    EXPECT_EQ(value("modHal.hardness"), 10);
    EXPECT_EQ(value("gain"), 10);
    EXPECT_EQ(value("gain", 1), 10);
    EXPECT_EQ(value("single"), 10);
    EXPECT_EQ(programName(0) + " " + shown("preset-name"), "qzkd:Nothing Nothing");

    // A reset means the default preset where that says something.
    mod("persistent").setFloat(5, 0, nullptr);
    master().masterReset();
    EXPECT_EQ(value("modHal.hardness"), 77);
    EXPECT_EQ(value("gain"), 0) << "that of the product";
    EXPECT_EQ(value("persistent"), 5);
    EXPECT_EQ(shown("preset-name"), "P0");
    EXPECT_EQ(programName(0), "qzkd:P0");
    EXPECT_EQ(history(), "Master preset activate|Master reset@2");
    EXPECT_EQ(heard(), state());
    io().masterReset();
    EXPECT_EQ(history(), "Master preset activate|Master reset@2");
}

TEST_F(PresetRegistry, aPresetOfAnotherRegistryIsRefused) {
    CAudioPreset preset;
    fill(preset);
    const Everything before = everything();
    for (const char* const name : {"BTIO:Mine", "Mine", ":Mine", "qzkd", ""}) {
        preset.setName(name);
        EXPECT_EQ(activate(master(), preset), "Incompatible preset.") << name;
    }
    preset.setName("qzkd:Mine");
    EXPECT_EQ(activate(io(), preset), "Incompatible preset.");
    for (const int group : {-2, kAudioGroupLimit, INT_MAX}) EXPECT_NE(activate(master(), preset, group), "");
    EXPECT_EQ(everything(), before);
}

TEST_F(PresetRegistry, unknownAndAliasedKeysAreSkipped) {
    std::mt19937 random(7);
    const int paramCount = everything().paramCount;
    for (int i = 0; i < 1000; ++i) {
        CAudioPreset preset("qzkd:Foreign");
        std::string key;
        for (int k = 0; k < 12; ++k) key += static_cast<char>(33 + random() % 90);
        put(preset, (key + "." + key).c_str(), {{1}});
        put(preset, "gain", {{static_cast<double>(i)}});
        ASSERT_EQ(activate(master(), preset), "");
    }
    EXPECT_EQ(everything().paramCount, paramCount);
    EXPECT_EQ(value("gain"), 999);

    // The name of a definition that nobody has used makes its parameter, unless it stands for another one.
    CAudioPreset preset("qzkd:Late");
    put(preset, "late", {{5}});
    EXPECT_EQ(messageOf(params().addAlias("plugin.modMain.late", "plugin.modMain.gain")), "");
    EXPECT_EQ(activate(master(), preset), "");
    EXPECT_EQ(value("gain"), 10);
    EXPECT_EQ(everything().paramCount, paramCount);
    params().removeAlias("plugin.modMain.late");
    EXPECT_EQ(activate(master(), preset), "");
    EXPECT_EQ(value("late"), 5);
    EXPECT_EQ(everything().paramCount, paramCount + 1);
    EXPECT_EQ(heard(), state());
}

TEST_F(PresetRegistry, damagedPresetsChangeNothing) {
    CAudioPreset preset;
    fill(preset);
    const Bytes bytes = bytesOf(preset);
    const State start = state();
    const Everything before = everything();
    for (std::size_t size = 0; size < bytes.size(); ++size)
        ASSERT_NE(activate(master(), Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size))), "");
    EXPECT_EQ(everything(), before);

    // One byte is another one: an error, or another preset as a whole. A key that nobody knows is no error.
    int errors = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        for (const int mask : {0x01, 0x80, 0xff}) {
            Bytes damaged = bytes;
            damaged[i] = static_cast<std::uint8_t>(damaged[i] ^ mask);
            const std::string error = activate(master(), damaged);
            if (error.empty()) {
                EXPECT_EQ(history(), "Master preset activate@1") << i;
                base().setHistoryPos(0, true);
                ASSERT_EQ(state(), start) << i;
                std::unique_ptr<CAudioParamUndoHistory> dropped;
                base().exchangeHistory(dropped);
                ASSERT_EQ(programName(0), "qzkd:P0") << i;
            } else {
                ++errors;
                ASSERT_EQ(state(), start) << i << " " << error;
                ASSERT_EQ(history(), "@0") << i;
            }
        }
    }
    EXPECT_GT(errors, static_cast<int>(bytes.size()));
}

TEST_F(PresetRegistry, damagedBanksChangeNothing) {
    CAudioPresetBank bank;
    addProgram(bank, "A", 20), addProgram(bank, "B", 21);
    const Bytes bytes = bytesOf(bank);
    edit(mod("gain"), 5);
    mod("ab-state").setFloat(0, 0, nullptr);
    const Everything before = everything();
    for (std::size_t size = 0; size < bytes.size(); ++size)
        ASSERT_NE(activateBank(master(), Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size))), "");
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        Bytes damaged = bytes;
        damaged[i] = static_cast<std::uint8_t>(~damaged[i]);
        if (!activateBank(master(), damaged).empty()) {
            ASSERT_EQ(everything(), before) << i;
        }
        // A bank that is valid in another way came in as a whole; the state before it comes back.
        const Bytes old = before.bank;
        ASSERT_EQ(activateBank(master(), old), "");
        edit(mod("gain"), 5);
    }
    // One preset of another registry, or one value that can't be read, spoils the bank.
    bank[1].setName("BTIO:B");
    EXPECT_EQ(activateBank(master(), bytesOf(bank)), "Incompatible bank.");
    bank[1].setName("qzkd:B");
    bank[1].entries().findOrInsert("gain").setSize(9);
    EXPECT_NE(activateBank(master(), bytesOf(bank)), "");
    EXPECT_EQ(activateBank(io(), bytes), "") << "a registry without programs has no use for it";
    EXPECT_EQ(everything(), before);
}

TEST_F(PresetRegistry, aDamagedDefaultPresetChangesNoDefault) {
    CAudioPreset preset("qzkd:Default");
    put(preset, "gain", {{77}});
    preset.entries().findOrInsert("modHal.hardness").setSize(9);
    const Bytes bytes = bytesOf(preset);
    CMemoryReader reader(bytes.data(), static_cast<int>(bytes.size()));
    master().setDefaultPreset(reader);
    master().masterReset();
    EXPECT_EQ(value("gain"), 0) << "not half of it";
}

TEST_F(PresetRegistry, aPresetOfOneGroupLeavesTheOthersAlone) {
    for (int group = 0; group < 4; ++group) mod("io-params.grouping").setFloat(group + 1, group, nullptr);
    mod("io-params.group-names").setString(0, 1, "Side", nullptr);
    CAudioPreset preset;
    EXPECT_EQ(acquire(io(), preset, -1, 1), "");
    EXPECT_EQ(text(preset.name()), "BTIO:");
    const State before = state();
    EXPECT_EQ(activate(io(), preset, 1), "");
    EXPECT_EQ(state(), before) << "one's own state changes nothing, names of groups included";
    EXPECT_EQ(activate(io(), preset, 2), "");
    EXPECT_EQ(value("io-params.grouping", 2), 2);
    EXPECT_EQ(value("io-params.grouping", 3), 4);
    EXPECT_EQ(activate(io(), CAudioPreset("BTIO:Empty"), 3), "");
    EXPECT_EQ(value("io-params.grouping", 3), 10);
    EXPECT_EQ(value("io-params.grouping", 2), 2);
    EXPECT_EQ(shown("io-params.group-names", 1), "Side");
    EXPECT_EQ(history(),
              "Routing preset activate (Side)|Routing preset activate (Three)|Routing preset activate (One)@3");
    EXPECT_EQ(heard(), state());
}

TEST_F(PresetRegistry, aUsersChangeMakesTheColoursTheUsersOwn) {
    CAudioPreset preset("BTUS:Beige");
    EXPECT_EQ(activate(color(), preset), "");
    EXPECT_EQ(shown("uicolor-params.mode-name"), "Beige");
    EXPECT_EQ(activate(color(), preset, 2), "");
    EXPECT_EQ(shown("uicolor-params.mode-name"), "Beige");
    EXPECT_EQ(text(master().getCurrentProgramName()), "qzkd:P0");

    RawClient client(connector());
    EXPECT_EQ(client.send(toBase::kListenParam, CStringView("plugin.modMain.uicolor-params.palette"), client.handle(1)),
              "");
    EXPECT_EQ(client.send(toBase::kListenParam, CStringView("plugin.modMain.gain"), client.handle(2)), "");
    const std::vector<double> values{1};
    EXPECT_EQ(client.send(toBase::kChangeParam, client.handle(2), ParamHandle{0}, update(mod("gain"), values)), "");
    EXPECT_EQ(shown("uicolor-params.mode-name"), "Beige");
    CAudioParamData items;
    const double id = items.add(std::make_unique<CAudioParamDataItemRaw>("abc", 3));
    CAudioParamUpdate change = update(mod("uicolor-params.palette"), {id});
    change.values = &id;
    change.data = &items;
    EXPECT_EQ(client.send(toBase::kChangeParam, client.handle(1), ParamHandle{0}, change), "");
    EXPECT_EQ(shown("uicolor-params.mode-name"), "User");
    EXPECT_EQ(shown("preset-name"), "P0") << "programs keep their names";
}

TEST_F(PresetRegistry, aSmallBankReplacesTheFirstPrograms) {
    master().setCurrentProgram(5, nullptr);
    mod("gain").setFloat(55, 0, nullptr);
    edit(mod("single"), 1);
    master().exchangeShadowPreset();
    mod("ab-state").setFloat(1, 0, nullptr);
    CAudioPresetBank bank;
    for (int i = 0; i < 3; ++i) addProgram(bank, "New" + std::to_string(i), 20 + i);
    const State before = heard();
    EXPECT_EQ(activateBank(master(), bytesOf(bank)), "");
    EXPECT_EQ(value("ab-state"), 0) << "both sides are one again";
    mod("ab-state").setFloat(1, 0, nullptr);
    EXPECT_EQ(heard(), before);
    EXPECT_EQ(programName(2) + " " + programName(3) + " " + programName(5), "qzkd:New2 qzkd:P3 qzkd:P5");
    EXPECT_EQ(history(), "edit@1") << "that of a program which stays";
    master().setCurrentProgram(2, nullptr);
    EXPECT_EQ(value("gain"), 22);
    edit(mod("gain"), 1);

    // The current one among them, and more than there is room for.
    for (int i = 3; i < 9; ++i) addProgram(bank, "New" + std::to_string(i), 20 + i);
    EXPECT_EQ(activateBank(master(), bytesOf(bank)), "");
    EXPECT_EQ(master().getProgramCount(), 7);
    EXPECT_EQ(value("gain"), 22);
    EXPECT_EQ(history(), "@0");
    master().setCurrentProgram(5, nullptr);
    EXPECT_EQ(history(), "@0") << "the parked one has gone";
    EXPECT_EQ(value("gain"), 25);
    // What the other side had before the bank must not come back.
    master().exchangeShadowPreset();
    EXPECT_EQ(value("gain"), 25);
    EXPECT_EQ(heard(), state());
}

TEST_F(PresetRegistry, whatIsAcquiredIsLiveForTheCurrentProgramAndStoredForOthers) {
    mod("gain").setFloat(9, 0, nullptr);
    CAudioPreset preset;
    EXPECT_EQ(acquire(master(), preset, 4), "");
    CAudioPreset p4("qzkd:P4");
    put(p4, "gain", {{4}}), put(p4, "modHal.hardness", {{0.4}}), putText(p4, "preset-name", "P4");
    EXPECT_EQ(bytesOf(preset), bytesOf(p4));
    EXPECT_EQ(acquire(master(), preset, 4, -1, true), "");
    EXPECT_EQ(bytesOf(preset), bytesOf(p4));
    for (const int index : {-1, 0}) {
        EXPECT_EQ(acquire(master(), preset, index), "");
        EXPECT_EQ(text(preset.name()), "qzkd:P0");
        EXPECT_EQ(preset.entries().find("gain")->size(), p4.entries().find("gain")->size());
        EXPECT_TRUE(preset.entries().contains("io-params.grouping")) << "of another registry too";
        EXPECT_TRUE(preset.entries().contains("persistent"));
        EXPECT_FALSE(preset.entries().contains("plain"));
    }
    const State before = state();
    EXPECT_EQ(activate(master(), preset), "");
    EXPECT_EQ(state(), before);
    for (const int index : {-2, 7, INT_MAX})
        EXPECT_EQ(acquire(master(), preset, index), "Invalid preset index " + std::to_string(index) + " specified.");
    EXPECT_EQ(acquire(master(), preset, -1, -1, true), "Invalid preset index -1 specified.");
    CWriteSeqBuffer stream(CWriteSeqBuffer::kStringBlockBytes);
    EXPECT_EQ(messageOf(io().acquireBank(false, stream)), "Acquiring bank in a non-master registry is an error.");
    EXPECT_EQ(acquire(color(), preset, 99), "");
    EXPECT_EQ(text(preset.name()), "BTUS:Default");
}

TEST_F(PresetRegistry, aPresetWithoutANameEntryRenamesByItsOwnNameAlone) {
    CAudioPreset preset("qzkd:Outer");
    put(preset, "gain", {{3}});
    EXPECT_EQ(activate(master(), preset), "");
    EXPECT_EQ(programName(0) + " " + shown("preset-name"), "qzkd:Outer Outer");
    // A program without the entry keeps its name, though its parameter goes back to what the definition says.
    CAudioPresetBank bank;
    for (const char* const name : {"qzkd:One", "qzkd:Two"})
        put(*bank.presets().append(new CAudioPreset(name)), "gain", {{1}});
    EXPECT_EQ(activateBank(master(), bytesOf(bank)), "");
    master().setCurrentProgram(1, nullptr);
    EXPECT_EQ(programName(0) + programName(1) + " " + shown("preset-name"), "qzkd:Oneqzkd:Two Two");
    master().activateFactoryPreset(6);
    EXPECT_EQ(programName(1) + " " + shown("preset-name"), "qzkd:P6 P6");
    EXPECT_EQ(history(), "ROM preset activate@1");
    for (const int index : {-1, 7}) master().activateFactoryPreset(index);
    io().activateFactoryPreset(0);
    EXPECT_EQ(history(), "ROM preset activate@1");
}

// A value that follows another one is what the preset says, in whichever order their names are.
TEST_F(PresetRegistry, aPresetHasTheLastWordOverFilters) {
    mod("source").setFloat(4, 0, nullptr);
    EXPECT_EQ(value("doubled"), 8);
    mod("doubled").setFloat(3, 0, nullptr);
    CAudioPreset preset;
    EXPECT_EQ(acquire(master(), preset), "");
    mod("source").setFloat(6, 0, nullptr);
    EXPECT_EQ(activate(master(), preset), "");
    EXPECT_EQ(value("source"), 4);
    EXPECT_EQ(value("doubled"), 3);
    EXPECT_EQ(heard(), state());

    const Bytes bytes = bytesOf(preset);
    CMemoryReader reader(bytes.data(), static_cast<int>(bytes.size()));
    master().setDefaultPreset(reader);
    mod("source").setFloat(6, 0, nullptr);
    master().masterReset();
    EXPECT_EQ(value("source"), 4);
    EXPECT_EQ(value("doubled"), 3);
}

class WithoutBank : public PresetRegistry {
    void addBank() override { addResource("FactoryROM.cbf", {1, 2, 3, 4, 5}); }
};

TEST_F(WithoutBank, thereIsOneEmptyProgram) {
    EXPECT_EQ(master().getProgramCount(), 1);
    EXPECT_EQ(programName(0), "qzkd:Default");
    EXPECT_EQ(value("gain"), 10);
    CAudioPreset preset;
    EXPECT_EQ(acquire(master(), preset, 0, -1, true), "Invalid preset index 0 specified.");
    EXPECT_EQ(acquire(master(), preset, 0), "");
    EXPECT_GT(preset.entries().count(), 3);
    CAudioPresetBank bank;
    for (int i = 0; i < 3; ++i) addProgram(bank, "N" + std::to_string(i), i + 1);
    EXPECT_EQ(activateBank(master(), bytesOf(bank)), "");
    EXPECT_EQ(master().getProgramCount(), 1);
    EXPECT_EQ(value("gain"), 1);
    EXPECT_EQ(programName(0) + programName(1), "qzkd:N0");
}

class WithUserDefault : public PresetRegistry {
protected:
    void addBank() override { addDefault("qzkd:User's"); }
    void addDefault(const char* name) {
        addPrograms(2);
        CAudioPreset preset(name);
        put(preset, "gain", {{33}});
        putText(preset, "instance-name", "studio");
        addResource("AppDataLocal_default-preset", packed(preset));
    }
};

TEST_F(WithUserDefault, anInstanceBeginsWithTheUsersDefault) {
    EXPECT_EQ(value("gain"), 33);
    EXPECT_EQ(shown("instance-name"), "studio");
    EXPECT_EQ(programName(0) + " " + programName(1), "qzkd:User's qzkd:P1");
    mod("gain").setFloat(1, 0, nullptr);
    master().masterReset();
    EXPECT_EQ(value("gain"), 33);
    CAudioPreset preset;
    EXPECT_EQ(acquire(master(), preset, 0, -1, true), "");
    EXPECT_EQ(text(preset.name()), "qzkd:P0") << "what came with the product stays";
}

class WithForeignDefault : public WithUserDefault {
    void addBank() override { addDefault("User's"); }
};

TEST_F(WithForeignDefault, aDefaultOfAnotherRegistryIsIgnored) {
    EXPECT_EQ(value("gain"), 0);
    EXPECT_EQ(programName(0), "qzkd:P0");
    EXPECT_EQ(activateBank(master(), sessionBank(master())), "") << "what has been saved can be loaded";
    CAudioPreset preset("BTIO:x");
    put(preset, "gain", {{5}});
    const Bytes bytes = bytesOf(preset);
    CMemoryReader reader(bytes.data(), static_cast<int>(bytes.size()));
    master().setDefaultPreset(reader);
    master().masterReset();
    EXPECT_EQ(value("gain"), 0);
}

// Presets that follow a parameter: "all" selects one for a group, "each" one for each of its elements.
class Enumerated : public PresetRegistry {
    void addBank() override {
        PresetRegistry::addBank();
        COwnedArray<CAudioPresetBank> banks;
        CAudioPresetBank& bank = *banks.append(new CAudioPresetBank);
        for (const double value : {20.0, 21.0})
            put(*bank.presets().append(new CAudioPreset("ENUM:x")), "gain", {{value, value + 0.5}});
        CWriteSeqBuffer stream(CWriteSeqBuffer::kStateBlockBytes);
        EXPECT_EQ(messageOf(CAudioPresetBank::saveList(stream, banks)), "");
        addResource("AppDataLocal_enum-presets", packedBlock(stream, appDataTag::kPresetList));
    }
    void addRegistries() override {
        registry("all-registry", "ENUM", "plugin.modMain.all",
                 {{"is-enumerated", "true"}, {"store-name", "enum-presets"}});
        registry("each-registry", "ENUM", "plugin.modMain.each",
                 {{"is-enumerated", "true"}, {"is-element-enum", "true"}, {"store-name", "enum-presets"}});
        for (const char* const name : {"all", "each"}) {
            param((kMain + std::string(name) + ".gain").c_str(), "modMain.gain");
            modParam(name);
        }
    }
    void writeMore(CDocumentWriter& writer) override {
        for (const auto& [name, registry] : {std::pair("all", "all-registry"), std::pair("each", "each-registry")})
            VizFixture::put(writer, "audio:param", name,
                            {{"element-size", "1"},
                             {"converter", "shared::audio.real"},
                             {"param-registry", registry},
                             {"min-values", "0"},
                             {"max-values", "1000000"},
                             {"def-values", "0"}});
    }
};

TEST_F(Enumerated, aValueSelectsAPreset) {
    using Texts = std::vector<std::string>;
    CAudioParam& gain = mod("all.gain");
    mod("all").setFloat(1.2, 2, nullptr);
    EXPECT_EQ(describe(gain.control()), (Texts{"", "", "21.000000;21.500000;"}));
    mod("all").setFloat(0.4, 0, nullptr);
    mod("all").setFloatAt(2, 1, 0.0, nullptr);  // elements behind the first select nothing
    EXPECT_EQ(describe(gain.control()), (Texts{"20.000000;20.500000;", "", "21.000000;21.500000;"}));
    for (const double none : {2.0, 1e6}) mod("all").setFloat(none, 2, nullptr);
    EXPECT_EQ(describe(gain.control()), Texts{"20.000000;20.500000;"}) << "of that group alone";
    EXPECT_EQ(value("gain"), 0);

    const std::vector<double> each{1, 7, 0};
    mod("each").update(update(mod("each"), each), {});
    EXPECT_EQ(describe(mod("each.gain").control()), Texts{"21.000000;10.000000;20.000000;"});
    mod("each").setFloatAt(0, 1, 1.0, nullptr);
    EXPECT_EQ(describe(mod("each.gain").control()), (Texts{"21.000000;21.000000;"})) << "the last one that changed";
    EXPECT_EQ(heard(), state());
    CAudioPreset preset;
    EXPECT_EQ(acquire(master(), preset), "");
    EXPECT_FALSE(preset.entries().contains("all.gain")) << "it belongs to that registry alone";
}

}  // namespace
}  // namespace brt
