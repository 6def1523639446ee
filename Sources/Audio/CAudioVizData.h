// SPDX-License-Identifier: LicenseRef-Halyard
// Records that modules post for displays: what they have measured, and at what time of the stream.
//
// Owner: the module that makes one, then the collector. Threads: one at a time. In the stored form each record stands
// behind its type and its length in bytes, so that a reader can leave out what it doesn't know.
#pragma once

#include <cstdint>
#include <memory>

#include "Core/CBrtMemAllocator.h"
#include "Core/CSmallArray.h"
#include "Core/CString.h"

namespace brt {

class CError;
class CInputStream;
class COutputStream;

enum class EVizType : std::int32_t { kMeter = 0, kInfo = 1, kSpectrum = 3, kScope = 4 };

class CAudioVizData : public CBrtMemAllocator {
public:
    static constexpr int kLocalInstance = -1;
    static constexpr int kLongestBytes = 1 << 20;  // of one record in a stream

    const EVizType type;
    std::int32_t channel = 0;  // 0 where a module stands for the whole port
    std::int32_t group = 0;
    std::int32_t stackIndex = 0;
    double time = 0.0;  // seconds of the stream
    std::int32_t slotIndex = kLocalInstance;

    virtual ~CAudioVizData() = default;
    CAudioVizData& operator=(const CAudioVizData&) = delete;

    // The record without its type and length. On failure what has been read is undefined.
    [[nodiscard]] virtual CError* save(COutputStream& stream) const;
    [[nodiscard]] virtual CError* load(CInputStream& stream);

    std::unique_ptr<CAudioVizData> clone() const;
    // Null for a type that there is none of.
    static std::unique_ptr<CAudioVizData> create(EVizType type);

    // Type, length and record. Reading takes the whole of it; `record` is null where the type is unknown.
    [[nodiscard]] CError* saveTagged(COutputStream& stream) const;
    [[nodiscard]] static CError* loadTagged(std::unique_ptr<CAudioVizData>& record, CInputStream& stream);

protected:
    explicit CAudioVizData(EVizType ownType) noexcept : type(ownType) {}
    CAudioVizData(const CAudioVizData&) = default;

private:
    friend class CAudioVizCollector;
    CAudioVizData* m_next = nullptr;  // in the collector's list
};

class CAudioVizDataMeter final : public CAudioVizData {
public:
    CAudioVizDataMeter() noexcept : CAudioVizData(EVizType::kMeter) {}

    // Linear factors.
    double level = 0.0;
    double peak = 0.0;

    [[nodiscard]] CError* save(COutputStream& stream) const override;
    [[nodiscard]] CError* load(CInputStream& stream) override;
};

class CAudioVizDataInfo final : public CAudioVizData {
public:
    CAudioVizDataInfo() noexcept : CAudioVizData(EVizType::kInfo) {}

    CString text;
    std::uint32_t value = 0;

    [[nodiscard]] CError* save(COutputStream& stream) const override;
    [[nodiscard]] CError* load(CInputStream& stream) override;
};

class CAudioVizDataSpectrum final : public CAudioVizData {
public:
    CAudioVizDataSpectrum() noexcept : CAudioVizData(EVizType::kSpectrum) {}
    CAudioVizDataSpectrum(const CAudioVizDataSpectrum& other);

    CSmallArray<double> bins;
    double sampleRate = 0.0;
    std::uint32_t pointCount = 0;  // of the transform
    std::uint32_t overlapCount = 0;
    double slopeDb = 0.0;  // an octave
    std::uint32_t flags = 0;

    [[nodiscard]] CError* save(COutputStream& stream) const override;
    [[nodiscard]] CError* load(CInputStream& stream) override;
};

class CAudioVizDataVScope final : public CAudioVizData {
public:
    CAudioVizDataVScope() noexcept : CAudioVizData(EVizType::kScope) {}
    CAudioVizDataVScope(const CAudioVizDataVScope& other);

    CSmallArray<std::uint32_t> left;
    CSmallArray<std::uint32_t> right;

    [[nodiscard]] CError* save(COutputStream& stream) const override;
    [[nodiscard]] CError* load(CInputStream& stream) override;
};

}  // namespace brt
