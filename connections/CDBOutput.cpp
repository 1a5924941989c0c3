#include "connections/CDBOutput.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/CheckedMath.h"
#include "base/MMain.h"
#include "base/SkipMode.h"
#include "base/Xml.h"
#include "datatypes/CDBCompatibleSNVT.h"
#include "datatypes/CDBSNVTType.h"
#include "interfaces/Error.h"
#include "interfaces/IHostServices.h"
#include "platform/Messages.h"

namespace zerbin {

std::shared_ptr<CDBOutput> CDBOutput::CopyFor(std::shared_ptr<IAppObject> parent,
                                              bool shareRecord) const {
    auto copy = std::make_shared<CDBOutput>(*this);
    copy->callBacks_.Clear();
    copy->parent_ = std::move(parent);
    copy->sharedRecords_ = shareRecord;
    if (!shareRecord) {
        copy->sharedRecords_ = true;
        copy->OwnRecords();
    }
    return copy;
}

void CDBOutput::OwnRecords() {
    if (!sharedRecords_) {
        return;
    }
    // The host may edit a record through its interface, so each block has its own.
    if (snvtType_) {
        snvtType_ = snvtType_->Copy();
    }
    if (snvtCompatible_) {
        snvtCompatible_ = std::make_shared<CDBCompatibleSNVT>(*snvtCompatible_);
    }
    sharedRecords_ = false;
}

// ---- IOutput -------------------------------------------------------------------------------

bool CDBOutput::IOutput_IsConnected() {
    return isConnected_;
}

void CDBOutput::IOutput_CallBack(std::shared_ptr<IcbkAppObject> v) {
    callBacks_.Add(std::move(v));
}

void CDBOutput::IOutput_changeType(const std::string& NewType) {
    if (!isTypeDependent_) {
        return;
    }
    snvtCompatible_ = nullptr;
    snvtType_ = nullptr;
    sharedRecords_ = false;
    auto compatible = std::make_shared<CDBCompatibleSNVT>();
    compatible->SetID(NewType);
    snvtCompatible_ = std::move(compatible);
    auto type = std::make_shared<CDBSNVTType>();
    type->ResolveByID(NewType);
    snvtType_ = std::move(type);
    // Each listener gets its pair before the next one hears anything, as for an input.
    const std::string key = globalKey_.Of(name_);
    callBacks_.Raise([&key](IcbkAppObject& listener) {
        listener.IcbkAppObject_ConnectionToBeDeleted(key);
        listener.IcbkAppObject_RefOutTypeChanged(key);
    });
}

int32_t CDBOutput::IOutput_NodeType() {
    return 8;
}

bool CDBOutput::IOutput_Visible() {
    return visible_;
}

std::string CDBOutput::IOutput_Name() {
    return name_;
}

std::string CDBOutput::IOutput_GlobalKey() {
    return globalKey_.Of(name_);
}

int32_t CDBOutput::IOutput_Index() {
    return index_;
}

std::shared_ptr<ICompatibleSNVT> CDBOutput::IOutput_SNVTCompatible() {
    OwnRecords();
    return snvtCompatible_;
}

std::shared_ptr<ISNVType> CDBOutput::IOutput_SNVTType() {
    OwnRecords();
    return snvtType_;
}

std::shared_ptr<IAppObject> CDBOutput::IOutput_Parent() {
    return parent_;
}

bool CDBOutput::IOutput_DisplayWritable() {
    return displayWritable_;
}

bool CDBOutput::IOutput_IsTypeDependent() {
    return isTypeDependent_;
}

std::string CDBOutput::IOutput_ExtendedKey() {
    return extendedKey_.Of(name_);
}

bool CDBOutput::IOutput_IsMacroConnected() {
    std::shared_ptr<IMacroHost> host;
    SkipStep(
        [&] { host = std::dynamic_pointer_cast<IMacroHost>(Need(parent_).IAppObject_Parent()); });
    if (!host) {
        return false;
    }
    std::vector<std::shared_ptr<IMacroOutputGroup>> groups;
    if (!SkipStep([&] { groups = Need(host->Macro()).OutputGroups(); })) {
        return false;
    }
    for (const auto& group : groups) {
        bool match = false;
        SkipStep([&] {
            auto terminal = Need(group).Terminal();
            match = terminal && terminal->ItemKey() == globalKey_.Of(name_);
        });
        if (match) {
            return true;
        }
    }
    return false;
}

bool CDBOutput::IOutput_IsDisplayable() {
    return isDisplayable_;
}

void CDBOutput::IOutput_IsDisplayable(bool v) {
    isDisplayable_ = v;
}

// ---- IDisplayItem --------------------------------------------------------------------------

std::string CDBOutput::IDisplayItem_DisplayText() {
    // Deliberate: a written text lasts only until the next read, which always shows the name.
    displayText_ = name_;
    return displayText_;
}

void CDBOutput::IDisplayItem_DisplayText(const std::string& v) {
    displayText_ = v;
}

std::string CDBOutput::IDisplayItem_Key() {
    return extendedKey_.Of(name_);
}

int32_t CDBOutput::IDisplayItem_itemType() {
    return 10;
}

std::shared_ptr<const Picture> CDBOutput::IDisplayItem_Icon() {
    return nullptr;
}

bool CDBOutput::IDisplayItem_IsWritable() {
    return displayWritable_;
}

bool CDBOutput::IDisplayItem_IsTrendable() {
    return false;
}

std::string CDBOutput::IDisplayItem_Reference() {
    // Computed on each read: the host may renumber its blocks at any time.
    return HexWordOf(NvReferenceCode(Need(parent_).IAppObject_ExportIndex(), index_));
}

bool CDBOutput::IDisplayItem_IsConnected() {
    return isConnected_;
}

bool CDBOutput::IDisplayItem_IsDisplayable() {
    return isDisplayable_;
}

std::shared_ptr<ISNVType> CDBOutput::IDisplayItem_SNVTType() {
    OwnRecords();
    return snvtType_;
}

std::shared_ptr<IFields> CDBOutput::IDisplayItem_Fields() {
    return nullptr;
}

// ---- ICanvasElement ------------------------------------------------------------------------

bool CDBOutput::ICanvasElement_Visible() {
    return visible_;
}

void CDBOutput::ICanvasElement_Visible(bool v) {
    visible_ = v;
}

// ---- ISubItemConnable ----------------------------------------------------------------------

void CDBOutput::ISubItemConnable_IsConnected(bool v) {
    // Several inputs may hang on one output, so connections are counted. The host pairs its
    // calls; an unpaired disconnect is not floored at 0 and leaves the output "connected".
    if (v) {
        connectionCount_ = CheckedAdd(connectionCount_, 1);
        isConnected_ = true;
        return;
    }
    connectionCount_ = CheckedSub(connectionCount_, 1);
    isConnected_ = connectionCount_ != 0;
}

void CDBOutput::ISubItemConnable_HasPriority(bool /*v*/) {}

void CDBOutput::ISubItemConnable_IncrementalConnIndex(int32_t /*v*/) {}

void CDBOutput::ISubItemConnable_ConnectedType(std::shared_ptr<ISNVType> /*v*/) {}

int32_t CDBOutput::ISubItemConnable_ItemType() {
    return 8;
}

std::string CDBOutput::ISubItemConnable_GlobalKey() {
    return globalKey_.Of(name_);
}

std::string CDBOutput::ISubItemConnable_Name() {
    return name_;
}

std::shared_ptr<ISNVType> CDBOutput::ISubItemConnable_SNVTType() {
    OwnRecords();
    return snvtType_;
}

bool CDBOutput::ISubItemConnable_IsSNVTCompatible(const std::string& sId) {
    return snvtCompatible_ && snvtCompatible_->ICompatibleSNVT_ID() == sId;
}

// ---- Internal ------------------------------------------------------------------------------

void CDBOutput::SetGlobalKey(MemberKey v) {
    globalKey_ = std::move(v);
}

void CDBOutput::SetName(const std::string& v) {
    name_ = v;
}

void CDBOutput::LoadDefinition(pugi::xml_node node) {
    displayWritable_ = false;
    isTypeDependent_ = false;
    for (const pugi::xml_attribute attribute : node.attributes()) {
        const std::string_view key = xml::BaseNameView(attribute);
        // Flags by presence: DISPLAYWRITABLE="0" still makes the output writable.
        if (EqualsNoCase(key, "DISPLAYWRITABLE")) {
            displayWritable_ = true;
        } else if (EqualsNoCase(key, "TYPEDEPENDENT")) {
            isTypeDependent_ = true;
        }
    }
    for (const pugi::xml_node child : node.children()) {
        if (xml::IsComment(child)) {
            continue;
        }
        const std::string_view key = xml::BaseNameView(child);
        if (EqualsNoCase(key, "VISIBLE")) {
            visible_ = LeadingNumber(xml::FirstChildText(child)) != 0;
        } else if (EqualsNoCase(key, "SNVTTYPE")) {
            LoadType(xml::FirstChildText(child));
        }
    }
}

void CDBOutput::SetIndex(int32_t v) {
    index_ = v;
}

void CDBOutput::SetParent(std::shared_ptr<IAppObject> parent) {
    parent_ = std::move(parent);
}

void CDBOutput::SetExtendedKey(MemberKey v) {
    extendedKey_ = std::move(v);
}

int32_t CDBOutput::ConnectionCount() const {
    return connectionCount_;
}

// ---- Private -------------------------------------------------------------------------------

void CDBOutput::LoadType(const std::string& id) {
    snvtCompatible_ = std::make_shared<CDBCompatibleSNVT>();
    if (id.empty()) {
        ShowMessage(name_ +
                        ": SNVT Compatibility list not defined into the XML file of the object " +
                        Need(parent_).IAppObject_Name() + ".",
                    "Warning", MessageIcon::Critical, MessageButtons::Ok);
    }
    snvtCompatible_->SetID(id);
    snvtType_ = std::make_shared<CDBSNVTType>();
    snvtType_->ResolveByID(id);
}

}  // namespace zerbin
