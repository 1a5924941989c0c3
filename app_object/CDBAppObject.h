// The generic application object: one class serves every function-block type. The type is a
// name given after construction; the block's header, attributes, inputs and outputs come from
// the definition file of that name and the SNVT dictionary.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <pugixml.hpp>

#include "app_object/TypeStamp.h"
#include "base/CallbackList.h"
#include "base/CopyOnWrite.h"
#include "interfaces/IAppObject.h"
#include "interfaces/IHostServices.h"
#include "interfaces/IMemberOwner.h"
#include "interfaces/ITypeChange.h"

namespace zerbin {

class CDBAttributes;
class CDBInputs;
class CDBOutputs;
class DefinitionCache;
struct CompiledBlockType;
struct CompiledTypeKey;
struct DefinitionHeader;
struct StoredTypeFacts;
struct Message;

// What a block shows of its type's definition header and of its datasheet.
struct TypeHeader {
    std::string name;
    std::string id;
    std::string description;
    std::string category;
    int32_t execTime = 0;
    int32_t maxInstances = 0;
    int32_t ddbDimension = 0;
    int32_t sdbDimension = 0;
    bool usesDeviceClock = false;
    bool datasheetAvailable = false;
    std::string datasheetPath;
};

class CDBAppObject : public IAppObject,
                     public IInterceptableAttribute,
                     public ITypeChange,
                     public IMemberOwner,
                     public std::enable_shared_from_this<CDBAppObject> {
public:
    // Detects the decimal separator, makes the listener list and the unit converter, serves
    // pending events once and opens the definition store.
    CDBAppObject();
    ~CDBAppObject() override;
    CDBAppObject(const CDBAppObject&) = delete;
    CDBAppObject& operator=(const CDBAppObject&) = delete;

    // IAppObject
    bool IAppObject_IsPlugInActive() override;
    void IAppObject_Path(const std::string& RHS) override;
    std::string IAppObject_Path() override;
    int32_t IAppObject_ExecTime() override;
    int32_t IAppObject_MaxInstances() override;
    int32_t IAppObject_CDBDimension() override;
    int32_t IAppObject_Color() override;
    void IAppObject_Color(int32_t Color) override;
    void IAppObject_SetColor(const std::string& Color) override;
    int32_t IAppObject_Width() override;
    int32_t IAppObject_InputWidth() override;
    int32_t IAppObject_DDBDimension() override;
    int32_t IAppObject_SDBDimension() override;
    void IAppObject_ClearReferences() override;
    void IAppObject_ViewDatasheet(const WindowHandle& Handle) override;
    bool IAppObject_DatasheetAvailable() override;
    bool IAppObject_PlugInAvailable() override;
    std::string IAppObject_UserName() override;
    std::string IAppObject_UniqueIDString() override;
    void IAppObject_OwnerDeviceXML(
        std::shared_ptr<const pugi::xml_document> OwnerDeviceXML) override;
    std::shared_ptr<const pugi::xml_document> IAppObject_OwnerDeviceXML() override;
    void IAppObject_UserName(const std::string& Username) override;
    std::string IAppObject_Name() override;
    int32_t IAppObject_NodeType() override;
    std::string IAppObject_Tag() override;
    void IAppObject_Tag(const std::string& RHS) override;
    std::string IAppObject_GlobalKey() override;
    void IAppObject_GlobalKey(const std::string& GlobalKey) override;
    std::string IAppObject_Key() override;
    void IAppObject_Key(const std::string& Key) override;
    std::string IAppObject_ID() override;
    std::string IAppObject_UniqueID() override;
    void IAppObject_UniqueID(const std::string& RHS) override;
    std::string IAppObject_Description() override;
    std::shared_ptr<const Picture> IAppObject_Icon() override;
    std::string IAppObject_Category() override;
    void IAppObject_Create() override;
    // The core has no window system: headless, nothing opens and nothing is reported.
    void IAppObject_Show(std::shared_ptr<IObject> Owner) override;
    void IAppObject_ObjectDebug() override;
    void IAppObject_Save(const std::string& Filename) override;
    void IAppObject_Load(const std::string& Filename) override;
    std::string IAppObject_Stream() override;
    std::string IAppObject_IntelStream() override;
    void IAppObject_Stream(const std::string& RHS) override;
    std::shared_ptr<IInputs> IAppObject_Inputs() override;
    std::shared_ptr<IOutputs> IAppObject_Outputs() override;
    std::shared_ptr<IAttributes> IAppObject_Attributes() override;
    int32_t IAppObject_Language() override;
    void IAppObject_Language(int32_t Language) override;
    void IAppObject_Destroy() override;
    std::string IAppObject_ProgrammaticId() override;
    void IAppObject_XmlSNVTDoc(std::shared_ptr<const pugi::xml_document> SNVTXmlDoc) override;
    void IAppObject_XmlSave(pugi::xml_node ParentNode, pugi::xml_document& XMLDoc) override;
    void IAppObject_XMLSaveSim(pugi::xml_node ParentNode, pugi::xml_document& XMLDoc) override;
    void IAppObject_XMLSaveForInteroperability(pugi::xml_node ParentNode,
                                               pugi::xml_document& XMLDoc) override;
    void IAppObject_XmlLoad(pugi::xml_node ParentNode) override;
    void IAppObject_CallBack(std::shared_ptr<IcbkAppObject> CallBack) override;
    std::shared_ptr<IObject> IAppObject_Parent() override;
    void IAppObject_Parent(std::shared_ptr<IObject> Parent) override;
    double IAppObject_XPosition() override;
    void IAppObject_XPosition(double x) override;
    double IAppObject_YPosition() override;
    void IAppObject_YPosition(double y) override;
    void IAppObject_ManageShortFloat(bool ManageShortFloat) override;
    bool IAppObject_Init(const std::string& sUniqueIdString, int32_t& eErrCode) override;
    int16_t IAppObject_ExportIndex() override;
    void IAppObject_ExportIndex(int16_t RHS) override;
    int16_t IAppObject_NumObjects() override;
    std::string IAppObject_ExtendedKey() override;
    void IAppObject_ExtendedKey(const std::string& RHS) override;
    bool IAppObject_IsDeviceDependent() override;
    bool IAppObject_UsesDeviceClock() override;
    bool IAppObject_IsHidden() override;
    bool IAppObject_IsVirtual() override;

    // ITypeChange, over the internal operations below.
    std::string ITypeChange_Stamp() override;
    bool ITypeChange_IsChanged() override;
    std::vector<std::string> ITypeChange_Changes() override;
    std::vector<std::string> ITypeChange_Update() override;

    // IInterceptableAttribute: kept for the attributes created from now on.
    void IInterceptableAttribute_SetInterceptor(
        std::shared_ptr<AttributeInterceptor> oAttributeInterceptor) override;

    // The parsed definition document of the block's type, shared through the store. A type
    // that can't be loaded gives an empty document and a message, at every read.
    std::shared_ptr<const pugi::xml_document> ObjectXML() override;
    std::shared_ptr<IUnitConverter> UnitsManager() override;
    // Takes the type name like IAppObject_Init; true whatever happened.
    bool StringID(const std::string& sStringID);

    // Internal.
    // The image as last built by IAppObject_Stream or loaded from a project.
    std::string LastStream() const;
    // The datasheet found for the type; empty when there is none.
    std::string DatasheetPath() const;
    // The concrete collections, or nullptr.
    std::shared_ptr<CDBAttributes> AttributesCollection() const;
    std::shared_ptr<CDBInputs> InputsCollection() const;
    std::shared_ptr<CDBOutputs> OutputsCollection() const;
    // The elements of the last project entry loaded that the block's type does not define,
    // kept to be saved back unchanged: "Attributes/NAME", "Outputs/NAME" or the name of an
    // element of the entry itself. Empty when the type understood the whole entry.
    std::vector<std::string> KeptProjectEntries() const;

    // Internal: types that change under saved projects (ITypeChange tells the contract).
    // IAppObject_XmlSave writes the block's subtree alone; the host records the stamp. When
    // IAppObject_XmlLoad finds the element's stamp is not the type's, every saved value is
    // judged by the editors' rules before it is taken; one that no longer fits is not taken,
    // and a project save writes it back as it came until the parameter is given another
    // value, as a value whose parameter is gone is kept. The user hears of it once per type.
    //
    // ITypeChange_Stamp().
    std::string TypeStamp();
    // What the last project load found of a changed type, or nullptr: the type's stamp was the
    // saved one (or the project had none) and the project named nothing the type lacks. A host
    // marks the blocks that have one.
    const TypeChange* ChangedType() const;
    // "Update to the library's type": each value the last load kept is written through the
    // editors' rules where an attribute of its name now takes it; the values none takes and
    // the displayable outputs the type lacks are dropped and returned, in the project's order.
    // The block is then its type as it stands: ChangedType() is nullptr, TypeStamp() the
    // type's. Entries of the block element itself that the type does not read are kept.
    std::vector<TypeChange::Value> UpdateToLibraryType();

private:
    // Hands key, with each collection's section, to the collections the block has.
    template <class Propagate>
    void PropagateKey(const std::string& key, Propagate propagate);
    void LoadDefinitionHeader();
    // Creation from the definition's elements, one member at a time.
    void CreateFromDefinition();
    // Creation by copying the members of a compiled type, with its messages told again.
    void CreateFromCompiled(const CompiledBlockType& compiled);
    // What a creation now would be compiled under; false when it must not be compiled or
    // copied: an interceptor hears every member's load, and a block that has members or a
    // layout already would not start from nothing.
    bool CompiledKey(CompiledTypeKey& key) const;
    // The members just created, without their owner, as a compiled type.
    std::shared_ptr<CompiledBlockType> Compile(std::vector<Message> messages) const;
    // Restores text in the selector at index: by taking the compiled type's variant for it
    // where the block still has its type's members as the type has them, else as a value is
    // restored. A block that made no variant yet and whose restore told the user nothing
    // leaves one for the next.
    void RestoreSelector(std::size_t index, const std::string& text);
    bool MayTakeVariant() const;
    void TakeVariant(const std::shared_ptr<const CompiledBlockType>& variant);
    // The header's fields that the definition sets; the others stay as they are.
    void ApplyHeader(const DefinitionHeader& header);
    // The datasheet of a stored type, from what its blocks worked out: its own folder first,
    // then the shared "DataSheets" by ID.
    void SearchStoredDatasheet(StoredTypeFacts& facts);
    void TakeDatasheet(const std::optional<std::string>& path);
    void ComputeCDBLayout();
    // Length byte and object ID; an ID beyond 32 bits throws OverflowError.
    std::string ImageHeader(bool intelOrder);
    // The zero fill and the members' bytes behind the header; a member's failure throws.
    std::string ImageBody(std::string image, bool intelOrder);
    void RecomputeWidth();
    // Project XML when forProject, else the simulator and interoperability form.
    void SaveSubtree(pugi::xml_node parentNode, pugi::xml_document& doc, bool forProject);
    void LoadAttributeValues(pugi::xml_node element);
    void LoadDisplayableOutputs(pugi::xml_node element);
    static constexpr const char* kKeptBlock = "Block";
    static constexpr const char* kKeptAttributes = "Attributes";
    static constexpr const char* kKeptOutputs = "Outputs";
    void Keep(const char* section, pugi::xml_node element);
    pugi::xml_node KeptSection(const char* section) const;
    // Tells the user, once per type, that entries of a project were kept.
    void TellOfKeptEntries();
    static constexpr const char* kNoSuchParameter = "the type has no such parameter";
    static constexpr const char* kNoSuchOutput = "the type has no such output";
    // Starts a type change when the element's stamp is not the type's.
    void NoteSavedTypeStamp(pugi::xml_node element);
    // In a type change, whether the saved text fits the attribute at index; one that does not
    // is kept and recorded.
    bool TakesSavedValue(std::size_t index, pugi::xml_node element, const std::string& text);
    // Completes the record of a type change, or starts one for a project that names members
    // the type lacks.
    void FinishTypeChange(bool attributesLoaded);

    std::string uniqueIdString_;
    // Shared by the blocks of a type that read the same header in the same library.
    CopyOnWrite<TypeHeader> header_;
    bool plugInAvailable_ = false;
    int32_t cdbDimension_ = 0;
    int32_t inputWidth_ = 0;
    int32_t baseWidth_ = 0;
    int32_t width_ = 0;
    std::shared_ptr<CDBAttributes> attributes_;
    std::shared_ptr<CDBInputs> inputs_;
    std::shared_ptr<CDBOutputs> outputs_;
    // The type the members were copied from, whose image the block's image starts from.
    std::shared_ptr<const CompiledBlockType> compiled_;
    std::string userName_;
    std::string key_;
    std::string uniqueId_;
    std::string globalKey_;
    std::string extendedKey_;
    double xPosition_ = 0;
    double yPosition_ = 0;
    int32_t language_ = 0;
    std::shared_ptr<IObject> parent_;
    std::shared_ptr<const pugi::xml_document> ownerDeviceXml_;
    bool manageShortFloat_ = false;
    int16_t exportIndex_ = 0;
    CallbackList<IcbkAppObject> callbackList_;
    std::string lastStream_;
    // What the last project load found of a changed type, or nullptr.
    std::unique_ptr<TypeChange> typeChange_;
    // Saved values that a changed type's attributes no longer take. A project save writes
    // each back as it came in place of the value the load left, so that nothing is lost and
    // no attribute is written twice, until the attribute is given another value.
    struct RefusedValue {
        std::size_t index;  // of the attribute
        std::string saved;
        std::string left;  // the attribute's value after the load
    };
    // What few blocks are given: held apart, so that a block without any of it carries only
    // the shared empty one.
    struct Seldom {
        std::string tag;
        std::string path;
        std::string colorWord;
        // Copies of what the last project load did not understand, or nullptr.
        std::shared_ptr<pugi::xml_document> keptEntries;
        std::vector<RefusedValue> refused;
        std::shared_ptr<AttributeInterceptor> interceptor;
    };
    CopyOnWrite<Seldom> seldom_;
    std::shared_ptr<DefinitionCache> definitionCache_;
};

}  // namespace zerbin
