// SPDX-License-Identifier: LicenseRef-Halyard
// What the program `docc` does. Each returns the exit status, and throws std::runtime_error for what has no place in a
// document.
#pragma once

#include <string>

#include "Core/CCreatorRegistry.h"

namespace brt {

struct CompileRequest {
    std::string input;
    std::string output;
    std::string sharedDocument;  // compiled; empty: the input is the shared document itself
    std::string resourceList;    // empty: names of resources aren't checked
};

// All that is wrong with the document goes to standard error; then the status is 1 and nothing is written.
// `tables`: the classes that documents may name. REQUIRES: the application is started.
int runCompile(const CompileRequest& request, std::span<const std::span<const CCreatorRow>> tables);

// Prints a compiled document as text.
int runDump(const std::string& input);

struct ResourcesRequest {
    std::string list;
    std::string output;
    std::string symbol = "kHalyardResources";
};
int runResources(const ResourcesRequest& request);

struct PresetsRequest {
    std::string input;
    std::string output;
    std::string sharedDocument;  // compiled
};
// All that is wrong with the text goes to standard error; then the status is 1 and nothing is written.
// REQUIRES: the application is started with the shared document.
int runPresets(const PresetsRequest& request);

}  // namespace brt
