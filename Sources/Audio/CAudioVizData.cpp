// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioVizData.h"

#include "Audio/StreamNumbers.h"
#include "Core/CByteBuffer.h"
#include "Core/CMemoryReader.h"
#include "Core/CWriteSeqBuffer.h"

namespace brt {
namespace {

constexpr int kMostValues = CAudioVizData::kLongestBytes / 4;

CError* writeWords(COutputStream& stream, const CSmallArray<std::uint32_t>& words) {
    BRT_TRY("", writeI32(stream, words.count()));
    for (const std::uint32_t word : words) BRT_TRY("", writeU32(stream, word));
    return nullptr;
}

CError* readWords(CInputStream& stream, CSmallArray<std::uint32_t>& words) {
    int count = 0;
    BRT_TRY("", readCount(stream, count, kMostValues, 4));
    words.setCount(count);
    for (std::uint32_t& word : words) BRT_TRY("", readU32(stream, word));
    return nullptr;
}

}  // namespace

CError* CAudioVizData::save(COutputStream& stream) const {
    BRT_TRY("", writeI32(stream, channel));
    BRT_TRY("", writeI32(stream, group));
    BRT_TRY("", writeI32(stream, stackIndex));
    BRT_TRY("", writeF64(stream, time));
    BRT_TRY("", writeI32(stream, slotIndex));
    return nullptr;
}

CError* CAudioVizData::load(CInputStream& stream) {
    BRT_TRY("", readI32(stream, channel));
    BRT_TRY("", readI32(stream, group));
    BRT_TRY("", readI32(stream, stackIndex));
    BRT_TRY("", readF64(stream, time));
    BRT_TRY("", readI32(stream, slotIndex));
    return nullptr;
}

std::unique_ptr<CAudioVizData> CAudioVizData::create(EVizType type) {
    switch (type) {
    case EVizType::kMeter: return std::make_unique<CAudioVizDataMeter>();
    case EVizType::kInfo: return std::make_unique<CAudioVizDataInfo>();
    case EVizType::kSpectrum: return std::make_unique<CAudioVizDataSpectrum>();
    case EVizType::kScope: return std::make_unique<CAudioVizDataVScope>();
    }
    return nullptr;
}

std::unique_ptr<CAudioVizData> CAudioVizData::clone() const {
    std::unique_ptr<CAudioVizData> copy;
    switch (type) {
    case EVizType::kMeter: copy.reset(new CAudioVizDataMeter(static_cast<const CAudioVizDataMeter&>(*this))); break;
    case EVizType::kInfo: copy.reset(new CAudioVizDataInfo(static_cast<const CAudioVizDataInfo&>(*this))); break;
    case EVizType::kSpectrum:
        copy.reset(new CAudioVizDataSpectrum(static_cast<const CAudioVizDataSpectrum&>(*this)));
        break;
    case EVizType::kScope: copy.reset(new CAudioVizDataVScope(static_cast<const CAudioVizDataVScope&>(*this))); break;
    }
    copy->m_next = nullptr;
    return copy;
}

CError* CAudioVizData::saveTagged(COutputStream& stream) const {
    CWriteSeqBuffer body(CWriteSeqBuffer::kStringBlockBytes, kLongestBytes);
    BRT_TRY("", save(body));
    BRT_TRY("", writeI32(stream, static_cast<std::int32_t>(type)));
    BRT_TRY("", writeI32(stream, body.size()));
    return body.writeTo(stream);
}

CError* CAudioVizData::loadTagged(std::unique_ptr<CAudioVizData>& record, CInputStream& stream) {
    record.reset();
    std::int32_t type = 0;
    int length = 0;
    BRT_TRY("", readI32(stream, type));
    BRT_TRY("", readCount(stream, length, kLongestBytes, 1));
    std::unique_ptr<CAudioVizData> read = create(static_cast<EVizType>(type));
    if (read == nullptr) return stream.skip(length);
    CByteBuffer body;
    body.setSize(length);
    BRT_TRY("", stream.read(body.data(), length));
    CMemoryReader reader(body.data(), length);
    BRT_TRY("", read->load(reader));
    record = std::move(read);
    return nullptr;
}

CError* CAudioVizDataMeter::save(COutputStream& stream) const {
    BRT_TRY("", CAudioVizData::save(stream));
    BRT_TRY("", writeF64(stream, level));
    return writeF64(stream, peak);
}

CError* CAudioVizDataMeter::load(CInputStream& stream) {
    BRT_TRY("", CAudioVizData::load(stream));
    BRT_TRY("", readF64(stream, level));
    return readF64(stream, peak);
}

CError* CAudioVizDataInfo::save(COutputStream& stream) const {
    BRT_TRY("", CAudioVizData::save(stream));
    BRT_TRY("", stream.writeString(text));
    return writeU32(stream, value);
}

CError* CAudioVizDataInfo::load(CInputStream& stream) {
    BRT_TRY("", CAudioVizData::load(stream));
    BRT_TRY("", stream.readString(text));
    return readU32(stream, value);
}

CAudioVizDataSpectrum::CAudioVizDataSpectrum(const CAudioVizDataSpectrum& other)
    : CAudioVizData(other),
      sampleRate(other.sampleRate),
      pointCount(other.pointCount),
      overlapCount(other.overlapCount),
      slopeDb(other.slopeDb),
      flags(other.flags) {
    bins.assign(other.bins);
}

CError* CAudioVizDataSpectrum::save(COutputStream& stream) const {
    BRT_TRY("", CAudioVizData::save(stream));
    BRT_TRY("", writeI32(stream, bins.count()));
    for (const double bin : bins) BRT_TRY("", writeF64(stream, bin));
    BRT_TRY("", writeF64(stream, sampleRate));
    BRT_TRY("", writeU32(stream, pointCount));
    BRT_TRY("", writeU32(stream, overlapCount));
    BRT_TRY("", writeF64(stream, slopeDb));
    return writeU32(stream, flags);
}

CError* CAudioVizDataSpectrum::load(CInputStream& stream) {
    BRT_TRY("", CAudioVizData::load(stream));
    int count = 0;
    BRT_TRY("", readCount(stream, count, kMostValues, 8));
    bins.setCount(count);
    for (double& bin : bins) BRT_TRY("", readF64(stream, bin));
    BRT_TRY("", readF64(stream, sampleRate));
    BRT_TRY("", readU32(stream, pointCount));
    BRT_TRY("", readU32(stream, overlapCount));
    BRT_TRY("", readF64(stream, slopeDb));
    return readU32(stream, flags);
}

CAudioVizDataVScope::CAudioVizDataVScope(const CAudioVizDataVScope& other) : CAudioVizData(other) {
    left.assign(other.left);
    right.assign(other.right);
}

CError* CAudioVizDataVScope::save(COutputStream& stream) const {
    BRT_TRY("", CAudioVizData::save(stream));
    BRT_TRY("", writeWords(stream, left));
    return writeWords(stream, right);
}

CError* CAudioVizDataVScope::load(CInputStream& stream) {
    BRT_TRY("", CAudioVizData::load(stream));
    BRT_TRY("", readWords(stream, left));
    return readWords(stream, right);
}

}  // namespace brt
