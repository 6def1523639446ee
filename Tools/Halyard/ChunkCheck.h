// SPDX-License-Identifier: LicenseRef-Halyard
// Finds sound files that end before the sound does. libsndfile silently shortens such a file; a mastering engineer
// wants to know that the copy broke off. Threads: [any].
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace brt {

struct MissingSound {
    std::int64_t promisedBytes;  // of sound, as the file's header says
    std::int64_t presentBytes;   // of sound, until the end of the file
};

// For WAV, RF64, W64, AIFF and CAF files whose chunk of sound reaches beyond the end of the file; and for those whose
// chunk promises 0 bytes though something follows that is no chunk, as a recorder leaves them that was switched off. A
// file of any other kind, and one whose writer left the length open (as programs do that write into a pipe), gives
// nothing.
std::optional<MissingSound> findMissingSound(const std::filesystem::path& path);

}  // namespace brt
