// SPDX-License-Identifier: LicenseRef-Halyard
// Stored strings, one after another.
#include "Core/CMemoryReader.h"
#include "Core/CString.h"
#include "Core/StoredString.h"
#include "Fuzz/FuzzTarget.h"
#include "Tests/Core/StreamTestTools.h"

namespace brt::fuzz {

Bytes stored(const CString& text) {
    CWriteSeqBuffer chain(CWriteSeqBuffer::kStringBlockBytes);
    require(!discardError(chain.writeString(text)), "what was read can be written");
    return contentOf(chain);
}

CString readBack(const Bytes& bytes) {
    CMemoryReader reader(bytes.data(), static_cast<int>(bytes.size()));
    CString text;
    require(!discardError(reader.readString(text)), "what was written can be read");
    require(reader.getBytesLeft() == 0, "a string is read to its end");
    return text;
}

}  // namespace brt::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace brt;
    CMemoryReader reader(data, static_cast<int>(size));
    for (CString text; reader.getBytesLeft() > 0;) {
        if (discardError(reader.readString(text))) {
            fuzz::require(text.isEmpty(), "a failure leaves the text empty");
            break;
        }
        fuzz::require(text.length() <= kLongestStoredStringBytes, "no text is longer than its bytes");
        // Surrogates go when it is written, and then nothing more.
        const Bytes written = fuzz::stored(text);
        fuzz::require(fuzz::stored(fuzz::readBack(written)) == written, "a stored string is stable");
    }
    return 0;
}
