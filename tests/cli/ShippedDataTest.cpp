// The shipped dictionary, library and device document hold together: what one names, the
// other has. check proves each type loads; this proves what check can't see.
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <pugixml.hpp>

#include "platform/UnitConverter.h"
#include "tests/cli/ProgramRunner.h"

namespace zerbin::testing {
namespace {

const std::set<std::string> kClasses{"SignedNumeric", "UnsignedNumeric", "Bitfield", "Enum",
                                     "Float",         "Textual",         "Struct"};

class ShippedDataFiles : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dictionary_.load_file((ShippedData() / "snvts.xml").c_str()));
        for (pugi::xml_node entry : dictionary_.child("SNVTS").children()) {
            const std::string name = entry.name();
            ASSERT_EQ(name.rfind("SNVT_", 0), 0u) << name;
            entries_[name.substr(5)] = entry;
        }
    }

    bool Known(const std::string& id) const { return entries_.count(id) != 0; }

    pugi::xml_document dictionary_;
    std::map<std::string, pugi::xml_node> entries_;
};

TEST_F(ShippedDataFiles, DictionaryEntriesAreCompleteAndConsistent) {
    EXPECT_GE(entries_.size(), 60u);
    std::set<std::string> names;
    for (const auto& [id, entry] : entries_) {
        SCOPED_TRACE("SNVT_" + id);
        // The factor scheme: the byte a selector writes is the type id itself.
        EXPECT_EQ(std::string(entry.attribute("FACTOR").value()), id);
        EXPECT_LT(std::atoi(id.c_str()), 256);
        EXPECT_TRUE(entry.attribute("R7REGION"));
        const std::string name = entry.child_value("NAME");
        EXPECT_EQ(name.rfind("SNVT_", 0), 0u);
        EXPECT_TRUE(names.insert(name).second) << "twice: " << name;
        const std::string kind = entry.child_value("TYPE");
        ASSERT_EQ(kClasses.count(kind), 1u) << kind;

        if (kind == "Enum") {
            std::set<std::string> values;
            for (pugi::xml_node member : entry.child("Enums").children()) {
                EXPECT_TRUE(values.insert(member.child_value()).second) << member.name();
            }
            EXPECT_FALSE(values.empty());
        } else if (kind == "Struct") {
            int fields = 0;
            for (pugi::xml_node field : entry.child("Fields").children()) {
                ++fields;
                const std::string fieldType = field.child_value();
                ASSERT_TRUE(Known(fieldType)) << field.name() << " names " << fieldType;
                // Fields are flat: a structure inside a structure would have no length.
                EXPECT_NE(std::string(entries_.at(fieldType).child_value("TYPE")), "Struct");
            }
            EXPECT_GT(fields, 0);
        } else {
            EXPECT_GT(std::atoi(entry.child_value("LENGTH")), 0);
        }
        if (kind == "SignedNumeric" || kind == "UnsignedNumeric" || kind == "Float") {
            // An A of 0 would encode every value as 0.
            EXPECT_NE(std::atoi(entry.child_value("A_COEF")), 0);
            EXPECT_LT(std::strtod(entry.child_value("MIN"), nullptr),
                      std::strtod(entry.child_value("MAX"), nullptr));
            EXPECT_NE(std::string(entry.child_value("BACNETUNIT")), "");
        }
    }
}

TEST_F(ShippedDataFiles, UsCustomaryConversionsNameShippedTypesInTheirUnits) {
    // The converter keys its table by type id: each id must be the type it means to convert.
    for (const UnitConversion& row : UsCustomaryTable()->Rows()) {
        SCOPED_TRACE(row.typeId);
        ASSERT_TRUE(Known(row.typeId));
        EXPECT_EQ(std::string(entries_.at(row.typeId).child_value("UNIT")), row.metricUnit);
    }
}

TEST_F(ShippedDataFiles, LibraryTypesHaveUniqueIdsAndNameOnlyKnownTypes) {
    std::set<std::string> ids;
    int types = 0;
    for (const auto& folder : std::filesystem::directory_iterator(ShippedData() / "library")) {
        const std::string type = folder.path().filename().string();
        if (type == "DataSheets") {
            continue;
        }
        ++types;
        SCOPED_TRACE(type);
        pugi::xml_document definition;
        ASSERT_TRUE(definition.load_file((folder.path() / (type + ".xml")).c_str()));
        const pugi::xml_node block = definition.child("AppObject");
        EXPECT_TRUE(ids.insert(block.child_value("ID")).second) << "ID " << block.child_value("ID");

        for (pugi::xpath_node found : block.select_nodes(".//SNVTTYPE")) {
            EXPECT_TRUE(Known(found.node().child_value())) << found.node().child_value();
        }
        for (pugi::xpath_node found : block.select_nodes(".//SNVTCOMPATIBILITYLIST")) {
            std::string list = found.node().child_value();
            for (std::size_t at = 0; at != std::string::npos;) {
                const std::size_t comma = list.find(',', at);
                const std::string id =
                    list.substr(at, comma == std::string::npos ? comma : comma - at);
                EXPECT_TRUE(Known(id)) << id;
                at = comma == std::string::npos ? comma : comma + 1;
            }
        }
        for (pugi::xpath_node found : block.select_nodes(".//TYPES/* | .//UNITS/*")) {
            const std::string value = found.node().child_value();
            EXPECT_TRUE(Known(value.substr(0, value.find(':')))) << value;
            if (pugi::xml_attribute differential = found.node().attribute("Differential")) {
                EXPECT_TRUE(Known(differential.value())) << differential.value();
            }
        }
        for (pugi::xpath_node found : block.select_nodes(".//@DeviceDependent")) {
            pugi::xml_document device;
            ASSERT_TRUE(device.load_file((ShippedData() / "devices" / "Controller.xml").c_str()));
            EXPECT_TRUE(device.child("Device").child(found.attribute().value()).first_child())
                << found.attribute().value();
        }
    }
    EXPECT_GE(types, 10);
    EXPECT_EQ(ids.size(), static_cast<std::size_t>(types));
}

TEST_F(ShippedDataFiles, DatasheetsArePdfFiles) {
    for (const std::filesystem::path& sheet :
         {ShippedData() / "library" / "PID_LOOP" / "PID_LOOP.pdf",
          ShippedData() / "library" / "DataSheets" / "pb_302_Thermostat.pdf",
          ShippedData() / "library" / "DataSheets" / "pb_307_WeeklySchedule.pdf"}) {
        const std::string bytes = ReadWhole(sheet);
        EXPECT_EQ(bytes.rfind("%PDF-1.", 0), 0u) << sheet;
        EXPECT_NE(bytes.find("startxref"), std::string::npos) << sheet;
        EXPECT_EQ(bytes.substr(bytes.size() - 6), "%%EOF\n") << sheet;
    }
    // The block type finds its datasheet beside the definition and through its ID.
    for (const char* type : {"PID_LOOP", "THERMOSTAT", "WEEKLY_SCHEDULE"}) {
        EXPECT_NE(RunProgram({"show", type}).out.find("  Datasheet         yes\n"),
                  std::string::npos)
            << type;
    }
}

}  // namespace
}  // namespace zerbin::testing
