// SPDX-License-Identifier: LicenseRef-Halyard
// The base of what is read whole from one resource or file: a set of images, a font.
// Owner: whoever loads it. Threads: those of the derived class.
#pragma once

#include "Core/CBrtMemAllocator.h"
#include "Core/CCheckedObject.h"
#include "Core/CString.h"

namespace brt {

class CError;
class CPosInputStream;

class CDataSet : public CCheckedObject, public CBrtMemAllocator {
public:
    // Opens a resource or file, and has it read.
    [[nodiscard]] CError* load(CStringView name);

protected:
    // Reads from the stream's beginning.
    [[nodiscard]] virtual CError* read(CPosInputStream& stream) = 0;
};

}  // namespace brt
