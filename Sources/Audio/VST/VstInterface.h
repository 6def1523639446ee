// SPDX-License-Identifier: LicenseRef-Halyard
// The binary interface of VST 2 as it was published: the record that a host and a plug-in share, what travels through
// its dispatcher, and the numbers of the calls in both directions. Only what this plug-in or its tests use has a name.
//
// Layout is that of the system's C compiler; the sizes below hold for 64-bit systems. Reserved room is zero.
// Threads: plain data.
#pragma once

#include <cstddef>
#include <cstdint>

namespace brt {

struct AEffect;

// Four characters as a number, the first one uppermost.
constexpr std::int32_t fourCharacters(const char (&text)[5]) noexcept {
    std::uint32_t code = 0;
    for (int i = 0; i < 4; ++i) code = code << 8 | static_cast<unsigned char>(text[i]);
    return static_cast<std::int32_t>(code);
}

// From the plug-in to the host. The record is null as long as the host doesn't have it.
using audioMasterCallback = std::intptr_t (*)(AEffect* effect, std::int32_t opcode, std::int32_t index,
                                              std::intptr_t value, void* ptr, float opt);

using AEffectDispatcherProc = std::intptr_t (*)(AEffect* effect, std::int32_t opcode, std::int32_t index,
                                                std::intptr_t value, void* ptr, float opt);
using AEffectProcessProc = void (*)(AEffect* effect, float** inputs, float** outputs, std::int32_t frames);
using AEffectProcessDoubleProc = void (*)(AEffect* effect, double** inputs, double** outputs, std::int32_t frames);
using AEffectSetParameterProc = void (*)(AEffect* effect, std::int32_t index, float value);
using AEffectGetParameterProc = float (*)(AEffect* effect, std::int32_t index);

constexpr std::int32_t kEffectMagic = fourCharacters("VstP");
constexpr std::int32_t kIdentifyMagic = fourCharacters("NvEf");

// One plug-in instance as its host sees it.
struct AEffect {
    std::int32_t magic;
    AEffectDispatcherProc dispatcher;
    AEffectProcessProc process;  // adds to the outputs; no longer in use
    AEffectSetParameterProc setParameter;
    AEffectGetParameterProc getParameter;
    std::int32_t numPrograms;
    std::int32_t numParams;
    std::int32_t numInputs;
    std::int32_t numOutputs;
    std::int32_t flags;
    std::intptr_t hostReserved[2];
    std::int32_t initialDelay;  // latency in samples
    std::int32_t unused[2];
    float ioRatio;
    void* object;  // the plug-in's
    void* user;    // the host's
    std::int32_t uniqueID;
    std::int32_t version;
    AEffectProcessProc processReplacing;
    AEffectProcessDoubleProc processDoubleReplacing;
    char future[56];
};

static_assert(sizeof(void*) != 8 || sizeof(AEffect) == 192);
static_assert(sizeof(void*) != 8 || offsetof(AEffect, dispatcher) == 8);
static_assert(sizeof(void*) != 8 || offsetof(AEffect, numPrograms) == 40);
static_assert(sizeof(void*) != 8 || offsetof(AEffect, flags) == 56);
static_assert(sizeof(void*) != 8 || offsetof(AEffect, hostReserved) == 64);
static_assert(sizeof(void*) != 8 || offsetof(AEffect, initialDelay) == 80);
static_assert(sizeof(void*) != 8 || offsetof(AEffect, ioRatio) == 92);
static_assert(sizeof(void*) != 8 || offsetof(AEffect, object) == 96);
static_assert(sizeof(void*) != 8 || offsetof(AEffect, uniqueID) == 112);
static_assert(sizeof(void*) != 8 || offsetof(AEffect, processReplacing) == 120);
static_assert(sizeof(void*) != 8 || offsetof(AEffect, processDoubleReplacing) == 128);

enum VstAEffectFlags : std::int32_t {
    effFlagsHasEditor = 1 << 0,
    effFlagsCanReplacing = 1 << 4,
    effFlagsProgramChunks = 1 << 5,
    effFlagsCanDoubleReplacing = 1 << 12,
};

// From the host to the plug-in.
enum AEffectOpcodes : std::int32_t {
    effOpen = 0,
    effClose = 1,
    effSetProgram = 2,       // value
    effGetProgram = 3,       // result
    effSetProgramName = 4,   // ptr: text
    effGetProgramName = 5,   // ptr: room for kVstMaxProgNameLen
    effGetParamLabel = 6,    // index; ptr: room for kVstMaxParamStrLen
    effGetParamDisplay = 7,  // likewise
    effGetParamName = 8,     // likewise
    effSetSampleRate = 10,   // opt, in Hz
    effSetBlockSize = 11,    // value, in frames
    effMainsChanged = 12,    // value: 0 suspends, else resumes
    effEditGetRect = 13,     // ptr: ERect**
    effEditOpen = 14,        // ptr: the host's window
    effEditClose = 15,
    effEditIdle = 19,
    effIdentify = 22,
    effGetChunk = 23,                 // ptr: void**; index: 0 bank, 1 program; result: bytes
    effSetChunk = 24,                 // ptr: bytes; value: how many; index as above
    effProcessEvents = 25,            // ptr: VstEvents
    effCanBeAutomated = 26,           // index
    effString2Parameter = 27,         // index; ptr: text
    effGetProgramNameIndexed = 29,    // index; ptr: room for kVstMaxProgNameLen
    effGetPlugCategory = 35,          // result: VstPlugCategory
    effSetSpeakerArrangement = 42,    // value, ptr: VstSpeakerArrangement of the inputs, of the outputs
    effGetEffectName = 45,            // ptr: room for kVstMaxEffectNameLen
    effGetVendorString = 47,          // ptr: room for kVstMaxVendorStrLen
    effGetProductString = 48,         // ptr: room for kVstMaxProductStrLen
    effGetVendorVersion = 49,         // result
    effVendorSpecific = 50,           // all four, as host and plug-in agree
    effCanDo = 51,                    // ptr: text
    effGetTailSize = 52,              // result
    effGetVstVersion = 58,            // result
    effGetCurrentMidiProgram = 63,    // result
    effGetSpeakerArrangement = 69,    // value, ptr: VstSpeakerArrangement** of the inputs, of the outputs
    effSetTotalSampleToProcess = 73,  // value
    effSetProcessPrecision = 77,      // value: VstProcessPrecision
};

// From the plug-in to the host.
enum AudioMasterOpcodes : std::int32_t {
    audioMasterAutomate = 0,  // index, opt
    audioMasterVersion = 1,   // result
    audioMasterGetTime = 7,   // value: VstTimeInfoFlags that are wanted; result: VstTimeInfo* or 0
    audioMasterIOChanged = 13,
    audioMasterSizeWindow = 15,              // index: width; value: height
    audioMasterGetCurrentProcessLevel = 23,  // result: VstProcessLevels
    audioMasterGetVendorString = 32,         // ptr: room for kVstMaxVendorStrLen
    audioMasterGetProductString = 33,        // ptr: room for kVstMaxProductStrLen
    audioMasterUpdateDisplay = 42,
    audioMasterBeginEdit = 43,  // index
    audioMasterEndEdit = 44,    // index
};

// Room for texts, with the NUL.
constexpr int kVstMaxProgNameLen = 24;
constexpr int kVstMaxParamStrLen = 8;
constexpr int kVstMaxEffectNameLen = 32;
constexpr int kVstMaxVendorStrLen = 64;
constexpr int kVstMaxProductStrLen = 64;

enum VstPlugCategory : std::int32_t {
    kPlugCategUnknown = 0,
    kPlugCategEffect = 1,
    kPlugCategSynth = 2,
    kPlugCategAnalysis = 3,
    kPlugCategMastering = 4,
    kPlugCategSpacializer = 5,
    kPlugCategRoomFx = 6,
    kPlugSurroundFx = 7,
    kPlugCategRestoration = 8,
    kPlugCategOfflineProcess = 9,
    kPlugCategShell = 10,
    kPlugCategGenerator = 11,
};

enum VstProcessPrecision : std::int32_t { kVstProcessPrecision32 = 0, kVstProcessPrecision64 = 1 };
enum VstProcessLevels : std::int32_t { kVstProcessLevelOffline = 4 };

// The events of a block. The array has as many places as `numEvents` says.
struct VstEvent {
    std::int32_t type;
    std::int32_t byteSize;
    std::int32_t deltaFrames;  // from the block's start
    std::int32_t flags;
    char data[16];
};

constexpr std::int32_t kVstMidiType = 1;

struct VstMidiEvent {
    std::int32_t type;
    std::int32_t byteSize;
    std::int32_t deltaFrames;
    std::int32_t flags;
    std::int32_t noteLength;
    std::int32_t noteOffset;
    unsigned char midiData[4];
    char detune;
    unsigned char noteOffVelocity;
    char reserved[2];
};
static_assert(sizeof(VstEvent) == 32 && sizeof(VstMidiEvent) == 32);

struct VstEvents {
    std::int32_t numEvents;
    std::intptr_t reserved;
    VstEvent* events[2];
};
static_assert(sizeof(void*) != 8 || offsetof(VstEvents, events) == 16);

struct VstTimeInfo {
    double samplePos;
    double sampleRate;
    double nanoSeconds;
    double ppqPos;
    double tempo;  // quarter notes a minute
    double barStartPos;
    double cycleStartPos;
    double cycleEndPos;
    std::int32_t timeSigNumerator;
    std::int32_t timeSigDenominator;
    std::int32_t smpteOffset;
    std::int32_t smpteFrameRate;
    std::int32_t samplesToNextClock;
    std::int32_t flags;  // what holds, and what of the above is valid
};
static_assert(offsetof(VstTimeInfo, tempo) == 32 && offsetof(VstTimeInfo, flags) == 84);

enum VstTimeInfoFlags : std::int32_t {
    kVstTransportPlaying = 1 << 1,
    kVstTransportCycleActive = 1 << 2,
    kVstTransportRecording = 1 << 3,
    kVstTempoValid = 1 << 10,
};

struct VstSpeakerProperties {
    float azimuth;
    float elevation;
    float radius;
    float reserved;
    char name[64];
    std::int32_t type;
    char future[28];
};
static_assert(sizeof(VstSpeakerProperties) == 112);

// One record for each channel, though the published form has room for 8.
struct VstSpeakerArrangement {
    std::int32_t type;
    std::int32_t numChannels;
    VstSpeakerProperties speakers[8];
};
static_assert(offsetof(VstSpeakerArrangement, speakers) == 8);

// A window's place in pixels.
struct ERect {
    std::int16_t top;
    std::int16_t left;
    std::int16_t bottom;
    std::int16_t right;
};

}  // namespace brt
