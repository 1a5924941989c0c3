// The model of an attribute: plain reads, keys, listeners, the interceptor and the editor.
#include "parameters/CDBAttribute.h"

#include "base/SkipMode.h"
#include "datatypes/CDBFields.h"
#include "datatypes/CDBSNVTType.h"
#include "datatypes/CDBUnits.h"
#include "datatypes/SNVTDataConversion.h"
#include "datatypes/TypeClass.h"
#include "interfaces/IMemberOwner.h"
#include "parameters/ValueRules.h"
#include "platform/EditorPort.h"

namespace zerbin {

CDBAttribute::CDBAttribute() : snvtType_(std::make_shared<CDBSNVTType>()) {
    // Its own from the start: an attribute made here is about to be given its definition.
    def_.Reset();
}

std::shared_ptr<CDBAttribute> CDBAttribute::CopyFor(std::shared_ptr<IAppObject> owner,
                                                    bool shareRecord) const {
    auto copy = std::make_shared<CDBAttribute>(*this);
    copy->callbacks_.Clear();
    copy->editor_.reset();
    copy->editorMade_ = false;
    copy->interceptor_.reset();
    copy->SetParent(std::move(owner));
    copy->sharedType_ = shareRecord && snvtType_;
    if (snvtType_ && !shareRecord) {
        copy->snvtType_ = snvtType_->Copy();
    }
    if (fields_) {
        copy->fields_ = fields_->CopyFor(copy);
    }
    return copy;
}

IMemberOwner& CDBAttribute::Owner() const {
    if (memberOwner_ == nullptr) {
        memberOwner_ = dynamic_cast<IMemberOwner*>(parent_.get());
    }
    if (memberOwner_ == nullptr) {
        throw Error("the object is missing", ErrorKind::MissingObject);
    }
    return *memberOwner_;
}

std::shared_ptr<IAttribute> CDBAttribute::Self() {
    return shared_from_this();
}

// ---- IAttribute: plain reads and writes ----------------------------------------------------

std::shared_ptr<IAppObject> CDBAttribute::IAttribute_Parent() {
    return parent_;
}

bool CDBAttribute::IAttribute_Visible() {
    return visible_;
}

bool CDBAttribute::IAttribute_IsUnit() {
    return def_->isUnit;
}

std::string CDBAttribute::IAttribute_Description() {
    return def_->description;
}

std::string CDBAttribute::IAttribute_Name() {
    return def_->name;
}

int32_t CDBAttribute::IAttribute_NodeType() {
    return 9;
}

std::string CDBAttribute::IAttribute_GlobalKey() {
    return globalKey_.Of(def_->name);
}

std::shared_ptr<ISNVType> CDBAttribute::IAttribute_SNVTType() {
    if (snvtType_) {
        OwnType();  // the host may change what it is handed
    }
    return snvtType_;
}

CDBAttribute::Definition& CDBAttribute::OwnLimits() {
    return def_.Write();
}

CDBAttribute::Definition& CDBAttribute::Own() {
    Definition& own = OwnLimits();
    // What was derived from the definition before this change may not follow from it now.
    own.unitDerivations.reset();
    return own;
}

CDBSNVTType& CDBAttribute::OwnType() const {
    if (sharedType_) {
        snvtType_ = Need(snvtType_).Copy();
        sharedType_ = false;
    }
    return Need(snvtType_);
}

std::string CDBAttribute::IAttribute_DefaultValue() {
    return def_->defaultValue;
}

std::string CDBAttribute::IAttribute_Tag() {
    return tag_;
}

void CDBAttribute::IAttribute_Tag(std::string v) {
    tag_ = std::move(v);
}

std::shared_ptr<IFields> CDBAttribute::IAttribute_Fields() {
    return fields_;
}

void CDBAttribute::IAttribute_CallBack(std::shared_ptr<IcbkAppObject> v) {
    callbacks_.Add(std::move(v));
}

int32_t CDBAttribute::IAttribute_CDBPosition() {
    return position_;
}

bool CDBAttribute::IAttribute_ToolOnly() {
    return def_->toolOnly;
}

bool CDBAttribute::IAttribute_IsDeviceDependent() {
    return def_->isDeviceDependent;
}

bool CDBAttribute::IAttribute_IsUnitDependent() {
    return def_->isUnitDependent;
}

std::string CDBAttribute::IAttribute_DeviceKey() {
    return def_->deviceKey;
}

bool CDBAttribute::IAttribute_IsKeepFloatStandard() {
    return def_->isKeepFloatStandard;
}

// The divisor itself: a host that reads it can make sense of the quotients it finds in Value.
int32_t CDBAttribute::IAttribute_DividedBy() {
    return def_->divideBy;
}

bool CDBAttribute::IAttribute_IsType() {
    return def_->isType;
}

std::string CDBAttribute::IAttribute_Min() {
    return def_->min;
}

std::string CDBAttribute::IAttribute_Max() {
    return def_->max;
}

std::string CDBAttribute::IAttribute_ExtendedKey() {
    return extendedKey_.Of(def_->name);
}

// ---- ICanvasElement, IInterceptableAttribute -----------------------------------------------

bool CDBAttribute::ICanvasElement_Visible() {
    return visible_;
}

void CDBAttribute::ICanvasElement_Visible(bool v) {
    visible_ = v;
}

void CDBAttribute::IInterceptableAttribute_SetInterceptor(
    std::shared_ptr<AttributeInterceptor> oAttributeInterceptor) {
    interceptor_ = std::move(oAttributeInterceptor);
}

// ---- Internal ----------------------------------------------------------------------------

void CDBAttribute::SetParent(std::shared_ptr<IAppObject> owner) {
    parent_ = std::move(owner);
    memberOwner_ = nullptr;  // found again when first asked for
}

void CDBAttribute::SetName(const std::string& name) {
    Own().name = name;
}

void CDBAttribute::CreateEditor() {
    editor_ = nullptr;
    editorMade_ = true;
    if (!HasEditorFactory()) {
        return;
    }
    const std::string editorName = ValueEditorName(ClassOf(*snvtType_));
    if (editorName.empty()) {
        return;
    }
    // A factory that fails leaves the attribute without an editor, as a headless host does.
    SkipStep([&] { editor_ = CreateValueEditor(editorName); });
}

void CDBAttribute::SetGlobalKey(MemberKey key) {
    globalKey_ = std::move(key);
    if (fields_) {
        const std::string own = globalKey_.Of(def_->name);
        for (const auto& field : fields_->Fields()) {
            field->SetGlobalKey(own);
        }
    }
}

void CDBAttribute::SetExtendedKey(MemberKey key) {
    extendedKey_ = std::move(key);
    if (fields_) {
        const std::string own = extendedKey_.Of(def_->name);
        for (const auto& field : fields_->Fields()) {
            field->SetExtendedKey(own);
        }
    }
}

void CDBAttribute::ClearLoadedValue() {
    value_.clear();
    // The fields are what the image is made of: an element saved without text must empty
    // them as well, or the image after the load would hold the defaults until someone reads
    // the value.
    if (fields_) {
        for (const auto& field : fields_->Fields()) {
            field->IField_Value(std::string());
        }
    }
}

void CDBAttribute::RestoreSavedValue(const std::string& text) {
    const bool outer = restoringSaved_;
    restoringSaved_ = true;
    try {
        IAttribute_Value(text);
    } catch (...) {
        restoringSaved_ = outer;
        throw;
    }
    restoringSaved_ = outer;
}

bool CDBAttribute::IsUnitDependent() const {
    return def_->isUnitDependent;
}

bool CDBAttribute::IsUnitSelector() const {
    return def_->isUnit;
}

std::shared_ptr<CDBUnits> CDBAttribute::SelectableUnits() const {
    return def_->units;
}

int32_t CDBAttribute::CDBOrderInPosition() const {
    return def_->orderInPosition;
}

void CDBAttribute::CDBPosition(int32_t v) {
    position_ = v;
    // The layout adds the size right after placing: this is the room the attribute has.
    placeLength_ = 0;
    SkipStep([&] { placeLength_ = LengthInCdb(); });
}

int32_t CDBAttribute::LengthInCdb() const {
    return def_->isKeepFloatStandard ? 4 : Need(snvtType_).ISNVType_Length();
}

void CDBAttribute::Release() {
    editor_.reset();
    if (fields_) {
        for (const auto& field : fields_->Fields()) {
            field->SetParent(nullptr);
        }
    }
}

std::shared_ptr<IUnitConverter> CDBAttribute::UnitsManager() {
    return Owner().UnitsManager();
}

std::shared_ptr<CDBSNVTType> CDBAttribute::Type() const {
    if (snvtType_) {
        OwnType();
    }
    return snvtType_;
}

std::shared_ptr<CDBFields> CDBAttribute::FieldsCollection() const {
    return fields_;
}

std::shared_ptr<IValueEditor> CDBAttribute::Editor() {
    if (!editorMade_) {
        CreateEditor();
    }
    return editor_;
}

std::string CDBAttribute::IAttributeRules_Check(const std::string& Text, std::string& Value) {
    ValueVerdict verdict = CheckValue(*this, Text);
    if (verdict.Taken()) {
        Value = std::move(verdict.value);
    }
    return verdict.objection;
}

std::vector<std::pair<std::string, std::string>> CDBAttribute::IAttributeRules_Choices() {
    return ValueChoices(*this);
}

}  // namespace zerbin
