// SPDX-License-Identifier: LicenseRef-Halyard
// What a display gets from the collector, read back.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "Audio/CAudioVizCollector.h"
#include "Audio/StreamNumbers.h"
#include "Core/CByteBuffer.h"
#include "Core/CError.h"
#include "Core/CMemoryReader.h"
#include "Core/CWriteSeqBuffer.h"

namespace brt {

struct CollectedRecords {
    double position = -1.0;
    std::map<std::string, std::vector<std::unique_ptr<CAudioVizData>>> records;

    int count(const char* path) const {
        const auto found = records.find(path);
        return found != records.end() ? static_cast<int>(found->second.size()) : 0;
    }
    const CAudioVizDataMeter& meter(const char* path, int index) const {
        return static_cast<const CAudioVizDataMeter&>(*records.at(path)[static_cast<std::size_t>(index)]);
    }
};

inline CError* readRecords(CInputStream& stream, CollectedRecords& result) {
    BRT_TRY("", readF64(stream, result.position));
    for (;;) {
        std::uint32_t count = 0;
        BRT_TRY("", readU32(stream, count));
        if (count == 0) return nullptr;
        CString path;
        BRT_TRY("", stream.readString(path));
        auto& records = result.records[path.toUtf8()];
        for (; count > 0; --count) {
            std::unique_ptr<CAudioVizData> record;
            BRT_TRY("", CAudioVizData::loadTagged(record, stream));
            if (record != nullptr) records.push_back(std::move(record));
        }
    }
}

inline CollectedRecords collectFrom(CAudioVizCollector& viz, double framesPerSecond) {
    CWriteSeqBuffer stream(1024);
    CollectedRecords result;
    CByteBuffer bytes;
    CError* error = viz.collect(stream, framesPerSecond);
    if (error == nullptr) {
        stream.moveTo(bytes);
        CMemoryReader reader(bytes.data(), bytes.size());
        error = readRecords(reader, result);
        EXPECT_EQ(reader.getBytesLeft(), 0);
    }
    EXPECT_EQ(error, nullptr) << error->message().toUtf8();
    discardError(error);  // has been told
    return result;
}

}  // namespace brt
