// The root of every interface: a facet of an object, asked for with std::dynamic_pointer_cast.
#pragma once

namespace zerbin {

struct IObject {
    virtual ~IObject() = default;
};

}  // namespace zerbin
