// SPDX-License-Identifier: LicenseRef-Halyard
// Settings: reading one that is known, which windows do dozens of times as they open, and storing one, beside what the
// system alone takes to replace a small file safely. The files lie in a temporary folder.
#include <cstdlib>
#include <filesystem>
#include <string>

#include "Core/CAppData.h"
#include "Platform/CNativeFile.h"
#include "Platform/FileSystem.h"
#include "Platform/PathText.h"
#include "Targets.h"

namespace {

using namespace brt;

const bool kTargets =
    bench::addTarget({"reading a known setting, ns", "settings/get_string", "", bench::Target::kAtMost, 300, 150}) &&
    bench::addTarget({"storing a setting against replacing a file safely", "settings/set_string/real_time",
                      "settings/replace_file/real_time", bench::Target::kAtMost, 2.0, 1.3});

// A folder of its own for the user's settings, for one benchmark.
class TemporaryHome {
public:
    TemporaryHome() {
        char top[] = "/tmp/halyard-bench-XXXXXX";
        m_path = mkdtemp(top) != nullptr ? top : "/dev/null/none";
        setenv("XDG_CONFIG_HOME", m_path.c_str(), 1);
    }
    ~TemporaryHome() {
        unsetenv("XDG_CONFIG_HOME");
        std::error_code dropped;
        std::filesystem::remove_all(m_path, dropped);
    }
    TemporaryHome(const TemporaryHome&) = delete;
    TemporaryHome& operator=(const TemporaryHome&) = delete;

    const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

void getString(benchmark::State& state) {
    const TemporaryHome home;
    CAppDataGlobal store("");
    for (int i = 0; i < 30; ++i) store.setString("setting-" + std::to_string(i), "true");
    store.setString("frames-per-second", "40");
    CString value;
    for (auto _ : state) {
        store.getString(value, "frames-per-second");
        benchmark::DoNotOptimize(value.length());
    }
    if (value != "40") state.SkipWithError("the setting isn't stored");
}
BENCHMARK(getString)->Name("settings/get_string");

// Real time: the disk is waited for.
void setString(benchmark::State& state) {
    const TemporaryHome home;
    CAppDataGlobal store("");
    const CString values[2] = {CString("40"), CString("50")};
    std::size_t i = 0;
    for (auto _ : state) store.setString("frames-per-second", values[i++ & 1]);
    if (!std::filesystem::exists(home.path() + "/Brontel/frames-per-second")) state.SkipWithError("nothing is stored");
}
BENCHMARK(setString)->Name("settings/set_string")->UseRealTime()->Unit(benchmark::kMicrosecond);

void replaceFile(benchmark::State& state) {
    const TemporaryHome home;
    const std::u16string target = pathFromSystem(home.path() + "/file");
    const char content[32] = {};
    for (auto _ : state) {
        CNativeFile file;
        std::u16string temporary;
        std::size_t written = 0;
        int error = file.createTemporaryBeside(target, temporary);
        if (error == 0) error = file.write(content, sizeof content, written);
        if (error == 0) error = file.flush();
        if (error == 0) error = file.close();
        if (error == 0) error = renameFile(temporary, target);
        if (error != 0) state.SkipWithError("the file can't be replaced");
    }
}
BENCHMARK(replaceFile)->Name("settings/replace_file")->UseRealTime()->Unit(benchmark::kMicrosecond);

}  // namespace
