// What the component asks of its host beyond IAppObject: the macro view behind the block's
// parent, the attribute interceptor, and the unit converter.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "interfaces/IObject.h"

namespace zerbin {

struct IAttribute;

// ---- Macro view ----------------------------------------------------------------------------

struct IMacroTerminal : virtual IObject {
    // The global key of the item that the terminal exposes.
    virtual std::string ItemKey() = 0;
};

// A list with a count and access by 1-based position.
struct IMacroTerminals : virtual IObject {
    virtual int32_t Count() = 0;
    virtual std::shared_ptr<IMacroTerminal> Item(int32_t position) = 0;
};

struct IMacroAttributeGroup : virtual IObject {
    virtual std::shared_ptr<IMacroTerminals> Terminals() = 0;
};

struct IMacroFieldGroup : virtual IObject {
    virtual std::shared_ptr<IMacroTerminals> Terminals() = 0;
};

struct IMacroInputGroup : virtual IObject {
    virtual std::shared_ptr<IMacroTerminals> Terminals() = 0;
    virtual bool HasFields() = 0;
};

// The same group seen as a holder of field groups, asked for when HasFields is true.
struct IMacroInputFields : virtual IObject {
    virtual std::vector<std::shared_ptr<IObject>> Fields() = 0;
};

struct IMacroOutputGroup : virtual IObject {
    // The one terminal of a macro output, or nullptr.
    virtual std::shared_ptr<IMacroTerminal> Terminal() = 0;
};

struct IConnection : virtual IObject {
    // Seen as ISubItemConnable (an output).
    virtual std::shared_ptr<IObject> Source() = 0;
    // Seen as IInput.
    virtual std::shared_ptr<IObject> Target() = 0;
};

struct IMacro : virtual IObject {
    virtual std::vector<std::shared_ptr<IMacroAttributeGroup>> AttributeGroups() = 0;
    virtual std::vector<std::shared_ptr<IMacroInputGroup>> InputGroups() = 0;
    virtual std::vector<std::shared_ptr<IMacroOutputGroup>> OutputGroups() = 0;
    // Blocks (IAppObject), some of which are macros themselves (IMacro).
    virtual std::vector<std::shared_ptr<IObject>> Members() = 0;
    // The direct connections inside this macro, or nothing.
    virtual std::optional<std::vector<std::shared_ptr<IConnection>>> Connections() = 0;
};

// The facet of a block's parent that tells which macro holds the block.
struct IMacroHost : virtual IObject {
    virtual std::shared_ptr<IMacro> Macro() = 0;
};

// The facet of a block's parent that leads to the top of the project.
struct IHostContainer : virtual IObject {
    virtual std::shared_ptr<IObject> TopObject() = 0;
};

struct ITopObject : virtual IObject {
    virtual std::shared_ptr<IMacro> RootMacro() = 0;
};

// ---- Attribute interceptor -----------------------------------------------------------------

// Lets the host overrule single decisions of an attribute. The first argument is always the
// attribute itself.
struct AttributeInterceptor : virtual IObject {
    // True means the interceptor has taken over and the device list is not read.
    virtual bool InterceptDeviceList(std::shared_ptr<IAttribute>& attribute) = 0;
    virtual void AttributeValueChanged(std::shared_ptr<IAttribute>& attribute) = 0;
    // The reference left in the argument replaces the one in hand.
    virtual void DependentAttributeChanged(std::shared_ptr<IAttribute>& attribute) = 0;
    virtual void InterceptUnitDependent(std::shared_ptr<IAttribute>& attribute,
                                        bool& IsUnitDependent) = 0;
    virtual void InterceptDifferential(std::shared_ptr<IAttribute>& attribute,
                                       bool& Differential) = 0;
};

// ---- Unit converter ------------------------------------------------------------------------

// Conversion of stored values to and from the units the user sees. Type id is the text after
// "SNVT_" in the dictionary.
struct IUnitConverter : virtual IObject {
    virtual std::string ToDisplayValue(const std::string& typeId,
                                       const std::string& storedValue) = 0;
    // The inverse of ToDisplayValue within the type's resolution.
    virtual std::string FromDisplayValue(const std::string& typeId,
                                         const std::string& displayText) = 0;
    // May be empty.
    virtual std::string DisplayUnit(const std::string& typeId) = 0;
    virtual double ParseDisplayNumber(const std::string& displayText) = 0;
    virtual int16_t DecimalPlaces(const std::string& typeId) = 0;
    // Limits of the type in display form; may be empty.
    virtual std::string MinimumFor(const std::string& typeId) = 0;
    virtual std::string MaximumFor(const std::string& typeId) = 0;
    virtual std::string DefaultFor(const std::string& typeId) = 0;
};

}  // namespace zerbin
