// Doubles of the host's macro view: the owner of a block (IMacroHost, IHostContainer), the
// macro with its terminal groups, members and connections, and the top of the project. Each
// double is a plain struct with public data; set `fails` to make every read of that one
// object throw zerbin::Error, as a failing host call does.
//
//   auto macro = std::make_shared<FakeMacro>();
//   macro->inputGroups.push_back(FakeMacroInputGroup::WithKeys({"K\\RIN\\A"}));
//   auto owner = FakeMacroHost::Holding(macro);
//   appObject->parent = owner;  // FakeAppObject from tests/support/FakeAppObject.h
//   EXPECT_TRUE(input->IInput_IsMacroConnected());
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "interfaces/Error.h"
#include "interfaces/IHostServices.h"

namespace zerbin::testing {

// Throws the error a failing host call gives, when asked to.
inline void FailIf(bool fails) {
    if (fails) {
        throw Error("host call failed");
    }
}

struct FakeMacroTerminal : IMacroTerminal {
    explicit FakeMacroTerminal(std::string key = {}) : itemKey(std::move(key)) {}
    std::string ItemKey() override {
        FailIf(fails);
        return itemKey;
    }
    std::string itemKey;
    bool fails = false;
};

struct FakeMacroTerminals : IMacroTerminals {
    static std::shared_ptr<FakeMacroTerminals> WithKeys(const std::vector<std::string>& keys) {
        auto list = std::make_shared<FakeMacroTerminals>();
        for (const auto& key : keys) {
            list->terminals.push_back(std::make_shared<FakeMacroTerminal>(key));
        }
        return list;
    }
    int32_t Count() override {
        FailIf(fails);
        return static_cast<int32_t>(terminals.size());
    }
    // nullptr outside 1 to Count(); positions asked for are kept in `asked`.
    std::shared_ptr<IMacroTerminal> Item(int32_t position) override {
        asked.push_back(position);
        FailIf(fails);
        if (position < 1 || position > static_cast<int32_t>(terminals.size())) {
            return nullptr;
        }
        return terminals[static_cast<std::size_t>(position) - 1];
    }
    std::vector<std::shared_ptr<FakeMacroTerminal>> terminals;
    std::vector<int32_t> asked;
    bool fails = false;
};

struct FakeMacroAttributeGroup : IMacroAttributeGroup {
    static std::shared_ptr<FakeMacroAttributeGroup> WithKeys(const std::vector<std::string>& keys) {
        auto group = std::make_shared<FakeMacroAttributeGroup>();
        group->terminals = FakeMacroTerminals::WithKeys(keys);
        return group;
    }
    std::shared_ptr<IMacroTerminals> Terminals() override {
        FailIf(fails);
        return terminals;
    }
    std::shared_ptr<FakeMacroTerminals> terminals;
    bool fails = false;
};

struct FakeMacroFieldGroup : IMacroFieldGroup {
    static std::shared_ptr<FakeMacroFieldGroup> WithKeys(const std::vector<std::string>& keys) {
        auto group = std::make_shared<FakeMacroFieldGroup>();
        group->terminals = FakeMacroTerminals::WithKeys(keys);
        return group;
    }
    std::shared_ptr<IMacroTerminals> Terminals() override {
        FailIf(fails);
        return terminals;
    }
    std::shared_ptr<FakeMacroTerminals> terminals;
    bool fails = false;
};

// An input group; it also answers as the holder of field groups, as the host's does.
struct FakeMacroInputGroup : IMacroInputGroup, IMacroInputFields {
    static std::shared_ptr<FakeMacroInputGroup> WithKeys(const std::vector<std::string>& keys) {
        auto group = std::make_shared<FakeMacroInputGroup>();
        group->terminals = FakeMacroTerminals::WithKeys(keys);
        return group;
    }
    std::shared_ptr<IMacroTerminals> Terminals() override {
        FailIf(fails);
        return terminals;
    }
    bool HasFields() override {
        FailIf(fails);
        return hasFields;
    }
    std::vector<std::shared_ptr<IObject>> Fields() override {
        FailIf(fails || failsFields);
        return fields;
    }
    // Adds a field group and sets hasFields.
    std::shared_ptr<FakeMacroFieldGroup> AddFieldGroup(const std::vector<std::string>& keys) {
        auto group = FakeMacroFieldGroup::WithKeys(keys);
        fields.push_back(group);
        hasFields = true;
        return group;
    }
    std::shared_ptr<FakeMacroTerminals> terminals;
    bool hasFields = false;
    std::vector<std::shared_ptr<IObject>> fields;  // normally FakeMacroFieldGroup
    bool fails = false;
    bool failsFields = false;  // only Fields() throws
};

struct FakeMacroOutputGroup : IMacroOutputGroup {
    static std::shared_ptr<FakeMacroOutputGroup> WithKey(const std::string& key) {
        auto group = std::make_shared<FakeMacroOutputGroup>();
        group->terminal = std::make_shared<FakeMacroTerminal>(key);
        return group;
    }
    std::shared_ptr<IMacroTerminal> Terminal() override {
        FailIf(fails);
        return terminal;
    }
    std::shared_ptr<FakeMacroTerminal> terminal;  // may stay nullptr
    bool fails = false;
};

struct FakeConnection : IConnection {
    FakeConnection(std::shared_ptr<IObject> from, std::shared_ptr<IObject> to)
        : source(std::move(from)), target(std::move(to)) {}
    std::shared_ptr<IObject> Source() override {
        FailIf(fails);
        return source;
    }
    std::shared_ptr<IObject> Target() override {
        FailIf(fails);
        return target;
    }
    std::shared_ptr<IObject> source;
    std::shared_ptr<IObject> target;
    bool fails = false;
};

struct FakeMacro : IMacro {
    std::vector<std::shared_ptr<IMacroAttributeGroup>> AttributeGroups() override {
        FailIf(fails);
        return attributeGroups;
    }
    std::vector<std::shared_ptr<IMacroInputGroup>> InputGroups() override {
        FailIf(fails);
        return inputGroups;
    }
    std::vector<std::shared_ptr<IMacroOutputGroup>> OutputGroups() override {
        FailIf(fails);
        return outputGroups;
    }
    std::vector<std::shared_ptr<IObject>> Members() override {
        FailIf(fails);
        return members;
    }
    std::optional<std::vector<std::shared_ptr<IConnection>>> Connections() override {
        FailIf(fails);
        return connections;
    }
    std::vector<std::shared_ptr<IMacroAttributeGroup>> attributeGroups;
    std::vector<std::shared_ptr<IMacroInputGroup>> inputGroups;
    std::vector<std::shared_ptr<IMacroOutputGroup>> outputGroups;
    std::vector<std::shared_ptr<IObject>> members;  // blocks (IAppObject) and macros (IMacro)
    std::optional<std::vector<std::shared_ptr<IConnection>>> connections;
    bool fails = false;
};

struct FakeTopObject : ITopObject {
    std::shared_ptr<IMacro> RootMacro() override {
        FailIf(fails);
        return rootMacro;
    }
    std::shared_ptr<IMacro> rootMacro;
    bool fails = false;
};

// What IAppObject_Parent of a block gives: the macro that holds the block and the way to the
// top of the project.
struct FakeMacroHost : IMacroHost, IHostContainer {
    static std::shared_ptr<FakeMacroHost> Holding(std::shared_ptr<IMacro> m) {
        auto host = std::make_shared<FakeMacroHost>();
        host->macro = std::move(m);
        return host;
    }
    std::shared_ptr<IMacro> Macro() override {
        FailIf(fails);
        return macro;
    }
    std::shared_ptr<IObject> TopObject() override {
        FailIf(fails);
        return topObject;
    }
    std::shared_ptr<IMacro> macro;
    std::shared_ptr<IObject> topObject;  // normally a FakeTopObject
    bool fails = false;
};

}  // namespace zerbin::testing
