// SPDX-License-Identifier: LicenseRef-Halyard
// Turns the values of a preset's text into the blocks that presets hold, by the definitions of the parameters.
// Owner: the run that compiles. Threads: one at a time.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "Audio/Converters/CAudioParamConverterReal.h"
#include "Tools/Docc/PresetText.h"

namespace brt {

class CByteBuffer;

class CPresetValues {
public:
    CPresetValues(const CObject& shared, CDiagnostics& diagnostics) : m_shared(shared), m_diagnostics(diagnostics) {}

    // Settings of the text. Numbers belong to keys of the definitions that are set.
    void setDefinitions(const PresetLine& line);
    void setGroups(const PresetLine& line);
    void addNumbers(const PresetLine& line);

    // The block of a line. False if it is reported as wrong; then `block` is what it was.
    bool compile(CByteBuffer& block, const PresetLine& line, std::string_view presetName);

private:
    bool fail(const PresetLine& line, const std::string& message);
    const CAudioParamInfo* findDefinition(const PresetLine& line);
    bool parse(CAudioParamStorage& storage, const CAudioParamInfo& info, const PresetLine& line,
               const std::string& value);
    bool checkElement(const CAudioParamInfo& info, const PresetLine& line, const std::string& element);
    void spreadOverGroups(CAudioParamStorage& storage) const;

    const CObject& m_shared;
    CDiagnostics& m_diagnostics;
    const CObject* m_definitions = nullptr;
    int m_groupCount = 1;
    CAudioParamConverterReal m_plainNumber;
    std::map<std::string, std::unique_ptr<CAudioParamInfo>, std::less<>> m_numbers;  // of keys without a definition
};

}  // namespace brt
