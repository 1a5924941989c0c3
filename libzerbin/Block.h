// The block behind a ZerbinBlock handle: a created application object and its type name, taken
// apart when the handle goes.
#pragma once

#include <memory>
#include <string>

#include "app_object/CDBAppObject.h"
#include "zerbin/zerbin.h"

struct ZerbinBlock {
    ZerbinBlock(std::shared_ptr<zerbin::CDBAppObject> made, std::string name)
        : block(std::move(made)), type(std::move(name)) {}
    ~ZerbinBlock();
    ZerbinBlock(const ZerbinBlock&) = delete;
    ZerbinBlock& operator=(const ZerbinBlock&) = delete;

    std::shared_ptr<zerbin::CDBAppObject> block;
    std::string type;
};

namespace zerbin::capi {

// A new block of type from the current library, in the host's order, keyed globalKey when
// that is not empty. Throws Failure.
std::unique_ptr<ZerbinBlock> MakeBlock(const std::string& type, const std::string& globalKey);

}  // namespace zerbin::capi
