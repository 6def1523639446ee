// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Docc/Compiler.h"

#include "Tools/Docc/CDocumentCheck.h"
#include "Tools/Docc/CompiledDocument.h"
#include "Tools/Docc/DocumentText.h"

namespace brt {

std::vector<std::uint8_t> compileText(const CSourceText& source, const CompileContext& context,
                                      CDiagnostics& diagnostics) {
    const std::unique_ptr<CElement> root = parseDocument(source, diagnostics);
    if (root) {
        CSchema schema(context.tables);
        const CDocumentPaths paths(*root, context.shared, diagnostics);
        CDocumentCheck(schema, paths, context.resources, diagnostics).check(*root);
    }
    if (diagnostics.hasErrors()) return {};
    return compileDocument(*root);
}

}  // namespace brt
