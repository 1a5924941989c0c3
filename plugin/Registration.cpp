#include "plugin/Registration.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace zerbin::plugin {
namespace {

namespace fs = std::filesystem;

fs::path HomeFolder() {
    const char* home = std::getenv("HOME");
    if (home != nullptr && home[0] != '\0') {
        return home;
    }
    if (const passwd* entry = getpwuid(getuid()); entry != nullptr && entry->pw_dir != nullptr) {
        return entry->pw_dir;
    }
    throw std::runtime_error("no home folder for the registration file");
}

}  // namespace

fs::path RegistrationFolder() {
    const char* dataHome = std::getenv("XDG_DATA_HOME");
    // A relative XDG_DATA_HOME is invalid by the base directory rules and is ignored.
    fs::path base = dataHome != nullptr && dataHome[0] == '/' ? fs::path(dataHome)
                                                              : HomeFolder() / ".local" / "share";
    return base / "zerbin" / "plugins";
}

fs::path RegistrationFile(const std::string& progId) {
    return RegistrationFolder() / (progId + ".plugin");
}

void WriteRegistration(const Registration& registration) {
    const fs::path file = RegistrationFile(registration.progId);
    fs::create_directories(file.parent_path());
    fs::path temporary = file;
    temporary += ".tmp";
    {
        std::ofstream out(temporary, std::ios::trunc);
        out << "ProgID=" << registration.progId << '\n'
            << "Path=" << registration.path.string() << '\n'
            << "Version=" << registration.version << '\n';
        if (!registration.blockLibrary.empty()) {
            out << "BlockLibrary=" << registration.blockLibrary.string() << '\n';
        }
        out.close();
        if (!out) {
            std::error_code ignored;
            fs::remove(temporary, ignored);
            throw fs::filesystem_error("cannot write the registration file", temporary,
                                       std::make_error_code(std::errc::io_error));
        }
    }
    fs::rename(temporary, file);
}

bool RemoveRegistration(const std::string& progId) {
    const fs::path file = RegistrationFile(progId);
    std::error_code error;
    // A file that is not there is no error: nothing is left either way.
    fs::remove(file, error);
    if (error) {
        return false;
    }
    // The folders the registration made go with it when nothing else is in them.
    std::error_code ignored;
    if (fs::remove(file.parent_path(), ignored)) {
        fs::remove(file.parent_path().parent_path(), ignored);
    }
    return true;
}

}  // namespace zerbin::plugin
