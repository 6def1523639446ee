// SPDX-License-Identifier: LicenseRef-Halyard
// A small function that runs whenever one of its source parameters changes, and writes its destinations.
//
// It runs on the thread of the change, with the locks of all its parameters held; its writes travel in the same batch.
// Destinations are dependent parameters, so they are locked behind the sources.
// Owner: the process that declares it. Threads: any.
#pragma once

#include "Audio/CAudioParam.h"
#include "Core/CCheckedObject.h"
#include "Core/CStringList.h"

namespace brt {

class CAudioParamFilter : public CCheckedObject, public CBrtMemAllocator {
public:
    static constexpr int kMaxParams = 9;
    using Params = CSmallArray<CAudioParam*>;

    // Leaves its sources.
    ~CAudioParamFilter() override;

    // Finds the parameters by their full names.
    [[nodiscard]] CError* init(CAudioParamCollector& collector, const CStringList& sourceNames,
                               const CStringList& destinationNames);
    // Begins to follow the sources, and runs once for what each of them holds.
    void activate();

    // Called by a source after each change of it.
    void run(const CAudioParamUpdate& update, const CAudioParamChangeContext& context);

    // The parameters that it writes.
    const Params& destinations() const noexcept { return m_destinations; }

protected:
    virtual int minSources() const = 0;
    virtual int minDestinations() const = 0;
    // Writes the destinations. As it stands here: row by row, through `compute`. All locks are held, all values valid.
    virtual void runLocked(const CAudioParamUpdate& update, const CAudioParamChangeContext& context);
    // Sets the values of the first destinations for one element, and returns how many; the others keep theirs.
    virtual int compute(int group, int element, double* values) const;

    const Params& sources() const noexcept { return m_sources; }

private:
    void runForPresentValues(CAudioParam& source);

    bool m_isActive = false;
    Params m_sources;
    Params m_destinations;
    Params m_all;  // of both
};

// 1 as long as no channel group is soloed, else 0, so that the solo stage can leave the signal path.
class CAudioParamFilterBypassGroupSolo final : public CAudioParamFilter {
protected:
    int minSources() const override { return 1; }
    int minDestinations() const override { return 1; }
    void runLocked(const CAudioParamUpdate& update, const CAudioParamChangeContext& context) override;
};

}  // namespace brt
