// SPDX-License-Identifier: LicenseRef-Halyard
// The marker base of every interface of the framework: objects with an identity, which are reached by pointer, are
// never copied, and may be deleted through any of their interfaces. It carries no data.
#pragma once

namespace brt {

class CCheckedObject {
public:
    virtual ~CCheckedObject() = default;
    CCheckedObject(const CCheckedObject&) = delete;
    CCheckedObject& operator=(const CCheckedObject&) = delete;

protected:
    CCheckedObject() = default;
};

}  // namespace brt
