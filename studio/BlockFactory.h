// Where the studio's blocks come from, and the few process-wide settings of the component that
// a host makes before it creates blocks: the block library, the unit system, the message
// handler and the event pump. This is the one place that calls the plug-in's entry points;
// everything else in the studio talks to blocks through the interfaces alone.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "interfaces/IAppObject.h"
#include "interfaces/IProjectFiles.h"

class QWidget;

namespace zerbin::studio {

class MessageSink;

// What the palette shows of a block type, read from its definition header.
struct BlockTypeInfo {
    std::string type;
    std::string name;
    std::string category;
    std::string description;
    std::shared_ptr<const Picture> icon;  // may be empty
};

class BlockFactory {
public:
    // A new block that has not yet been given its type.
    std::shared_ptr<IAppObject> CreateBlock() const;

    // The folder whose sub-folders are the block types; set before the first block.
    void UseLibrary(const std::filesystem::path& library);
    const std::filesystem::path& Library() const { return library_; }
    // The types of the library, sorted by name; empty when the folder can't be read.
    std::vector<std::string> Types() const;
    // True when the library holds a definition file for the type. Each answer is kept until
    // the next UseLibrary: a project asks once for every block.
    bool HasType(const std::string& type) const;
    BlockTypeInfo Describe(const std::string& type) const;

    // The component's project file service: how every project is read and written.
    static std::shared_ptr<IProjectFiles> ProjectFiles();

    static void UseUnitSystem(bool us);
    // Every message box of the component and of the studio goes to the sink; nullptr gives
    // the component its own boxes back.
    static void UseMessageSink(std::shared_ptr<MessageSink> sink);
    // Long loops of the component let the studio's queued events run; off, they call nothing
    // (as the window's teardown needs: no event may run while blocks go).
    static void UseEventPump(bool on);
    // The host's window as IAppObject_Show takes it as the owner.
    static std::shared_ptr<IObject> HostWindow(QWidget* window);

    // The data that ships with the product: installed beside the program
    // (PREFIX/share/zerbin) when there is such a copy, else the source tree's data folder.
    static std::filesystem::path ShippedDataFolder();

private:
    std::filesystem::path library_;
    mutable std::unordered_map<std::string, bool> hasType_;
};

}  // namespace zerbin::studio
