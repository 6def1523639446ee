// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CApplication.h"

#include "Core/CError.h"
#include "Core/CObjectContext.h"
#include "Core/CProcess.h"
#include "Core/Log.h"

#include <memory>

namespace brt {
namespace {

constinit CCreatorRegistry* s_creators = nullptr;
constinit CResourceMap* s_resources = nullptr;
constinit CObject* s_sharedObject = nullptr;

template <class T>
void remove(T*& object) {
    delete std::exchange(object, nullptr);
}

CError* initStages(CObject& root) {
    BRT_TRY("", root.init());
    BRT_TRY("", root.initChilds());
    BRT_TRY("", root.initDone());
    return nullptr;
}

CError* buildRoot(CObject& root, CStringView documentName) {
    return documentName.isEmpty() ? initStages(root) : root.loadXMLData(documentName, kInitRoot);
}

void show(CError* error) {
    if (error) showError(error);
}

}  // namespace

void CApplication::start(const CApplicationSetup& setup) {
    logLine("Initializing application...");
    s_resources = new CResourceMap;
    registerProcessStop(ProcessStage::resources, [] { remove(s_resources); });
    s_resources->add(setup.resources);

    s_creators = new CCreatorRegistry;
    registerProcessStop(ProcessStage::creators, [] { remove(s_creators); });
    for (const std::span<const CCreatorRow> table : setup.creatorTables) show(s_creators->registerCreators(table));

    registerProcessStop(ProcessStage::sharedTree, [] { CObject::release(std::exchange(s_sharedObject, nullptr)); });
    show(initSharedObject(setup.sharedDocument));
    registerProcessStop(ProcessStage::application, [] { logLine("Finalizing application..."); });
}

// The object is in its place before the document is loaded, so that "shared::" works inside the document.
CError* CApplication::initSharedObject(CStringView documentName) {
    if (s_sharedObject)
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CApplication_initSharedObject Shared object already exists.");
    s_sharedObject = new CObject;
    s_sharedObject->becomeRoot(s_creators->plainObject(), nullptr);
    if (CError* const error = buildRoot(*s_sharedObject, documentName)) {
        CObject::release(std::exchange(s_sharedObject, nullptr));
        return makeError(error, __FILE__, __LINE__, "", "");
    }
    s_sharedObject->makeReadOnly();
    return nullptr;
}

CError* CApplication::initRootObject(CObject*& root, CStringView documentName) {
    if (!s_sharedObject)
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CApplication_initRootObject No shared object created.");
    CObject* const made = new CObject;
    made->becomeRoot(s_creators->plainObject(), new CObjectContext);
    if (CError* const error = buildRoot(*made, documentName)) {
        CObject::release(made);
        return makeError(error, __FILE__, __LINE__, "", "");
    }
    root = made;
    return nullptr;
}

CObject* CApplication::sharedObject() noexcept { return s_sharedObject; }

const CCreatorRegistry& CApplication::creators() noexcept {
    BRT_ASSERT(s_creators);
    return *s_creators;
}

const CResourceMap& CApplication::resources() noexcept {
    BRT_ASSERT(s_resources);
    return *s_resources;
}

}  // namespace brt
