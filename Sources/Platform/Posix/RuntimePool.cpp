// SPDX-License-Identifier: LicenseRef-Halyard
// For modules that are linked with a C++ runtime of their own. It takes memory when it is loaded, from which exceptions
// are made when there is no other, and gives it back only to tools that look for leaks. A host that loads and unloads
// the module many times would lose 72 kilobytes each time.

// Of the runtime; declared in none of its headers.
namespace __gnu_cxx {  // NOLINT(bugprone-reserved-identifier): its name
void __freeres();      // NOLINT(bugprone-reserved-identifier)
}

namespace {

// The last of all destructors.
[[gnu::destructor(101)]] void freeRuntimePool() noexcept { __gnu_cxx::__freeres(); }

}  // namespace
