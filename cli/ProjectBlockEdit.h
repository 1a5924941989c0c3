// One block of a saved project brought to life to change its values: restored from its
// element as a host restores it, its values written through the editors' rules, and what
// changed written back into the same element, with the image brought up to date. Nothing the
// change did not touch is rewritten.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <pugixml.hpp>

#include "cli/CommandLine.h"
#include "cli/HostSession.h"

namespace zerbin::cli {

class Project;

// Every parameter value of a block, by name, in collection order.
using ValueList = std::vector<std::pair<std::string, std::string>>;

class ProjectBlockEdit {
public:
    // Restores the block of element (named id in messages). A type the library lacks throws
    // Error: such a block can be kept, not changed. The inputs keep the references the
    // element's image holds, so that the image made anew still carries the wires.
    ProjectBlockEdit(const HostSettings& host, pugi::xml_node element, const std::string& id);

    CDBAppObject& Block() const { return **block_; }
    ValueList Values() const;
    // The writable attribute of that name, or nullptr.
    std::shared_ptr<IAttribute> Attribute(const std::string& name) const;

    // Writes each value in the order given, each judged by the editors' rules just before its
    // write (a selector changes what the next may take). Throws UsageError for a name the type
    // lacks, before anything is written. Returns one objection per refused value.
    [[nodiscard]] std::vector<std::string> Write(const std::vector<Assignment>& values);

    // Writes into the element the parameters whose value differs from before (every one when
    // before is empty, against the element's own text) and the image as the block makes it.
    void Store(const ValueList& before);
    // Gives each wired input (a "Connection" of the element) the reference of its source's
    // output as project holds the source now: its key and export index may have changed since
    // the image was made. A wire whose source, its type or its output is not found is left as
    // the image has it.
    void Rewire(const Project& project);

    // Writes only the image as the block makes it: for values written into the element
    // before the block was restored from it.
    void StoreImage();

private:
    // Throws Error when the block cannot make one.
    std::string Image() const;

    HostSettings host_;
    pugi::xml_node element_;
    std::string id_;
    std::unique_ptr<HostedBlock> block_;
};

// The settings with which the blocks of a project are made: the run's, with short floats when
// the project was made with them.
HostSettings ProjectHost(const HostSettings& host, bool projectShortFloat);

}  // namespace zerbin::cli
