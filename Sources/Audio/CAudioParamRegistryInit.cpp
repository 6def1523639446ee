// SPDX-License-Identifier: LicenseRef-Halyard
// How a registry begins: attributes, programs of the product, the user's own default.
#include "Audio/CAudioParamRegistry.h"

#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamRegistry_p.h"
#include "Core/CAppData.h"
#include "Core/CClassInfo.h"
#include "Core/CMemoryReader.h"
#include "Core/CResourceReader.h"

namespace brt {

void CAudioParamRegistry::describeClass(CClassInfo& info) {
    CObject::describeClass(info);
    static constexpr CAttrInfo kAttributes[] = {
        attr::text("id").required().help("what the names of its presets begin with"),
        attr::text("hierarchy").required().help("what the names of its parameters begin with"),
        attr::text("def-name-remap")
            .help("\"from=to\", parted by blanks: where the definition of a parameter is that nobody has named yet"),
        attr::flag("is-master").byDefault("false").help("owns the programs; one an instance"),
        attr::flag("is-enumerated").byDefault("false").help("a parameter's value selects a stored preset"),
        attr::flag("is-element-enum").byDefault("false").help("each element of that parameter selects its own"),
        attr::flag("is-global-param-storable").byDefault("false").help("presets hold global parameters too"),
        attr::text("preset-naming").help("first words of its steps in the history"),
        attr::object("param-collector").required().ofClass<CAudioParamCollector>().help("owns the parameters"),
        attr::object("param-undo").help("the history; missing or of another kind: there is none"),
        attr::text("preset-name-param").help("full name of the text that shows the preset's name"),
        attr::text("group-names-param").help("full name of the texts with the names of groups"),
        attr::resource("file").help("master: resource or file with the bank of the product"),
        attr::text("store-name").help("is-enumerated: setting with the bank; global with a \"/\" ahead, else local"),
    };
    info.addAttributes(kAttributes);
}

CAudioParamRegistry::CAudioParamRegistry() = default;
CAudioParamRegistry::~CAudioParamRegistry() = default;

CError* CAudioParamRegistry::init() {
    BRT_TRY(getFullName(), CObject::init());
    m_name = getFullName();
    m_hierarchy = CString(getAttrString("hierarchy")).append(".");
    BRT_TRY(getFullName(), readNameRemap());
    m_isMaster = getAttrBool("is-master");
    m_isEnumerated = getAttrBool("is-enumerated");
    m_isElementEnum = getAttrBool("is-element-enum");
    m_id = getAttrString("id");
    m_isGlobalParamStorable = getAttrBool("is-global-param-storable");
    BRT_TRY(getFullName(), findObjectByAttr("param-collector", m_collector));
    m_presetNaming = getAttrString("preset-naming");
    const CStringView undoPath = getAttrString("param-undo");
    if (!undoPath.isEmpty()) m_undo = dynamic_cast<CAudioParamUndo*>(findObject(undoPath));
    findNamedParams();
    if (m_isMaster) loadPrograms();
    if (!m_isMaster && m_isEnumerated) BRT_TRY(getFullName(), loadEnumeratedBank());
    return nullptr;
}

CError* CAudioParamRegistry::readNameRemap() {
    const CString text = getAttrString("def-name-remap");
    CStringList fields;
    text.split(fields, u' ', true, true);
    for (const CString* const field : fields) {
        CStringList parts;
        field->split(parts, u'=', false, true);
        if (parts.count() != 2)
            return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                             "@brtstr_CAudioParamRegistry_init_InvalidRemap Invalid remapping string '%1' defined.",
                             text);
        CNameRemap& remap = *m_nameRemap.append(new CNameRemap);
        remap.from = parts[0];
        remap.to = parts[1];
    }
    return nullptr;
}

void CAudioParamRegistry::findNamedParams() {
    const CRankedLock lock(m_programSection);
    const CStringView presetName = getAttrString("preset-name-param");
    const CStringView groupNames = getAttrString("group-names-param");
    if (!presetName.isEmpty()) {
        m_presetNameParam = &m_collector->getParam(presetName);
        m_presetNameParam->makeDependent();
    }
    if (!groupNames.isEmpty()) m_groupNamesParam = &m_collector->getParam(groupNames);
}

// Without a bank that can be read there is one program, which is empty.
void CAudioParamRegistry::loadPrograms() {
    const CRankedLock lock(m_programSection);
    const CStringView file = getAttrString("file");
    if (!file.isEmpty()) {
        CResourceReader reader;
        CError* error = reader.open(file);
        if (error == nullptr) error = m_rom.loadPacked(reader);
        if (error == nullptr) m_session.assign(m_rom);
        logError(error);
        discardError(error);  // logged: an instance without programs beats none
    }
    m_rom.setName("Factory ROM");
    m_session.setName("Session Bank");
    if (m_session.count() == 0) m_session.presets().append(new CAudioPreset)->setName(CString(m_id).append(":Default"));
    for (int i = 0; i < sessionCount(); ++i) m_parked.append(new CParkedHistory);
    loadDefaultPreset();
}

// The user may have saved a preset that every instance begins with.
void CAudioParamRegistry::loadDefaultPreset() {
    CByteBuffer bytes;
    CAppData::local().getData("default-preset", bytes, appDataTag::kPreset);
    if (bytes.isEmpty()) return;
    CMemoryReader reader(bytes.data(), bytes.size());
    CAudioPreset preset;
    if (discardError(preset.load(reader))) return;  // the product's own default stays
    // A program with another id would make a bank that can be saved and not loaded.
    if (!isCompatible(preset)) return;
    m_session[0].assign(preset);
    m_isUserDefaultLoaded = true;
}

CError* CAudioParamRegistry::loadEnumeratedBank() {
    CStringView storeName = getAttrString("store-name");
    if (storeName.isEmpty()) return nullptr;
    const bool isGlobal = storeName.startsWith("/");
    if (isGlobal) storeName = storeName.slice(1);
    CByteBuffer bytes;
    (isGlobal ? CAppData::global() : CAppData::local()).getData(storeName, bytes, appDataTag::kPresetList);
    if (bytes.isEmpty()) return nullptr;
    CMemoryReader reader(bytes.data(), bytes.size());
    COwnedArray<CAudioPresetBank> banks;
    BRT_TRY(storeName, CAudioPresetBank::loadList(reader, banks));
    if (!banks.isEmpty()) m_enumeratedBank = banks.take(0);
    return nullptr;
}

CError* CAudioParamRegistry::initDone() {
    BRT_TRY(getFullName(), CObject::initDone());
    if (m_presetNameParam != nullptr) m_nameListener.attach(m_collector, CUpdateFilter(m_presetNameParam));
    m_collector->addRegistry(*this);
    return nullptr;
}

void CAudioParamRegistry::releaseLinks() {
    m_nameListener.detach();
    if (m_collector != nullptr) {
        m_collector->removeRegistry(*this);
        const CRankedLock lock(m_paramsSection);
        mergePending();
        for (const auto& [key, param] : m_params) param->removeRegistry(*this);
    }
    CObject::releaseLinks();
}

// All parameters have been offered: the first program's values are what the instance begins with, and what a reset
// means.
void CAudioParamRegistry::finish() {
    if (!m_isMaster) return;
    const CRankedLock lock(m_programSection);
    applyOwnPreset(m_session[0], {}, true, nullptr);
    applyOwnPreset(m_session[0], {.toDefaults = true}, false, nullptr);
    if (m_isUserDefaultLoaded) return;
    if (CAudioParam* const instanceName = m_collector->findParam(fullName("instance-name")))
        instanceName->resetToDefault(0, 0, {.source = this});
}

}  // namespace brt
