// The frame of the application object: construction and teardown, the values the host keeps
// here, the key scheme and the walks that hand host state down to the members.
#include "app_object/CDBAppObject.h"

#include <utility>

#include "base/MMain.h"
#include "base/SkipMode.h"
#include "connections/CDBInputs.h"
#include "connections/CDBOutputs.h"
#include "datatypes/UnitConverter.h"
#include "interfaces/Error.h"
#include "parameters/CDBAttributes.h"
#include "platform/DefinitionStore.h"
#include "platform/EditorPort.h"
#include "platform/Events.h"
#include "platform/Files.h"

namespace zerbin {
namespace {

// Everything up to and including the last backslash or slash; empty when there is none. A
// host on this platform hands over "/" paths; the backslash is the host's historical
// separator.
std::string FolderOfPath(const std::string& path) {
    const std::size_t last = path.find_last_of("\\/");
    return last == std::string::npos ? std::string() : path.substr(0, last + 1);
}

}  // namespace

CDBAppObject::CDBAppObject() {
    DetectDecimalSeparator();
    ServePendingEvents();
    definitionCache_ = DefinitionCache::ForBlocks();
}

CDBAppObject::~CDBAppObject() {
    callbackList_.Clear();
    outputs_.reset();
    inputs_.reset();
    attributes_.reset();
    parent_.reset();
    ownerDeviceXml_.reset();
    ServePendingEvents();
}

// ---- Kept values ----------------------------------------------------------------------------

bool CDBAppObject::IAppObject_IsPlugInActive() {
    return false;
}

void CDBAppObject::IAppObject_Path(const std::string& RHS) {
    seldom_.Assign(&Seldom::path, FolderOfPath(RHS));
}

std::string CDBAppObject::IAppObject_Path() {
    return seldom_->path;
}

int32_t CDBAppObject::IAppObject_ExecTime() {
    return header_->execTime;
}

int32_t CDBAppObject::IAppObject_MaxInstances() {
    return header_->maxInstances;
}

int32_t CDBAppObject::IAppObject_CDBDimension() {
    return cdbDimension_;
}

int32_t CDBAppObject::IAppObject_Width() {
    return width_;
}

int32_t CDBAppObject::IAppObject_InputWidth() {
    return inputWidth_;
}

int32_t CDBAppObject::IAppObject_DDBDimension() {
    return header_->ddbDimension;
}

int32_t CDBAppObject::IAppObject_SDBDimension() {
    return header_->sdbDimension;
}

bool CDBAppObject::IAppObject_DatasheetAvailable() {
    return header_->datasheetAvailable;
}

bool CDBAppObject::IAppObject_PlugInAvailable() {
    return plugInAvailable_;
}

std::string CDBAppObject::IAppObject_UserName() {
    return userName_;
}

void CDBAppObject::IAppObject_UserName(const std::string& Username) {
    userName_ = Username;
    RecomputeWidth();
}

void CDBAppObject::RecomputeWidth() {
    const int32_t wanted = CharCount(userName_) + 5;
    width_ = wanted > baseWidth_ ? wanted : baseWidth_;
}

std::string CDBAppObject::IAppObject_UniqueIDString() {
    return uniqueIdString_;
}

void CDBAppObject::IAppObject_OwnerDeviceXML(
    std::shared_ptr<const pugi::xml_document> OwnerDeviceXML) {
    ownerDeviceXml_ = std::move(OwnerDeviceXML);
}

std::shared_ptr<const pugi::xml_document> CDBAppObject::IAppObject_OwnerDeviceXML() {
    return ownerDeviceXml_;
}

std::string CDBAppObject::IAppObject_Name() {
    return header_->name;
}

int32_t CDBAppObject::IAppObject_NodeType() {
    return 6;
}

std::string CDBAppObject::IAppObject_Tag() {
    return seldom_->tag;
}

void CDBAppObject::IAppObject_Tag(const std::string& RHS) {
    seldom_.Assign(&Seldom::tag, RHS);
}

std::string CDBAppObject::IAppObject_Key() {
    return key_;
}

void CDBAppObject::IAppObject_Key(const std::string& Key) {
    key_ = Key;
}

std::string CDBAppObject::IAppObject_ID() {
    return header_->id;
}

std::string CDBAppObject::IAppObject_UniqueID() {
    return uniqueId_;
}

void CDBAppObject::IAppObject_UniqueID(const std::string& RHS) {
    uniqueId_ = RHS;
}

std::string CDBAppObject::IAppObject_Description() {
    return header_->description;
}

std::string CDBAppObject::IAppObject_Category() {
    return header_->category;
}

void CDBAppObject::IAppObject_ObjectDebug() {}

void CDBAppObject::IAppObject_Save(const std::string& /*Filename*/) {}

void CDBAppObject::IAppObject_Load(const std::string& /*Filename*/) {}

void CDBAppObject::IAppObject_Stream(const std::string& /*RHS*/) {
    // The image is always rebuilt from the members; a text from outside has nowhere to go.
}

std::shared_ptr<IInputs> CDBAppObject::IAppObject_Inputs() {
    return inputs_;
}

std::shared_ptr<IOutputs> CDBAppObject::IAppObject_Outputs() {
    return outputs_;
}

std::shared_ptr<IAttributes> CDBAppObject::IAppObject_Attributes() {
    return attributes_;
}

int32_t CDBAppObject::IAppObject_Language() {
    return language_;
}

void CDBAppObject::IAppObject_Language(int32_t Language) {
    language_ = Language;
}

std::string CDBAppObject::IAppObject_ProgrammaticId() {
    return ComponentBaseName() + ".CDBAppObject";
}

void CDBAppObject::IAppObject_XmlSNVTDoc(std::shared_ptr<const pugi::xml_document> SNVTXmlDoc) {
    SetSnvtDictionary(std::move(SNVTXmlDoc));
}

std::shared_ptr<IObject> CDBAppObject::IAppObject_Parent() {
    return parent_;
}

void CDBAppObject::IAppObject_Parent(std::shared_ptr<IObject> Parent) {
    parent_ = std::move(Parent);
}

double CDBAppObject::IAppObject_XPosition() {
    return xPosition_;
}

void CDBAppObject::IAppObject_XPosition(double x) {
    xPosition_ = x;
}

double CDBAppObject::IAppObject_YPosition() {
    return yPosition_;
}

void CDBAppObject::IAppObject_YPosition(double y) {
    yPosition_ = y;
}

void CDBAppObject::IAppObject_ManageShortFloat(bool ManageShortFloat) {
    manageShortFloat_ = ManageShortFloat;
}

int16_t CDBAppObject::IAppObject_ExportIndex() {
    return exportIndex_;
}

void CDBAppObject::IAppObject_ExportIndex(int16_t RHS) {
    exportIndex_ = RHS;
}

int16_t CDBAppObject::IAppObject_NumObjects() {
    return 1;
}

bool CDBAppObject::IAppObject_UsesDeviceClock() {
    return header_->usesDeviceClock;
}

bool CDBAppObject::IAppObject_IsHidden() {
    return false;
}

bool CDBAppObject::IAppObject_IsVirtual() {
    return false;
}

void CDBAppObject::IInterceptableAttribute_SetInterceptor(
    std::shared_ptr<AttributeInterceptor> oAttributeInterceptor) {
    seldom_.Assign(&Seldom::interceptor, std::move(oAttributeInterceptor));
}

std::shared_ptr<IUnitConverter> CDBAppObject::UnitsManager() {
    return FollowingUnitConverter();
}

std::string CDBAppObject::LastStream() const {
    return lastStream_;
}

std::string CDBAppObject::DatasheetPath() const {
    return header_->datasheetPath;
}

std::shared_ptr<CDBAttributes> CDBAppObject::AttributesCollection() const {
    return attributes_;
}

std::shared_ptr<CDBInputs> CDBAppObject::InputsCollection() const {
    return inputs_;
}

std::shared_ptr<CDBOutputs> CDBAppObject::OutputsCollection() const {
    return outputs_;
}

// ---- Taking the type ------------------------------------------------------------------------

bool CDBAppObject::IAppObject_Init(const std::string& sUniqueIdString, int32_t& /*eErrCode*/) {
    // eErrCode belongs to the host's calling convention; a failure shows only the message of
    // the definition load, never a code.
    uniqueIdString_ = sUniqueIdString;
    plugInAvailable_ = false;
    LoadDefinitionHeader();
    return true;
}

bool CDBAppObject::StringID(const std::string& sStringID) {
    SkipStep([&] { uniqueIdString_ = sStringID; });
    SkipStep([&] { plugInAvailable_ = false; });
    SkipStep([&] { LoadDefinitionHeader(); });
    return true;
}

// ---- Keys -----------------------------------------------------------------------------------

template <class Propagate>
void CDBAppObject::PropagateKey(const std::string& key, Propagate propagate) {
    // Members learn the keys only now: the host writes them after IAppObject_Create. A block
    // without inputs or outputs is common, so an absent collection is passed by, not thrown at.
    if (!attributes_ && !inputs_ && !outputs_) {
        return;
    }
    const auto shared = std::make_shared<const std::string>(key);
    if (attributes_) {
        SkipStep([&] { propagate(*attributes_, shared, "\\ATT"); });
    }
    if (inputs_) {
        SkipStep([&] { propagate(*inputs_, shared, "\\RIN"); });
    }
    if (outputs_) {
        SkipStep([&] { propagate(*outputs_, shared, "\\ROU"); });
    }
}

void CDBAppObject::IAppObject_GlobalKey(const std::string& GlobalKey) {
    globalKey_ = GlobalKey;
    PropagateKey(globalKey_, [](auto& collection, const auto& key, const char* suffix) {
        collection.PropagateGlobalKey(key, suffix);
    });
}

std::string CDBAppObject::IAppObject_GlobalKey() {
    return globalKey_;
}

void CDBAppObject::IAppObject_ExtendedKey(const std::string& RHS) {
    extendedKey_ = RHS;
    PropagateKey(extendedKey_, [](auto& collection, const auto& key, const char* suffix) {
        collection.PropagateExtendedKey(key, suffix);
    });
}

std::string CDBAppObject::IAppObject_ExtendedKey() {
    return extendedKey_;
}

// ---- Walks over the members ------------------------------------------------------------------

void CDBAppObject::IAppObject_ClearReferences() {
    if (!inputs_) {
        return;
    }
    for (const auto& input : inputs_->Members()) {
        ServePendingEvents();
        SkipStep([&] { Need(input).IInput_Value(input->IInput_Extended() ? "000000" : "0000"); });
    }
}

bool CDBAppObject::IAppObject_IsDeviceDependent() {
    bool dependent = false;
    SkipStep([&] {
        for (const auto& attribute : Need(attributes_).Members()) {
            if (Need(attribute).IAttribute_IsDeviceDependent()) {
                dependent = true;
                return;
            }
        }
    });
    return dependent;
}

void CDBAppObject::IAppObject_CallBack(std::shared_ptr<IcbkAppObject> CallBack) {
    SkipStep([&] { callbackList_.Add(CallBack); });
    // Each member keeps its own list; members made later never hear of this listener. The
    // members still the type's hear of it when the block first reaches them.
    if (attributes_) {
        attributes_->GiveToAll([CallBack](CDBAttribute& attribute) {
            SkipStep([&] { attribute.IAttribute_CallBack(CallBack); });
        });
    }
    if (inputs_) {
        inputs_->GiveToAll(
            [CallBack](CDBInput& input) { SkipStep([&] { input.IInput_CallBack(CallBack); }); });
    }
    if (outputs_) {
        outputs_->GiveToAll([CallBack](CDBOutput& output) {
            SkipStep([&] { output.IOutput_CallBack(CallBack); });
        });
    }
}

// ---- Teardown -------------------------------------------------------------------------------

void CDBAppObject::IAppObject_Destroy() {
    // Inputs first: their references back to this object are what keeps it alive.
    if (inputs_) {
        SkipStep([&] { inputs_->Destroy(); });
    }
    parent_.reset();
    inputs_.reset();
    outputs_.reset();
    attributes_.reset();
    compiled_.reset();
    callbackList_.Clear();
}

// ---- Parameter list ---------------------------------------------------------------------------

void CDBAppObject::IAppObject_Show(std::shared_ptr<IObject> Owner) {
    // The parameter window belongs to the editors library; without its factory installed a
    // headless block has nothing to show and reports nothing.
    ShowParameterList(shared_from_this(), std::move(Owner));
}

}  // namespace zerbin
