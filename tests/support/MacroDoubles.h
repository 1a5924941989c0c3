// Doubles of the host's macro view: the owner of a block (IMacroHost, IHostContainer), the
// macro with its terminal groups, members and connections, and the top of the project. Each
// double is a plain struct with public data; set `fails` to make every read of that one
// object throw zerbin::Error, as a failing host call does.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "interfaces/Error.h"
#include "interfaces/IHostServices.h"

namespace zerbin::testing {

// The answer of a host call, or the error of a failing one.
template <class T = std::nullptr_t>
T Answer(bool fails, const T& value = {}) {
    if (fails) {
        throw Error("host call failed");
    }
    return value;
}

struct FakeMacroTerminal : IMacroTerminal {
    explicit FakeMacroTerminal(std::string key = {}) : itemKey(std::move(key)) {}
    std::string ItemKey() override { return Answer(fails, itemKey); }
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
    int32_t Count() override { return Answer(fails, static_cast<int32_t>(terminals.size())); }
    // nullptr outside 1 to Count().
    std::shared_ptr<IMacroTerminal> Item(int32_t position) override {
        Answer(fails);
        if (position < 1 || position > static_cast<int32_t>(terminals.size())) {
            return nullptr;
        }
        return terminals[static_cast<std::size_t>(position) - 1];
    }
    std::vector<std::shared_ptr<FakeMacroTerminal>> terminals;
    bool fails = false;
};

// A group that holds a list of terminals; Self is the double that derives from it.
template <class Self, class Interface>
struct FakeTerminalGroup : Interface {
    static std::shared_ptr<Self> WithKeys(const std::vector<std::string>& keys) {
        auto group = std::make_shared<Self>();
        group->terminals = FakeMacroTerminals::WithKeys(keys);
        return group;
    }
    std::shared_ptr<IMacroTerminals> Terminals() override { return Answer(fails, terminals); }
    std::shared_ptr<FakeMacroTerminals> terminals;
    bool fails = false;
};

struct FakeMacroAttributeGroup : FakeTerminalGroup<FakeMacroAttributeGroup, IMacroAttributeGroup> {
};
struct FakeMacroFieldGroup : FakeTerminalGroup<FakeMacroFieldGroup, IMacroFieldGroup> {};

// An input group; it also answers as the holder of field groups, as the host's does.
struct FakeMacroInputGroup : FakeTerminalGroup<FakeMacroInputGroup, IMacroInputGroup>,
                             IMacroInputFields {
    bool HasFields() override { return Answer(fails, hasFields); }
    std::vector<std::shared_ptr<IObject>> Fields() override {
        return Answer(fails || failsFields, fields);
    }
    // Adds a field group and sets hasFields.
    std::shared_ptr<FakeMacroFieldGroup> AddFieldGroup(const std::vector<std::string>& keys) {
        auto group = FakeMacroFieldGroup::WithKeys(keys);
        fields.push_back(group);
        hasFields = true;
        return group;
    }
    bool hasFields = false;
    std::vector<std::shared_ptr<IObject>> fields;  // normally FakeMacroFieldGroup
    bool failsFields = false;                      // only Fields() throws
};

struct FakeMacroOutputGroup : IMacroOutputGroup {
    static std::shared_ptr<FakeMacroOutputGroup> WithKey(const std::string& key) {
        auto group = std::make_shared<FakeMacroOutputGroup>();
        group->terminal = std::make_shared<FakeMacroTerminal>(key);
        return group;
    }
    std::shared_ptr<IMacroTerminal> Terminal() override { return Answer(fails, terminal); }
    std::shared_ptr<FakeMacroTerminal> terminal;  // may stay nullptr
    bool fails = false;
};

struct FakeConnection : IConnection {
    FakeConnection(std::shared_ptr<IObject> from, std::shared_ptr<IObject> to)
        : source(std::move(from)), target(std::move(to)) {}
    std::shared_ptr<IObject> Source() override { return Answer(fails, source); }
    std::shared_ptr<IObject> Target() override { return Answer(fails, target); }
    std::shared_ptr<IObject> source;
    std::shared_ptr<IObject> target;
    bool fails = false;
};

struct FakeMacro : IMacro {
    std::vector<std::shared_ptr<IMacroAttributeGroup>> AttributeGroups() override {
        return Answer(fails, attributeGroups);
    }
    std::vector<std::shared_ptr<IMacroInputGroup>> InputGroups() override {
        return Answer(fails, inputGroups);
    }
    std::vector<std::shared_ptr<IMacroOutputGroup>> OutputGroups() override {
        return Answer(fails, outputGroups);
    }
    std::vector<std::shared_ptr<IObject>> Members() override { return Answer(fails, members); }
    std::optional<std::vector<std::shared_ptr<IConnection>>> Connections() override {
        return Answer(fails, connections);
    }
    std::vector<std::shared_ptr<IMacroAttributeGroup>> attributeGroups;
    std::vector<std::shared_ptr<IMacroInputGroup>> inputGroups;
    std::vector<std::shared_ptr<IMacroOutputGroup>> outputGroups;
    std::vector<std::shared_ptr<IObject>> members;  // blocks (IAppObject) and macros (IMacro)
    std::optional<std::vector<std::shared_ptr<IConnection>>> connections;
    bool fails = false;
};

struct FakeTopObject : ITopObject {
    std::shared_ptr<IMacro> RootMacro() override { return Answer(fails, rootMacro); }
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
    std::shared_ptr<IMacro> Macro() override { return Answer(fails, macro); }
    std::shared_ptr<IObject> TopObject() override { return Answer(fails, topObject); }
    std::shared_ptr<IMacro> macro;
    std::shared_ptr<IObject> topObject;  // normally a FakeTopObject
    bool fails = false;
};

}  // namespace zerbin::testing
