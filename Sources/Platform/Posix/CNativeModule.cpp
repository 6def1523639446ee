// SPDX-License-Identifier: LicenseRef-Halyard
#include "Platform/CNativeModule.h"

#include <dlfcn.h>

#include "Platform/PathText.h"

namespace brt {

std::string CNativeModule::open(const std::u16string& path) {
    std::string name = pathToSystem(path);
    // Without a "/" the loader would look in the system's folders.
    if (name.find('/') == std::string::npos) name.insert(0, "./");
    m_handle = dlopen(name.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (m_handle != nullptr) return {};
    const char* const reason = dlerror();
    return reason != nullptr ? reason : "unknown error";
}

void CNativeModule::close() noexcept {
    if (m_handle != nullptr) dlclose(m_handle);
    m_handle = nullptr;
}

CNativeModule::Function CNativeModule::find(const char* name) const noexcept {
    return m_handle != nullptr ? reinterpret_cast<Function>(dlsym(m_handle, name)) : nullptr;
}

}  // namespace brt
