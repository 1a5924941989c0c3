#include "base/CheckedFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "interfaces/Error.h"

namespace zerbin {
namespace {

std::string Words(int code) {
    std::string text = std::strerror(code);
    if (!text.empty() && text[0] >= 'A' && text[0] <= 'Z') {
        text[0] = static_cast<char>(text[0] - 'A' + 'a');
    }
    return text;
}

[[noreturn]] void Fail(const std::filesystem::path& file, int code) {
    throw IoError(file.string(), Words(code), code);
}

// Why a file that is not a regular one can't be read, in the same words for stat and fstat.
void RequireRegular(const std::filesystem::path& file, const struct stat& status) {
    const mode_t type = status.st_mode & S_IFMT;
    if (type == S_IFREG) {
        return;
    }
    if (type == S_IFDIR) {
        Fail(file, EISDIR);
    }
    const char* what = type == S_IFIFO                        ? "is a named pipe"
                       : (type == S_IFCHR || type == S_IFBLK) ? "is a device"
                       : type == S_IFSOCK                     ? "is a socket"
                                                              : "is not a regular file";
    throw IoError(file.string(), what, 0);
}

class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor() { ::close(fd_); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int Get() const { return fd_; }

private:
    int fd_;
};

}  // namespace

FileBytes ReadRegularFile(const std::filesystem::path& file, std::uintmax_t maxBytes,
                          AllocateFunction allocate, FileBytes::ReleaseFunction release) {
    // Looked at before opening: opening a FIFO for reading waits for a writer, for ever.
    struct stat status {};
    if (::stat(file.c_str(), &status) != 0) {
        Fail(file, errno);
    }
    RequireRegular(file, status);
    if (static_cast<std::uintmax_t>(status.st_size) > maxBytes) {
        Fail(file, EFBIG);
    }
    // Non-blocking, so that a file swapped for a FIFO since the look cannot hang the open.
    const int fd = ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (fd < 0) {
        Fail(file, errno);
    }
    const Descriptor descriptor(fd);
    if (::fstat(fd, &status) != 0) {
        Fail(file, errno);
    }
    RequireRegular(file, status);
    if (static_cast<std::uintmax_t>(status.st_size) > maxBytes) {
        Fail(file, EFBIG);
    }

    // The size is a guess for a file that changes while it is read: grow up to the limit.
    std::size_t capacity = static_cast<std::size_t>(status.st_size);
    std::unique_ptr<char, FileBytes::ReleaseFunction> data(
        static_cast<char*>(allocate(capacity + 1)), release);
    if (!data) {
        throw std::bad_alloc();
    }
    std::size_t size = 0;
    while (true) {
        if (size == capacity) {
            // One byte past the expected end tells whether the file grew.
            char probe = 0;
            const ssize_t more = ::read(fd, &probe, 1);
            if (more < 0 && errno == EINTR) {
                continue;
            }
            if (more < 0) {
                Fail(file, errno);
            }
            if (more == 0) {
                break;
            }
            if (capacity + 1 > maxBytes) {
                Fail(file, EFBIG);
            }
            const auto grown = static_cast<std::size_t>(
                std::min<std::uintmax_t>(std::uintmax_t{capacity} * 2 + 4096, maxBytes));
            std::unique_ptr<char, FileBytes::ReleaseFunction> larger(
                static_cast<char*>(allocate(grown + 1)), release);
            if (!larger) {
                throw std::bad_alloc();
            }
            std::memcpy(larger.get(), data.get(), size);
            larger.get()[size++] = probe;
            data = std::move(larger);
            capacity = grown;
            continue;
        }
        const ssize_t got = ::read(fd, data.get() + size, capacity - size);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            Fail(file, errno);
        }
        if (got == 0) {
            break;
        }
        size += static_cast<std::size_t>(got);
    }
    data.get()[size] = '\0';
    return FileBytes(data.release(), size, release);
}

}  // namespace zerbin
