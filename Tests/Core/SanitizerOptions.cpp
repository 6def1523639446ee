// SPDX-License-Identifier: LicenseRef-Halyard
// The sanitizers' settings for tests that ask for more memory than they get.

extern "C" {

// A request above 2,047 MiB is answered with null, as the system does, instead of ending the program.
[[gnu::visibility("default")]] const char* __asan_default_options();
const char* __asan_default_options() { return "allocator_may_return_null=1:max_allocation_size_mb=2047"; }

// The same; its limit is the system's.
[[gnu::visibility("default")]] const char* __tsan_default_options();
const char* __tsan_default_options() { return "allocator_may_return_null=1"; }
}
