// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Docc/ResourceTable.h"

#include <filesystem>
#include <limits>
#include <sstream>
#include <stdexcept>

#include "Tools/Docc/Files.h"

namespace brt {
namespace {

namespace fs = std::filesystem;

std::string trimmed(const std::string& text) {
    const std::size_t begin = text.find_first_not_of(" \t\r");
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(" \t\r") - begin + 1);
}

// A string of the assembler.
std::string literal(const std::string& text) {
    constexpr char kOctal[] = "01234567";
    std::string result = "\"";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte < 0x7F && c != '"' && c != '\\')
            result += c;
        else
            (((result += '\\') += kOctal[byte >> 6]) += kOctal[byte >> 3 & 7]) += kOctal[byte & 7];
    }
    return result + '"';
}

void checkFile(const std::string& name, const std::string& file) {
    std::error_code failure;
    if (!fs::is_regular_file(file, failure))
        throw std::runtime_error("resource '" + name + "': there is no file '" + file + "'");
    if (fs::file_size(file) > std::numeric_limits<std::int32_t>::max())
        throw std::runtime_error("resource '" + name + "': '" + file + "' is larger than 2 GiB");
}

}  // namespace

ResourceList readResourceList(const std::string& path) {
    ResourceList list;
    std::istringstream lines(readFile(path));
    int number = 0;
    const auto fail = [&](const std::string& what) {
        throw std::runtime_error(path + ":" + std::to_string(number) + ": error: " + what);
    };
    for (std::string line; std::getline(lines, line);) {
        ++number;
        line = trimmed(line);
        if (line.empty() || line.starts_with("#")) continue;
        const std::size_t equals = line.find('=');
        const std::string name = trimmed(line.substr(0, equals));
        const std::string file = equals == std::string::npos ? "" : trimmed(line.substr(equals + 1));
        if (name.empty() || file.empty()) fail("this is not \"name = file\"");
        if (!list.emplace(name, (fs::path(path).parent_path() / file).string()).second)
            fail("resource '" + name + "' stands here twice");
    }
    return list;
}

std::string resourceAssembler(const ResourceList& list, const std::string& symbol) {
    constexpr const char* kNameLetters = "_abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
    if (symbol.empty() || symbol.find_first_not_of(kNameLetters) != std::string::npos || symbol[0] <= '9')
        throw std::runtime_error("'" + symbol + "' is no C name for the table of resources");
    std::ostringstream data;
    std::ostringstream table;
    data << "    .section .rodata\n";
    table << "    .section .data.rel.ro, \"aw\"\n    .balign 8\n    .globl " << symbol << "\n    .hidden " << symbol
          << "\n    .type " << symbol << ", %object\n"
          << symbol << ":\n";
    int index = 0;
    for (const auto& [name, file] : list) {
        checkFile(name, file);
        const std::string label = ".Lresource" + std::to_string(index++);
        // The size in front, lowest byte first as all of the table's targets have it.
        data << "    .balign 16\n"
             << label << ":\n    .4byte " << label << "end - " << label << " - 4\n    .incbin " << literal(file) << "\n"
             << label << "end:\n"
             << label << "name:\n    .asciz " << literal(name) << "\n";
        table << "    .8byte " << label << ", " << label << "name\n";
    }
    table << "    .8byte 0, 0\n    .size " << symbol << ", . - " << symbol << "\n"
          << "    .section .note.GNU-stack, \"\", %progbits\n";
    return data.str() + table.str();
}

}  // namespace brt
