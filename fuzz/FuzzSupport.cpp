#include "fuzz/FuzzSupport.h"

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "app_object/HostOrder.h"
#include "base/MMain.h"
#include "base/Xml.h"
#include "datatypes/TypeClass.h"
#include "interfaces/Error.h"
#include "platform/Files.h"
#include "platform/Messages.h"

namespace zerbin::fuzz {
namespace {

const std::filesystem::path kDataDir = ZERBIN_DATA_DIR;

// Shows nothing and answers as the user who always agrees would.
class SilentSink : public MessageSink {
public:
    int Show(const Message& message) override {
        return message.buttons == MessageButtons::YesNo ||
                       message.buttons == MessageButtons::YesNoCancel
                   ? kMessageYes
                   : kMessageOk;
    }
};

std::shared_ptr<const pugi::xml_document> LoadShipped(const std::filesystem::path& file) {
    xml::ParseError error;
    auto document = xml::LoadFile(file, &error);
    if (!document) {
        Fail("cannot read shipped file " + file.string(), error.reason);
    }
    return document;
}

// What the XML of a project can hold unchanged: every text, white space alone and carriage
// returns included, except one with a NUL, where a text node ends.
bool XmlCarries(const std::string& text) {
    return text.find('\0') == std::string::npos;
}

std::vector<std::shared_ptr<IAttribute>> AttributesOf(CDBAppObject& block) {
    const auto attributes = block.IAppObject_Attributes();
    return attributes ? attributes->IAttributes_NewEnum()
                      : std::vector<std::shared_ptr<IAttribute>>{};
}

std::vector<std::shared_ptr<IOutput>> OutputsOf(CDBAppObject& block) {
    const auto outputs = block.IAppObject_Outputs();
    return outputs ? outputs->IOutputs_NewEnum() : std::vector<std::shared_ptr<IOutput>>{};
}

// A number text has at most one separator. The write puts the separator in place of the
// first "." and so does the read, so under a comma each save and load turns one more "." of
// a text such as "2..." into a comma: malformed numbers are not kept, by the number rules.
bool NumberCarried(const std::shared_ptr<IAttribute>& attribute) {
    const auto type = attribute->IAttribute_SNVTType();
    if (attribute->IAttribute_Fields() || (type && ClassOf(*type) == TypeClass::Textual)) {
        return true;
    }
    const std::string value = attribute->IAttribute_Value();
    const auto separators =
        std::count_if(value.begin(), value.end(), [](char c) { return c == '.' || c == ','; });
    return separators <= 1;
}

bool CanRoundTrip(CDBAppObject& block) {
    if (!XmlCarries(block.IAppObject_UserName())) {
        return false;
    }
    for (const auto& attribute : AttributesOf(block)) {
        if (!XmlCarries(attribute->IAttribute_Value()) || !NumberCarried(attribute)) {
            return false;
        }
    }
    return true;
}

// Values and flags of the members, one line each, for comparing and for the report.
std::string MemberState(CDBAppObject& block) {
    std::string state;
    for (const auto& attribute : AttributesOf(block)) {
        state += attribute->IAttribute_Name() + "=" + attribute->IAttribute_Value() + "\n";
    }
    for (const auto& output : OutputsOf(block)) {
        state += output->IOutput_Name() + (output->IOutput_IsDisplayable() ? " shown\n" : "\n");
    }
    return state;
}

void RequireSame(const std::string& what, const std::string& first, const std::string& second,
                 const std::string& saved) {
    if (first != second) {
        Fail("round trip changed the " + what,
             "before:\n" + first + "\nafter:\n" + second + "\nsaved XML:\n" + saved);
    }
}

}  // namespace

void SetUpShippedData() {
    SetMessageSink(std::make_shared<SilentSink>());
    // The library is the parent of the component folder, which need not exist.
    SetComponentFolder(kDataDir / "library" / "component");
    SetSnvtDictionary(ShippedDictionary());
}

std::shared_ptr<const pugi::xml_document> ShippedDictionary() {
    static const auto dictionary = LoadShipped(kDataDir / "snvts.xml");
    return dictionary;
}

std::shared_ptr<const pugi::xml_document> ShippedDevice() {
    static const auto device = LoadShipped(kDataDir / "devices" / "Controller.xml");
    return device;
}

const std::vector<std::string>& ShippedTypes() {
    static const std::vector<std::string> types = [] {
        std::vector<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(kDataDir / "library")) {
            const std::string name = entry.path().filename().string();
            if (std::filesystem::exists(entry.path() / (name + ".xml"))) {
                found.push_back(name);
            }
        }
        std::sort(found.begin(), found.end());
        if (found.empty()) {
            Fail("no block types in the shipped library", (kDataDir / "library").string());
        }
        return found;
    }();
    return types;
}

std::string_view AsText(const uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

void UseDecimalComma(bool comma) {
    const bool isComma = DecimalSeparator() == ",";
    if (comma == isComma) {
        return;
    }
    if (std::setlocale(LC_NUMERIC, comma ? "de_DE.UTF-8" : "C") == nullptr) {
        std::setlocale(LC_NUMERIC, "C");
    }
    DetectDecimalSeparator();
}

std::shared_ptr<CDBAppObject> MakeBlock(const std::string& type, bool manageShortFloat) {
    return NewBlock(type, {SnvtDictionary(), ShippedDevice(), manageShortFloat, "Project\\Block",
                           "Net\\Device\\Block", std::nullopt});
}

void Fail(const std::string& what, const std::string& detail) {
    std::fprintf(stderr, "\n==== zerbin fuzz finding: %s\n%s\n", what.c_str(), detail.c_str());
    std::fflush(stderr);
    std::abort();
}

void ImageBoth(CDBAppObject& block) {
    try {
        const std::string stream = block.IAppObject_Stream();
        const std::string intel = block.IAppObject_IntelStream();
        // Both forms hold the same bytes in another order, so they have the same length.
        if (!stream.empty() && !intel.empty() && stream.size() != intel.size()) {
            Fail("the two images differ in length", stream + "\n" + intel);
        }
        if (stream.size() > 2 * 255) {
            Fail("the image is longer than 255 bytes", stream);
        }
    } catch (const Error&) {
        // An object ID beyond the 32-bit range goes to the caller by design.
    }
}

void ReadDisplays(CDBAppObject& block) {
    // A display read is no skip-mode operation: a step through a missing object (a Struct
    // whose fields did not load) raises zerbin::Error to the caller, by design.
    const auto read = [](auto&& operation) {
        try {
            operation();
        } catch (const Error&) {
        }
    };
    for (const auto& attribute : AttributesOf(block)) {
        read([&] { attribute->IAttribute_DispValue(); });
        read([&] { attribute->IAttribute_DispDefault(); });
        read([&] { attribute->IAttribute_DispMin(); });
        read([&] { attribute->IAttribute_DispMax(); });
        if (const auto fields = attribute->IAttribute_Fields()) {
            for (const auto& field : fields->IFields_NewEnum()) {
                read([&] { field->IField_DispValue(); });
                read([&] { field->IField_DispDefault(); });
                read([&] { field->IField_DispMin(); });
                read([&] { field->IField_DispMax(); });
            }
        }
    }
    for (const auto& output : OutputsOf(block)) {
        if (const auto item = std::dynamic_pointer_cast<IDisplayItem>(output)) {
            read([&] { item->IDisplayItem_Reference(); });
            read([&] { item->IDisplayItem_DisplayText(); });
        }
    }
}

std::optional<SavedBlock> Save(CDBAppObject& block) {
    SavedBlock saved;
    saved.document = std::make_shared<pugi::xml_document>();
    pugi::xml_node project = saved.document->append_child("Project");
    try {
        block.IAppObject_XmlSave(project, *saved.document);
    } catch (const Error&) {
        return std::nullopt;  // an invalid XML name: the caller hears of it, by design
    }
    saved.element = project.first_child();
    // Written as every host writes: through the port, which keeps what XML would normalise.
    std::ostringstream out;
    xml::Save(*saved.document, out);
    saved.text = out.str();
    xml::ParseError error;
    saved.reread = xml::LoadString(saved.text, &error);
    if (!saved.reread) {
        Fail("a completed save wrote XML that does not parse", error.reason + "\n" + saved.text);
    }
    saved.rereadElement = saved.reread->document_element().first_child();
    return saved;
}

void CheckRoundTrip(CDBAppObject& block, bool manageShortFloat) {
    std::string stream;
    std::string intel;
    try {
        stream = block.IAppObject_Stream();
        intel = block.IAppObject_IntelStream();
    } catch (const Error&) {
        return;  // no image to compare
    }
    const std::optional<SavedBlock> saved = Save(block);
    if (!saved) {
        return;
    }
    const bool comparable = CanRoundTrip(block);
    const auto copy = MakeBlock(block.IAppObject_UniqueIDString(), manageShortFloat);
    // From the text, as a project is opened: what the writer or the reader of the XML loses
    // is lost to the user as well.
    copy->IAppObject_XmlLoad(saved->rereadElement);
    if (comparable) {
        RequireSame("member values", MemberState(block), MemberState(*copy), saved->text);
        RequireSame("image", stream, copy->IAppObject_Stream(), saved->text);
        RequireSame("Intel image", intel, copy->IAppObject_IntelStream(), saved->text);
        const std::optional<SavedBlock> again = Save(*copy);
        RequireSame("project XML", saved->text, again ? again->text : "(save failed)", saved->text);
    }
    copy->IAppObject_Destroy();
}

}  // namespace zerbin::fuzz
