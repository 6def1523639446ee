// SPDX-License-Identifier: LicenseRef-Halyard
// A window's view of the parameters of its instance, over a connector. It asks by messages; what
// comes of it arrives later, at a tick, and for every client that listens. Each operation has sent its message when it
// returns.
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

    // Handles a message of the instance.
    [[nodiscard]] CError* handleMessage(const CByteBuffer& bytes) override;

protected:
    int clientId() const noexcept { return m_clientId; }
    // The fields of the message at hand.
    CInputStream& message() noexcept { return *m_message; }

    void send(CParamMessage& message);
    template <class... Fields>
    void send(CStringView name, const Fields&... fields);
    // A handle that `listeners` doesn't have; 0 if it has all.
    template <class Value>
    ParamHandle newHandle(int& lastNumber, const COrderedMap<ParamHandle, Value>& listeners) const;

private:
    CError* onUpdateParamInfo();
    CError* onUpdateParam();
    CParamInterfaceParamListener* findParamListener(ParamHandle handle) const;

    CParamInterfaceClientConnector* m_connector = nullptr;  // not owned; outlives this object
    CMemoryReader m_noMessage{nullptr, 0};
    CMemoryReader* m_message = &m_noMessage;
    int m_clientId = 0;
    int m_lastParam = 0;
    COrderedMap<ParamHandle, CParamInterfaceParamListener*> m_paramListeners;  // not owned
};

}  // namespace brt
