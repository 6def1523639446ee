// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/CommandLine.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <cmath>
#include <limits>
#include <thread>

#include "Tools/Halyard/Decibels.h"
#include "Tools/Halyard/ToolError.h"

namespace brt {

namespace {

constexpr int kMaxJobs = 256;

// Accepts plain decimal numbers only: the command line library takes "nan", "inf" and hexadecimal too.
CLI::Validator numberBetween(double from, double to, const std::string& unit) {
    const std::string range = formatFixed(from, 0) + " to " + formatFixed(to, 0) + (unit.empty() ? "" : " " + unit);
    const auto check = [=](const std::string& text) -> std::string {
        const char* first = text.c_str() + (text.size() > 1 && text[0] == '+' && text[1] != '-' ? 1 : 0);
        const char* end = text.c_str() + text.size();
        double value = 0;
        const auto [stop, error] = std::from_chars(first, end, value, std::chars_format::fixed);
        if (error == std::errc() && stop == end && std::isfinite(value) && value >= from && value <= to) return {};
        return "'" + text + "' is no number from " + range;
    };
    return CLI::Validator(check, "");
}

CLI::Validator wholeBetween(int from, int to, const std::string& unit) {
    const std::string range = std::to_string(from) + " to " + std::to_string(to) + (unit.empty() ? "" : " " + unit);
    const auto check = [=](const std::string& text) -> std::string {
        int value = 0;
        const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        if (error == std::errc() && stop == text.data() + text.size() && value >= from && value <= to) return {};
        return "'" + text + "' is no whole number from " + range;
    };
    return CLI::Validator(check, "");
}

CLI::Validator oneOf(const std::vector<std::string>& names) {
    std::string list;
    for (const std::string& name : names) list += (list.empty() ? "" : ", ") + name;
    const auto check = [=](const std::string& text) -> std::string {
        if (std::find(names.begin(), names.end(), text) != names.end()) return {};
        return "'" + text + "' is none of " + list;
    };
    return CLI::Validator(check, "");
}

// `Settings`: plain numbers, or optional ones where something else may give them.
template <class Settings>
void addSettings(CLI::App& command, Settings& settings) {
    command.add_option("--gain", settings.inputGainDb, "Gain in front of the clipper, 0 to 24 dB (0)")
        ->check(numberBetween(0, ProcessorSettings::kMaxInputGainDb, "dB"))
        ->type_name("DB");
    command.add_option("--hardness", settings.hardnessPercent, "0, smooth saturation, to 100, brick wall (100)")
        ->check(numberBetween(0, 100, "%"))
        ->type_name("PERCENT");
    command.add_option("--out-gain", settings.outputGainDb, "Gain behind the clipper, -24 to 0 dB (0)")
        ->check(numberBetween(ProcessorSettings::kMinOutputGainDb, 0, "dB"))
        ->type_name("DB");
    command.add_flag("--residue", settings.residue, "Put out what the clipper removes, not what it leaves");
}

void addPlugin(CLI::App& command, std::filesystem::path& plugin) {
    command.add_option("--plugin", plugin, "A plug-in to use (the one that is part of this program)")
        ->type_name("FILE");
}

template <class T>
void addForce(CLI::App& command, T& mayReplace) {
    command.add_flag("--force", mayReplace, "Replace files that exist already");
}

void addRender(CLI::App& app, RenderRequest& request, std::string& sampleFormat) {
    CLI::App& command = *app.add_subcommand("render", "Send sound files through the clipper");
    command.add_option("files", request.files, "The input and the output; with --out-dir inputs only")->type_name("");
    command
        .add_option("--preset", request.preset,
                    "Begin with the values of a preset: one of the program's by its name, or a file")
        ->type_name("NAME|FILE");
    addSettings(command, request.given);
    command.add_option("--format", sampleFormat, "8, 16, 24, 32, float or double (that of the input)")
        ->check(oneOf(sampleFormatNames()))
        ->type_name("FORMAT");
    command.add_option("--out-dir", request.outputFolder, "Folder for the outputs, named as their inputs")
        ->type_name("FOLDER");
    command.add_option("-j,--jobs", request.jobCount, "Files worked on at a time (one on each processor)")
        ->check(wholeBetween(1, kMaxJobs, ""))
        ->type_name("N");
    command
        .add_option("--residue-out", request.common.residueOutput, "Write what the clipper removes, beside the output")
        ->type_name("FILE");
    command.add_option("--plot", request.common.picture, "Draw waves, transfer curve and spectra")->type_name("PNG");
    command.add_flag("--keep-latency", request.common.keepLatency, "Let the output start and end late, by 1667 frames");
    command
        .add_option("--block", request.common.settings.blockFrames,
                    "Frames the clipper gets at a time, 1 to 8192 (512)")
        ->check(wholeBetween(1, ProcessorSettings::kMaxBlockFrames, ""))
        ->type_name("N");
    addPlugin(command, request.plugin);
    addForce(command, request.common.mayReplace);
    command.footer(
        R"(The output lines up with the input and has its length. Its name's ending chooses the file type: .wav, .flac, .aiff,
.caf, .w64 or .rf64. Integer samples (8, 16, 24, 32) are rounded without dither, and cut above full scale; the summary
tells how many. Output less residue is the unclipped sound; the residue is written as 32-bit float, or 64-bit if the
output is, since it can stand above full scale. Of a preset, gains, hardness and residue count; they give way to those that
are named beside it. The size of --block changes the speed and never the sound.

Examples:
  halyard render mix.wav loud.wav --gain 6 --out-gain -1
  halyard render mix.wav soft.flac --gain 9 --hardness 40 --format 24 --plot soft.png
  halyard render *.wav --out-dir clipped --gain 3
  halyard render mix.wav soft.wav --preset '+3dB Soft-Clip')");
}

void addPlot(CLI::App& app, PlotRequest& request) {
    CLI::App& command = *app.add_subcommand("plot", "Draw what settings do to a sound");
    command.add_option("input", request.input, "The sound file")->required()->type_name("FILE");
    command.add_option("output", request.output, "The picture, PNG")->required()->type_name("PNG");
    addSettings(command, request.settings);
    addPlugin(command, request.plugin);
    addForce(command, request.mayReplace);
    command.footer(R"(Shows the wave around the loudest sample, the transfer curve, and the spectra before and after.

Example:
  halyard plot mix.wav mix.png --gain 6 --hardness 80)");
}

void addMeasure(CLI::App& app, MeasureRequest& request) {
    CLI::App& command = *app.add_subcommand("measure", "Measure what the chain does on this machine");
    command.add_flag("--json", request.asJson, "Print JSON instead of tables");
    command.add_option("--rate", request.ratesHz, "Sample rates of the tables, 8000 to 768000 Hz (48000)")
        ->check(wholeBetween(MeasureRequest::kMinRateHz, MeasureRequest::kMaxRateHz, "Hz"))
        ->type_name("HZ");
    command.add_option("--plot", request.picture, "Draw the frequency response and a clipped sine's lines")
        ->type_name("PNG");
    addForce(command, request.mayReplace);
    command.footer(
        R"(Everything is found by sending signals through the chain; nothing is printed from a list of promises.
HALYARD_BUILD=portable|baseline|avx2|avx512 in the environment chooses the build that is measured.

Examples:
  halyard measure --rate 44100 96000
  halyard measure --json --plot chain.png)");
}

void addDemoSignal(CLI::App& app, DemoSignalRequest& request) {
    CLI::App& command = *app.add_subcommand("demo-signal", "Write ten seconds of music to try the clipper on");
    command.add_option("output", request.output, "The sound file")->required()->type_name("FILE");
    command.add_option("--rate", request.rateHz, "Sample rate, 22050 to 384000 Hz (48000)")
        ->check(wholeBetween(DemoSignalRequest::kMinRateHz, DemoSignalRequest::kMaxRateHz, "Hz"))
        ->type_name("HZ");
    addForce(command, request.mayReplace);
    command.footer("Example:\n  halyard demo-signal music.wav");
}

void addTree(CLI::App& app, TreeRequest& request) {
    CLI::App& command = *app.add_subcommand("tree", "Print the objects that all instances share");
    command.add_option("path", request.path, "The object to begin with (all of the tree)")->type_name("PATH");
    command.footer(
        R"(Each object is printed with its name, its tag and how far it is built, then its attributes and its children. Names
are those of paths in documents, where "shared::" stands in front.

Examples:
  halyard tree
  halyard tree shared::project)");
}

void addGraph(CLI::App& app, GraphRequest& request) {
    CLI::App& command = *app.add_subcommand("graph", "Print the processes that run in an instance");
    command.add_option("--channels", request.channels, "Channels, 1 to 16 (2)")->check(wholeBetween(1, 16, ""));
    command.add_flag("--watch", request.isWatched, "As if a window showed all meters");
    command.add_flag("--dot", request.isDot, "For Graphviz");
    command.add_option("--set", request.settings, "A value to set before, as plugin.modMain.bypass-enable=1")
        ->type_name("NAME=NUMBER");
    command.footer(
        R"(Each process is printed with what comes in and what it delivers: channels, their groups, and by how many samples they
are late; then where that goes. What does not run is not there.

Examples:
  halyard graph
  halyard graph --dot | dot -Tsvg > graph.svg)");
}

void addParams(CLI::App& app, ParamsRequest& request) {
    CLI::App& command = *app.add_subcommand("params", "Print the parameters of an instance, or try values of one");
    command.add_option("name", request.name, "The parameter, or the end of its name (all)")->type_name("NAME");
    command.add_option("values", request.values, "Values as a user types them")->type_name("VALUE");
    command.footer(
        R"(The list shows range and default as users see them, and as what number and name a host knows the parameter. With
values, each is shown from all sides: as modules read it, as controls and hosts do (0 to 1), and as text in its four
forms.

Examples:
  halyard params
  halyard params ingain 6 12,5 99
  halyard params outgain -- -6 -0.5)");
}

void addInfo(CLI::App& app, InfoRequest& request) {
    CLI::App& command = *app.add_subcommand("info", "Print what the plug-in tells its hosts");
    addPlugin(command, request.plugin);
    command.add_flag("--json", request.asJson, "Print JSON");
    command.footer("Examples:\n  halyard info\n  halyard info --plugin ~/.vst/halyard.so");
}

void addSoak(CLI::App& app, SoakRequest& request) {
    CLI::App& command = *app.add_subcommand("soak", "Do at random what hosts do, and tell how the plug-in bears it");
    command.add_option("--seconds", request.seconds, "How long, 1 to 86400 s (10)")
        ->check(numberBetween(1, 86400, "s"))
        ->type_name("S");
    command.add_option("--seed", request.seed, "Another number, another soak (1)")
        ->check(wholeBetween(0, std::numeric_limits<int>::max(), ""))
        ->type_name("N");
    command.add_option("--instances", request.instanceCount, "Instances at a time, 1 to 64 (2)")
        ->check(wholeBetween(1, 64, ""))
        ->type_name("N");
    command.add_flag("--calm", request.isCalm, "Change nothing: blocks of one size at 48000 Hz");
    command.add_option("--block", request.blockFrames, "The size of these, 1 to 2048 frames (64)")
        ->check(wholeBetween(1, 2048, ""))
        ->type_name("N");
    addPlugin(command, request.plugin);
    command.footer(
        R"(Each instance has a thread that processes blocks of all sizes, suspends, resumes and changes rates, and one that
changes parameters, programs and state meanwhile. It lives up to two seconds; then comes another one. Told are the block
of 64 frames or more that took the largest part of its own length, and how often audio threads have used the system's
heap. The exit status is 1 if something came out that is no sound, or if state was refused.

Examples:
  halyard soak --seconds 600 --seed 7
  halyard soak --calm --instances 1 --block 64)");
}

struct PresetRequests {
    PresetListRequest list;
    PresetShowRequest show;
    PresetConvertRequest convert;
    PresetDiffRequest diff;
};

void addPresetList(CLI::App& preset, PresetListRequest& request) {
    CLI::App& command = *preset.add_subcommand("list", "Name the presets of files");
    command.add_option("files", request.files, "Files (FactoryROM.cbf, the program's own bank)")->type_name("FILE");
    command.add_flag("--json", request.asJson, "Print JSON");
    command.footer("Examples:\n  halyard preset list\n  halyard preset list AppDataGlobal_routing-presets-sys");
}

void addPresetShow(CLI::App& preset, PresetShowRequest& request) {
    CLI::App& command = *preset.add_subcommand("show", "Print the values of presets");
    command.add_option("file", request.file, "The file")->required()->type_name("FILE");
    command.add_option("preset", request.preset, "A preset's name, or its index (all)")->type_name("PRESET");
    command.add_flag("--json", request.asJson, "Print JSON");
    command.footer("Examples:\n  halyard preset show FactoryROM.cbf '+3dB Hard-Clip'\n  halyard preset show my.fxp");
}

void addPresetConvert(CLI::App& preset, PresetConvertRequest& request) {
    CLI::App& command = *preset.add_subcommand("convert", "Write presets in another form");
    command.add_option("input", request.input, "The file")->required()->type_name("FILE");
    command.add_option("output", request.output, "The new file: .cpf, .cbf, .chunk, .fxp or .fxb")
        ->required()
        ->type_name("FILE");
    command.add_option("--preset", request.preset, "One preset, by its name or its index (all)")->type_name("PRESET");
    addForce(command, request.mayReplace);
    command.footer(
        "Examples:\n  halyard preset convert FactoryROM.cbf soft.cpf --preset '+5dB Soft-Clip'\n"
        "  halyard preset convert soft.cpf soft.fxp");
}

void addPresetDiff(CLI::App& preset, PresetDiffRequest& request) {
    CLI::App& command = *preset.add_subcommand("diff", "Tell what differs between presets");
    command.add_option("first", request.first, "A file")->required()->type_name("FILE");
    command.add_option("second", request.second, "The one to hold against it")->required()->type_name("FILE");
    command.add_option("--preset", request.firstPreset, "A preset of the first, and of the second too")
        ->type_name("PRESET");
    command.add_option("--other", request.secondPreset, "Another preset of the second")->type_name("PRESET");
    command.add_flag("--json", request.asJson, "Print JSON");
    command.footer(
        R"(Without names, presets of one name are held against each other, and two files of one preset each as they are.
The exit status is 1 if there is a difference, and 2 if something can't be compared.

Examples:
  halyard preset diff old.cbf new.cbf
  halyard preset diff FactoryROM.cbf FactoryROM.cbf --preset 1 --other 2)");
}

void addPreset(CLI::App& app, PresetRequests& requests) {
    CLI::App& command = *app.add_subcommand("preset", "Look into presets and banks, and convert them");
    command.require_subcommand(1);
    addPresetList(command, requests.list);
    addPresetShow(command, requests.show);
    addPresetConvert(command, requests.convert);
    addPresetDiff(command, requests.diff);
    command.footer(
        R"(A FILE is a preset (.cpf), a bank (.cbf), what a host keeps of an instance (.chunk), a host's own file around that
(.fxp, .fxb), or a resource of the program by its name. What it is, its content tells.

Example:
  halyard preset list FactoryROM.cbf)");
}

Request chosenOf(const PresetRequests& requests, const std::string& command) {
    if (command == "list") return requests.list;
    if (command == "show") return requests.show;
    if (command == "convert") return requests.convert;
    return requests.diff;
}

// The library's words for what is wrong with a command's options.
std::string reasonOf(const CLI::ParseError& error) {
    std::string text = error.what();
    const bool lacksValue = error.get_name() == "ArgumentMismatch" && text.ends_with("missing");
    if (lacksValue) text = text.substr(0, text.find(':')) + ": a value is missing";
    if (error.get_name() == "RequiredError" && text == "A subcommand is required") text = "say what to do with it";
    for (char& c : text)
        if (static_cast<unsigned char>(c) < 0x20) c = ' ';
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

// One line: the command, what is wrong with it, and the way to help.
std::string oneLine(const CLI::App& app, const CLI::ParseError& error, const std::string& firstArgument) {
    const auto chosen = app.get_subcommands();
    if (!chosen.empty()) {
        std::string command = chosen.front()->get_name();
        if (const auto inner = chosen.front()->get_subcommands(); !inner.empty())
            command += " " + inner.front()->get_name();
        return command + ": " + reasonOf(error) + "; see 'halyard " + command + " --help'";
    }
    const std::string wrong =
        firstArgument.empty() ? "no command is given" : brt::quoted(firstArgument) + " is no command";
    return wrong +
           "; use render, plot, measure, demo-signal, tree, graph, params, info, soak or preset, and see 'halyard --help'";
}

}  // namespace

Request parseCommandLine(int argumentCount, const char* const* arguments) {
    RenderRequest render;
    PlotRequest plot;
    MeasureRequest measure;
    DemoSignalRequest demoSignal;
    TreeRequest tree;
    GraphRequest graph;
    ParamsRequest params;
    InfoRequest info;
    SoakRequest soak;
    PresetRequests presets;
    std::string sampleFormat;

    CLI::App app("Halyard: a clipper for mastering that runs at 128 times the sample rate.", "halyard");
    app.set_version_flag("--version", "halyard " HALYARD_VERSION);
    app.require_subcommand(1);
    app.get_formatter()->column_width(28);
    addRender(app, render, sampleFormat);
    addPlot(app, plot);
    addMeasure(app, measure);
    addDemoSignal(app, demoSignal);
    addTree(app, tree);
    addGraph(app, graph);
    addParams(app, params);
    addInfo(app, info);
    addSoak(app, soak);
    addPreset(app, presets);
    app.footer(R"(Each command explains itself: halyard render --help

Example:
  halyard render mix.wav loud.wav --gain 6 --out-gain -1)");

    try {
        app.parse(argumentCount, arguments);
    } catch (const CLI::CallForVersion& version) {
        return TextRequest{std::string(version.what()) + "\n"};
    } catch (const CLI::CallForHelp&) {
        return TextRequest{app.help()};
    } catch (const CLI::CallForAllHelp&) {
        return TextRequest{app.help("", CLI::AppFormatMode::All)};
    } catch (const CLI::ParseError& error) {
        throw CUsageError(oneLine(app, error, argumentCount > 1 ? arguments[1] : ""));
    }
    if (!sampleFormat.empty()) render.common.sampleFormat = sampleFormatOfName(sampleFormat);
    const std::string command = app.get_subcommands().front()->get_name();
    if (command == "render") return render;
    if (command == "plot") return plot;
    if (command == "measure") return measure;
    if (command == "tree") return tree;
    if (command == "graph") return graph;
    if (command == "params") return params;
    if (command == "info") return info;
    if (command == "soak") return soak;
    if (command == "preset")
        return chosenOf(presets, app.get_subcommands().front()->get_subcommands().front()->get_name());
    return demoSignal;
}

}  // namespace brt
