// The picture port: an icon as the component hands it to the host, the bytes of an icon file
// (".ico": one or more images of several sizes) and where they came from. The core never
// draws; a Qt host turns the bytes into a QIcon with zerbin/QtPicture.h.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace zerbin {

struct Picture {
    std::vector<unsigned char> bytes;
    std::string source;  // the file the bytes were read from, or a resource name
};

// The name of the component's own icon resource.
inline constexpr const char* kDefaultIconResource = "TESSRA";

// The icon file, or nullptr when it is missing, unreadable or not an icon file.
std::shared_ptr<const Picture> LoadIconFile(const std::filesystem::path& file);

// An icon resource compiled into the component, or nullptr for a name it does not carry.
// The same picture object on every call.
std::shared_ptr<const Picture> LoadIconResource(const std::string& name);

}  // namespace zerbin
