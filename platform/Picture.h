// An icon as the component hands it to the host: the bytes of the image file and where they
// came from. The host decodes it; the core never looks inside.
#pragma once

#include <string>
#include <vector>

namespace zerbin {

struct Picture {
    std::vector<unsigned char> bytes;
    std::string source;  // the file the bytes were read from, or a resource name
};

}  // namespace zerbin
