// SPDX-License-Identifier: LicenseRef-Halyard
#include "Targets.h"

#include <cstdio>
#include <map>
#include <vector>

namespace bench {
namespace {

std::vector<Target>& targets() {
    static std::vector<Target> list;
    return list;
}

struct Figure {
    double value;
    const char* unit;
};

// Prints as usual and keeps the median figure of every benchmark.
class MedianReporter : public benchmark::ConsoleReporter {
public:
    MedianReporter() : ConsoleReporter(OO_Tabular) {}

    void ReportRuns(const std::vector<Run>& runs) override {
        std::vector<Run> shown;
        for (const Run& run : runs) {
            if (run.error_occurred || run.aggregate_name.empty() || run.aggregate_name == "median")
                shown.push_back(run);
            if (!run.error_occurred && run.aggregate_name == "median") keep(run);
        }
        ConsoleReporter::ReportRuns(shown);
    }

    // Of the named benchmark; null if it did not run.
    const Figure* median(const std::string& name) const {
        const auto found = m_medians.find(name);
        return found == m_medians.end() ? nullptr : &found->second;
    }

private:
    void keep(const Run& run) {
        // The median's rate of items is in its counters; a time without items is that of an iteration.
        const auto bytes = run.counters.find(kMegabytes), rate = run.counters.find("items_per_second");
        Figure& figure = m_medians[run.run_name.str()];
        if (bytes != run.counters.end())
            figure = {bytes->second.value, kMegabytes};
        else if (rate != run.counters.end())
            figure = {1e9 / rate->second.value, "ns"};
        else
            figure = {run.GetAdjustedRealTime() / benchmark::GetTimeUnitMultiplier(run.time_unit) * 1e9, "ns"};
    }

    std::map<std::string, Figure> m_medians;
};

const char* verdict(const Target& target, double figure) {
    const auto reaches = [&](double bound) {
        return target.bound == Target::kAtMost ? figure <= bound : figure >= bound;
    };
    if (target.stretch > 0 && reaches(target.stretch)) return "stretch";
    return reaches(target.target) ? "reached" : "MISSED";
}

void printTable(const MedianReporter& medians) {
    std::printf("\n%-58s %10s %12s %10s\n", "target", "figure", "target", "stretch");
    for (const Target& target : targets()) {
        const Figure *measured = medians.median(target.benchmark), *divisor = medians.median(target.against);
        const bool isRatio = !target.against.empty();
        if (measured == nullptr || (isRatio && divisor == nullptr)) continue;
        const double figure = isRatio ? measured->value / divisor->value : measured->value;
        const char* unit = isRatio ? "x" : measured->unit;
        std::printf("%-58s %8.2f%-2s %s %8.2f%-2s ", target.what.c_str(), figure, unit,
                    target.bound == Target::kAtMost ? "<=" : ">=", target.target, unit);
        if (target.stretch > 0)
            std::printf("%8.2f%-2s", target.stretch, unit);
        else
            std::printf("%10s", "");
        std::printf("  %s\n", verdict(target, figure));
    }
}

}  // namespace

bool addTarget(const Target& target) {
    targets().push_back(target);
    return true;
}

int runWithTargets(int argc, char** argv) {
    // Medians of interleaved repetitions: a slow minute of the machine then falls on all alike. What the caller
    // gives comes later and wins.
    std::vector<std::string> defaults = {argv[0], "--benchmark_repetitions=9", "--benchmark_min_time=0.02",
                                         "--benchmark_enable_random_interleaving=true",
                                         "--benchmark_report_aggregates_only=true"};
    std::vector<char*> arguments;
    for (std::string& argument : defaults) arguments.push_back(argument.data());
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int count = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);

    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;
    MedianReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    printTable(reporter);
    benchmark::Shutdown();
    return 0;
}

}  // namespace bench
