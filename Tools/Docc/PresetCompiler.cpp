// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Docc/PresetCompiler.h"

#include <algorithm>

#include "Audio/CAudioPresetBank.h"
#include "Audio/PresetStream.h"
#include "Tools/Docc/CPresetValues.h"
#include "Tools/Docc/ThrowError.h"
#include "Tools/NearName.h"

namespace brt {
namespace {

enum class EPresetFileKind { kUnknown, kBank, kList };

class CPresetCompiler {
public:
    CPresetCompiler(const CObject& shared, CDiagnostics& diagnostics)
        : m_diagnostics(diagnostics), m_values(shared, diagnostics) {}

    std::vector<std::uint8_t> compile(const PresetText& text) {
        for (const PresetLine& line : text.settings) readSetting(line);
        requireSettings();
        if (text.presets.empty()) m_diagnostics.error(0, "there is no preset; each begins with its name, as [Default]");
        // Each preset would tell the same of them.
        CByteBuffer ignored;
        bool isCommonSound = true;
        for (const PresetLine& line : text.common.lines)
            isCommonSound = m_values.compile(ignored, line, "") && isCommonSound;
        for (const PresetSection& section : text.presets) {
            CAudioPreset& preset = *m_bank->presets().append(new CAudioPreset);
            preset.setName(CString(m_id).append(":").append(CString::fromUtf8(section.name)));
            if (isCommonSound) add(preset, text.common.lines, section.name);
            add(preset, section.lines, section.name);
        }
        return m_diagnostics.hasErrors() ? std::vector<std::uint8_t>() : packed();
    }

private:
    static constexpr std::string_view kSettings[] = {"kind", "name", "id", "definitions", "groups", "numbers"};

    void readSetting(const PresetLine& line) {
        if (line.key == "numbers") return m_values.addNumbers(line);
        if (std::ranges::find(m_seen, line.key) != m_seen.end())
            return m_diagnostics.error(line.place, "'" + std::string(line.key) + "' stands here twice");
        m_seen.push_back(line.key);
        if (line.key == "kind")
            readKind(line);
        else if (line.key == "name")
            m_bank->setName(CString::fromUtf8(line.value));
        else if (line.key == "id")
            readId(line);
        else if (line.key == "definitions")
            m_values.setDefinitions(line);
        else if (line.key == "groups")
            m_values.setGroups(line);
        else
            tellUnknown(line);
    }

    void readKind(const PresetLine& line) {
        if (line.value == "bank")
            m_kind = EPresetFileKind::kBank;
        else if (line.value == "list")
            m_kind = EPresetFileKind::kList;
        else
            m_diagnostics.error(line.valuePlace, "'" + std::string(line.value) + "' is neither 'bank' nor 'list'");
    }

    void readId(const PresetLine& line) {
        m_id = CString::fromUtf8(line.value);
        if (m_id.isEmpty() || m_id.find(u':') >= 0) m_diagnostics.error(line.valuePlace, "an id is a word without ':'");
    }

    void tellUnknown(const PresetLine& line) {
        const CString key = CString::fromUtf8(line.key);
        CNearName near(key);
        for (const std::string_view known : kSettings) near.consider(CString::fromUtf8(known));
        m_diagnostics.error(line.place, "unknown setting '" + std::string(line.key) + "'" + near.question());
    }

    void requireSettings() {
        for (const std::string_view needed : {"kind", "id", "definitions"})
            if (std::ranges::find(m_seen, needed) == m_seen.end())
                m_diagnostics.error(0, "'" + std::string(needed) + " = ...' is missing before the presets");
    }

    void add(CAudioPreset& preset, const std::vector<PresetLine>& lines, std::string_view presetName) {
        for (const PresetLine& line : lines) {
            CByteBuffer block;
            if (m_values.compile(block, line, presetName))
                preset.entries().findOrInsert(CString::fromUtf8(line.key)).assign(block.data(), block.size());
        }
    }

    std::vector<std::uint8_t> packed() const {
        CWriteSeqBuffer file(CWriteSeqBuffer::kStateBlockBytes);
        if (m_kind == EPresetFileKind::kBank) {
            throwIf(m_bank->savePacked(file));
        } else {
            CWriteSeqBuffer list(CWriteSeqBuffer::kStateBlockBytes);
            throwIf(CAudioPresetBank::saveList(list, m_banks));
            CByteBuffer bytes;
            list.moveTo(bytes);
            throwIf(file.writeCompressedData(bytes, appDataTag::kPresetList));
        }
        CByteBuffer bytes;
        file.moveTo(bytes);
        return {bytes.data(), bytes.data() + bytes.size()};
    }

    CDiagnostics& m_diagnostics;
    CPresetValues m_values;
    EPresetFileKind m_kind = EPresetFileKind::kUnknown;
    CString m_id;
    COwnedArray<CAudioPresetBank> m_banks;
    CAudioPresetBank* const m_bank = m_banks.append(new CAudioPresetBank);
    std::vector<std::string_view> m_seen;
};

}  // namespace

std::vector<std::uint8_t> compilePresets(const CSourceText& source, const CObject& shared, CDiagnostics& diagnostics) {
    const PresetText text = parsePresetText(source, diagnostics);
    return CPresetCompiler(shared, diagnostics).compile(text);
}

}  // namespace brt
