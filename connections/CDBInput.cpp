#include "connections/CDBInput.h"

#include <limits>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/CheckedMath.h"
#include "base/MMain.h"
#include "base/SkipMode.h"
#include "base/Xml.h"
#include "connections/ReferenceBytes.h"
#include "datatypes/CDBCompatibleSNVTs.h"
#include "datatypes/SNVTDataConversion.h"
#include "interfaces/Error.h"
#include "interfaces/IAttribute.h"
#include "interfaces/IHostServices.h"
#include "platform/Messages.h"

namespace zerbin {

namespace {

// Digits of an ordinary reference, and of an extended one.
constexpr int32_t kReferenceDigits = 4;
constexpr int32_t kExtendedReferenceDigits = 6;

// True when a terminal of the list exposes key. Positions are 16-bit in the host's lists, so
// a longer list is read no further than that; failing reads count as no match.
bool TerminalsExpose(const std::shared_ptr<IMacroTerminals>& terminals, const std::string& key) {
    int32_t count = 0;
    if (!SkipStep([&] { count = Need(terminals).Count(); })) {
        return false;
    }
    for (int32_t i = 1; i <= count && i <= std::numeric_limits<int16_t>::max(); ++i) {
        bool match = false;
        SkipStep([&] { match = Need(Need(terminals).Item(i)).ItemKey() == key; });
        if (match) {
            return true;
        }
    }
    return false;
}

}  // namespace

CDBInput::CDBInput() : snvtCompatibles_(std::make_shared<CDBCompatibleSNVTs>()) {}

std::shared_ptr<CDBInput> CDBInput::CopyFor(std::shared_ptr<IAppObject> parent,
                                            bool shareCompatibles) const {
    auto copy = std::make_shared<CDBInput>(*this);
    copy->callBacks_.Clear();
    copy->parent_ = std::move(parent);
    copy->sharedCompatibles_ = shareCompatibles && snvtCompatibles_;
    if (snvtCompatibles_ && !shareCompatibles) {
        copy->snvtCompatibles_ = snvtCompatibles_->Copy();
    }
    return copy;
}

CDBCompatibleSNVTs& CDBInput::OwnCompatibles() {
    if (sharedCompatibles_) {
        snvtCompatibles_ = snvtCompatibles_->Copy();
        sharedCompatibles_ = false;
    }
    return *snvtCompatibles_;
}

// ---- IInput --------------------------------------------------------------------------------

void CDBInput::IInput_changeType(const std::string& NewType) {
    if (!isTypeDependent_) {
        return;
    }
    auto replacement = std::make_shared<CDBCompatibleSNVTs>();
    replacement->AddList(NewType);
    snvtCompatibles_ = std::move(replacement);
    sharedCompatibles_ = false;
    // Deliberately pair by pair rather than two rounds over the list: each listener hears of
    // the retyping as one event before the next listener is served.
    const std::string key = globalKey_.Of(name_);
    callBacks_.Raise([&key](IcbkAppObject& listener) {
        listener.IcbkAppObject_ConnectionToBeDeleted(key);
        listener.IcbkAppObject_RefInTypeChanged(key);
    });
}

void CDBInput::IInput_CallBack(std::shared_ptr<IcbkAppObject> v) {
    callBacks_.Add(std::move(v));
}

int32_t CDBInput::IInput_NodeType() {
    return 7;
}

bool CDBInput::IInput_IsConnected() {
    return isConnected_;
}

std::shared_ptr<ISNVType> CDBInput::IInput_ConnectedType() {
    return connectedType_;
}

bool CDBInput::IInput_Visible() {
    return visible_;
}

bool CDBInput::IInput_Mandatory() {
    return mandatory_;
}

std::string CDBInput::IInput_Value() {
    return value_;
}

void CDBInput::IInput_Value(const std::string& v) {
    value_ = v;
}

std::string CDBInput::IInput_Name() {
    return name_;
}

std::string CDBInput::IInput_GlobalKey() {
    return globalKey_.Of(name_);
}

bool CDBInput::IInput_Extended() {
    return extended_;
}

int32_t CDBInput::IInput_Index() {
    return index_;
}

int32_t CDBInput::IInput_CDBPosition() {
    return cdbPosition_;
}

std::shared_ptr<ICompatibleSNVTs> CDBInput::Iinput_SNVTCompatibles() {
    // Whoever holds the set may change it: it must be this input's alone.
    if (snvtCompatibles_) {
        OwnCompatibles();
    }
    return snvtCompatibles_;
}

std::shared_ptr<IAppObject> CDBInput::Iinput_Parent() {
    return parent_;
}

std::string CDBInput::IInput_ExtendedKey() {
    return extendedKey_.Of(name_);
}

bool CDBInput::IInput_IsMacroConnected() {
    std::vector<std::shared_ptr<IMacroInputGroup>> groups;
    std::shared_ptr<IMacroHost> host;
    SkipStep(
        [&] { host = std::dynamic_pointer_cast<IMacroHost>(Need(parent_).IAppObject_Parent()); });
    if (!host) {
        return false;
    }
    if (!SkipStep([&] { groups = Need(host->Macro()).InputGroups(); })) {
        return false;
    }
    for (const auto& group : groups) {
        std::shared_ptr<IMacroTerminals> terminals;
        SkipStep([&] { terminals = Need(group).Terminals(); });
        if (TerminalsExpose(terminals, globalKey_.Of(name_))) {
            return true;
        }
        bool hasFields = false;
        SkipStep([&] { hasFields = Need(group).HasFields(); });
        if (!hasFields) {
            continue;
        }
        std::vector<std::shared_ptr<IObject>> fields;
        SkipStep(
            [&] { fields = Need(std::dynamic_pointer_cast<IMacroInputFields>(group)).Fields(); });
        for (const auto& entry : fields) {
            std::shared_ptr<IMacroTerminals> fieldTerminals;
            SkipStep([&] {
                fieldTerminals =
                    Need(std::dynamic_pointer_cast<IMacroFieldGroup>(entry)).Terminals();
            });
            if (TerminalsExpose(fieldTerminals, globalKey_.Of(name_))) {
                return true;
            }
        }
    }
    return false;
}

// ---- ICanvasElement ------------------------------------------------------------------------

bool CDBInput::ICanvasElement_Visible() {
    return visible_;
}

void CDBInput::ICanvasElement_Visible(bool v) {
    visible_ = v;
}

// ---- ISubItemConnable ----------------------------------------------------------------------

void CDBInput::ISubItemConnable_IsConnected(bool v) {
    isConnected_ = v;
    // A connect says nothing about the type: that comes through ConnectedType on its own.
    if (v) {
        return;
    }
    connectedType_ = nullptr;
    if (!sendLengthTo_.empty()) {
        SkipStep([&] { HandOverLength("0"); });
    }
}

void CDBInput::ISubItemConnable_HasPriority(bool /*v*/) {}

void CDBInput::ISubItemConnable_IncrementalConnIndex(int32_t /*v*/) {}

void CDBInput::ISubItemConnable_ConnectedType(std::shared_ptr<ISNVType> v) {
    connectedType_ = std::move(v);
    std::string length;
    SkipStep([&] { length = std::to_string(Need(connectedType_).ISNVType_Length()); });
    // Without a type the attribute is still written, with the empty text.
    if (!sendLengthTo_.empty()) {
        SkipStep([&] { HandOverLength(length); });
    }
}

int32_t CDBInput::ISubItemConnable_ItemType() {
    return 7;
}

std::string CDBInput::ISubItemConnable_GlobalKey() {
    return globalKey_.Of(name_);
}

std::string CDBInput::ISubItemConnable_Name() {
    return name_;
}

std::shared_ptr<ISNVType> CDBInput::ISubItemConnable_SNVTType() {
    return nullptr;
}

bool CDBInput::ISubItemConnable_IsSNVTCompatible(const std::string& sId) {
    // The input accepts what its compatibility list names, by the set's own comparison.
    bool exists = false;
    SkipStep([&] { exists = Need(Iinput_SNVTCompatibles()).ICompatibleSNVTs_Exists(sId); });
    return exists;
}

// ---- Internal ------------------------------------------------------------------------------

void CDBInput::SetGlobalKey(MemberKey v) {
    globalKey_ = std::move(v);
}

void CDBInput::SetExtendedKey(MemberKey v) {
    extendedKey_ = std::move(v);
}

void CDBInput::SetName(const std::string& v) {
    name_ = v;
}

void CDBInput::LoadDefinition(pugi::xml_node node) {
    extended_ = false;
    for (const pugi::xml_attribute attribute : node.attributes()) {
        const std::string_view key = xml::BaseNameView(attribute);
        // Deliberately by presence: definition files in use write ISEXTENDED="0" and mean it
        // as a flag, so the value is never read.
        if (EqualsNoCase(key, "ISEXTENDED")) {
            extended_ = true;
        } else if (EqualsNoCase(key, "TYPEDEPENDENT")) {
            isTypeDependent_ = true;
        } else if (EqualsNoCase(key, "SENDLENGTHTO")) {
            sendLengthTo_ = attribute.value();
        }
    }
    for (const pugi::xml_node child : node.children()) {
        if (xml::IsComment(child)) {
            continue;
        }
        const std::string_view key = xml::BaseNameView(child);
        if (EqualsNoCase(key, "CDBORDERINPOSITION")) {
            const std::string text = xml::FirstChildText(child);
            cdbOrderInPosition_ = ToInt32(LeadingNumber(text));
            if (text.empty()) {
                Warn(": CDBOrderingPosition not defined into the XML file of the object ");
            }
        } else if (EqualsNoCase(key, "MANDATORY")) {
            mandatory_ = LeadingNumber(xml::FirstChildText(child)) != 0;
        } else if (EqualsNoCase(key, "VISIBLE")) {
            visible_ = LeadingNumber(xml::FirstChildText(child)) != 0;
        } else if (EqualsNoCase(key, "SNVTCOMPATIBILITYLIST")) {
            const std::string text = xml::FirstChildText(child);
            OwnCompatibles().AddList(text);
            if (text.empty()) {
                Warn(": SNVT Compatibility list not defined into the XML file of the object ");
            }
        }
    }
}

void CDBInput::SetParent(std::shared_ptr<IAppObject> parent) {
    parent_ = std::move(parent);
}

int32_t CDBInput::CDBOrderInPosition() const {
    return cdbOrderInPosition_;
}

void CDBInput::CDBPosition(int32_t v) {
    cdbPosition_ = v;
}

void CDBInput::SetIndex(int32_t v) {
    index_ = v;
}

std::string CDBInput::WriteStream(std::string image) {
    if (value_.empty()) {
        return image;
    }
    OverwriteDigits(image, DigitPosition(), value_, ReferenceDigits());
    return image;
}

std::string CDBInput::WriteIntelStream(std::string image) {
    if (value_.empty()) {
        return image;
    }
    OverwriteDigits(image, DigitPosition(), reference::IntelReference(value_, extended_),
                    ReferenceDigits());
    return image;
}

DigitRange CDBInput::ImageRange() const {
    const int64_t first = static_cast<int64_t>(cdbPosition_) * 2;
    return {first, first + ReferenceDigits()};
}

ImageChange CDBInput::ImageChangeFrom(const CDBInput& prototype) const {
    if (cdbPosition_ != prototype.cdbPosition_ || extended_ != prototype.extended_) {
        return ImageChange::Other;
    }
    return value_ == prototype.value_ ? ImageChange::Same : ImageChange::SamePlace;
}

// ---- Private -------------------------------------------------------------------------------

void CDBInput::HandOverLength(const std::string& text) {
    auto attributes = Need(parent_).IAppObject_Attributes();
    Need(Need(attributes).IAttributes_Item(sendLengthTo_)).IAttribute_Value(text);
}

void CDBInput::Warn(const std::string& middle) {
    ShowMessage(name_ + middle + Need(parent_).IAppObject_Name() + ".", "Warning",
                MessageIcon::Critical, MessageButtons::Ok);
}

int32_t CDBInput::ReferenceDigits() const {
    return extended_ ? kExtendedReferenceDigits : kReferenceDigits;
}

int32_t CDBInput::DigitPosition() const {
    return CheckedMul(cdbPosition_, 2);
}

}  // namespace zerbin
