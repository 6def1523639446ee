// SPDX-License-Identifier: LicenseRef-Halyard
// The text form of a document, both ways. It is XML without a DTD:
//
//     <document>
//         <!-- An element: its tag is a class's, "name" its name in the tree, all else are attributes. -->
//         <core:object name="project" app-name="Halyard">
//             <core:object name="note">A text is a child "content" whose attribute "value" holds it.</core:object>
//         </core:object>
//         <!-- A template: the one element in it is what it makes. -->
//         <template name="plugin">
//             <core:object eq="true"/>
//         </template>
//     </document>
//
// Attributes keep their order, since one may refer to those before it. Attributes of the root belong to the object that
// the document is loaded into; declarations of namespaces there, for the sake of editors, are dropped.
// Threads: any.
#pragma once

#include <string>

#include "Tools/Docc/CDiagnostics.h"
#include "Tools/Docc/CElement.h"

namespace brt {

// Reads the text as far as it is sound; what isn't is reported. Null where there is no tree at all.
std::unique_ptr<CElement> parseDocument(const CSourceText& source, CDiagnostics& diagnostics);

// The text that `parseDocument` reads back as the same tree. Throws std::runtime_error where no text can stand for it,
// which no document has that was made from text.
std::string printDocument(const CElement& root);

}  // namespace brt
