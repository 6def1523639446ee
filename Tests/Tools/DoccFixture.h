// SPDX-License-Identifier: LicenseRef-Halyard
// Documents compiled inside the test, against the product's classes and one that has every kind of attribute.
#pragma once

#include <stdexcept>

#include "Core/TreeFixture.h"
#include "Documents/ProductTags.h"
#include "Tools/Docc/CompiledDocument.h"
#include "Tools/Docc/Compiler.h"
#include "Tools/Docc/DocumentText.h"

namespace brt {

class CRig : public CObject {
public:
    static void describeClass(CClassInfo& info) {
        CObject::describeClass(info);
        static constexpr CAttrInfo kAttributes[] = {
            attr::flag("is-on").byDefault("true"),
            attr::integer("count").between(1, 16).byDefault("2"),
            attr::number("gain").atLeast(-6.5),
            attr::number("past").between(-1e300, 0),
            attr::text("label").numbered(),
            attr::word("storage", "local group global"),
            attr::object("target").ofClass<CRig>(),
            attr::objects("others"),
            attr::resource("file"),
            attr::templateName("makes"),
            attr::attrNames("attribute"),
            attr::text("must").required().help("what it must have"),
        };
        info.addAttributes(kAttributes);
    }
};

class DoccFixture : public TreeFixture {
protected:
    // The compiled document; `m_errors` then has all that is wrong with it, and it is empty if there is anything.
    Bytes compile(const std::string& text) {
        static constexpr CCreatorRow kRig[] = {creatorRow<CRig>("test:rig")};
        std::vector<std::span<const CCreatorRow>> tables(productTags().begin(), productTags().end());
        tables.emplace_back(kRig);
        const CSourceText source("doc.xml", text);
        CDiagnostics diagnostics(source);
        Bytes bytes = compileText(source, {tables, m_shared, m_resources}, diagnostics);
        m_errors = diagnostics.lines();
        m_missing = diagnostics.missingLine();
        EXPECT_EQ(bytes.empty(), diagnostics.hasErrors());
        return bytes;
    }

    // What is said of the elements of a document, which begin in line 2; lines begin with "LINE:COLUMN: ".
    std::string errorsOf(const std::string& elements) {
        compile("<document>\n" + elements + "\n</document>\n");
        std::string lines;
        const std::string name = "doc.xml:", mark = "error: ";
        for (std::size_t at = 0; at < m_errors.size();) {
            const std::size_t end = m_errors.find('\n', at);
            std::string line = m_errors.substr(at, end - at);
            EXPECT_TRUE(line.starts_with(name)) << line;
            line.erase(line.find(mark), mark.size());
            lines += (lines.empty() ? "" : "\n") + line.substr(name.size());
            at = end + 1;
        }
        return lines;
    }

    std::string m_errors;
    const CElement* m_shared = nullptr;
    const COrderedSet<CString>* m_resources = nullptr;
    std::string m_missing;
};

}  // namespace brt
