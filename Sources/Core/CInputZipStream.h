// SPDX-License-Identifier: LicenseRef-Halyard
// Input that inflates a zlib stream out of another input stream, which it reads ahead in pieces of 32,768 bytes.
// Owner: whoever made it. It doesn't own the other stream, which outlives it or its close(). Threads: one at a time.
#pragma once

#include "Core/CInputStream.h"
#include "Core/CStringView.h"
#include "Core/CZipStream.h"

namespace brt {

class CInputZipStream : public CInputStream, public CZipStream {
public:
    CInputZipStream() = default;
    ~CInputZipStream() override;

    // Closes what is open and starts with the next byte of `source`. On failure it is closed.
    [[nodiscard]] CError* open(CInputStream& source);

    // Frees zlib's memory. Closed afterwards in any case; does nothing if it isn't open.
    [[nodiscard]] CError* close();

    // Reading. A zlib stream that ends before the count is reached is an error.
    [[nodiscard]] CError* read(void* buffer, int count) override;

    // For who has read all that there should be: fails unless the zlib stream ends right here, complete and with the
    // right check. zlib looks at the check last, so without this a damaged stream can pass.
    [[nodiscard]] CError* expectEnd();

private:
    [[nodiscard]] CError* refill(CInputStream& source);
    [[nodiscard]] CError* inflateStep();
    [[nodiscard]] static CError* inflateError(int code, CStringView reason);

    CInputStream* m_source = nullptr;  // not owned; null when closed
    bool m_hasEnded = false;           // zlib has seen the end of its stream and found the check right
};

}  // namespace brt
