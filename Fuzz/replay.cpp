// SPDX-License-Identifier: LicenseRef-Halyard
// usage: replay_TARGET FOLDER
// Runs a fuzz target over each file of a folder, in the order of their names. What the fuzzer once found stays found.
#include "Fuzz/FuzzTarget.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
        return 2;
    }
    std::vector<std::filesystem::path> files;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1], error)) files.push_back(entry.path());
    if (error || files.empty()) {
        std::fprintf(stderr, "%s: no inputs to replay\n", argv[1]);
        return 1;
    }
    std::sort(files.begin(), files.end());
    for (const auto& path : files) {
        // Named before it runs, so that the one that crashes is known.
        std::printf("%s\n", path.filename().c_str());
        std::fflush(stdout);
        std::ifstream file(path, std::ios::binary);
        if (!file) {
            std::fprintf(stderr, "%s: cannot be read\n", path.c_str());
            return 1;
        }
        const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
        // A copy of the exact size, so that a read behind its end is seen.
        const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
        LLVMFuzzerTestOneInput(input.data(), input.size());
    }
    return 0;
}
