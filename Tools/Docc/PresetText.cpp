// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Docc/PresetText.h"

#include <algorithm>

namespace brt {
namespace {

constexpr std::string_view kBlanks = " \t\r";

std::string_view trimmed(std::string_view text) {
    const std::size_t start = text.find_first_not_of(kBlanks);
    if (start == std::string_view::npos) return text.substr(0, 0);
    return text.substr(start, text.find_last_not_of(kBlanks) + 1 - start);
}

class CPresetTextParser {
public:
    CPresetTextParser(const CSourceText& source, CDiagnostics& diagnostics)
        : m_text(source.bytes()), m_diagnostics(diagnostics) {}

    PresetText parse() {
        for (std::size_t start = 0; start < m_text.size();) {
            const std::size_t end = std::min(m_text.find('\n', start), m_text.size());
            const std::string_view line = trimmed(m_text.substr(start, end - start));
            start = end + 1;
            if (line.empty() || line.starts_with('#')) continue;
            if (line.starts_with('['))
                openSection(line);
            else
                addLine(line);
        }
        return std::move(m_result);
    }

private:
    std::size_t placeOf(std::string_view part) const { return static_cast<std::size_t>(part.data() - m_text.data()); }

    void openSection(std::string_view line) {
        PresetSection section;
        section.place = placeOf(line);
        if (!line.ends_with(']')) m_diagnostics.error(section.place, "']' is missing at the end of this line");
        section.name = trimmed(line.substr(1, line.size() - (line.ends_with(']') ? 2 : 1)));
        if (section.name.empty()) m_diagnostics.error(section.place, "a preset needs a name; write it as [NAME]");

        m_isInSettings = false;
        m_isInCommon = section.name == "*";
        if (m_isInCommon) {
            if (m_hasCommon || !m_result.presets.empty())
                m_diagnostics.error(section.place, "[*] stands once, before all presets");
            m_hasCommon = true;
            return;
        }
        for (const PresetSection& other : m_result.presets)
            if (other.name == section.name)
                m_diagnostics.error(section.place, "preset '" + std::string(section.name) +
                                                       "' stands here twice; give each a name of its own");
        m_result.presets.push_back(section);
    }

    void addLine(std::string_view text) {
        PresetLine line;
        const std::size_t sign = text.find('=');
        line.hasValue = sign != std::string_view::npos;
        line.key = trimmed(text.substr(0, sign));
        line.place = placeOf(text);
        if (line.hasValue) line.value = trimmed(text.substr(sign + 1));
        line.valuePlace = line.hasValue ? placeOf(line.value) : line.place;
        if (line.key.empty()) return m_diagnostics.error(line.place, "a key is missing before '='");
        if (m_isInSettings) {
            if (!line.hasValue)
                return m_diagnostics.error(
                    line.place,
                    "'" + std::string(line.key) + "' needs a value here; keys of presets stand below a [NAME]");
            m_result.settings.push_back(line);
            return;
        }
        std::vector<PresetLine>& lines = m_isInCommon ? m_result.common.lines : m_result.presets.back().lines;
        if (std::ranges::any_of(lines, [&](const PresetLine& other) { return other.key == line.key; }))
            return m_diagnostics.error(line.place, "key '" + std::string(line.key) + "' stands here twice");
        lines.push_back(line);
    }

    std::string_view m_text;
    CDiagnostics& m_diagnostics;
    PresetText m_result;
    bool m_isInSettings = true;
    bool m_isInCommon = false;
    bool m_hasCommon = false;
};

}  // namespace

PresetText parsePresetText(const CSourceText& source, CDiagnostics& diagnostics) {
    if (const std::size_t place = source.findUnusable(); place != CSourceText::npos) {
        diagnostics.error(place, "no preset can hold this byte: presets are UTF-8 text of characters up to U+FFFF");
        return {};
    }
    return CPresetTextParser(source, diagnostics).parse();
}

}  // namespace brt
