// SPDX-License-Identifier: LicenseRef-Halyard
// A new folder for one test, removed with all that is in it. Its name holds what names may hold on this system: a
// letter beyond ASCII, an emoji, and a byte that is no UTF-8.
#pragma once

#include <stdlib.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "Platform/PathText.h"

namespace brt {

class TemporaryFolder {
public:
    TemporaryFolder() {
        char top[] = "/tmp/halyard-test-XXXXXX";
        if (mkdtemp(top) == nullptr) abort();
        m_top = top;
        m_bytes = m_top + "/caf\xC3\xA9 \xF0\x9F\x8E\x9B \xFF";
        if (mkdir(m_bytes.c_str(), 0700) != 0) abort();
    }
    ~TemporaryFolder() { std::filesystem::remove_all(m_top); }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    // As the system takes it, without "/" at the end.
    const std::string& bytes() const { return m_bytes; }
    std::string bytes(const std::string& name) const { return m_bytes + "/" + name; }
    std::u16string path() const { return pathFromSystem(m_bytes); }
    std::u16string path(const std::string& name) const { return pathFromSystem(bytes(name)); }

private:
    std::string m_top;
    std::string m_bytes;
};

}  // namespace brt
