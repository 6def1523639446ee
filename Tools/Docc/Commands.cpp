// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Docc/Commands.h"

#include <cstdio>
#include <stdexcept>

#include "Core/CApplication.h"
#include "Tools/Docc/CompiledDocument.h"
#include "Tools/Docc/Compiler.h"
#include "Tools/Docc/DocumentText.h"
#include "Tools/Docc/Files.h"
#include "Tools/Docc/PresetCompiler.h"
#include "Tools/Docc/ResourceTable.h"

namespace brt {
namespace {

std::unique_ptr<CElement> loadCompiled(const std::string& path) {
    const std::string bytes = readFile(path);
    try {
        return readCompiledDocument({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()},
                                    CString::fromUtf8(path));
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(path + ": error: no compiled document: " + error.what());
    }
}

std::unique_ptr<COrderedSet<CString>> resourceNames(const std::string& list) {
    if (list.empty()) return nullptr;
    auto names = std::make_unique<COrderedSet<CString>>();
    for (const auto& [name, file] : readResourceList(list)) names->insert(CString::fromUtf8(name));
    return names;
}

int finish(const std::string& output, const std::vector<std::uint8_t>& bytes, const CDiagnostics& diagnostics) {
    if (diagnostics.hasErrors()) {
        std::fputs(diagnostics.lines().c_str(), stderr);
        return 1;
    }
    std::fputs(diagnostics.missingLine().c_str(), stderr);
    writeFile(output, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    return 0;
}

}  // namespace

int runCompile(const CompileRequest& request, std::span<const std::span<const CCreatorRow>> tables) {
    refuseToReplace(request.output, {request.input, request.sharedDocument, request.resourceList});
    const CSourceText source(request.input, readFile(request.input));
    CDiagnostics diagnostics(source);
    const std::unique_ptr<CElement> shared =
        request.sharedDocument.empty() ? nullptr : loadCompiled(request.sharedDocument);
    const auto resources = resourceNames(request.resourceList);
    const std::vector<std::uint8_t> bytes = compileText(source, {tables, shared.get(), resources.get()}, diagnostics);
    return finish(request.output, bytes, diagnostics);
}

int runDump(const std::string& input) {
    std::fputs(printDocument(*loadCompiled(input)).c_str(), stdout);
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0)
        throw std::runtime_error("cannot write to standard output; free some space or send it elsewhere");
    return 0;
}

int runResources(const ResourcesRequest& request) {
    const ResourceList list = readResourceList(request.list);
    refuseToReplace(request.output, {request.list});
    for (const auto& [name, file] : list) refuseToReplace(request.output, {file});
    writeFile(request.output, resourceAssembler(list, request.symbol));
    return 0;
}

int runPresets(const PresetsRequest& request) {
    refuseToReplace(request.output, {request.input, request.sharedDocument});
    const CSourceText source(request.input, readFile(request.input));
    const CObject* const shared = CApplication::sharedObject();
    if (shared == nullptr)
        throw std::runtime_error("no definitions can be read from '" + request.sharedDocument + "'; see above");
    CDiagnostics diagnostics(source);
    const std::vector<std::uint8_t> bytes = compilePresets(source, *shared, diagnostics);
    return finish(request.output, bytes, diagnostics);
}

}  // namespace brt
