// What the attribute tests share: the dictionary and block library under
// tests/fixtures/parameters, a block made from it that is taken apart at the end of the test,
// attributes loaded from inline XML, and doubles of the interceptor and the editors.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <pugixml.hpp>

#include "app_object/CDBAppObject.h"
#include "base/MMain.h"
#include "base/Xml.h"
#include "datatypes/UnitConverter.h"
#include "interfaces/IEditors.h"
#include "interfaces/IHostServices.h"
#include "parameters/CDBAttribute.h"
#include "parameters/CDBAttributes.h"
#include "platform/EditorPort.h"
#include "platform/Files.h"
#include "tests/support/TestSupport.h"

namespace zerbin::testing {

inline std::shared_ptr<const pugi::xml_document> ParameterDictionary() {
    static const std::shared_ptr<const pugi::xml_document> dictionary =
        LoadXml(FixturesDir() / "parameters" / "snvts.xml");
    return dictionary;
}

// A block of a fixture type; IAppObject_Destroy breaks its cycles when the test ends.
class Block {
public:
    // setUp runs between Init and Create, where a host writes what the members need.
    explicit Block(const std::string& type, bool create = true,
                   const std::function<void(CDBAppObject&)>& setUp = {})
        : object_(std::make_shared<CDBAppObject>()) {
        int32_t errorCode = 0;
        object_->IAppObject_Init(type, errorCode);
        if (setUp) {
            setUp(*object_);
        }
        if (create) {
            object_->IAppObject_Create();
        }
    }
    ~Block() { object_->IAppObject_Destroy(); }
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;

    CDBAppObject* operator->() const { return object_.get(); }
    const std::shared_ptr<CDBAppObject>& Object() const { return object_; }

    // The attribute of that name; fails the test when there is none.
    std::shared_ptr<CDBAttribute> Attribute(const std::string& name) const {
        auto found = std::dynamic_pointer_cast<CDBAttribute>(
            object_->IAppObject_Attributes()->IAttributes_Item(name));
        EXPECT_NE(found, nullptr) << "no attribute " << name;
        return found;
    }

private:
    std::shared_ptr<CDBAppObject> object_;
};

// Installs the fixture dictionary and library for each test and restores the unit system.
class ParameterTest : public ::testing::Test {
protected:
    void SetUp() override {
        SetSnvtDictionary(ParameterDictionary());
        SetComponentFolder(FixturesDir() / "parameters" / "library" / "Zerbin");
        SetUnitSystem(UnitSystem::SI);
    }
    void TearDown() override {
        SetUnitSystem(UnitSystem::SI);
        SetEditorFactory(nullptr);
        SetComponentFolder({});
    }

    // An attribute made from inline XML with the given block as owner, as Create makes one.
    std::shared_ptr<CDBAttribute> Load(const Block& owner, const std::string& element,
                                       std::shared_ptr<AttributeInterceptor> interceptor = {}) {
        auto document = ParseXml(element);
        pugi::xml_node node = document->document_element();
        return inline_.AddFromDefinition(xml::BaseName(node), node, owner.Object(),
                                         std::move(interceptor));
    }

    CDBAttributes inline_;
};

// Keeps every interceptor call as "Operation(attribute name)" and answers as configured.
struct RecordingInterceptor : AttributeInterceptor {
    bool InterceptDeviceList(std::shared_ptr<IAttribute>& attribute) override {
        calls.push_back("InterceptDeviceList(" + attribute->IAttribute_Name() + ")");
        return takeOverDeviceList;
    }
    void AttributeValueChanged(std::shared_ptr<IAttribute>& attribute) override {
        calls.push_back("AttributeValueChanged(" + attribute->IAttribute_Name() + ")");
    }
    void DependentAttributeChanged(std::shared_ptr<IAttribute>& attribute) override {
        calls.push_back("DependentAttributeChanged(" + attribute->IAttribute_Name() + ")");
    }
    void InterceptUnitDependent(std::shared_ptr<IAttribute>& attribute,
                                bool& IsUnitDependent) override {
        calls.push_back("InterceptUnitDependent(" + attribute->IAttribute_Name() + "," +
                        BoolDigit(IsUnitDependent) + ",'" + attribute->IAttribute_Description() +
                        "')");
        if (forceUnitDependent) {
            IsUnitDependent = true;
        }
    }
    void InterceptDifferential(std::shared_ptr<IAttribute>& attribute,
                               bool& Differential) override {
        calls.push_back("InterceptDifferential(" + attribute->IAttribute_Name() + "," +
                        BoolDigit(Differential) + ")");
    }

    bool takeOverDeviceList = false;
    bool forceUnitDependent = false;
    std::vector<std::string> calls;
};

// Editors that only record what is done to them, made by a factory that records the names.
struct RecordingEditor : IValueEditor {
    void DataPoint(std::shared_ptr<IObject> point) override { this->point = std::move(point); }
    void ShowModal() override { ++shown; }
    std::shared_ptr<IObject> point;
    int shown = 0;
};

struct RecordingEditorFactory : IEditorFactory {
    std::shared_ptr<IValueEditor> CreateValueEditor(const std::string& editorName) override {
        names.push_back(editorName);
        return std::make_shared<RecordingEditor>();
    }
    std::vector<std::string> names;
};

}  // namespace zerbin::testing
