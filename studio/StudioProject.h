// The project the studio edits: its blocks in the host's call order, the wires between them,
// the settings every block is created with, and the project file. It is also the blocks'
// parent: the macro view through which a type selector asks which connections it must respect.
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include <QElapsedTimer>
#include <QObject>
#include <QPointF>

#include <pugixml.hpp>

#include "interfaces/IAppObject.h"
#include "studio/KeptBlocks.h"
#include "studio/Wire.h"

namespace zerbin::studio {

class BlockFactory;
class ProjectMacro;

// A block dragged on the canvas from one place to another.
struct BlockMove {
    std::string key;
    QPointF from;
    QPointF to;
};

// Every attribute value of a block, by attribute name, in collection order.
using ValueSnapshot = std::vector<std::pair<std::string, std::string>>;

struct ProjectSettings {
    bool usUnits = false;
    bool shortFloat = false;
};

class StudioProject : public QObject {
    Q_OBJECT

public:
    StudioProject(BlockFactory& factory, std::shared_ptr<const pugi::xml_document> dictionary,
                  std::shared_ptr<const pugi::xml_document> ownerDevice, QObject* parent = nullptr);
    ~StudioProject() override;

    const ProjectSettings& Settings() const { return settings_; }
    // Short floats change every block's layout, so the blocks are made anew from their saved
    // state; the unit system only changes what the user sees.
    void ApplySettings(const ProjectSettings& settings);

    // ---- Blocks, by the global key the studio gave them ("Block7") ----
    // Creates a block of the type at pos; an empty key takes the next free one. Returns the
    // key, or empty (after a message) when the library has no such type.
    std::string AddBlock(const std::string& type, QPointF pos, std::string key = {});
    // Re-creates a block from its saved element (as BlockElement gave it) under its key, at
    // the given place in the project's order (-1: last). Empty when the type is missing.
    std::string RestoreBlock(pugi::xml_node element, int position);
    // Many blocks back at once, each at its place in the project's order as it was before
    // they went (positions as RemoveBlocks gave them).
    void RestoreBlocks(const std::vector<pugi::xml_node>& elements,
                       const std::vector<int>& positions);
    // Clears the references of the block's wires, then destroys it.
    void RemoveBlock(const std::string& key);
    // Many blocks at once; gives the place each had in the project's order. When one fails to
    // go, those before it are gone and the rest stay, each in its place.
    std::vector<int> RemoveBlocks(const std::vector<std::string>& keys);
    // The place of each block in the project's order, -1 for a key it lacks.
    std::vector<int> PlacesOf(const std::vector<std::string>& keys) const;
    std::shared_ptr<IAppObject> Block(const std::string& key) const;
    const std::vector<std::string>& BlockKeys() const { return order_; }
    std::string KeyOf(const IAppObject* block) const;
    void MoveBlock(const std::string& key, QPointF pos);
    void RenameBlock(const std::string& key, const std::string& name);
    // Appends the block's project element (block subtree plus the studio's own data) to parent.
    pugi::xml_node BlockElement(const std::string& key, pugi::xml_document& document,
                                pugi::xml_node parent) const;

    // ---- Values ----
    ValueSnapshot Values(const std::string& key) const;
    // Writes the values that differ from the block's, a unit selector first, as a load does.
    void ApplyValues(const std::string& key, const ValueSnapshot& values);
    // One value write; false when the block refused it (the value did not change).
    bool WriteValue(const std::string& key, const std::string& attribute, const std::string& value);

    // ---- Copies and many values at once ----
    // The blocks as the text of a project document: their elements, with the wires among them.
    std::string CopyText(const std::vector<std::string>& keys) const;
    // The document of a copy's text, read as strictly as a project file; nullptr with the
    // reason in *why when it is no project.
    static std::shared_ptr<pugi::xml_document> ReadCopy(const std::string& text, std::string* why);
    // Adds the blocks of a copy's root, moved by offset, each under a key, export index and
    // name of its own, and the wires among them. Each new key goes to keys as its block comes,
    // so that a paste that fails halfway can be taken back; a block of a type the library
    // lacks is left out and said once for its type.
    void PasteBlocks(pugi::xml_node root, QPointF offset, std::vector<std::string>& keys);
    // The values of the first block of a copy's root, by attribute name.
    static ValueSnapshot CopiedValues(pugi::xml_node root);
    // Writes each value whose attribute the block has and whose rules take it, a unit selector
    // first; gives "NAME: why" for each one not written.
    std::vector<std::string> WriteValues(const std::string& key, const ValueSnapshot& values);
    // The values a new block of the block's type starts with.
    ValueSnapshot DefaultValues(const std::string& key) const;

    // ---- Types that changed under the project ----
    // Whether the block's type changed since the project was saved, and what changed, one
    // line each.
    bool TypeChanged(const std::string& key) const;
    std::vector<std::string> TypeChanges(const std::string& key) const;
    // Brings the block to the library's type: what can be mapped is, the rest is given back,
    // one line each.
    std::vector<std::string> UpdateType(const std::string& key);

    // ---- Wires ----
    // Empty when the wire can be made, else why not, in the user's words.
    std::string WhyNotConnect(const Wire& wire) const;
    // The dictionary's names of types given by their numbers, "105,22" as "SNVT_temp_p,
    // SNVT_lev_disc".
    std::string TypeNames(const std::string& ids) const;
    // True when the input accepts the output's type.
    bool TypesFit(const Wire& wire) const;
    // Sets the input's reference from the output's code and tells both ends; a refusal is
    // shown as a message and gives false.
    bool Connect(const Wire& wire);
    // Clears the input's reference and tells both ends.
    void Disconnect(const Wire& wire);
    const std::vector<Wire>& Wires() const { return wires_; }
    bool HasWire(const Wire& wire) const { return wireAt_.count(wire) != 0; }
    // Valid until the next change of wires: copy it to walk it while wires change.
    const std::vector<Wire>& WiresOf(const std::string& key) const;

    // ---- Files ----
    void Clear();
    void Save(pugi::xml_document& document) const;
    std::string Text() const;
    // The project document of a file, read by the component's project file service; nullptr
    // with the reason in *why when it is no project (not well-formed, another root element).
    static std::shared_ptr<const pugi::xml_document> ReadFile(const std::filesystem::path& file,
                                                              std::string* why);
    // Writes the project through the component's project file service: all of it or, when
    // false comes back with the reason in *why, nothing.
    bool WriteFile(const std::filesystem::path& file, std::string* why) const;
    // Blocks whose type is missing are kept as they stand and written back on save; their
    // keys, export indexes and names stay theirs.
    void Load(const pugi::xml_document& document);
    bool Loading() const { return loading_ > 0; }
    // Blocks of the project whose type the library lacks.
    int MissingBlocks() const { return kept_.Count(); }
    // What the canvas draws of them, and the wires at them, in and out.
    std::vector<MissingBlock> MissingBlocksShown() const { return kept_.Blocks(); }
    std::vector<Wire> KeptWires() const { return kept_.Wires(); }
    // The wires from a block whose type is missing into the shown block.
    const std::vector<Wire>& KeptWiresTo(const std::string& key) const {
        return kept_.WiresTo(key);
    }

    // The images of every block, one line each: key, user name, type, image, Intel image.
    std::string ImagesText() const;
    // The images, or the lean form of every block for a simulator or for other tools, written
    // through the project file service: all of it or, when false comes back with the reason
    // in *why, nothing.
    bool ExportImages(const std::filesystem::path& file, std::string* why) const;
    bool ExportForm(const std::filesystem::path& file, bool simulator, std::string* why) const;
    // Any other document the studio reads (a dictionary, a device document), read as strictly
    // as a project; what names it in the reason.
    static std::shared_ptr<const pugi::xml_document> ReadDocument(const std::filesystem::path& file,
                                                                  const std::string& what,
                                                                  std::string* why);

    // Told the name of the block the next messages are about, before each step on a block.
    void SetContextHook(std::function<void(const std::string&)> hook) {
        context_ = std::move(hook);
    }

    // Called by the blocks' listeners.
    void OnAttributeChanged(const std::string& globalKey);
    void OnTypeChanged(const std::string& globalKey);

signals:
    void blockAdded(const std::string& key);
    void blockRemoved(const std::string& key);
    // Name, place, values or terminals of the block changed.
    void blockChanged(const std::string& key);
    void wireAdded(const Wire& wire);
    void wireRemoved(const Wire& wire);
    // A value changed without the studio asking: an editor wrote it.
    void valuesChangedOutside(const std::string& key);
    void cleared();
    // A project was read: its blocks and wires have all been announced.
    void loaded();
    // How far a step over many blocks has got.
    void progress(int percent);

private:
    struct Entry;
    // A wire's blocks and terminals, nullptr where the project has none.
    struct Ends {
        std::shared_ptr<IAppObject> source;
        std::shared_ptr<IAppObject> target;
        std::shared_ptr<IOutput> output;
        std::shared_ptr<IInput> input;
    };
    Ends EndsOf(const Wire& wire) const;
    std::string WhyNot(const Wire& wire, const Ends& ends) const;
    Entry* Find(const std::string& key) const;
    bool NameTaken(const std::string& name) const;
    // The name, or the name with the lowest number after it that no block has.
    std::string FreeName(const std::string& wanted) const;
    // A block of the type as the project makes them, not in the project.
    std::shared_ptr<IAppObject> MakeBlock(const std::string& type) const;
    void KeepBlock(pugi::xml_node element);
    std::string NextKey();
    int16_t NextExportIndex();
    std::string CreateBlock(const std::string& type, const std::string& key, int16_t exportIndex);
    void DropWire(const Wire& wire, bool clearReference);
    // Everything of RemoveBlock but its place in the order.
    void DestroyBlock(const std::string& key);
    void Context(const std::string& block) const;
    void Progress(std::size_t done, std::size_t total);
    static void AppendConnection(pugi::xml_node element, const Wire& wire);

    BlockFactory& factory_;
    std::shared_ptr<const pugi::xml_document> dictionary_;
    std::shared_ptr<const pugi::xml_document> ownerDevice_;
    std::shared_ptr<ProjectMacro> macro_;
    ProjectSettings settings_;
    std::unordered_map<std::string, std::unique_ptr<Entry>> blocks_;
    std::vector<std::string> order_;
    // Export indexes in use (a project read from a file may hold the same one twice).
    std::multiset<int16_t> exportIndexes_;
    int freeExportIndex_ = 0;
    std::vector<Wire> wires_;
    // Where each wire stands in wires_: a step over thousands of wires looks each one up.
    std::unordered_map<Wire, std::size_t, WireHash> wireAt_;
    // The wires at each block, in the order they were made: a large project asks this often.
    std::unordered_map<std::string, std::vector<Wire>> wiresAt_;
    // Kept as read and written back: blocks of missing types, wires that lead to them.
    KeptBlocks kept_;
    // Where a block's element is copied to leave its wires out: one document for all, so that
    // its memory is taken once rather than for every block.
    pugi::xml_document scratch_;
    std::function<void(const std::string&)> context_;
    QElapsedTimer progressClock_;
    int nextKey_ = 1;
    int loading_ = 0;
    int writing_ = 0;

    friend class ProjectMacro;
};

}  // namespace zerbin::studio
