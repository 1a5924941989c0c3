// One output reference of a block: a connection point that offers one type and takes no room
// in the CDB. It is also a display item for the host's lists.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <pugixml.hpp>

#include "base/CallbackList.h"
#include "base/MemberKey.h"
#include "interfaces/IAppObject.h"
#include "interfaces/ICanvasElement.h"
#include "interfaces/IOutput.h"

namespace zerbin {

class CDBCompatibleSNVT;
class CDBSNVTType;

class CDBOutput : public IOutput,
                  public IDisplayItem,
                  public ICanvasElement,
                  public ISubItemConnable {
public:
    // IOutput
    bool IOutput_IsConnected() override;
    void IOutput_CallBack(std::shared_ptr<IcbkAppObject> v) override;
    void IOutput_changeType(const std::string& NewType) override;
    int32_t IOutput_NodeType() override;
    bool IOutput_Visible() override;
    std::string IOutput_Name() override;
    std::string IOutput_GlobalKey() override;
    int32_t IOutput_Index() override;
    std::shared_ptr<ICompatibleSNVT> IOutput_SNVTCompatible() override;
    std::shared_ptr<ISNVType> IOutput_SNVTType() override;
    std::shared_ptr<IAppObject> IOutput_Parent() override;
    bool IOutput_DisplayWritable() override;
    bool IOutput_IsTypeDependent() override;
    std::string IOutput_ExtendedKey() override;
    bool IOutput_IsMacroConnected() override;
    bool IOutput_IsDisplayable() override;
    void IOutput_IsDisplayable(bool v) override;

    // IDisplayItem
    std::string IDisplayItem_DisplayText() override;
    void IDisplayItem_DisplayText(const std::string& v) override;
    std::string IDisplayItem_Key() override;
    int32_t IDisplayItem_itemType() override;
    std::shared_ptr<const Picture> IDisplayItem_Icon() override;
    bool IDisplayItem_IsWritable() override;
    bool IDisplayItem_IsTrendable() override;
    std::string IDisplayItem_Reference() override;
    bool IDisplayItem_IsConnected() override;
    bool IDisplayItem_IsDisplayable() override;
    std::shared_ptr<ISNVType> IDisplayItem_SNVTType() override;
    std::shared_ptr<IFields> IDisplayItem_Fields() override;

    // ICanvasElement
    bool ICanvasElement_Visible() override;
    void ICanvasElement_Visible(bool v) override;

    // ISubItemConnable
    void ISubItemConnable_IsConnected(bool v) override;
    void ISubItemConnable_HasPriority(bool v) override;
    void ISubItemConnable_IncrementalConnIndex(int32_t v) override;
    void ISubItemConnable_ConnectedType(std::shared_ptr<ISNVType> v) override;
    int32_t ISubItemConnable_ItemType() override;
    std::string ISubItemConnable_GlobalKey() override;
    std::string ISubItemConnable_Name() override;
    std::shared_ptr<ISNVType> ISubItemConnable_SNVTType() override;
    bool ISubItemConnable_IsSNVTCompatible(const std::string& sId) override;

    // Internal.
    void SetGlobalKey(MemberKey v);
    void SetName(const std::string& v);
    // Reads the output's element; throws on a child without text.
    void LoadDefinition(pugi::xml_node node);
    void SetIndex(int32_t v);
    void SetParent(std::shared_ptr<IAppObject> parent);
    void SetExtendedKey(MemberKey v);
    int32_t ConnectionCount() const;

    // A copy of the output as its definition left it, under parent and with no listener: the
    // member of a block made from a compiled type. With shareRecord the type record and the
    // offered id are shared with this output until the copy hands them out; only an output
    // that never changes (a compiled type's) may be copied so.
    std::shared_ptr<CDBOutput> CopyFor(std::shared_ptr<IAppObject> parent, bool shareRecord) const;

private:
    // The record and offered id, each made this output's own first when they are shared:
    // what is handed out may be changed by whoever gets it.
    void OwnRecords();

    // The SNVTTYPE child: a new entry and a new resolved record, with a warning when empty.
    void LoadType(const std::string& id);

    bool isConnected_ = false;
    int32_t connectionCount_ = 0;
    MemberKey globalKey_;
    bool isTypeDependent_ = false;
    std::string name_;
    std::shared_ptr<CDBCompatibleSNVT> snvtCompatible_;
    std::shared_ptr<CDBSNVTType> snvtType_;
    bool sharedRecords_ = false;
    bool visible_ = false;
    bool displayWritable_ = false;
    int32_t index_ = 0;
    std::shared_ptr<IAppObject> parent_;
    CallbackList<IcbkAppObject> callBacks_;
    bool isDisplayable_ = false;
    std::string displayText_;
    MemberKey extendedKey_;
};

}  // namespace zerbin
