// SPDX-License-Identifier: LicenseRef-Halyard
// Words that stand in declarations and that a compiler checks where it can: which thread may call, which lock guards.
#pragma once

#if defined(__clang__)
#define BRT_THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define BRT_THREAD_ATTRIBUTE(x)
#endif

// Locks: clang's -Wthread-safety reads them, other compilers skip them.
#define BRT_CAPABILITY(name) BRT_THREAD_ATTRIBUTE(capability(name))
#define BRT_SCOPED_CAPABILITY BRT_THREAD_ATTRIBUTE(scoped_lockable)
#define BRT_GUARDED_BY(lock) BRT_THREAD_ATTRIBUTE(guarded_by(lock))
#define BRT_REQUIRES(...) BRT_THREAD_ATTRIBUTE(requires_capability(__VA_ARGS__))
#define BRT_ACQUIRE(...) BRT_THREAD_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define BRT_TRY_ACQUIRE(...) BRT_THREAD_ATTRIBUTE(try_acquire_capability(__VA_ARGS__))
#define BRT_RELEASE(...) BRT_THREAD_ATTRIBUTE(release_capability(__VA_ARGS__))
#define BRT_ACQUIRED_AFTER(...) BRT_THREAD_ATTRIBUTE(acquired_after(__VA_ARGS__))
#define BRT_RETURN_CAPABILITY(lock) BRT_THREAD_ATTRIBUTE(lock_returned(lock))
#define BRT_NO_THREAD_SAFETY_ANALYSIS BRT_THREAD_ATTRIBUTE(no_thread_safety_analysis)

// The operation neither allocates nor blocks: it may run on the audio thread.
#if defined(__clang__) && __clang_major__ >= 20
#define BRT_REALTIME [[clang::nonblocking]]
#else
#define BRT_REALTIME
#endif

// Seen outside of the module that it stands in.
#define BRT_EXPORT __attribute__((visibility("default")))

// The function reads what another thread may write at the same time, on purpose; a comment beside it says why that is
// harmless. Where the race detector runs it is not inlined, or it would be looked at as a part of its caller.
#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define BRT_HARMLESS_RACE __attribute__((no_sanitize("thread"), noinline))
#endif
#elif defined(__SANITIZE_THREAD__)
#define BRT_HARMLESS_RACE __attribute__((no_sanitize("thread"), noinline))
#endif
#if !defined(BRT_HARMLESS_RACE)
#define BRT_HARMLESS_RACE
#endif

// For mistakes of the programmer only, never for what a file, a host or a user brings in.
#if defined(NDEBUG)
#define BRT_ASSERT(condition) static_cast<void>(0)
#else
#define BRT_ASSERT(condition) ((condition) ? static_cast<void>(0) : __builtin_trap())
#endif
