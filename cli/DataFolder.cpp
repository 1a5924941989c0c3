#include "cli/DataFolder.h"

#include <system_error>

namespace zerbin::cli {
namespace {

bool HoldsData(const std::filesystem::path& folder) {
    std::error_code error;
    return std::filesystem::is_regular_file(folder / "snvts.xml", error);
}

}  // namespace

std::filesystem::path ShippedDataFolder() {
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    if (!error) {
        const std::filesystem::path installed =
            (program.parent_path() / ".." / "share" / "zerbin").lexically_normal();
        if (HoldsData(installed)) {
            return installed;
        }
    }
    return std::filesystem::path(ZERBIN_SOURCE_DATA_DIR);
}

std::filesystem::path ShippedLibrary() {
    return ShippedDataFolder() / "library";
}

std::filesystem::path ShippedDictionary() {
    return ShippedDataFolder() / "snvts.xml";
}

std::filesystem::path ShippedDevice() {
    return ShippedDataFolder() / "devices" / "Controller.xml";
}

}  // namespace zerbin::cli
