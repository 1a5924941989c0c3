// One input reference of a block: a place in the CDB that holds the reference to the item
// connected to it, two bytes or three for an extended input.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <pugixml.hpp>

#include "base/CallbackList.h"
#include "base/MemberKey.h"
#include "datatypes/ImageDigits.h"
#include "interfaces/IAppObject.h"
#include "interfaces/ICanvasElement.h"
#include "interfaces/IInput.h"

namespace zerbin {

class CDBCompatibleSNVTs;

class CDBInput : public IInput, public ICanvasElement, public ISubItemConnable {
public:
    CDBInput();

    // IInput
    void IInput_changeType(const std::string& NewType) override;
    void IInput_CallBack(std::shared_ptr<IcbkAppObject> v) override;
    int32_t IInput_NodeType() override;
    bool IInput_IsConnected() override;
    std::shared_ptr<ISNVType> IInput_ConnectedType() override;
    bool IInput_Visible() override;
    bool IInput_Mandatory() override;
    std::string IInput_Value() override;
    void IInput_Value(const std::string& v) override;
    std::string IInput_Name() override;
    std::string IInput_GlobalKey() override;
    bool IInput_Extended() override;
    int32_t IInput_Index() override;
    int32_t IInput_CDBPosition() override;
    std::shared_ptr<ICompatibleSNVTs> Iinput_SNVTCompatibles() override;
    std::shared_ptr<IAppObject> Iinput_Parent() override;
    std::string IInput_ExtendedKey() override;
    bool IInput_IsMacroConnected() override;

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
    void SetExtendedKey(MemberKey v);
    void SetName(const std::string& v);
    // Reads the input's element; throws on a child without text, so that creation reports it.
    void LoadDefinition(pugi::xml_node node);
    void SetParent(std::shared_ptr<IAppObject> parent);
    // A copy of the input as its definition left it, under parent and with no listener: the
    // member of a block made from a compiled type. With shareCompatibles the copy shares the
    // compatible set until it changes it or hands it out; without, it has a set of its own.
    std::shared_ptr<CDBInput> CopyFor(std::shared_ptr<IAppObject> parent,
                                      bool shareCompatibles) const;
    int32_t CDBOrderInPosition() const;
    void CDBPosition(int32_t v);
    void SetIndex(int32_t v);
    // The image with the reference at CDBPosition; never grows it. WriteIntelStream throws on
    // a reference that is not hexadecimal.
    std::string WriteStream(std::string image);
    std::string WriteIntelStream(std::string image);
    // The digits the reference may take in an image, and how this input's writing compares
    // with that of the prototype it was copied from.
    DigitRange ImageRange() const;
    ImageChange ImageChangeFrom(const CDBInput& prototype) const;

private:
    // The compatible set, copied first when it is shared with other inputs.
    CDBCompatibleSNVTs& OwnCompatibles();
    // Writes text to the attribute that SendLengthTo names; throws when there is none.
    void HandOverLength(const std::string& text);
    // The definition warning: name, middle, the block's name and a full stop.
    void Warn(const std::string& middle);
    int32_t ReferenceDigits() const;
    // 2 * CDBPosition; throws OverflowError beyond 32 bits.
    int32_t DigitPosition() const;

    std::shared_ptr<ISNVType> connectedType_;
    bool isConnected_ = false;
    int32_t index_ = 0;
    MemberKey globalKey_;
    std::string name_;
    bool visible_ = false;
    bool isTypeDependent_ = false;
    bool mandatory_ = false;
    bool extended_ = false;
    std::shared_ptr<IAppObject> parent_;
    int32_t cdbOrderInPosition_ = 0;
    int32_t cdbPosition_ = 0;
    std::string value_;
    std::shared_ptr<CDBCompatibleSNVTs> snvtCompatibles_;
    bool sharedCompatibles_ = false;
    CallbackList<IcbkAppObject> callBacks_;
    std::string sendLengthTo_;
    MemberKey extendedKey_;
};

}  // namespace zerbin
