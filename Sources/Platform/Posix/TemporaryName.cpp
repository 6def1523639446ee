// SPDX-License-Identifier: LicenseRef-Halyard
#include <unistd.h>

#include <atomic>
#include <cstdint>

#include "Platform/Clock.h"
#include "Platform/Posix/TemporaryName_p.h"

namespace brt {

namespace {

constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyz234567";
constexpr std::size_t kLetterCount = 12;
constexpr std::size_t kMostNameBytes = 200;  // of the 255 that file systems allow

}  // namespace

std::string temporaryName(std::string_view targetName) {
    static constinit std::atomic<std::uint64_t> calls{0};
    std::uint64_t number = static_cast<std::uint64_t>(clockCounter()) ^ static_cast<std::uint64_t>(getpid()) << 40 ^
                           calls.fetch_add(1) * 0x9E37'79B9'7F4A'7C15;
    std::string name(".");
    name.append(targetName.substr(0, kMostNameBytes)).append(".");
    for (std::size_t i = 0; i < kLetterCount; ++i, number >>= 5) name.push_back(kLetters[number & 31]);
    return name;
}

bool isTemporaryName(std::string_view name) noexcept {
    if (name.size() < kLetterCount + 3 || name.front() != '.') return false;
    const std::string_view letters = name.substr(name.size() - kLetterCount);
    return name[name.size() - kLetterCount - 1] == '.' && letters.find_first_not_of(kLetters) == letters.npos;
}

}  // namespace brt
