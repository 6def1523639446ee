// SPDX-License-Identifier: LicenseRef-Halyard
// Turns the state of all parameters below one name into a preset, and a preset back into state. One registry of an
// instance, the master, covers nearly everything and owns the programs that a host sees: a bank that comes with the
// product, and a copy of it that the session works on. The others cover one section each.
//
// A preset is read and checked as a whole before anything is written. Then the locks of all parameters that it writes
// are held until the batch of changes is on its way, so the audio side hears all of it or nothing, and never ends with
// other values than everybody else.
//
// The preset of the current program is stale: the live state comes into it when the program is left or saved.
//
// Owner: the instance's tree. Threads: any but the audio thread.
// Locks, in order: programs; the history; the parameter map; pending parameters; parameters; program names, a leaf.
#pragma once

#include <memory>
#include <optional>

#include "Audio/CAudioParamRegistryBase.h"
#include "Audio/CAudioParamRegistryNameListener.h"
#include "Audio/CAudioParamUndo.h"
#include "Audio/CAudioPresetBank.h"
#include "Core/CUpdateNotifier.h"

namespace brt {

class CAudioRoutingInfoProvider;
struct CPresetPlan;
struct CPresetPlace;

// Listeners on the notifier are told, with the sender, when the names of programs or the current one have changed.
class CAudioParamRegistry : public CObject, public CUpdateNotifier, public CAudioParamRegistryBase {
public:
    static constexpr int kCurrent = -1;  // stands for the index of the current program

    static void describeClass(CClassInfo& info);
    CAudioParamRegistry();
    ~CAudioParamRegistry() override;
    [[nodiscard]] CError* init() override;
    [[nodiscard]] CError* initDone() override;
    void releaseLinks() override;

    // The registry.
    // What the names of its presets begin with, up to the ":".
    const CString& id() const noexcept { return m_id; }
    bool isMaster() const noexcept { return m_isMaster; }
    // Whether the preset is one of a registry like this.
    bool isCompatible(const CAudioPreset& preset) const;
    // Whether presets hold such a parameter; null for one without a definition.
    bool isStored(const CAudioParamInfo* info, bool includePersistent) const noexcept;
    // [init] Fits routing parameters to the host behind each preset. Not owned; null: nobody does.
    void setRoutingProvider(CAudioRoutingInfoProvider* provider) noexcept { m_routingProvider = provider; }

    // Programs. Of a registry that is no master there are none, and changes do nothing.
    int getProgramCount() const noexcept;
    int getCurrentProgram() const;
    // Does nothing for an index that is none, or the current one. `source` is told to listeners.
    void setCurrentProgram(int index, const void* source);
    // Full names; empty for an index that is none.
    CString getCurrentProgramName() const;
    CString getProgramName(int index) const;
    // Full names of the session's presets, or of those that came with the product. Gives the current program's index.
    int listPresetNames(CStringList& names, bool isFactory) const;
    // `name` is without the id. One step of the history for the current program.
    void renamePreset(int index, CStringView name, const void* source);

    // Activating. One step of the history each. On failure nothing has changed.
    // A preset, for all groups (-1) or one.
    [[nodiscard]] CError* activatePreset(CInputStream& stream, bool includePersistent, int group);
    void activateFactoryPreset(int index);
    // As many of the session's presets as the bank has; histories of those go, and both sides of A/B are one again.
    [[nodiscard]] CError* activateBank(CInputStream& stream, bool includePersistent);
    // All parameters that presets hold go back to what a reset means.
    void masterReset();
    // What a reset means from now on. One that can't be read, or of another registry, changes nothing.
    void setDefaultPreset(CInputStream& stream);

    // Saving. `index` and `isFactory` are for masters; `group` is for the others, -1 for all.
    [[nodiscard]] CError* acquirePreset(bool isFactory, int index, int group, COutputStream& stream);
    [[nodiscard]] CError* acquireBank(bool isFactory, COutputStream& stream);

    // A/B. Live state and history change places with those of the other side; the other side becomes as this one.
    void exchangeShadowPreset();
    void updateShadowPreset();

    // For the collector.
    CStringView registryName() const override { return m_name; }
    CStringView hierarchy() const override { return m_hierarchy; }
    bool isEnumerated() const override { return m_isEnumerated; }
    bool offerParam(CStringView fullName, CAudioParam& param) override;
    void finish() override;
    // Under the parameter's lock, so the preset is applied once the thread holds no lock any more; it is no part of the
    // change's own step of the history.
    void followParam(CAudioParam& param, const CAudioParamUpdate& update,
                     const CAudioParamChangeContext& context) override;
    void onUserChange(CAudioParam& param, int group, const CAudioParamChangeContext& context) override;

private:
    friend class CAudioParamRegistryNameListener;
    class CNotice;
    class CFollowCall;

    struct CNameRemap;
    struct CPendingParam;
    struct CParkedHistory;

    // Initialisation.
    [[nodiscard]] CError* readNameRemap();
    void findNamedParams();
    void loadPrograms();
    void loadDefaultPreset();
    [[nodiscard]] CError* loadEnumeratedBank();

    // Parameters.
    void mergePending() BRT_REQUIRES(m_paramsSection);
    const CAudioParamInfo* findDefinition(CStringView paramName) const;
    const CAudioParamInfo* findInfo(const CAudioParam& param) const;
    CString fullName(CStringView key) const { return CString(m_hierarchy).append(key); }

    // Applying a preset: first reading, which changes nothing, then writing.
    [[nodiscard]] CError* readPreset(CPresetPlan& plan, const CAudioPreset& preset, bool includePersistent)
        BRT_REQUIRES(m_paramsSection);
    void findRest(CPresetPlan& plan, const CAudioPreset& preset, int group, bool includePersistent)
        BRT_REQUIRES(m_paramsSection);
    void makeParams(CPresetPlan& plan) BRT_REQUIRES(m_paramsSection);
    void writePreset(CPresetPlan& plan, const CPresetPlace& place, CAudioParamUndoData* undo)
        BRT_REQUIRES(m_paramsSection);
    void writeLocked(const CPresetPlan& plan, const CPresetPlace& place, const CAudioParamChangeContext& context);
    // On failure nothing has changed.
    [[nodiscard]] CError* applyPreset(const CAudioPreset& preset, const CPresetPlace& place, bool includePersistent,
                                      CAudioParamUndoData* undo);
    // For presets of our own: what can't be read is logged, and the rest applied, since a part beats nothing.
    void applyOwnPreset(const CAudioPreset& preset, const CPresetPlace& place, bool includePersistent,
                        CAudioParamUndoData* undo);
    // Whether all that would be activated can be.
    [[nodiscard]] CError* checkPreset(const CAudioPreset& preset, bool includePersistent);
    void snapshotEntries(CAudioPreset& preset, int group);
    void snapshot(CAudioPreset& preset, int group);
    void applyEnumerated(int index, const CPresetPlace& place);

    // Programs. All of them under the lock of programs.
    int sessionCount() const noexcept { return m_session.count(); }
    bool isProgram(int index) const noexcept { return index >= 0 && index < sessionCount(); }
    CAudioPreset& currentPreset() noexcept { return m_session[m_current]; }
    void setPresetName(CStringView fullName, int group, CAudioParamUndoData* undo);
    void nameProgram(int index, CStringView fullName, const void* source);
    void onPresetNameChanged(const CAudioParamUpdateData& change);
    void notifyLater(const void* source);
    void copyProgram(CAudioPreset& copy, int index) const;
    [[nodiscard]] CError* checkBank(const CAudioPresetBank& bank, int count, bool includePersistent);
    void spreadSessionValues(CAudioPresetBank& bank);
    void takeBank(const CAudioPresetBank& bank, int count);
    void dropShadow();
    void refreshShadow();
    CString activationLabel(int group) const;
    std::unique_ptr<CAudioParamUndoRecord> makeRecord(CStringView label) const;
    void submit(std::unique_ptr<CAudioParamUndoRecord> record);
    // Holds the history, where there is one, so that nobody moves in it or writes to it meanwhile.
    std::optional<CRankedLock> lockHistory();

    CString m_name;
    CString m_hierarchy;  // with the "." behind it
    COwnedArray<CNameRemap> m_nameRemap;
    bool m_isEnumerated = false;
    bool m_isElementEnum = false;
    bool m_isMaster = false;
    bool m_isGlobalParamStorable = false;
    bool m_isUserDefaultLoaded = false;
    CString m_id;
    CAudioParamCollector* m_collector = nullptr;  // not owned
    CString m_presetNaming;
    CAudioParamUndo* m_undo = nullptr;  // not owned; null: no history
    CAudioPresetBank m_rom;

    CRankedSection m_programSection{ELockRank::kProgram};
    CAudioPresetBank m_session;  // its count never changes
    COwnedArray<CParkedHistory> m_parked;
    std::unique_ptr<CAudioPreset> m_shadowPreset;  // null until A/B is first used
    std::unique_ptr<CAudioParamUndoHistory> m_shadowHistory;
    int m_current = 0;  // changes under both locks
    // The names of the session's presets change under it, and are read under it or under that of programs by whoever
    // changes them.
    mutable CRankedSection m_nameSection{ELockRank::kLeaf};

    CAudioParam* m_presetNameParam = nullptr;
    CAudioParam* m_groupNamesParam = nullptr;
    CAudioParamRegistryNameListener m_nameListener{*this};

    CRankedSection m_paramsSection{ELockRank::kRegistryParams};
    COrderedMap<CString, CAudioParam*> m_params BRT_GUARDED_BY(m_paramsSection);  // by name below the hierarchy
    CRankedSection m_pendingSection{ELockRank::kPendingParams};
    COwnedArray<CPendingParam> m_pending BRT_GUARDED_BY(m_pendingSection);

    std::unique_ptr<CAudioPresetBank> m_enumeratedBank;
    CAudioRoutingInfoProvider* m_routingProvider = nullptr;  // not owned
};

}  // namespace brt
