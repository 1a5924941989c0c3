// Reading a file whole, the one way the component and its hosts read files: anything but a
// regular file (a directory, a FIFO, a device such as /dev/zero) is refused before it is
// opened for reading, and a file over a size limit is refused without being read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <utility>

namespace zerbin {

// Bytes of a file in memory from a caller's allocator, released with its release function
// unless the caller takes them over with Release().
class FileBytes {
public:
    using ReleaseFunction = void (*)(void*);

    FileBytes(char* data, std::size_t size, ReleaseFunction release)
        : data_(data), size_(size), release_(release) {}
    ~FileBytes() {
        if (data_ != nullptr) {
            release_(data_);
        }
    }
    FileBytes(FileBytes&& other) noexcept
        : data_(other.data_), size_(other.size_), release_(other.release_) {
        other.data_ = nullptr;
        other.size_ = 0;
    }
    FileBytes(const FileBytes&) = delete;
    FileBytes& operator=(const FileBytes&) = delete;
    FileBytes& operator=(FileBytes&& other) noexcept {
        std::swap(data_, other.data_);
        std::swap(size_, other.size_);
        std::swap(release_, other.release_);
        return *this;
    }

    char* Data() const { return data_; }
    std::size_t Size() const { return size_; }
    // Hands the memory over; the caller releases it with the same release function.
    char* Release() {
        char* data = data_;
        data_ = nullptr;
        return data;
    }

private:
    char* data_;
    std::size_t size_;
    ReleaseFunction release_;
};

using AllocateFunction = void* (*)(std::size_t);

// Reads file whole. The memory holds one byte more than the file, set to 0. Throws IoError
// with the reason in words for a file that is missing, not a regular file, larger than
// maxBytes ("file too large"), not permitted or unreadable; std::bad_alloc when allocate
// gives nothing.
FileBytes ReadRegularFile(const std::filesystem::path& file, std::uintmax_t maxBytes,
                          AllocateFunction allocate = std::malloc,
                          FileBytes::ReleaseFunction release = std::free);

}  // namespace zerbin
