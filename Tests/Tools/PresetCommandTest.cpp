// SPDX-License-Identifier: LicenseRef-Halyard
// `halyard preset`.
#include <gmock/gmock.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "Tools/HalyardRunner.h"

namespace brt {
namespace {

using namespace std::literals;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

std::string bigEndian(std::size_t value) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(value >> shift & 0xFF);
    return bytes;
}

class PresetCommand : public HalyardTest {
protected:
    void writeBytes(const std::string& name, const std::string& content) const {
        std::ofstream(path(name), std::ios::binary) << content;
    }
    void expectRefusal(const std::string& arguments, const std::string& errors, int status = 1) const {
        const Outcome outcome = run("preset " + arguments);
        EXPECT_EQ(outcome.status, status) << arguments;
        EXPECT_EQ(outcome.output, "") << arguments;
        EXPECT_THAT(outcome.errors, HasSubstr(errors)) << arguments;
    }
};

TEST_F(PresetCommand, listsAndShows) {
    EXPECT_THAT(runWell("preset list"), AllOf(StartsWith("FactoryROM.cbf: a bank, 7 presets\n  bank 'Bank'\n"),
                                              HasSubstr("\n  6  qzkd  +8dB Soft-Clip  14 values\n")));
    const std::string one = runWell("preset show FactoryROM.cbf '+5dB Hard-Clip'");
    EXPECT_EQ(runWell("preset show FactoryROM.cbf 3"), one);
    EXPECT_EQ(runWell("preset show FactoryROM.cbf 'qzkd:+5dB Hard-Clip'"), one);
    EXPECT_THAT(one, AllOf(HasSubstr("  -5.0 in all 8 groups "), HasSubstr("dB  Output gain\n"), HasSubstr("1,2,0,0")));

    const auto json = nlohmann::json::parse(runWell("preset show --json FactoryROM.cbf 3"));
    EXPECT_EQ(json["form"], "cbf");
    const auto& preset = json["banks"][0]["presets"][0];
    EXPECT_EQ(preset["name"], "+5dB Hard-Clip");
    EXPECT_EQ(preset["index"], 3);
    for (const auto& value : preset["values"]) {
        if (value["key"] != "modHal.ingain") continue;
        EXPECT_EQ(value["name"], "Input gain");
        EXPECT_EQ(value["unit"], "dB");
        EXPECT_EQ(value["groups"][7][0], "5.0");
        EXPECT_NEAR(value["internal"][7][0].get<double>(), 1.7783, 1e-4);
    }
    const auto list =
        nlohmann::json::parse(runWell("preset list --json FactoryROM.cbf AppDataGlobal_routing-presets-sys"));
    EXPECT_EQ(list[1]["form"], "list");
    EXPECT_EQ(list[1]["banks"][0]["presets"][14]["name"], "Stereo To Mono");
    EXPECT_THAT(runWell("preset show AppDataGlobal_routing-presets-sys 'Mono Side-Chain'"),
                HasSubstr("(unknown key, stored as audio.modMain.io-params.sidechain)"));
}

TEST_F(PresetCommand, eachFormHoldsTheSameAndHasItsBytes) {
    for (const char* const name : {"a.cbf", "a.chunk", "a.fxb"}) {
        runWell("preset convert FactoryROM.cbf "s + name);
        EXPECT_EQ(runWell("preset diff FactoryROM.cbf "s + name), "");
    }
    for (const char* const name : {"b.cpf", "b.chunk", "b.fxp", "c.cbf"}) {
        runWell("preset convert a.fxb "s + name + " --preset 1");
        EXPECT_EQ(runWell("preset diff b.cpf "s + name), "");
        EXPECT_EQ(runWell("preset diff a.chunk "s + name + " --preset 1"), "");
    }
    EXPECT_THAT(bytes("b.cpf"), StartsWith("aprs"));
    EXPECT_THAT(bytes("c.cbf"), StartsWith("abnk"));
    const std::string chunk = std::string(16, '\0') + bytes("b.cpf");
    EXPECT_EQ(bytes("b.chunk"), chunk);
    EXPECT_EQ(bytes("a.chunk"), std::string(16, '\0') + bytes("a.cbf"));
    std::string name = "+3dB Hard-Clip";
    name.resize(28);
    EXPECT_EQ(bytes("b.fxp"), "CcnK" + bigEndian(52 + chunk.size()) + "FPCh" + bigEndian(1) + "qzkd" + bigEndian(1) +
                                  bigEndian(5) + name + bigEndian(chunk.size()) + chunk);
    EXPECT_EQ(bytes("a.fxb"), "CcnK" + bigEndian(152 + bytes("a.chunk").size()) + "FBCh" + bigEndian(1) + "qzkd" +
                                  bigEndian(1) + bigEndian(7) + std::string(128, '\0') +
                                  bigEndian(bytes("a.chunk").size()) + bytes("a.chunk"));
}

TEST_F(PresetCommand, tellsWhatDiffers) {
    const Outcome outcome = run("preset diff FactoryROM.cbf FactoryROM.cbf --preset 1 --other 2");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, AllOf(HasSubstr("(name)  qzkd:+3dB Hard-Clip  ->  qzkd:+3dB Soft-Clip\n"),
                                      HasSubstr("  modHal.hardness  100.0 in all 8 groups %  ->  ")));
    runWell("preset convert FactoryROM.cbf a.cpf --preset 0");
    const Outcome missing = run("preset diff --json FactoryROM.cbf a.cpf");
    EXPECT_EQ(missing.status, 1);
    const auto json = nlohmann::json::parse(missing.output);
    EXPECT_EQ(json.size(), 6U);
    EXPECT_EQ(json[0]["preset"], "qzkd:+3dB Hard-Clip");
    EXPECT_EQ(json[0]["second"], "(missing)");
    expectRefusal("diff FactoryROM.cbf a.cpf --preset nine", "'FactoryROM.cbf' has no preset 'nine'", 2);
    expectRefusal("diff FactoryROM.cbf nine", "cannot read presets from 'nine'", 2);
}

TEST_F(PresetCommand, refusesAndLeavesEverything) {
    runWell("preset convert FactoryROM.cbf good.fxp --preset 0");
    runWell("preset convert FactoryROM.cbf good.chunk");
    const std::string fxp = bytes("good.fxp");
    const std::string chunk = bytes("good.chunk");
    writeBytes("short.fxp", fxp.substr(0, 40));
    writeBytes("cut.fxp", fxp.substr(0, fxp.size() - 1));
    writeBytes("params.fxp", std::string(fxp).replace(8, 4, "FxCk"));
    writeBytes("foreign.fxp", std::string(fxp).replace(16, 4, "othr"));
    writeBytes("prefix.fxp", std::string(fxp).replace(61, 1, "x"));
    writeBytes("damaged.chunk", std::string(chunk).replace(chunk.size() / 2, 1, "?"));
    writeBytes("zeros.chunk", std::string(16, '\0'));
    writeBytes("empty", "");
    const std::vector<std::string> before = files();
    expectRefusal("show short.fxp", "it ends within its header");
    expectRefusal("show cut.fxp", "it is cut: of ");
    expectRefusal("show params.fxp", "it holds values of single parameters (FxCk)");
    expectRefusal("show foreign.fxp", "it belongs to another plug-in, of id 'othr'");
    expectRefusal("show prefix.fxp", "the state in it is not one of this plug-in");
    expectRefusal("show damaged.chunk", "cannot read presets from 'damaged.chunk': ");
    expectRefusal("show zeros.chunk", "the state in it is not one of this plug-in");
    expectRefusal("show empty", "it is no preset, bank, state of a host, fxp or fxb file");
    expectRefusal("show .", "it is a folder");
    expectRefusal("show FactoryRAM.cbf", "did you mean 'FactoryROM.cbf'?");
    expectRefusal("show FactoryROM.cbf Defalt", "has no preset 'Defalt'; did you mean 'Default'?");
    expectRefusal("convert FactoryROM.cbf a.fxp", "holds 7 presets; choose one for 'a.fxp' with --preset");
    expectRefusal("convert FactoryROM.cbf a.txt", "tells no form; let it end in .cpf", 2);
    expectRefusal("convert FactoryROM.cbf good.fxp --preset 1", "good.fxp");
    expectRefusal("convert FactoryROM.cbf no/a.cbf", "no/a.cbf");
    expectRefusal("", "preset: say what to do with it; see 'halyard preset --help'", 2);
    EXPECT_EQ(files(), before);
    EXPECT_EQ(bytes("good.fxp"), fxp);
    runWell("preset convert FactoryROM.cbf good.fxp --preset 1 --force");
    EXPECT_NE(bytes("good.fxp"), fxp);
}

}  // namespace
}  // namespace brt
