// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Docc/Files.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "Core/CAtomicFileWriter.h"
#include "Core/CError.h"

namespace brt {
namespace {

void throwIf(CError* error) {
    if (!error) return;
    const std::string message = error->message().toUtf8();
    discardError(error);  // goes on as an exception
    throw std::runtime_error(message);
}

}  // namespace

std::string readFile(const std::string& path) {
    if (std::filesystem::is_directory(path)) throw std::runtime_error("'" + path + "' is a folder, not a file");
    std::ifstream stream(path, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(stream), {}};
    if (!stream) throw std::runtime_error("unable to read '" + path + "'");
    return bytes;
}

void writeFile(const std::string& path, std::string_view bytes) {
    CAtomicFileWriter writer;
    throwIf(writer.open(CString::fromUtf8(path)));
    throwIf(writer.write(bytes.data(), static_cast<int>(bytes.size())));
    throwIf(writer.commit());
}

}  // namespace brt
