// SPDX-License-Identifier: LicenseRef-Halyard
#include "Platform/CNativeFile.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <optional>

#include "Platform/CNativeThread.h"
#include "Platform/Clock.h"
#include "Platform/Posix/SystemCalls_p.h"
#include "Platform/Posix/TemporaryName_p.h"
#include "Platform/SystemError.h"

namespace brt {

static_assert(sizeof(off_t) == sizeof(std::int64_t), "positions have 64 bits");

namespace {

constexpr int kAlways = O_CLOEXEC | O_NOCTTY;

int openFlags(FileMode mode) noexcept {
    switch (mode) {
    case FileMode::read: return O_RDONLY;
    case FileMode::write: return O_WRONLY | O_CREAT | O_TRUNC;
    case FileMode::append: return O_WRONLY | O_CREAT;
    case FileMode::readWrite: return O_RDWR | O_CREAT;
    }
    return O_RDONLY;
}

// After a refusal of a stream that somebody else made non-blocking: waits until it takes or has something.
bool waitUntilReady(int descriptor, short events) noexcept {
    pollfd stream{.fd = descriptor, .events = events, .revents = 0};
    return retried([&] { return poll(&stream, 1, -1); }) > 0;
}

bool wouldBlock(int error) noexcept { return error == EAGAIN || error == EWOULDBLOCK; }

}  // namespace

int CNativeFile::closeWith(int error) {
    static_cast<void>(close());
    return error;
}

int CNativeFile::open(std::u16string_view path, FileMode mode, FileKind kind) {
    if (const int error = close()) return error;
    const CSystemPath systemPath(path);
    if (const int error = systemPath.error()) return error;
    // Non-blocking: a named pipe without a writer would stop the caller here for ever.
    m_descriptor = retried([&] { return ::open(systemPath, openFlags(mode) | kAlways | O_NONBLOCK, 0666); });
    if (m_descriptor < 0) return errno;
    const int error = prepareOpened(mode, kind);
    return error == 0 ? 0 : closeWith(error);
}

int CNativeFile::prepareOpened(FileMode mode, FileKind kind) {
    struct stat status {};
    if (fstat(m_descriptor, &status) != 0) return errno;
    if (S_ISDIR(status.st_mode)) return kErrorIsDirectory;
    m_isRegular = S_ISREG(status.st_mode);
    if (kind == FileKind::regular && !m_isRegular) return kErrorNotRegular;
    if (!m_isRegular) {
        const int flags = fcntl(m_descriptor, F_GETFL);
        if (flags < 0 || fcntl(m_descriptor, F_SETFL, flags & ~O_NONBLOCK) != 0) return errno;
    }
    if (mode == FileMode::append && lseek(m_descriptor, 0, SEEK_END) < 0 && errno != ESPIPE) return errno;
    return 0;
}

int CNativeFile::openStandard(StandardStream stream) {
    if (const int error = close()) return error;
    const int descriptor = static_cast<int>(stream);
    struct stat status {};
    if (fstat(descriptor, &status) != 0) return errno;
    m_descriptor = descriptor;
    m_isStandard = true;
    m_isRegular = S_ISREG(status.st_mode);
    return 0;
}

int CNativeFile::createTemporaryBeside(std::u16string_view target, std::u16string& temporaryPath,
                                       NewFileAccess access) {
    if (const int error = close()) return error;
    const CSystemPath systemTarget(target);
    if (const int error = systemTarget.error()) return error;
    struct stat replaced {};
    const bool replaces = stat(systemTarget, &replaced) == 0;
    if (replaces && S_ISDIR(replaced.st_mode)) return kErrorIsDirectory;
    if (replaces && !S_ISREG(replaced.st_mode)) return kErrorNotRegular;

    const std::size_t nameBegin = systemTarget.bytes().rfind('/') + 1;
    const std::string folder = systemTarget.bytes().substr(0, nameBegin);
    const std::string targetName = systemTarget.bytes().substr(nameBegin);
    if (targetName.empty()) return kErrorNotFound;
    const mode_t mode = access == NewFileAccess::userOnly ? 0600 : 0666;
    std::string path;
    constexpr int kMostAttempts = 100;
    for (int attempt = 0; attempt < kMostAttempts && m_descriptor < 0; ++attempt) {
        path = folder + temporaryName(targetName);
        m_descriptor = retried([&] { return ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | kAlways, mode); });
        if (m_descriptor < 0 && errno != EEXIST) break;
    }
    if (m_descriptor < 0) return errno;
    m_isRegular = true;
    if (replaces) static_cast<void>(fchmod(m_descriptor, replaced.st_mode & 0777));  // else it stays as new ones are
    temporaryPath = pathFromSystem(path);
    return 0;
}

int CNativeFile::close() {
    const int descriptor = m_descriptor;
    const bool isOurs = descriptor >= 0 && !m_isStandard;
    m_descriptor = -1;
    m_isStandard = false;
    m_isRegular = false;
    // An interrupted close has closed all the same; a second one could hit a descriptor that another thread just got.
    if (isOurs && ::close(descriptor) != 0 && errno != EINTR) return errno;
    return 0;
}

int CNativeFile::readSome(void* buffer, std::size_t count, std::size_t& got) {
    got = 0;
    for (;;) {
        const ssize_t result = retried([&] { return ::read(m_descriptor, buffer, count); });
        if (result >= 0) {
            got = static_cast<std::size_t>(result);
            return 0;
        }
        if (!wouldBlock(errno) || !waitUntilReady(m_descriptor, POLLIN)) return errno;
    }
}

int CNativeFile::read(void* buffer, std::size_t count, std::size_t& got) {
    got = 0;
    while (got < count) {
        std::size_t piece = 0;
        if (const int error = readSome(static_cast<char*>(buffer) + got, count - got, piece)) return error;
        if (piece == 0) break;
        got += piece;
    }
    return 0;
}

int CNativeFile::write(const void* buffer, std::size_t count, std::size_t& written) {
    written = 0;
    std::optional<CBlockedPipeSignal> noSignal;
    if (!m_isRegular) noSignal.emplace();
    while (written < count) {
        const char* const rest = static_cast<const char*>(buffer) + written;
        const ssize_t result = retried([&] { return ::write(m_descriptor, rest, count - written); });
        if (result >= 0) {
            written += static_cast<std::size_t>(result);
        } else if (!wouldBlock(errno) || !waitUntilReady(m_descriptor, POLLOUT)) {
            return errno;
        }
    }
    return 0;
}

int CNativeFile::getPosition(std::int64_t& position) const {
    const off_t result = lseek(m_descriptor, 0, SEEK_CUR);
    if (result < 0) return errno;
    position = result;
    return 0;
}

int CNativeFile::setPosition(std::int64_t position) { return lseek(m_descriptor, position, SEEK_SET) < 0 ? errno : 0; }

int CNativeFile::getSize(std::int64_t& size) const {
    struct stat status {};
    if (fstat(m_descriptor, &status) != 0) return errno;
    if (!S_ISREG(status.st_mode)) return ESPIPE;
    size = status.st_size;
    return 0;
}

int CNativeFile::flush() {
    if (retried([&] { return fsync(m_descriptor); }) == 0) return 0;
    return errno == EINVAL && !m_isRegular ? 0 : errno;  // terminals and pipes have no storage behind them
}

int CNativeFile::lock(double waitSeconds) {
    constexpr double kRetrySeconds = 0.01;
    const std::int64_t begin = clockCounter();
    for (;;) {
        if (retried([&] { return flock(m_descriptor, LOCK_EX | LOCK_NB); }) == 0) return 0;
        const double elapsedSeconds = static_cast<double>(clockCounter() - begin) / clockFrequency();
        if (!wouldBlock(errno) || !(elapsedSeconds < waitSeconds)) return errno;
        sleepSeconds(kRetrySeconds);
    }
}

void CNativeFile::unlock() noexcept {
    retried([&] { return flock(m_descriptor, LOCK_UN); });
}

}  // namespace brt
