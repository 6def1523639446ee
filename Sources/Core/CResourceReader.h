// SPDX-License-Identifier: LicenseRef-Halyard
// Opens what a name stands for: a resource of the program, or else a file. A name that is a resource never touches the
// file system. Owner: whoever reads. Threads: one at a time.
#pragma once

#include <memory>

#include "Core/CPosStream.h"
#include "Core/CString.h"

namespace brt {

class CResourceReader : public CPosInputStream {
public:
    // Closes what is open first. Only a file can fail.
    [[nodiscard]] CError* open(CStringView name);
    void close() noexcept { m_stream.reset(); }

    // Direct access. Resources have it, files don't.
    const void* getDirectData() override;

    // Reading.
    [[nodiscard]] CError* skip(int count) override;
    [[nodiscard]] CError* read(void* buffer, int count) override;
    [[nodiscard]] CError* readStreamed(void* buffer, int& count) override;

    // Position and size.
    [[nodiscard]] CError* getPosition(std::int64_t& position) override;
    [[nodiscard]] CError* setPosition(std::int64_t position) override;
    [[nodiscard]] CError* getSize(std::int64_t& size) override;

private:
    template <class Operation>
    CError* forward(int line, Operation operation);

    std::unique_ptr<CPosInputStream> m_stream;
};

}  // namespace brt
