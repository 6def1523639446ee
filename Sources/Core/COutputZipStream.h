// SPDX-License-Identifier: LicenseRef-Halyard
// Output that deflates what it is given into a zlib stream on another output stream.
// Owner: whoever made it. It doesn't own the other stream, which outlives it or its close(). Threads: one at a time.
#pragma once

#include "Core/COutputStream.h"
#include "Core/CStringView.h"
#include "Core/CZipStream.h"

namespace brt {

class COutputZipStream : public COutputStream, public CZipStream {
public:
    COutputZipStream() = default;
    // A stream that is still open stays incomplete in the sink: only close() writes its end.
    ~COutputZipStream() override;

    // Closes what is open and begins a zlib stream. `level`: 0, stored, to 9, smallest. On failure it is closed.
    [[nodiscard]] CError* open(COutputStream& sink, int level);

    // Writes the rest of the zlib stream and frees zlib's memory. Closed afterwards in any case; does nothing if it
    // isn't open.
    [[nodiscard]] CError* close();

    // Writing. After a failure the zlib stream is damaged for good, and this is closed.
    [[nodiscard]] CError* write(const void* buffer, int count) override;

private:
    [[nodiscard]] CError* deflateAll(const void* buffer, int count);
    [[nodiscard]] static CError* deflateError(int code, CStringView reason);
    [[nodiscard]] CError* finish();
    [[nodiscard]] CError* flushBuffer();
    [[nodiscard]] int abandon();

    COutputStream* m_sink = nullptr;  // not owned; null when closed
};

}  // namespace brt
