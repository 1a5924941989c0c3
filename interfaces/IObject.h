// The root of every interface: a facet of an object, asked for with std::dynamic_pointer_cast.
// Interfaces derive from it virtually, so that a class with several facets is still one IObject.
#pragma once

namespace zerbin {

struct IObject {
    virtual ~IObject() = default;
};

}  // namespace zerbin
