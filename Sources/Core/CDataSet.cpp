// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CDataSet.h"

#include "Core/CError.h"
#include "Core/CResourceReader.h"

namespace brt {

CError* CDataSet::load(CStringView name) {
    CResourceReader reader;
    BRT_TRY("", reader.open(name));
    BRT_TRY(name, read(reader));
    return nullptr;
}

}  // namespace brt
