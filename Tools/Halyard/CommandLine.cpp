// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/CommandLine.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <cmath>
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
    return CLI::Validator(check, range);
}

CLI::Validator wholeBetween(int from, int to, const std::string& unit) {
    const std::string range = std::to_string(from) + " to " + std::to_string(to) + (unit.empty() ? "" : " " + unit);
    const auto check = [=](const std::string& text) -> std::string {
        int value = 0;
        const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        if (error == std::errc() && stop == text.data() + text.size() && value >= from && value <= to) return {};
        return "'" + text + "' is no whole number from " + range;
    };
    return CLI::Validator(check, range);
}

CLI::Validator oneOf(const std::vector<std::string>& names) {
    std::string list;
    for (const std::string& name : names) list += (list.empty() ? "" : ", ") + name;
    const auto check = [=](const std::string& text) -> std::string {
        if (std::find(names.begin(), names.end(), text) != names.end()) return {};
        return "'" + text + "' is none of " + list;
    };
    return CLI::Validator(check, list);
}

void addSettings(CLI::App& command, ProcessorSettings& settings) {
    command.add_option("--gain", settings.inputGainDb, "Input gain in dB, in front of the clipper (0)")
        ->check(numberBetween(0, ProcessorSettings::kMaxInputGainDb, "dB"))
        ->type_name("DB");
    command.add_option("--hardness", settings.hardnessPercent, "From 0, smooth saturation, to 100, brick wall (100)")
        ->check(numberBetween(0, 100, "%"))
        ->type_name("PERCENT");
    command.add_option("--out-gain", settings.outputGainDb, "Output gain in dB, behind the clipper (0)")
        ->check(numberBetween(ProcessorSettings::kMinOutputGainDb, 0, "dB"))
        ->type_name("DB");
    command.add_flag("--residue", settings.residue, "Put out what the clipper removes instead of what it leaves");
}

template <class T>
void addForce(CLI::App& command, T& mayReplace) {
    command.add_flag("--force", mayReplace, "Replace files that exist already");
}

void addRender(CLI::App& app, RenderRequest& request, std::string& sampleFormat) {
    CLI::App& command = *app.add_subcommand("render", "Send sound files through the clipper");
    command.add_option("files", request.files, "The input and the output; with --out-dir inputs only")
        ->required()
        ->type_name("FILE...");
    addSettings(command, request.common.settings);
    command.add_option("--format", sampleFormat, "Samples of the output (those of the input)")
        ->check(oneOf(sampleFormatNames()))
        ->type_name("FORMAT");
    command.add_option("--out-dir", request.outputFolder, "Write each output into this folder, under its input's name")
        ->type_name("FOLDER");
    command.add_option("-j,--jobs", request.jobCount, "Files worked on at a time (as many as there are processors)")
        ->check(wholeBetween(1, kMaxJobs, ""))
        ->type_name("N");
    CLI::Option* residueOut =
        command
            .add_option("--residue-out", request.common.residueOutput,
                        "Write what the clipper removes beside the output: output less residue is the unclipped sound")
            ->type_name("FILE");
    residueOut->excludes(command.get_option("--residue"));
    command.add_option("--plot", request.common.picture, "Draw waves, transfer curve and spectra")->type_name("PNG");
    command.add_flag("--keep-latency", request.common.keepLatency,
                     "Let the output start late, and end late, by the latency of 1667 frames");
    command
        .add_option("--block", request.common.settings.blockFrames,
                    "Frames that the clipper gets at a time; the sound doesn't depend on it (512)")
        ->check(wholeBetween(1, ProcessorSettings::kMaxBlockFrames, ""))
        ->type_name("N");
    addForce(command, request.common.mayReplace);
    command.footer(R"(
The output lines up with the input and has its length. Its name's ending chooses the file type: .wav, .flac, .aiff,
.caf, .w64 or .rf64. Integer samples (8, 16, 24, 32) are rounded without dither, and cut above full scale; the summary
tells how many. The residue file is 32-bit float, or 64-bit if the output is, as it can stand above full scale.

Examples:
  halyard render mix.wav loud.wav --gain 6 --out-gain -1
  halyard render mix.wav soft.flac --gain 9 --hardness 40 --format 24 --plot soft.png
  halyard render *.wav --out-dir clipped --gain 3)");
}

void addPlot(CLI::App& app, PlotRequest& request) {
    CLI::App& command = *app.add_subcommand("plot", "Draw what settings do to a sound");
    command.add_option("input", request.input, "The sound file")->required()->type_name("FILE");
    command.add_option("output", request.output, "The picture, PNG")->required()->type_name("PNG");
    addSettings(command, request.settings);
    addForce(command, request.mayReplace);
    command.footer(R"(
Shows the wave around the loudest sample, the transfer curve, and the spectra before and after.

Example:
  halyard plot mix.wav mix.png --gain 6 --hardness 80)");
}

void addMeasure(CLI::App& app, MeasureRequest& request) {
    CLI::App& command = *app.add_subcommand("measure", "Measure what the chain does on this machine");
    command.add_flag("--json", request.asJson, "Print JSON instead of tables");
    command.add_option("--rate", request.ratesHz, "Sample rates for the tables of images and cost (48000)")
        ->check(wholeBetween(MeasureRequest::kMinRateHz, MeasureRequest::kMaxRateHz, "Hz"))
        ->type_name("HZ");
    command.add_option("--plot", request.picture, "Draw the frequency response and a clipped sine's lines")
        ->type_name("PNG");
    addForce(command, request.mayReplace);
    command.footer(R"(
Everything is found by sending signals through the chain; nothing is printed from a list of promises.
HALYARD_BUILD=portable|baseline|avx2|avx512 in the environment chooses the build that is measured.

Examples:
  halyard measure --rate 44100 96000
  halyard measure --json --plot chain.png)");
}

void addDemoSignal(CLI::App& app, DemoSignalRequest& request) {
    CLI::App& command = *app.add_subcommand("demo-signal", "Write ten seconds of music to try the clipper on");
    command.add_option("output", request.output, "The sound file")->required()->type_name("FILE");
    command.add_option("--rate", request.rateHz, "Sample rate (48000)")
        ->check(wholeBetween(DemoSignalRequest::kMinRateHz, DemoSignalRequest::kMaxRateHz, "Hz"))
        ->type_name("HZ");
    addForce(command, request.mayReplace);
    command.footer("\nExample:\n  halyard demo-signal music.wav");
}

// The library's text as one line with the command in front and the way to help behind it.
std::string oneLine(const CLI::App& app, const CLI::ParseError& error) {
    const auto chosen = app.get_subcommands();
    const std::string command = chosen.empty() ? "" : chosen.front()->get_name();
    std::string text = error.what();
    for (char& c : text)
        if (static_cast<unsigned char>(c) < 0x20) c = ' ';
    while (!text.empty() && text.back() == ' ') text.pop_back();
    return (command.empty() ? "" : command + ": ") + text + "; see 'halyard " + (command.empty() ? "" : command + " ") +
           "--help'";
}

}  // namespace

Request parseCommandLine(int argumentCount, const char* const* arguments) {
    RenderRequest render;
    PlotRequest plot;
    MeasureRequest measure;
    DemoSignalRequest demoSignal;
    std::string sampleFormat;

    CLI::App app("Halyard: a clipper for mastering that runs at 128 times the sample rate.", "halyard");
    app.set_version_flag("--version", "halyard " HALYARD_VERSION);
    app.require_subcommand(1);
    app.get_formatter()->column_width(34);
    addRender(app, render, sampleFormat);
    addPlot(app, plot);
    addMeasure(app, measure);
    addDemoSignal(app, demoSignal);
    app.footer(R"(
Each command explains itself: halyard render --help

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
        throw CUsageError(oneLine(app, error));
    }
    if (!sampleFormat.empty()) render.common.sampleFormat = sampleFormatOfName(sampleFormat);
    const std::string command = app.get_subcommands().front()->get_name();
    if (command == "render") return render;
    if (command == "plot") return plot;
    if (command == "measure") return measure;
    return demoSignal;
}

}  // namespace brt
