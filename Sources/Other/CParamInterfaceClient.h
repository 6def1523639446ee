// SPDX-License-Identifier: LicenseRef-Halyard
// A window's view of the parameters, presets and history of its instance, over a connector. It asks by messages; what
// comes of it arrives later, at a tick, and for every client that listens. Each operation has sent its message when it
// returns. Once the history has arrived or changed, this object fires "undo-history-changed".
//
// A class for the tree derives from it. Owner: the window's tree, behind its connector. Threads: the tree's.
#pragma once

#include "Audio/CParamMessageHandler.h"
#include "Audio/ParamMessages.h"
#include "Core/CMemoryReader.h"
#include "Core/CObject.h"
#include "Core/COrderedMap.h"
#include "Other/CParamInterfaceListeners.h"

namespace brt {

class CByteBuffer;
class CParamInterfaceClientConnector;
class CParamMessage;

class CParamInterfaceClient : public CObject, public CParamMessageHandler {
public:
    static void describeClass(CClassInfo& info);

    [[nodiscard]] CError* init() override;
    void releaseLinks() override;

    // Parameters, by their full names. A handle is never 0, unless a client has 65,534 listeners.
    ParamHandle addParamListener(CStringView name, CParamInterfaceParamListener& listener);
    void removeParamListener(ParamHandle handle);
    // A change of another format than the parameter's is ignored. `undoHandle` 0: no undo.
    void changeParam(ParamHandle handle, const CAudioParamUpdate& update, ParamHandle undoHandle);
    // Group or element -1: all. `useFirstDefault`: an element takes the very first of the defaults.
    void resetParam(ParamHandle handle, int group, int element, ParamHandle undoHandle, bool useFirstDefault);

    // The history. What a user does in one go is one record: create, change, submit. A record that is mergeable becomes
    // part of the step before it if that has the same merge id and is about the same values.
    ParamHandle createUndoData(CStringView label, bool isMergeable = false, int mergeId = -1);
    void removeUndoData(ParamHandle handle);
    // `label`: empty for the one that it was created with.
    void submitUndoData(ParamHandle handle, CStringView label = {});
    // Undoes or redoes up to there: an index into the labels.
    void setUndoHistoryPos(int position);
    // The start, then the labels of all steps.
    const CStringList& undoLabels() const noexcept { return m_undoLabels; }
    int undoPosition() const noexcept { return m_undoPosition; }

    // Registries of presets, by the full names of their objects.
    ParamHandle addRegistryListener(CStringView name, CParamInterfaceRegistryListener& listener);
    void removeRegistryListener(ParamHandle handle);
    // Programs, of the master alone.
    void setCurrentProgram(ParamHandle registry, int index);
    void renamePreset(ParamHandle registry, int index, CStringView name);
    void activateFactoryPreset(ParamHandle registry, int index);
    void setDefaultPreset(ParamHandle registry, const CAudioPreset& preset);
    void activateDefaultPreset(ParamHandle registry);
    void exchangeShadowPreset(ParamHandle registry);
    void updateShadowPreset(ParamHandle registry);
    // Presets. Group -1: all. What is requested comes to the registry's listener; nothing comes for an index that
    // there isn't.
    void activatePreset(ParamHandle registry, int group, const CAudioPreset& preset);
    void requestPreset(ParamHandle registry, int cookie, bool isFactory, int index, int group);
    void requestBank(ParamHandle registry, int cookie, bool isFactory);

    // Handles a message of the instance.
    [[nodiscard]] CError* handleMessage(const CByteBuffer& bytes) override;

protected:
    int clientId() const noexcept { return m_clientId; }
    // The fields of the message at hand.
    CInputStream& message() noexcept { return *m_message; }

    void send(CParamMessage& message);
    template <class... Fields>
    void send(CStringView name, const Fields&... fields);
    // A handle that is not among those; 0 if all are.
    template <class Handles>
    ParamHandle newHandle(int& lastNumber, const Handles& used) const;

private:
    CError* onUpdateParamInfo();
    CError* onUpdateParam();
    CError* onUpdateUndoHistory();
    CError* onUpdateRegistry();
    CError* onRegistryData();
    CParamInterfaceParamListener* findParamListener(ParamHandle handle) const;
    CParamInterfaceRegistryListener* findRegistryListener(ParamHandle handle) const;
    // A message whose last field is a preset.
    void sendPreset(CParamMessage& message, const CAudioPreset& preset);

    CParamInterfaceClientConnector* m_connector = nullptr;  // not owned; outlives this object
    CMemoryReader m_noMessage{nullptr, 0};
    CMemoryReader* m_message = &m_noMessage;
    int m_clientId = 0;
    int m_lastParam = 0;
    COrderedMap<ParamHandle, CParamInterfaceParamListener*> m_paramListeners;  // not owned
    int m_lastRegistry = 0;
    COrderedMap<ParamHandle, CParamInterfaceRegistryListener*> m_registryListeners;  // not owned
    int m_lastUndo = 0;
    COrderedSet<ParamHandle> m_openUndoData;
    CStringList m_undoLabels;
    int m_undoPosition = 0;
};

}  // namespace brt
