// One configuration parameter of a block: a named value with a network variable type, a
// default, limits, a place in the CDB and an editor.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <pugixml.hpp>

#include "base/CallbackList.h"
#include "base/CopyOnWrite.h"
#include "base/MemberKey.h"
#include "base/SkipMode.h"
#include "datatypes/ImageDigits.h"
#include "interfaces/IAppObject.h"
#include "interfaces/IAttribute.h"
#include "interfaces/ICanvasElement.h"
#include "interfaces/IEditors.h"
#include "interfaces/IHostServices.h"
#include "interfaces/IUnitsProvider.h"

namespace zerbin {

struct IMemberOwner;
class CDBSNVTType;
class CDBFields;
class CDBUnit;
class CDBUnits;
class UnitDerivationMemo;
struct UnitDerivationKey;

class CDBAttribute : public IAttribute,
                     public IAttributeRules,
                     public ICanvasElement,
                     public IInterceptableAttribute,
                     public IUnitsProvider,
                     public std::enable_shared_from_this<CDBAttribute> {
public:
    CDBAttribute();

    // IAttribute
    std::shared_ptr<IAppObject> IAttribute_Parent() override;
    bool IAttribute_Visible() override;
    void IAttribute_SetValue() override;
    bool IAttribute_IsUnit() override;
    std::string IAttribute_Description() override;
    std::string IAttribute_Value() override;
    std::string IAttribute_DispValue() override;
    std::string IAttribute_DispMin() override;
    std::string IAttribute_DispMax() override;
    std::string IAttribute_DispDefault() override;
    void IAttribute_Value(std::string Text) override;
    std::string IAttribute_Name() override;
    int32_t IAttribute_NodeType() override;
    std::string IAttribute_GlobalKey() override;
    std::shared_ptr<ISNVType> IAttribute_SNVTType() override;
    void IAttribute_BackToDefault() override;
    std::string IAttribute_DefaultValue() override;
    std::string IAttribute_Tag() override;
    void IAttribute_Tag(std::string v) override;
    std::shared_ptr<IFields> IAttribute_Fields() override;
    void IAttribute_CallBack(std::shared_ptr<IcbkAppObject> v) override;
    int32_t IAttribute_CDBPosition() override;
    bool IAttribute_ToolOnly() override;
    bool IAttribute_IsDeviceDependent() override;
    bool IAttribute_IsUnitDependent() override;
    std::string IAttribute_DeviceKey() override;
    bool IAttribute_IsKeepFloatStandard() override;
    int32_t IAttribute_DividedBy() override;
    bool IAttribute_IsType() override;
    std::string IAttribute_Min() override;
    std::string IAttribute_Max() override;
    std::string IAttribute_ExtendedKey() override;
    bool IAttribute_IsMacroConnected() override;

    // IAttributeRules
    std::string IAttributeRules_Check(const std::string& Text, std::string& Value) override;
    std::vector<std::pair<std::string, std::string>> IAttributeRules_Choices() override;

    // ICanvasElement
    bool ICanvasElement_Visible() override;
    void ICanvasElement_Visible(bool v) override;

    // IInterceptableAttribute
    void IInterceptableAttribute_SetInterceptor(
        std::shared_ptr<AttributeInterceptor> oAttributeInterceptor) override;

    // Internal.
    void SetParent(std::shared_ptr<IAppObject> owner);
    void SetName(const std::string& name);
    // Fills the attribute from its definition element; no failure leaves it.
    void LoadDefinition(pugi::xml_node node);
    // A copy of the attribute as its definition and the block's creation left it, with fields
    // of its own, under owner, with no listener, editor or interceptor: the member of a block
    // made from a compiled type. Units, which never change, are shared. With shareRecord the
    // type record is shared with this attribute until the copy changes it or hands it out;
    // only an attribute that never changes (a compiled type's) may be copied so.
    std::shared_ptr<CDBAttribute> CopyFor(std::shared_ptr<IAppObject> owner,
                                          bool shareRecord) const;
    // A new editor for the class of the type, through the editor port; none when headless.
    void CreateEditor();
    // Store the key, then hand it to every field.
    void SetGlobalKey(MemberKey key);
    void SetExtendedKey(MemberKey key);
    // Empties Value right before a project load writes the saved one.
    void ClearLoadedValue();
    // The value write for a value saved in a project. A saved value was divided by DivideBy
    // when it was first written, so it is stored as it stands, not divided once more.
    void RestoreSavedValue(const std::string& text);
    // Whether ClearLoadedValue and RestoreSavedValue(text) would leave this attribute exactly
    // as it is and tell no one: a value that is no selector's and no structure's, the text
    // stored as the value stands already, no listener, no interceptor. False when unsure.
    bool RestoringLeavesAsIs(std::string_view text) const;
    // What ClearLoadedValue and then RestoreSavedValue(*text), when there is a text, would
    // store in a member that nothing hears of, that has no fields and selects nothing: its
    // value and nothing else changes then. nullopt for any other member.
    std::optional<std::string> PlainRestoredValue(std::optional<std::string_view> text) const;
    // Puts in place a value PlainRestoredValue gave, as the restore would have left it.
    void TakeRestoredValue(std::string value) { value_ = std::move(value); }
    const std::string& StoredValue() const { return value_; }
    const std::string& Name() const { return def_->name; }
    bool IsUnitDependent() const;
    bool IsUnitSelector() const;
    bool IsTypeSelector() const { return def_->isType; }
    std::shared_ptr<CDBUnits> SelectableUnits() const;
    // The first derivation of a unit-dependent attribute at creation.
    void ApplyFirstUnit(CDBAttribute& selector);
    // Shortens a Float type to the 2-byte short float unless the standard float is kept.
    void ApplyShortFloat();
    int32_t CDBOrderInPosition() const;
    // Places the attribute and notes the length it has now as the room the layout gave it.
    void CDBPosition(int32_t v);
    // Bytes the attribute takes in the CDB with its current type.
    int32_t LengthInCdb() const;
    // The image with this attribute's digits in place; never grows it. Throws when a
    // coefficient does not fit 16 bits or the place starts past the end of the image.
    std::string WriteStream(std::string image);
    std::string WriteIntelStream(std::string image);
    // The image with value written in this attribute's place, as WriteStream would write it
    // holding value; for an attribute without fields that selects nothing. Neither changes.
    std::string WriteValueImage(std::string image, const std::string& value, bool intel) const;
    // The digits this attribute may write in an image, and how its writing compares with that
    // of the prototype it was copied from.
    DigitRange ImageRange(bool intel) const;
    ImageChange ImageChangeFrom(const CDBAttribute& prototype) const;
    // Internal. Cuts the references that would keep this attribute alive by themselves: the
    // fields' references back to it and the editor, which may hold it as its point. The
    // collection calls it when it goes; the attribute has no editor afterwards.
    void Release();
    // The converter of the owning block.
    std::shared_ptr<IUnitConverter> UnitsManager() override;
    // The concrete type record and fields, for the owner and the editors.
    std::shared_ptr<CDBSNVTType> Type() const;
    std::shared_ptr<CDBFields> FieldsCollection() const;
    // The editor, made when first asked for if none was made: a block made from its compiled
    // type makes none at creation, so that a windowed host's blocks share their members too.
    std::shared_ptr<IValueEditor> Editor();

    // Nested value writes beyond this depth are ignored, so that a listener that writes the
    // attribute it is told about cannot recurse without bound.
    static constexpr int kMaxNestedWrites = 16;

private:
    // The owning block's member facet; throws when there is none.
    IMemberOwner& Owner() const;
    std::shared_ptr<IAttribute> Self();

    // Loading (CDBAttributeLoad.cpp).
    void LoadKey(pugi::xml_attribute key);
    void LoadElement(pugi::xml_node child);
    void LoadUnits(pugi::xml_node units);
    void LoadTypes(pugi::xml_node types);
    void LoadDeviceDependent(const std::string& key);
    void LoadNumeric(pugi::xml_node document);
    void LoadStruct(pugi::xml_node document);
    // W1 to W4: lead, the owner's name, tail; titled "Warning" with the critical icon.
    void ShowLoadWarning(const std::string& lead, const std::string& tail);

    // Runs step, swallowing its failure as a skip-mode step does when absorb is set.
    template <class F>
    static void RunStep(bool absorb, F&& step) {
        if (absorb) {
            SkipStep(std::forward<F>(step));
        } else {
            std::forward<F>(step)();
        }
    }

    // Values (CDBAttributeValue.cpp).
    void StoreValue(const std::string& text);
    // Token index of a Struct value for field index; a text without blank is the first
    // field's token whole.
    std::string StructToken(const std::string& text, int32_t index) const;
    void RaiseAttributeChanged(bool absorb);
    void ChangeTypeOfConnections(bool absorb);

    // Selection (CDBAttributeSelection.cpp).
    bool ConnectionCheckPasses(const std::string& text);
    std::shared_ptr<IMacro> FindContainer(const std::shared_ptr<IMacro>& container,
                                          const std::string& key);
    // The unit whose type id equals Value, the last of several; nullptr when none has it.
    std::shared_ptr<CDBUnit> SelectedUnit() const;
    std::shared_ptr<CDBUnit> UnitFor(const std::string& value) const;
    // Bytes this dependent would take with the unit; 0 for a type the dictionary lacks.
    int32_t LengthWithUnit(const CDBUnit& unit) const;
    // False, after a message, when the unit would make a dependent outgrow its place.
    bool UnitFitsDependents(const CDBUnit& unit);
    void RederiveDependents(const std::shared_ptr<CDBUnit>& unit, bool absorb);
    void ApplySelectedUnit(const std::shared_ptr<CDBUnit>& unit);
    void DeriveFromUnit(const std::shared_ptr<CDBUnit>& unit, const std::string& converterTypeId,
                        bool change);
    // The key of a change of unit whose outcome may be kept; none when it depends on more
    // than the key can hold (no definition, a converter of another kind).
    // What the blocks sharing this attribute's definition derived from units, made on first use.
    std::shared_ptr<UnitDerivationMemo> Derivations() const;
    std::optional<UnitDerivationKey> DerivationKey(
        const CDBUnit& unit, const std::shared_ptr<const pugi::xml_document>& definition);

    // The type record to change or hand out: a shared one is copied first.
    CDBSNVTType& OwnType() const;

    // What the definition says of the attribute, which nothing changes once it is loaded: the
    // members of every block of a type share their prototype's. Written only through Own(),
    // which copies a shared one first.
    struct Definition {
        std::string name;
        std::string snvtTypeId;
        std::string deviceKey;
        std::string description;
        // The default and limits change only with the unit a selector chooses.
        std::string defaultValue;
        std::string min;
        std::string max;
        // The choices of a unit selector, which never change.
        std::shared_ptr<CDBUnits> units;
        int32_t orderInPosition = 0;
        int32_t divideBy = 1;
        bool isDeviceDependent = false;
        bool isKeepFloatStandard = false;
        bool isUnitDependent = false;
        bool differential = false;
        bool isType = false;
        bool isUnit = false;
        bool toolOnly = false;
        // Filled by the blocks that share the definition; a copy made to be changed starts
        // without one.
        mutable std::shared_ptr<UnitDerivationMemo> unitDerivations;
    };
    Definition& Own();
    // The same for a change of the default or the limits alone, which leaves what was derived
    // from the definition as true as it was.
    Definition& OwnLimits();

    // Stream (CDBAttributeStream.cpp).
    std::string WriteImage(std::string image, bool intel);

    int writeDepth_ = 0;
    bool restoringSaved_ = false;
    // Set by ApplyShortFloat: the block manages short floats, so a later change of type keeps
    // the short length that the layout gave this attribute.
    bool shortFloatManaged_ = false;

    CopyOnWrite<Definition> def_;
    bool visible_ = false;
    int32_t position_ = 0;
    // Bytes the layout reserved at position_; 0 while the attribute has no place.
    int32_t placeLength_ = 0;
    std::string value_;
    MemberKey globalKey_;
    std::string tag_;
    // Mutable for the copy on first change: reads that hand the record out are const.
    mutable std::shared_ptr<CDBSNVTType> snvtType_;
    mutable bool sharedType_ = false;
    std::shared_ptr<CDBFields> fields_;
    std::shared_ptr<IAppObject> parent_;
    // parent_ as the owner of its members, found when first asked for and kept until the
    // parent changes: the cast is costly, and a derivation from a unit asks for it twice.
    mutable IMemberOwner* memberOwner_ = nullptr;
    CallbackList<IcbkAppObject> callbacks_;
    std::shared_ptr<IValueEditor> editor_;
    bool editorMade_ = false;  // whether CreateEditor ran for this attribute
    MemberKey extendedKey_;
    std::shared_ptr<AttributeInterceptor> interceptor_;
};

}  // namespace zerbin
