// SPDX-License-Identifier: LicenseRef-Halyard
// Bytes that a host hands back as an instance's state. The first byte tells what for: bit 0, a preset and not a bank;
// bit 1, packed properly first, so that the search gets behind the checks of the packing.
#include <vector>

#include "Audio/VST/CAudioWrapperVST.h"
#include "Core/CByteBuffer.h"
#include "Core/CError.h"
#include "Core/CWriteSeqBuffer.h"
#include "Fuzz/FuzzTarget.h"

namespace brt::fuzz {
namespace {

using Bytes = std::vector<std::uint8_t>;

std::intptr_t answer(AEffect*, std::int32_t opcode, std::int32_t, std::intptr_t, void*, float) {
    return opcode == audioMasterVersion ? 2400 : 0;
}

// One for all inputs: each meets what those before it have left.
AEffect& effect() {
    setErrorWindow([](const ErrorReport&) { return true; });  // nobody reads a million refusals
    static AEffect* const s_effect = makeEffect(&answer);
    require(s_effect != nullptr, "the plug-in can be made");
    return *s_effect;
}

std::intptr_t call(std::int32_t opcode, std::int32_t index, std::intptr_t value, void* ptr) {
    return effect().dispatcher(&effect(), opcode, index, value, ptr, 0.0f);
}

Bytes state(bool isPreset) {
    void* data = nullptr;
    const std::intptr_t size = call(effGetChunk, isPreset, 0, &data);
    require(size > CAudioWrapper::kStatePrefixBytes, "there is always a state");
    const auto* const bytes = static_cast<const std::uint8_t*>(data);
    return {bytes, bytes + size};
}

bool setState(Bytes bytes, bool isPreset) {
    return call(effSetChunk, isPreset, static_cast<std::intptr_t>(bytes.size()), bytes.data()) != 0;
}

Bytes packed(const std::uint8_t* data, std::size_t size, bool isPreset) {
    CByteBuffer content;
    content.assign(data, static_cast<int>(size));
    CWriteSeqBuffer chain(1024);
    constexpr std::uint8_t kPrefix[CAudioWrapper::kStatePrefixBytes] = {};
    require(!discardError(chain.write(kPrefix, CAudioWrapper::kStatePrefixBytes)), "a prefix can be written");
    require(!discardError(chain.writeCompressedData(content, isPreset ? blockTag("aprs") : blockTag("abnk"))),
            "bytes can be packed");
    CByteBuffer result;
    chain.moveTo(result);
    return {result.data(), result.data() + result.size()};
}

void requireWhole() {
    for (std::int32_t i = 0; i < effect().numParams; ++i) {
        const float value = effect().getParameter(&effect(), i);
        require(value >= 0.0f && value <= 1.0f, "a parameter is from 0 to 1");
    }
    effect().processReplacing(&effect(), nullptr, nullptr, 16);
}

}  // namespace
}  // namespace brt::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace brt::fuzz;
    if (size == 0) return 0;
    const bool isPreset = (data[0] & 1) != 0;
    const bool isPacked = (data[0] & 2) != 0;
    const Bytes before = state(false);
    const bool isTaken =
        setState(isPacked ? packed(data + 1, size - 1, isPreset) : Bytes(data + 1, data + size), isPreset);
    if (isTaken) {
        const Bytes after = state(isPreset);
        require(setState(after, isPreset), "what was loaded can be loaded again");
        require(state(isPreset) == after, "a state is stable");
    } else {
        require(state(false) == before, "what is refused changes nothing");
    }
    requireWhole();
    return 0;
}
