// SPDX-License-Identifier: LicenseRef-Halyard
// `halyard graph`: the processes that run in an instance, how they are connected, and how late each is.
#pragma once

#include <string>
#include <vector>

namespace brt {

struct GraphRequest {
    int channels = 2;
    double sampleRate = 48000.0;
    bool isWatched = false;             // somebody looks at all meters
    bool isDot = false;                 // for Graphviz instead of for people
    std::vector<std::string> settings;  // "full.name=value", made before the graph is printed
};

// The exit status. Throws CToolError.
int runGraph(const GraphRequest& request);

}  // namespace brt
