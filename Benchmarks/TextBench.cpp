// SPDX-License-Identifier: LicenseRef-Halyard
// Text building with CString, and std::string doing the same.
//   name    a full name of three parts, as the object tree makes them: fits inside a CString, not inside a std::string
//   line    a line of 200 characters from pieces of 8
//   copy    a text of 24 characters is copied
//   lookup  one of 64 names is found in an ordered map
#include "Core/COrderedMap.h"
#include "Core/CString.h"
#include "Targets.h"

#include <map>
#include <string>
#include <string_view>

namespace {

constexpr std::string_view kPiece = "1234 678";

template <class Text>
void name(benchmark::State& state) {
    for (auto _ : state) {
        Text text("plugin");
        text.append(".").append("modMain").append(".").append("hardness");
        benchmark::DoNotOptimize(text);
    }
}

template <class Text>
void line(benchmark::State& state) {
    for (auto _ : state) {
        Text text;
        for (int i = 0; i < 25; ++i) text.append(kPiece);
        benchmark::DoNotOptimize(text);
    }
}

template <class Text>
void copy(benchmark::State& state) {
    const Text source("plugin.modMain.hardness!");
    for (auto _ : state) {
        Text text(source);
        benchmark::DoNotOptimize(text);
    }
}

template <class Text, class Map>
void lookup(benchmark::State& state, Text& (*insert)(Map&, const std::string&)) {
    Map map;
    for (int i = 0; i < 64; ++i) insert(map, "attribute-" + std::to_string(i));
    const Text key("attribute-37");
    for (auto _ : state) {
        auto found = map.find(key);
        benchmark::DoNotOptimize(found);
    }
}

using OurMap = brt::COrderedMap<brt::CString, brt::CString>;
using StandardMap = std::map<std::string, std::string>;

brt::CString& insertOurs(OurMap& map, const std::string& key) { return map.findOrInsert(key); }
std::string& insertStandard(StandardMap& map, const std::string& key) { return map[key]; }

BENCHMARK_TEMPLATE(name, brt::CString);
BENCHMARK_TEMPLATE(name, std::string);
BENCHMARK_TEMPLATE(line, brt::CString);
BENCHMARK_TEMPLATE(line, std::string);
BENCHMARK_TEMPLATE(copy, brt::CString);
BENCHMARK_TEMPLATE(copy, std::string);
BENCHMARK_CAPTURE(lookup, brt::COrderedMap, &insertOurs);
BENCHMARK_CAPTURE(lookup, std::map, &insertStandard);

}  // namespace
