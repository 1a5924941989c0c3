// A stand-in for the block that owns a member, for tests of members without a real
// CDBAppObject. Every read answers its public field; writes store into it; operations with no
// field do nothing. `calls` keeps the names of the operations that change something
// ("Create", "Destroy", "ClearReferences", ...) so a test can see that they were reached.
//
//   auto block = std::make_shared<FakeAppObject>();
//   block->name = "Loop";
//   block->exportIndex = 3;
//   block->attributes = attributes;   // e.g. a FakeAttributes
//   block->parent = FakeMacroHost::Holding(macro);
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <pugixml.hpp>

#include "interfaces/IAppObject.h"

namespace zerbin::testing {

struct FakeAppObject : IAppObject {
    bool IAppObject_IsPlugInActive() override { return false; }
    void IAppObject_Path(const std::string& RHS) override { path = RHS; }
    std::string IAppObject_Path() override { return path; }
    int32_t IAppObject_ExecTime() override { return 0; }
    int32_t IAppObject_MaxInstances() override { return 0; }
    int32_t IAppObject_CDBDimension() override { return cdbDimension; }
    int32_t IAppObject_Color() override { return color; }
    void IAppObject_Color(int32_t Color) override { color = Color; }
    void IAppObject_SetColor(const std::string&) override {}
    int32_t IAppObject_Width() override { return 0; }
    int32_t IAppObject_InputWidth() override { return 0; }
    int32_t IAppObject_DDBDimension() override { return 0; }
    int32_t IAppObject_SDBDimension() override { return 0; }
    void IAppObject_ClearReferences() override { calls.push_back("ClearReferences"); }
    void IAppObject_ViewDatasheet(const WindowHandle&) override {}
    bool IAppObject_DatasheetAvailable() override { return false; }
    bool IAppObject_PlugInAvailable() override { return false; }
    std::string IAppObject_UserName() override { return userName; }
    std::string IAppObject_UniqueIDString() override { return name; }
    void IAppObject_OwnerDeviceXML(std::shared_ptr<const pugi::xml_document> doc) override {
        ownerDeviceXml = std::move(doc);
    }
    std::shared_ptr<const pugi::xml_document> IAppObject_OwnerDeviceXML() override {
        return ownerDeviceXml;
    }
    void IAppObject_UserName(const std::string& Username) override { userName = Username; }
    std::string IAppObject_Name() override { return name; }
    int32_t IAppObject_NodeType() override { return 0; }
    std::string IAppObject_Tag() override { return tag; }
    void IAppObject_Tag(const std::string& RHS) override { tag = RHS; }
    std::string IAppObject_GlobalKey() override { return globalKey; }
    void IAppObject_GlobalKey(const std::string& GlobalKey) override { globalKey = GlobalKey; }
    std::string IAppObject_Key() override { return key; }
    void IAppObject_Key(const std::string& Key) override { key = Key; }
    std::string IAppObject_ID() override { return id; }
    std::string IAppObject_UniqueID() override { return uniqueId; }
    void IAppObject_UniqueID(const std::string& RHS) override { uniqueId = RHS; }
    std::string IAppObject_Description() override { return {}; }
    std::shared_ptr<const Picture> IAppObject_Icon() override { return nullptr; }
    std::string IAppObject_Category() override { return {}; }
    void IAppObject_Create() override { calls.push_back("Create"); }
    void IAppObject_Show(std::shared_ptr<IObject>) override { calls.push_back("Show"); }
    void IAppObject_ObjectDebug() override {}
    void IAppObject_Save(const std::string&) override {}
    void IAppObject_Load(const std::string&) override {}
    std::string IAppObject_Stream() override { return {}; }
    std::string IAppObject_IntelStream() override { return {}; }
    void IAppObject_Stream(const std::string&) override {}
    std::shared_ptr<IInputs> IAppObject_Inputs() override { return inputs; }
    std::shared_ptr<IOutputs> IAppObject_Outputs() override { return outputs; }
    std::shared_ptr<IAttributes> IAppObject_Attributes() override { return attributes; }
    int32_t IAppObject_Language() override { return language; }
    void IAppObject_Language(int32_t Language) override { language = Language; }
    void IAppObject_Destroy() override { calls.push_back("Destroy"); }
    std::string IAppObject_ProgrammaticId() override { return "Zerbin.CDBAppObject"; }
    void IAppObject_XmlSNVTDoc(std::shared_ptr<const pugi::xml_document>) override {}
    void IAppObject_XmlSave(pugi::xml_node, pugi::xml_document&) override {}
    void IAppObject_XMLSaveSim(pugi::xml_node, pugi::xml_document&) override {}
    void IAppObject_XMLSaveForInteroperability(pugi::xml_node, pugi::xml_document&) override {}
    void IAppObject_XmlLoad(pugi::xml_node) override {}
    void IAppObject_CallBack(std::shared_ptr<IcbkAppObject> CallBack) override {
        callBacks.push_back(std::move(CallBack));
    }
    std::shared_ptr<IObject> IAppObject_Parent() override { return parent; }
    void IAppObject_Parent(std::shared_ptr<IObject> Parent) override { parent = std::move(Parent); }
    double IAppObject_XPosition() override { return x; }
    void IAppObject_XPosition(double v) override { x = v; }
    double IAppObject_YPosition() override { return y; }
    void IAppObject_YPosition(double v) override { y = v; }
    void IAppObject_ManageShortFloat(bool v) override { manageShortFloat = v; }
    bool IAppObject_Init(const std::string& sUniqueIdString, int32_t&) override {
        name = sUniqueIdString;
        return true;
    }
    int16_t IAppObject_ExportIndex() override { return exportIndex; }
    void IAppObject_ExportIndex(int16_t RHS) override { exportIndex = RHS; }
    int16_t IAppObject_NumObjects() override { return 1; }
    std::string IAppObject_ExtendedKey() override { return extendedKey; }
    void IAppObject_ExtendedKey(const std::string& RHS) override { extendedKey = RHS; }
    bool IAppObject_IsDeviceDependent() override { return false; }
    bool IAppObject_UsesDeviceClock() override { return false; }
    bool IAppObject_IsHidden() override { return false; }
    bool IAppObject_IsVirtual() override { return false; }

    std::string name;  // the block type: IAppObject_Name
    std::string id;
    std::string uniqueId;
    std::string userName;
    std::string globalKey;
    std::string extendedKey;
    std::string key;
    std::string tag;
    std::string path;
    int16_t exportIndex = 0;
    int32_t cdbDimension = 0;
    int32_t color = 0;
    int32_t language = 0;
    double x = 0;
    double y = 0;
    bool manageShortFloat = false;
    std::shared_ptr<IObject> parent;  // e.g. a FakeMacroHost
    std::shared_ptr<IInputs> inputs;
    std::shared_ptr<IOutputs> outputs;
    std::shared_ptr<IAttributes> attributes;
    std::shared_ptr<const pugi::xml_document> ownerDeviceXml;
    std::vector<std::shared_ptr<IcbkAppObject>> callBacks;
    std::vector<std::string> calls;
};

}  // namespace zerbin::testing
