// SPDX-License-Identifier: LicenseRef-Halyard
// The block allocator against the system's malloc, all with blocks of 64 bytes and so in one size class.
//   pair      a block is freed as soon as it was taken, as a text or a small array on the stack does
//   batch     64 are taken, then freed: more than either keeps for a thread alone
//   exchange  blocks are freed by whichever thread comes across them
// Times are those of one alloc and one free, in processor time: neither of the two waits, and a busy machine counts
// less.
#include "Core/CBrtMemAllocator.h"
#include "Targets.h"

#include <array>
#include <atomic>
#include <cstdlib>

namespace {

constexpr std::size_t kSize = 64;

struct Ours {
    static void* take() { return brt::CBrtMemAllocator::alloc(kSize); }
    static void give(void* block) { brt::CBrtMemAllocator::free(block); }
};

struct Malloc {
    static void* take() { return std::malloc(kSize); }
    static void give(void* block) { std::free(block); }
};

template <class Allocator>
void pair(benchmark::State& state) {
    for (auto _ : state) {
        void* block = Allocator::take();
        benchmark::DoNotOptimize(block);
        Allocator::give(block);
    }
    state.SetItemsProcessed(state.iterations());
}

template <class Allocator>
void batch(benchmark::State& state) {
    std::array<void*, 64> blocks;
    for (auto _ : state) {
        for (void*& block : blocks) block = Allocator::take();
        benchmark::DoNotOptimize(blocks.data());
        for (void* block : blocks) Allocator::give(block);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(blocks.size()));
}

template <class Allocator>
void exchange(benchmark::State& state) {
    static std::array<std::atomic<void*>, 1024> table{};
    unsigned place = static_cast<unsigned>(state.thread_index()) * 512;
    for (auto _ : state) {
        place = place * 5 + 1;  // visits all places
        void* old = table[place % table.size()].exchange(Allocator::take(), std::memory_order_acq_rel);
        if (old != nullptr) Allocator::give(old);
    }
    state.SetItemsProcessed(state.iterations());
}

BENCHMARK_TEMPLATE(pair, Ours)->ThreadRange(1, 2);
BENCHMARK_TEMPLATE(pair, Malloc)->ThreadRange(1, 2);
BENCHMARK_TEMPLATE(batch, Ours)->ThreadRange(1, 2);
BENCHMARK_TEMPLATE(batch, Malloc)->ThreadRange(1, 2);
BENCHMARK_TEMPLATE(exchange, Ours)->ThreadRange(1, 2);
BENCHMARK_TEMPLATE(exchange, Malloc)->ThreadRange(1, 2);

[[maybe_unused]] const bool kTargets =
    bench::addTarget({"alloc and free of 64 bytes, one thread, against malloc", "pair<Ours>/threads:1",
                      "pair<Malloc>/threads:1", bench::Target::kAtMost, 1.0, 0}) &&
    bench::addTarget({"alloc and free of 64 bytes, two threads, against malloc", "pair<Ours>/threads:2",
                      "pair<Malloc>/threads:2", bench::Target::kAtMost, 0.5, 0});

}  // namespace
