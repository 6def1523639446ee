// SPDX-License-Identifier: LicenseRef-Halyard
// A numeric locale with a decimal comma for the life of a scope, made from the system's own "C.utf8" one: minimal
// systems have no other.
#pragma once

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "Platform/TemporaryFolder.h"

namespace brt {

class CommaLocale {
public:
    CommaLocale() {
        std::ifstream in("/usr/lib/locale/C.utf8/LC_NUMERIC", std::ios::binary);
        std::string data((std::istreambuf_iterator<char>(in)), {});
        for (char& c : data) {
            if (c == '.') c = ',';
        }
        std::filesystem::create_directory(m_folder.bytes("comma"));
        std::ofstream(m_folder.bytes("comma/LC_NUMERIC"), std::ios::binary) << data;
        ::setenv("LOCPATH", m_folder.bytes().c_str(), 1);
        m_isSet = std::setlocale(LC_NUMERIC, "comma") != nullptr && std::strtod("0,5", nullptr) == 0.5;
    }
    ~CommaLocale() {
        std::setlocale(LC_NUMERIC, "C");
        ::unsetenv("LOCPATH");
    }

    // False if the system refused; then the locale is what it was.
    bool isSet() const { return m_isSet; }

private:
    TemporaryFolder m_folder;
    bool m_isSet = false;
};

}  // namespace brt
