// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/MeasureReport.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>

#include "Tools/Halyard/Decibels.h"

namespace brt {

namespace {

constexpr double kResponseFractions[] = {0.0, 0.1, 0.25, 0.4, kPassBandEnd, 0.485, 0.49, 0.495, 0.5};

// Text in columns: the first flush left, the others flush right.
class CTable {
public:
    void add(std::vector<std::string> row) { m_rows.push_back(std::move(row)); }

    std::string text() const {
        std::vector<std::size_t> widths;
        for (const auto& row : m_rows)
            for (std::size_t c = 0; c < row.size(); ++c) {
                if (c == widths.size()) widths.push_back(0);
                widths[c] = std::max(widths[c], row[c].size());
            }
        std::string text;
        for (const auto& row : m_rows) {
            text += "  ";
            for (std::size_t c = 0; c < row.size(); ++c) {
                const std::string blanks(widths[c] - row[c].size() + (c == 0 ? 0 : 3), ' ');
                text += c == 0 ? row[c] + blanks : blanks + row[c];
            }
            text += "\n";
        }
        return text;
    }

private:
    std::vector<std::vector<std::string>> m_rows;
};

std::string decibels(double factor, int decimals) {
    return factor > 0 ? formatFixed(factorToDb(factor), decimals) + " dB" : "exactly 0";
}

std::string linearPathTable(const MeasureReport& report) {
    CTable table;
    const CImpulseResponse& impulse = report.impulse;
    table.add({"latency", std::to_string(report.latencySamples) + " samples"});
    table.add({"peak of the impulse", "at sample " + std::to_string(impulse.peakSample())});
    table.add({"exactly 0 in front of it", "samples 0 to " + std::to_string(impulse.leadingZeroCount() - 1)});
    table.add({"pass-band error, 0 to 0.47", formatFixed(impulse.passBandErrorDb(), 9) + " dB"});
    table.add({"-6.02 dB point", formatFixed(impulse.halfGainFraction(), 6)});
    for (const double fraction : kResponseFractions)
        if (fraction >= kPassBandEnd)
            table.add({"gain at " + formatFixed(fraction, 3), decibels(impulse.gainAt(fraction), 2)});
    return "Linear path (frequencies as fractions of the sample rate; the same at every rate)\n" + table.text();
}

std::string nullTable(const NullMeasurements& nulls) {
    CTable table;
    table.add({"output less input, sine of 0.9 at 0.1234 of the rate", decibels(nulls.toneError, 1)});
    table.add({"output less input, 48 sines up to 0.465", decibels(nulls.multitoneError, 1)});
    table.add({"residue of the 48 sines below clipping", decibels(nulls.silentResidue, 1)});
    table.add({"loudest line beside a sine of 0.5", decibels(nulls.unclippedLine, 1)});
    table.add({"clipped: output less residue less unclipped", decibels(nulls.residueSumError, 1)});
    return "What cancels (largest sample, full scale = 0 dB)\n" + table.text();
}

std::string aliasTable(const MeasureReport::Rate& rate) {
    CTable table;
    table.add({"sine at Hz", "amplitude", "hardness", "worst line", "at Hz", "floor"});
    for (const AliasRow& row : rate.aliases)
        table.add({formatFixed(row.tone.frequencyHz, 1), formatFixed(row.amplitude, 1),
                   formatFixed(row.hardnessPercent, 0) + " %", decibels(row.tone.worstLine / row.tone.sineLine, 1),
                   formatFixed(row.tone.worstLineHz, 0),
                   row.idealWorstRatio > 0 ? decibels(row.idealWorstRatio, 1) : "-"});
    return "Images of clipped sines at " + std::to_string(rate.rateHz) +
           " Hz (the worst line that is no harmonic, to the sine in the output;\n"
           "floor: what clipping at 128 times the rate leaves even behind perfect filters)\n" +
           table.text();
}

std::string costTable(const MeasureReport& report) {
    CTable table;
    std::vector<std::string> head = {"hardness", "ns a sample", "mean call of 64", "worst call of 64"};
    for (const auto& rate : report.rates) head.push_back("channels at " + std::to_string(rate.rateHz) + " Hz");
    table.add(std::move(head));
    for (const CostMeasurement& cost : report.costs) {
        std::vector<std::string> row = {
            formatFixed(cost.hardnessPercent, 0) + " %", formatFixed(cost.nanosecondsPerSample, 1),
            formatFixed(cost.meanCallMicroseconds, 1) + " us",
            formatFixed(cost.worstCallMicroseconds, 1) + " us (" +
                formatFixed(cost.worstCallMicroseconds / cost.meanCallMicroseconds, 2) + " times)"};
        for (const auto& rate : report.rates) row.push_back(formatFixed(cost.channelsInRealTime(rate.rateHz), 0));
        table.add(std::move(row));
    }
    return "Cost of one channel on one processor core, and channels in real time\n" + table.text();
}

// Infinity has no place in JSON: the library writes null for it.
double jsonDb(double factor) { return factorToDb(factor); }

}  // namespace

std::string reportTable(const MeasureReport& report) {
    std::string text = "Processor build: " + std::string(processorBuildName(report.build)) +
                       " (HALYARD_BUILD in the environment chooses another)\n\n" + linearPathTable(report) + "\n" +
                       nullTable(report.nulls) + "\n";
    for (const auto& rate : report.rates) text += aliasTable(rate) + "\n";
    return text + costTable(report);
}

std::string reportJson(const MeasureReport& report) {
    using Json = nlohmann::ordered_json;
    Json json;
    json["processorBuild"] = processorBuildName(report.build);
    Json& path = json["linearPath"];
    path["latencySamples"] = report.latencySamples;
    path["impulsePeakSample"] = report.impulse.peakSample();
    path["leadingZeroSamples"] = report.impulse.leadingZeroCount();
    path["passBandErrorDb"] = report.impulse.passBandErrorDb();
    path["halfGainFraction"] = report.impulse.halfGainFraction();
    for (const double fraction : kResponseFractions)
        path["response"].push_back({{"fraction", fraction}, {"gainDb", jsonDb(report.impulse.gainAt(fraction))}});

    Json& nulls = json["nulls"];
    nulls["toneErrorDb"] = jsonDb(report.nulls.toneError);
    nulls["multitoneErrorDb"] = jsonDb(report.nulls.multitoneError);
    nulls["silentResidueDb"] = jsonDb(report.nulls.silentResidue);
    nulls["unclippedLineDb"] = jsonDb(report.nulls.unclippedLine);
    nulls["residueSumErrorDb"] = jsonDb(report.nulls.residueSumError);

    json["rates"] = Json::array();
    for (const auto& rate : report.rates) {
        Json aliases = Json::array();
        for (const AliasRow& row : rate.aliases)
            aliases.push_back({{"frequencyHz", row.tone.frequencyHz},
                               {"amplitude", row.amplitude},
                               {"hardnessPercent", row.hardnessPercent},
                               {"sineDb", jsonDb(row.tone.sineLine)},
                               {"worstLineDb", jsonDb(row.tone.worstLine / row.tone.sineLine)},
                               {"worstLineHz", row.tone.worstLineHz},
                               {"floorDb", jsonDb(row.idealWorstRatio)}});
        json["rates"].push_back({{"rateHz", rate.rateHz}, {"aliases", std::move(aliases)}});
    }
    json["costs"] = Json::array();
    for (const CostMeasurement& cost : report.costs) {
        Json channels;
        for (const auto& rate : report.rates)
            channels[std::to_string(rate.rateHz)] = cost.channelsInRealTime(rate.rateHz);
        json["costs"].push_back({{"hardnessPercent", cost.hardnessPercent},
                                 {"nanosecondsPerSample", cost.nanosecondsPerSample},
                                 {"meanCall64Microseconds", cost.meanCallMicroseconds},
                                 {"worstCall64Microseconds", cost.worstCallMicroseconds},
                                 {"channelsInRealTime", std::move(channels)}});
    }
    return json.dump(2) + "\n";
}

}  // namespace brt
