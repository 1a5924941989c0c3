// A wire of the studio's project, named by the keys of its blocks and the names of its ends.
#pragma once

#include <cstddef>
#include <string>

namespace zerbin::studio {

// One connection: output `output` of block `source` feeds input `input` of block `target`.
struct Wire {
    std::string source;
    std::string output;
    std::string target;
    std::string input;
    bool operator==(const Wire&) const = default;
};

// A wire is saved inside its target block's element, as an element of this name.
inline constexpr const char* kConnectionElement = "Connection";

struct WireHash {
    std::size_t operator()(const Wire& wire) const noexcept;
};

}  // namespace zerbin::studio
