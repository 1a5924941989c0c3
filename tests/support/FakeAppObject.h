// A stand-in for the block that owns a member, for tests of members without a real
// CDBAppObject. What a member asks of its block answers from the public fields; everything
// else answers nothing and stores nothing.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <pugixml.hpp>

#include "interfaces/IAppObject.h"

namespace zerbin::testing {

struct FakeAppObject : IAppObject {
    bool IAppObject_IsPlugInActive() override { return false; }
    void IAppObject_Path(const std::string&) override {}
    std::string IAppObject_Path() override { return {}; }
    int32_t IAppObject_ExecTime() override { return 0; }
    int32_t IAppObject_MaxInstances() override { return 0; }
    int32_t IAppObject_CDBDimension() override { return 0; }
    int32_t IAppObject_Color() override { return 0; }
    void IAppObject_Color(int32_t) override {}
    void IAppObject_SetColor(const std::string&) override {}
    int32_t IAppObject_Width() override { return 0; }
    int32_t IAppObject_InputWidth() override { return 0; }
    int32_t IAppObject_DDBDimension() override { return 0; }
    int32_t IAppObject_SDBDimension() override { return 0; }
    void IAppObject_ClearReferences() override {}
    void IAppObject_ViewDatasheet(const WindowHandle&) override {}
    bool IAppObject_DatasheetAvailable() override { return false; }
    bool IAppObject_PlugInAvailable() override { return false; }
    std::string IAppObject_UserName() override { return {}; }
    std::string IAppObject_UniqueIDString() override { return name; }
    void IAppObject_OwnerDeviceXML(std::shared_ptr<const pugi::xml_document>) override {}
    std::shared_ptr<const pugi::xml_document> IAppObject_OwnerDeviceXML() override { return {}; }
    void IAppObject_UserName(const std::string&) override {}
    std::string IAppObject_Name() override { return name; }
    int32_t IAppObject_NodeType() override { return 0; }
    std::string IAppObject_Tag() override { return {}; }
    void IAppObject_Tag(const std::string&) override {}
    std::string IAppObject_GlobalKey() override { return {}; }
    void IAppObject_GlobalKey(const std::string&) override {}
    std::string IAppObject_Key() override { return {}; }
    void IAppObject_Key(const std::string&) override {}
    std::string IAppObject_ID() override { return {}; }
    std::string IAppObject_UniqueID() override { return {}; }
    void IAppObject_UniqueID(const std::string&) override {}
    std::string IAppObject_Description() override { return {}; }
    std::shared_ptr<const Picture> IAppObject_Icon() override { return nullptr; }
    std::string IAppObject_Category() override { return {}; }
    void IAppObject_Create() override {}
    void IAppObject_Show(std::shared_ptr<IObject>) override {}
    void IAppObject_ObjectDebug() override {}
    void IAppObject_Save(const std::string&) override {}
    void IAppObject_Load(const std::string&) override {}
    std::string IAppObject_Stream() override { return {}; }
    std::string IAppObject_IntelStream() override { return {}; }
    void IAppObject_Stream(const std::string&) override {}
    std::shared_ptr<IInputs> IAppObject_Inputs() override { return nullptr; }
    std::shared_ptr<IOutputs> IAppObject_Outputs() override { return nullptr; }
    std::shared_ptr<IAttributes> IAppObject_Attributes() override { return attributes; }
    int32_t IAppObject_Language() override { return 0; }
    void IAppObject_Language(int32_t) override {}
    void IAppObject_Destroy() override {}
    std::string IAppObject_ProgrammaticId() override { return "Zerbin.CDBAppObject"; }
    void IAppObject_XmlSNVTDoc(std::shared_ptr<const pugi::xml_document>) override {}
    void IAppObject_XmlSave(pugi::xml_node, pugi::xml_document&) override {}
    void IAppObject_XMLSaveSim(pugi::xml_node, pugi::xml_document&) override {}
    void IAppObject_XMLSaveForInteroperability(pugi::xml_node, pugi::xml_document&) override {}
    void IAppObject_XmlLoad(pugi::xml_node) override {}
    void IAppObject_CallBack(std::shared_ptr<IcbkAppObject>) override {}
    std::shared_ptr<IObject> IAppObject_Parent() override { return parent; }
    void IAppObject_Parent(std::shared_ptr<IObject> Parent) override { parent = std::move(Parent); }
    double IAppObject_XPosition() override { return 0; }
    void IAppObject_XPosition(double) override {}
    double IAppObject_YPosition() override { return 0; }
    void IAppObject_YPosition(double) override {}
    void IAppObject_ManageShortFloat(bool) override {}
    bool IAppObject_Init(const std::string& sUniqueIdString, int32_t&) override {
        name = sUniqueIdString;
        return true;
    }
    int16_t IAppObject_ExportIndex() override { return exportIndex; }
    void IAppObject_ExportIndex(int16_t RHS) override { exportIndex = RHS; }
    int16_t IAppObject_NumObjects() override { return 1; }
    std::string IAppObject_ExtendedKey() override { return {}; }
    void IAppObject_ExtendedKey(const std::string&) override {}
    bool IAppObject_IsDeviceDependent() override { return false; }
    bool IAppObject_UsesDeviceClock() override { return false; }
    bool IAppObject_IsHidden() override { return false; }
    bool IAppObject_IsVirtual() override { return false; }

    std::string name;  // the block type: IAppObject_Name
    int16_t exportIndex = 0;
    std::shared_ptr<IObject> parent;  // e.g. a FakeMacroHost
    std::shared_ptr<IAttributes> attributes;
};

}  // namespace zerbin::testing
