// SPDX-License-Identifier: LicenseRef-Halyard
// What an instance's interface asks of whoever runs the instance in a host: how many channels there are, at what rate,
// and what of its parameters the host knows.
// Owner: the wrapper is one. Threads: any; edits come under locks of ours, so what they tell a host is deferred
// (CHostCall).
#pragma once

#include "Core/CCheckedObject.h"

namespace brt {

class CAudioParam;

class CAudioInterfaceDataProvider : public CCheckedObject {
public:
    virtual int internalChannelCount() const = 0;
    virtual int groupCount() const = 0;
    virtual int inputChannelCount() const = 0;
    virtual int outputChannelCount() const = 0;
    virtual int sidechainChannelCount() const = 0;
    virtual double sampleRate() const = 0;  // in Hz

    // A user takes hold of a value. False, with nothing done, for one that the host doesn't know.
    virtual bool beginEdit(CAudioParam& param, int element, int group) = 0;
    // And lets it go; for those that began.
    virtual void endEdit(CAudioParam& param, int element, int group) = 0;

    // Names the channels as the host does, as one entry of the history.
    virtual void importChannelLabels() = 0;
};

}  // namespace brt
