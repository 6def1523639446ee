// SPDX-License-Identifier: LicenseRef-Halyard
// A shared library that is loaded while the program runs. Nobody else sees its names.
// Owner: any. Threads: one at a time; what it holds may be called on any.
#pragma once

#include <string>

namespace brt {

class CNativeModule {
public:
    CNativeModule() noexcept = default;
    ~CNativeModule() { close(); }
    CNativeModule(const CNativeModule&) = delete;
    CNativeModule& operator=(const CNativeModule&) = delete;

    // [any] The empty text for success, else the loader's words in UTF-8. REQUIRES: not open.
    [[nodiscard]] std::string open(const std::u16string& path);
    void close() noexcept;
    bool isOpen() const noexcept { return m_handle != nullptr; }

    // [any] The function of that name; null if there is none, or nothing is open.
    using Function = void (*)();
    Function find(const char* name) const noexcept;

private:
    void* m_handle = nullptr;
};

}  // namespace brt
