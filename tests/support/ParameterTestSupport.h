// What the attribute tests share: the dictionary and block library under
// tests/fixtures/parameters, attributes loaded from inline XML, and doubles of the
// interceptor and the editors.
#pragma once

#include "base/Xml.h"
#include "interfaces/IEditors.h"
#include "interfaces/IHostServices.h"
#include "parameters/CDBAttribute.h"
#include "parameters/CDBAttributes.h"
#include "platform/EditorPort.h"
#include "tests/support/Blocks.h"

namespace zerbin::testing {

// Installs the fixture dictionary and library for each test.
class ParameterTest : public ::testing::Test {
protected:
    void SetUp() override { SetSnvtDictionary(Fixtures("parameters", "snvts.xml").dictionary); }

    // An attribute made from inline XML with the given block as owner, as Create makes one.
    std::shared_ptr<CDBAttribute> Load(const TestBlock& owner, const std::string& element,
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
