// What the inputs and the outputs of a block have alike besides being member collections: the
// members are references made from the definition's elements, each knowing its place in the
// order, the longest name sets the width of the block's drawing, and a host may listen to the
// whole collection.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include <pugixml.hpp>

#include "base/MMain.h"
#include "base/MemberCollection.h"
#include "interfaces/IAppObject.h"

namespace zerbin {

template <class Derived, class T>
class References : public MemberCollection<Derived, T, IAppObject> {
public:
    // Throws on a duplicate name (any letter case) or a bad definition; the earlier members
    // stay.
    std::shared_ptr<T> AddFromDefinition(const std::string& name, pugi::xml_node node,
                                         std::shared_ptr<IAppObject> parent) {
        auto reference = std::make_shared<T>();
        reference->SetParent(std::move(parent));
        reference->SetName(name);
        reference->LoadDefinition(node);
        this->items_.Add(name, reference);
        reference->SetIndex(this->items_.Count() - 1);
        maxNameLength_ = std::max(maxNameLength_, CharCount(name));
        return reference;
    }
    int32_t MaxNameLength() const { return maxNameLength_; }
    // Whether every member is still the type's and no one listens: what the type's own
    // members would do, the block does.
    bool AsTheTypeHasThem() const { return this->NoneReached() && !callBack_; }

    void CopyFiguresFrom(const Derived& from) { maxNameLength_ = from.maxNameLength_; }

protected:
    std::shared_ptr<IcbkAppObject> callBack_;

private:
    int32_t maxNameLength_ = 0;
};

}  // namespace zerbin
