// The block as the host sees it: identity, keys, lifecycle, layout, image and persistence.
// One class serves every block type; the type is a name given after construction.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <variant>

#include <pugixml.hpp>

#include "interfaces/IAttribute.h"
#include "interfaces/IInput.h"
#include "interfaces/IObject.h"
#include "interfaces/IOutput.h"
#include "interfaces/IcbkAppObject.h"

namespace zerbin {

struct AttributeInterceptor;
struct Picture;

// The host's window handle as the host hands it over: a number, or text that should hold one.
using WindowHandle = std::variant<std::monostate, int64_t, std::string>;

struct IAppObject : virtual IObject {
    virtual bool IAppObject_IsPlugInActive() = 0;
    // Stores the folder part of the text: everything up to and including the last backslash.
    virtual void IAppObject_Path(const std::string& RHS) = 0;
    virtual std::string IAppObject_Path() = 0;
    virtual int32_t IAppObject_ExecTime() = 0;
    virtual int32_t IAppObject_MaxInstances() = 0;
    virtual int32_t IAppObject_CDBDimension() = 0;
    virtual int32_t IAppObject_Color() = 0;
    virtual void IAppObject_Color(int32_t Color) = 0;
    virtual void IAppObject_SetColor(const std::string& Color) = 0;
    virtual int32_t IAppObject_Width() = 0;
    virtual int32_t IAppObject_InputWidth() = 0;
    virtual int32_t IAppObject_DDBDimension() = 0;
    virtual int32_t IAppObject_SDBDimension() = 0;
    virtual void IAppObject_ClearReferences() = 0;
    virtual void IAppObject_ViewDatasheet(const WindowHandle& Handle) = 0;
    virtual bool IAppObject_DatasheetAvailable() = 0;
    virtual bool IAppObject_PlugInAvailable() = 0;
    virtual std::string IAppObject_UserName() = 0;
    virtual std::string IAppObject_UniqueIDString() = 0;
    virtual void IAppObject_OwnerDeviceXML(
        std::shared_ptr<const pugi::xml_document> OwnerDeviceXML) = 0;
    virtual std::shared_ptr<const pugi::xml_document> IAppObject_OwnerDeviceXML() = 0;
    // Stores the name and recomputes the width of the block.
    virtual void IAppObject_UserName(const std::string& Username) = 0;
    virtual std::string IAppObject_Name() = 0;
    virtual int32_t IAppObject_NodeType() = 0;
    virtual std::string IAppObject_Tag() = 0;
    virtual void IAppObject_Tag(const std::string& RHS) = 0;
    virtual std::string IAppObject_GlobalKey() = 0;
    // Stores the key and pushes it down to the members that exist now.
    virtual void IAppObject_GlobalKey(const std::string& GlobalKey) = 0;
    virtual std::string IAppObject_Key() = 0;
    virtual void IAppObject_Key(const std::string& Key) = 0;
    virtual std::string IAppObject_ID() = 0;
    virtual std::string IAppObject_UniqueID() = 0;
    virtual void IAppObject_UniqueID(const std::string& RHS) = 0;
    virtual std::string IAppObject_Description() = 0;
    virtual std::shared_ptr<const Picture> IAppObject_Icon() = 0;
    virtual std::string IAppObject_Category() = 0;
    virtual void IAppObject_Create() = 0;
    virtual void IAppObject_Show(std::shared_ptr<IObject> Owner) = 0;
    virtual void IAppObject_ObjectDebug() = 0;
    virtual void IAppObject_Save(const std::string& Filename) = 0;
    virtual void IAppObject_Load(const std::string& Filename) = 0;
    // The image, most significant byte first.
    virtual std::string IAppObject_Stream() = 0;
    // The image, least significant byte first.
    virtual std::string IAppObject_IntelStream() = 0;
    // Accepts the text and drops it.
    virtual void IAppObject_Stream(const std::string& RHS) = 0;
    // The collections, or nullptr when the block has no member of that kind.
    virtual std::shared_ptr<IInputs> IAppObject_Inputs() = 0;
    virtual std::shared_ptr<IOutputs> IAppObject_Outputs() = 0;
    virtual std::shared_ptr<IAttributes> IAppObject_Attributes() = 0;
    virtual int32_t IAppObject_Language() = 0;
    virtual void IAppObject_Language(int32_t Language) = 0;
    virtual void IAppObject_Destroy() = 0;
    virtual std::string IAppObject_ProgrammaticId() = 0;
    // Replaces the SNVT dictionary of every block of the process.
    virtual void IAppObject_XmlSNVTDoc(std::shared_ptr<const pugi::xml_document> SNVTXmlDoc) = 0;
    // Appends the block's project subtree to ParentNode; an invalid XML name raises.
    virtual void IAppObject_XmlSave(pugi::xml_node ParentNode, pugi::xml_document& XMLDoc) = 0;
    virtual void IAppObject_XMLSaveSim(pugi::xml_node ParentNode, pugi::xml_document& XMLDoc) = 0;
    virtual void IAppObject_XMLSaveForInteroperability(pugi::xml_node ParentNode,
                                                       pugi::xml_document& XMLDoc) = 0;
    // ParentNode is the block element itself.
    virtual void IAppObject_XmlLoad(pugi::xml_node ParentNode) = 0;
    virtual void IAppObject_CallBack(std::shared_ptr<IcbkAppObject> CallBack) = 0;
    virtual std::shared_ptr<IObject> IAppObject_Parent() = 0;
    virtual void IAppObject_Parent(std::shared_ptr<IObject> Parent) = 0;
    virtual double IAppObject_XPosition() = 0;
    virtual void IAppObject_XPosition(double x) = 0;
    virtual double IAppObject_YPosition() = 0;
    virtual void IAppObject_YPosition(double y) = 0;
    virtual void IAppObject_ManageShortFloat(bool ManageShortFloat) = 0;
    // Takes the type name; the result is true whatever happened.
    virtual bool IAppObject_Init(const std::string& sUniqueIdString, int32_t& eErrCode) = 0;
    virtual int16_t IAppObject_ExportIndex() = 0;
    virtual void IAppObject_ExportIndex(int16_t RHS) = 0;
    virtual int16_t IAppObject_NumObjects() = 0;
    virtual std::string IAppObject_ExtendedKey() = 0;
    virtual void IAppObject_ExtendedKey(const std::string& RHS) = 0;
    virtual bool IAppObject_IsDeviceDependent() = 0;
    virtual bool IAppObject_UsesDeviceClock() = 0;
    virtual bool IAppObject_IsHidden() = 0;
    virtual bool IAppObject_IsVirtual() = 0;
};

struct IInterceptableAttribute : virtual IObject {
    virtual void IInterceptableAttribute_SetInterceptor(
        std::shared_ptr<AttributeInterceptor> oAttributeInterceptor) = 0;
};

}  // namespace zerbin
