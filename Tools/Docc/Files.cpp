// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Docc/Files.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "Core/CAtomicFileWriter.h"
#include "Platform/PathText.h"
#include "Tools/Docc/ThrowError.h"

namespace brt {

std::string readFile(const std::string& path) {
    if (std::filesystem::is_directory(path)) throw std::runtime_error("'" + path + "' is a folder, not a file");
    std::ifstream stream(path, std::ios::binary);
    std::string bytes;
    char piece[65536];
    while (bytes.size() <= kMostFileBytes && (stream.read(piece, sizeof piece), stream.gcount() > 0))
        bytes.append(piece, static_cast<std::size_t>(stream.gcount()));
    if (!stream.is_open() || stream.bad()) throw std::runtime_error("unable to read '" + path + "'");
    if (bytes.size() > kMostFileBytes)
        throw std::runtime_error("'" + path + "' has more than 64 MiB; no document or list is that large");
    return bytes;
}

void writeFile(const std::string& path, std::string_view bytes) {
    CAtomicFileWriter writer;
    throwIf(writer.open(CString::fromPath(pathFromSystem(path))));
    throwIf(writer.write(bytes.data(), static_cast<int>(bytes.size())));
    throwIf(writer.commit());
}

void refuseToReplace(const std::string& output, std::initializer_list<std::string> inputs) {
    for (const std::string& input : inputs) {
        std::error_code oneIsMissing;
        if (!input.empty() && std::filesystem::equivalent(output, input, oneIsMissing))
            throw std::runtime_error("the output would replace '" + input + "', which it is made from");
    }
}

}  // namespace brt
