// SPDX-License-Identifier: LicenseRef-Halyard
// What the collector knows of a registry: a set of parameters below one name that become presets together.
// Owner: the instance's tree; a registry leaves the collector before it goes. Threads: any.
#pragma once

#include "Core/CCheckedObject.h"
#include "Core/CString.h"

namespace brt {

class CAudioParam;
struct CAudioParamChangeContext;
struct CAudioParamUpdate;

class CAudioParamRegistryBase : public CCheckedObject {
public:
    // The full name of the registry's object.
    virtual CStringView registryName() const = 0;
    // What the names of its parameters begin with, the "." behind it included.
    virtual CStringView hierarchy() const = 0;
    // Its presets follow a parameter's value; such a registry has its parameters alone.
    virtual bool isEnumerated() const = 0;
    // True if the registry covers the parameter and has taken it.
    virtual bool offerParam(CStringView fullName, CAudioParam& param) = 0;
    // All parameters that exist at the start have been offered.
    virtual void finish() = 0;
    // A user has changed a parameter that this registry has entered itself in. Under that parameter's lock.
    virtual void onUserChange(CAudioParam& param, int group, const CAudioParamChangeContext& context) = 0;
    // The parameter whose definition names this registry has changed. Under that parameter's lock.
    virtual void followParam(CAudioParam& param, const CAudioParamUpdate& update,
                             const CAudioParamChangeContext& context) = 0;
};

}  // namespace brt
