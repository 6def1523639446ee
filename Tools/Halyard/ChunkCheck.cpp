// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/ChunkCheck.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <string_view>

namespace brt {

namespace {

// All these containers are a fixed header and then chunks, each with an id, a size and that many bytes.
struct ChunkLayout {
    std::string_view magic;  // first bytes of the file
    int headerBytes;
    int idBytes;    // of which the first four tell the kind
    int sizeBytes;  // 4 or 8
    bool isBigEndian;
    bool sizeCountsIdAndSize;
    int alignment;  // chunks start at a multiple of it, counted from the end of the header
    std::string_view soundId;
};

constexpr std::array<ChunkLayout, 5> kLayouts = {{
    {"RIFF", 12, 4, 4, false, false, 2, "data"},
    {"RF64", 12, 4, 4, false, false, 2, "data"},
    {"riff", 40, 16, 8, false, true, 8, "data"},
    {"FORM", 12, 4, 4, true, false, 2, "SSND"},
    {"caff", 8, 4, 8, true, false, 1, "data"},
}};

// What a size field of 32 bits says when the length is open, or stands elsewhere (RF64).
constexpr std::uint64_t kOpenLength32 = 0xFFFFFFFF;
constexpr std::uint64_t kOpenLength64 = ~std::uint64_t{0};
constexpr std::int64_t kRf64SoundSizeOffset = 8;  // in its chunk "ds64", behind the size of the whole file

std::uint64_t readInteger(std::istream& file, int byteCount, bool isBigEndian) {
    std::array<char, 8> bytes{};
    file.read(bytes.data(), byteCount);
    std::uint64_t value = 0;
    for (int i = 0; i < byteCount; ++i) {
        const int index = isBigEndian ? i : byteCount - 1 - i;
        value = value << 8 | static_cast<unsigned char>(bytes[static_cast<std::size_t>(index)]);
    }
    return value;
}

std::array<char, 4> readId(std::istream& file) {
    std::array<char, 4> id{};
    file.read(id.data(), id.size());
    return id;
}

std::array<char, 4> readIdAt(std::istream& file, std::int64_t position) {
    file.seekg(position);
    return readId(file);
}

// A chunk's name is four printable characters.
bool isChunkId(const std::array<char, 4>& id) {
    return std::all_of(id.begin(), id.end(), [](char c) { return c >= 0x20 && c < 0x7f; });
}

bool equals(const std::array<char, 4>& id, std::string_view text) {
    return std::string_view(id.data(), id.size()) == text;
}

}  // namespace

std::optional<MissingSound> findMissingSound(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    const std::array<char, 4> magic = readId(file);
    const auto* layout =
        std::find_if(kLayouts.begin(), kLayouts.end(), [&](const ChunkLayout& l) { return equals(magic, l.magic); });
    if (!file || layout == kLayouts.end()) return std::nullopt;

    file.seekg(0, std::ios::end);
    const std::int64_t fileBytes = file.tellg();
    const std::int64_t prefixBytes = layout->idBytes + layout->sizeBytes;
    std::uint64_t rf64SoundBytes = kOpenLength64;

    for (std::int64_t start = layout->headerBytes; start + prefixBytes <= fileBytes;) {
        const std::array<char, 4> id = readIdAt(file, start);
        file.seekg(start + layout->idBytes);
        std::uint64_t size = readInteger(file, layout->sizeBytes, layout->isBigEndian);
        if (!file) return std::nullopt;
        const std::int64_t content = start + prefixBytes;

        if (equals(id, "ds64")) {
            file.seekg(content + kRf64SoundSizeOffset);
            rf64SoundBytes = readInteger(file, 8, false);
        }
        const bool isSound = equals(id, layout->soundId);
        if (layout->sizeBytes == 4 && size == kOpenLength32) size = isSound ? rf64SoundBytes : kOpenLength64;
        if (size == kOpenLength64) return std::nullopt;
        if (layout->sizeCountsIdAndSize) size -= std::min(size, static_cast<std::uint64_t>(prefixBytes));

        const auto present = static_cast<std::uint64_t>(fileBytes - content);
        const bool isUnfinished = isSound && size == 0 && present > 0 && !isChunkId(readIdAt(file, content));
        if (isUnfinished || (isSound && size > present))
            return MissingSound{static_cast<std::int64_t>(size), static_cast<std::int64_t>(present)};
        if (isSound || size > present) return std::nullopt;
        const auto alignment = static_cast<std::uint64_t>(layout->alignment);
        start = content + static_cast<std::int64_t>((size + alignment - 1) / alignment * alignment);
    }
    return std::nullopt;
}

}  // namespace brt
