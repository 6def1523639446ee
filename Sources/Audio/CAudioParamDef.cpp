// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioParamDef.h"

#include "Audio/CAudioParamConverter.h"
#include "Core/CClassInfo.h"
#include "Core/NumberText.h"

namespace brt {

void CAudioParamDef::describeClass(CClassInfo& info) {
    CObject::describeClass(info);
    static constexpr CAttrInfo kAttributes[] = {
        attr::integer("element-size").required().between(1, kAudioElementSizeLimit).help("sub-values of one element"),
        attr::word("data-type", "float string raw").byDefault("float").help("what the values are"),
        attr::flag("is-single-group").byDefault("false").help("one set of values for all channel groups"),
        attr::flag("is-single-element").byDefault("false").help("one element a group"),
        attr::flag("is-persistent").byDefault("false").help("stays with the session when presets change"),
        attr::flag("is-storable").byDefault("false").help("stands in presets"),
        attr::flag("is-global").byDefault("false").help("one for all instances of its process"),
        attr::text("visual-name").help("for the user"),
        attr::text("param-registry").help("a registry whose presets follow the value"),
        attr::object("converter")
            .numbered()
            .ofClass<CAudioParamConverter>()
            .help("of the first sub-value; with a number from 2 on, of a further one"),
        attr::text("min-values").help("in the converters' text form, parted by blanks"),
        attr::text("max-values").help("in the converters' text form, parted by blanks"),
        attr::text("state-names").help("as \"Off;On\" or \"Stereo|St;Mono|Mo\", or \"@\" and a key of the settings"),
        attr::text("switch-values").help("values with a name of their own, parted by commas"),
        attr::text("switch-names").help("their names, parted by commas"),
        attr::text("def-values").help("elements parted by commas, groups by semicolons"),
    };
    info.addAttributes(kAttributes);
}

CError* CAudioParamDef::init() {
    BRT_TRY(getFullName(), CObject::init());
    BRT_TRY(getFullName(), readFormat());
    readFlagsAndNames();
    BRT_TRY(getFullName(), m_info.parseConverterNames(*this));
    BRT_TRY(getFullName(),
            m_info.parseMinMaxValues(getAttrString("min-values"), getAttrString("max-values"), getFullName()));
    BRT_TRY(getFullName(), m_info.parseStateNames(getAttrString("state-names"), getFullName()));
    m_info.parseSwitches(getAttrString("switch-values"), getAttrString("switch-names"));
    BRT_TRY(getFullName(), m_info.defaults.parseDefValues(m_info, getAttrString("def-values"), getFullName()));
    if (!m_info.defaults.isValid())
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CAudioParamDef_init_NoDefValues No default values specified.");
    return nullptr;
}

CError* CAudioParamDef::readFormat() {
    CAudioParamFormat& format = m_info.format;
    format.elementSize = getAttrInt("element-size");
    if (format.elementSize < 1 || format.elementSize > kAudioElementSizeLimit)
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CAudioParamDef_init_InvalidElementSize Invalid element size %1 specified.",
                         format.elementSize);
    const CStringView dataType = getAttrString("data-type");
    if (dataType == "string") format.dataType = EAudioDataType::kString;
    if (dataType == "raw") format.dataType = EAudioDataType::kRaw;
    if (!format.isFloat() && format.elementSize > 1)
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CAudioParamDef_init_ElementSizeStr Invalid element size %1 for non-float data "
                         "specified.",
                         format.elementSize);
    format.isSingleGroup = getAttrBool("is-single-group");
    format.isSingleElement = getAttrBool("is-single-element");
    return nullptr;
}

void CAudioParamDef::readFlagsAndNames() {
    m_info.isPersistent = getAttrBool("is-persistent");
    m_info.isStorable = getAttrBool("is-storable") && !m_info.isPersistent;
    m_info.isGlobal = getAttrBool("is-global") || m_info.isStorable || m_info.isPersistent;
    m_info.visualName = getAttrString("visual-name");
    m_info.name = getFullName();
    if (m_info.format.isFloat() && m_info.format.elementSize == 1)
        m_info.registryName = getAttrString("param-registry");
    for (int i = 0; i < m_info.format.elementSize; ++i) {
        CString attrName = "converter";
        if (i > 0) attrName += integerText(i + 1);
        m_info.converterNames.append(getAttrString(attrName));
    }
}

}  // namespace brt
