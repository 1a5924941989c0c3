// The point that a value editor edits: an attribute or a field, seen through the members the
// editors ask for. Any other object answers nothing: each read throws, as a step through a
// missing object does.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "interfaces/IAttribute.h"
#include "interfaces/IField.h"

namespace zerbin {

class EditPoint {
public:
    explicit EditPoint(std::shared_ptr<IObject> object);

    std::string Name() const;
    std::string Value() const;
    void Value(const std::string& text) const;
    std::shared_ptr<ISNVType> SNVTType() const;
    std::shared_ptr<IFields> Fields() const;
    // ID of the point's type, the text the unit service knows it by.
    std::string TypeId() const;

    // The stored lower and upper limits of an attribute or a field; nothing for any other
    // object, whose limits are those of its type.
    std::optional<std::pair<std::string, std::string>> StoredLimits() const;

    const std::shared_ptr<IObject>& Object() const { return object_; }

private:
    std::shared_ptr<IObject> object_;
    std::shared_ptr<IAttribute> attribute_;
    std::shared_ptr<IField> field_;
};

}  // namespace zerbin
