// SPDX-License-Identifier: LicenseRef-Halyard
// A developer's tool: eight records to wrap around stretches of code. Those that were used log a line at the end of the
// process. Nothing in the product uses them.
// Threads: one at a time for each record; they are not locked.
#pragma once

#include <cstdint>

#include "Platform/Processor.h"

namespace brt {

struct CBenchmarkRecord {
    static constexpr int kCount = 8;

    std::uint64_t calls = 0;
    std::uint64_t ticks = 0;  // of the processor, in all calls
    std::uint64_t peakTicks = 0;

    void add(std::uint64_t callTicks) noexcept;

    // REQUIRES: 0 <= index < kCount.
    static CBenchmarkRecord& at(int index) noexcept;
};

// Adds the life of a scope to a record:
//     const CBenchmarkStretch stretch(3);
class CBenchmarkStretch {
public:
    explicit CBenchmarkStretch(int record) noexcept
        : m_record(CBenchmarkRecord::at(record)), m_startTicks(processorTicks()) {}
    ~CBenchmarkStretch() { m_record.add(processorTicks() - m_startTicks); }
    CBenchmarkStretch(const CBenchmarkStretch&) = delete;
    CBenchmarkStretch& operator=(const CBenchmarkStretch&) = delete;

private:
    CBenchmarkRecord& m_record;
    const std::uint64_t m_startTicks;
};

// Logs a line for each record that has calls: total time, calls, time a call, ticks a call, peak. Times are those of a
// processor that counts 4.225 GHz, whatever this one does.
void logBenchmarkRecords();

}  // namespace brt
