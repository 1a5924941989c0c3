#include "platform/ProjectFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <limits>
#include <optional>
#include <sstream>
#include <system_error>

#include "base/CheckedFile.h"
#include "base/Xml.h"
#include "interfaces/Error.h"

namespace zerbin {
namespace {

namespace fs = std::filesystem;

std::string LowerFirst(std::string text) {
    if (!text.empty() && text[0] >= 'A' && text[0] <= 'Z') {
        text[0] = static_cast<char>(text[0] - 'A' + 'a');
    }
    return text;
}

std::string Words(int code) {
    return LowerFirst(std::strerror(code));
}

// A failure of one system call, carried to the one place that names the project file.
struct SystemFailure {
    int code;
    std::string what;  // empty, or what was being done when it is not the write itself
};

[[noreturn]] void FailWith(int code, std::string what = {}) {
    throw SystemFailure{code, std::move(what)};
}

// A temporary file in the folder of the file it stands in for; removed unless kept.
class TemporaryFile {
public:
    explicit TemporaryFile(const fs::path& beside) {
        static std::atomic<unsigned> counter{0};
        for (int attempt = 0;; ++attempt) {
            path_ = beside.parent_path() /
                    ("." + beside.filename().string() + ".tmp" + std::to_string(::getpid()) + "-" +
                     std::to_string(counter++));
            fd_ = ::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
            if (fd_ >= 0) {
                return;
            }
            if (errno != EEXIST || attempt == 100) {
                FailWith(errno);
            }
        }
    }
    ~TemporaryFile() {
        if (fd_ >= 0) {
            ::close(fd_);
        }
        if (!kept_) {
            ::unlink(path_.c_str());
        }
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const fs::path& Path() const { return path_; }

    void WriteAll(std::string_view text) {
        const char* data = text.data();
        std::size_t left = text.size();
        while (left > 0) {
            const ssize_t written = ::write(fd_, data, left);
            if (written < 0) {
                if (errno == EINTR) {
                    continue;
                }
                FailWith(errno);
            }
            data += written;
            left -= static_cast<std::size_t>(written);
        }
    }

    // The bytes reach the disk before the name does: a rename flushed before its data could
    // leave an empty file under the old name after a crash.
    void Finish(const struct stat* like) {
        if (like != nullptr && ::fchmod(fd_, like->st_mode & 07777) != 0) {
            FailWith(errno);
        }
        if (::fsync(fd_) != 0) {
            FailWith(errno);
        }
        // close() can report a write that failed late (NFS); that fails the save too.
        const int fd = fd_;
        fd_ = -1;
        if (::close(fd) != 0) {
            FailWith(errno);
        }
    }

    void RenameTo(const fs::path& target) {
        if (::rename(path_.c_str(), target.c_str()) != 0) {
            FailWith(errno);
        }
        kept_ = true;
    }

private:
    fs::path path_;
    int fd_ = -1;
    bool kept_ = false;
};

void SyncFolder(const fs::path& folder) {
    const int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
}

// The old file under the backup's name, replacing an older backup in one step. A second name
// for the same bytes costs no space, so a full disk still keeps its backup; where the file
// system has no such names the bytes are copied.
void KeepBackup(const fs::path& file, const fs::path& backup) {
    static std::atomic<unsigned> counter{0};
    for (int attempt = 0; attempt < 100; ++attempt) {
        const fs::path linked =
            backup.parent_path() / ("." + backup.filename().string() + ".lnk" +
                                    std::to_string(::getpid()) + "-" + std::to_string(counter++));
        if (::link(file.c_str(), linked.c_str()) != 0) {
            if (errno == EEXIST) {
                continue;
            }
            break;
        }
        if (::rename(linked.c_str(), backup.c_str()) != 0) {
            const int code = errno;
            ::unlink(linked.c_str());
            FailWith(code, "cannot keep the previous version as '" + backup.string() + "'");
        }
        return;
    }
    try {
        const FileBytes bytes = ReadRegularFile(file, std::numeric_limits<std::uintmax_t>::max());
        TemporaryFile copy(backup);
        copy.WriteAll(std::string_view(bytes.Data(), bytes.Size()));
        copy.Finish(nullptr);
        copy.RenameTo(backup);
    } catch (const IoError& failure) {
        FailWith(failure.Code(), "cannot keep the previous version as '" + backup.string() + "'");
    } catch (const SystemFailure& failure) {
        FailWith(failure.code, "cannot keep the previous version as '" + backup.string() + "'");
    }
}

}  // namespace

fs::path ProjectFile::BackupPath() const {
    return fs::path(file_.string() + "~");
}

std::shared_ptr<pugi::xml_document> ProjectFile::Read() const {
    xml::ParseError error;
    std::shared_ptr<pugi::xml_document> document = xml::LoadFile(file_, &error);
    if (!document) {
        throw ProjectFileError(
            "cannot read " + what_ + " '" + file_.string() + "': " + LowerFirst(error.reason),
            error.systemError);
    }
    return document;
}

xml::ElementStream ProjectFile::ReadElements() const {
    xml::ParseError error;
    std::optional<xml::ElementStream> stream = xml::ElementStream::OpenFile(file_, &error);
    if (!stream) {
        throw ProjectFileError(
            "cannot read " + what_ + " '" + file_.string() + "': " + LowerFirst(error.reason),
            error.systemError);
    }
    return std::move(*stream);
}

std::shared_ptr<pugi::xml_document> ReadDocumentText(std::string_view text,
                                                     const std::string& what) {
    xml::ParseError error;
    std::shared_ptr<pugi::xml_document> document = xml::LoadString(text, &error);
    if (!document) {
        throw ProjectFileError("cannot read " + what + ": " + LowerFirst(error.reason), 0);
    }
    return document;
}

void ProjectFile::Write(const pugi::xml_document& document) const {
    std::ostringstream text;
    try {
        xml::Save(document, text);
    } catch (const Error& refused) {
        throw ProjectFileError(
            "cannot write " + what_ + " '" + file_.string() + "': " + refused.what(), 0);
    }
    WriteText(text.view());
}

void ProjectFile::WriteText(std::string_view text) const {
    try {
        std::error_code error;
        fs::path target = file_;
        if (fs::is_symlink(target, error)) {
            target = fs::canonical(target, error);
            if (error) {
                FailWith(error.value());
            }
        }
        struct stat old {};
        const bool hadFile = ::stat(target.c_str(), &old) == 0;
        if (hadFile && !S_ISREG(old.st_mode)) {
            FailWith(S_ISDIR(old.st_mode) ? EISDIR : EINVAL);
        }
        TemporaryFile fresh(target);
        fresh.WriteAll(text);
        fresh.Finish(hadFile ? &old : nullptr);
        if (hadFile) {
            KeepBackup(target, fs::path(target.string() + "~"));
        }
        fresh.RenameTo(target);
        // From here the new text is the file: a folder that cannot be flushed only leaves the
        // rename to the file system's own schedule, and is no reason to call the save failed.
        const fs::path folder = target.parent_path();
        SyncFolder(folder.empty() ? fs::path(".") : folder);
    } catch (const SystemFailure& failure) {
        const std::string what = failure.what.empty() ? std::string() : failure.what + ": ";
        throw ProjectFileError(
            "cannot write " + what_ + " '" + file_.string() + "': " + what + Words(failure.code),
            failure.code);
    }
}

}  // namespace zerbin
