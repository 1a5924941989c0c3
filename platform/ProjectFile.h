// The project file service: the one way a project comes from a file and goes back to one, for
// the command, the plug-in's hosts and the studio alike. Reading goes through the XML port's
// strict reader, so that every host refuses what the command refuses. Writing is atomic: the
// whole text is made first, written to a temporary file in the same folder and flushed, then
// renamed over the old file and the folder flushed, so that a failure or a kill at any moment
// leaves either the old file or the new one, never a part. The old file is kept as NAME~.
#pragma once

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include <pugixml.hpp>

#include "base/XmlElementStream.h"

namespace zerbin {

// Why a project could not be read or written, as one sentence for the user: "cannot write
// project 'plant.xml': no space left on device".
class ProjectFileError : public std::runtime_error {
public:
    ProjectFileError(const std::string& message, int code)
        : std::runtime_error(message), code_(code) {}
    // The errno value, 0 when the failure is not the system's (a refused text, bad XML).
    int Code() const { return code_; }

private:
    int code_;
};

class ProjectFile {
public:
    // what names the file in messages: "project", "dictionary", "export".
    explicit ProjectFile(std::filesystem::path file, std::string what = "project")
        : file_(std::move(file)), what_(std::move(what)) {}

    const std::filesystem::path& Path() const { return file_; }
    // Where a write keeps the previous version: the file's name with "~" appended.
    std::filesystem::path BackupPath() const;

    // The document, read strictly (well-formed XML 1.0, no entity declarations, declared
    // encodings only). Throws ProjectFileError "cannot read project 'F': REASON", with the
    // line and column in REASON where the parser gives them; std::bad_alloc goes on.
    std::shared_ptr<pugi::xml_document> Read() const;
    // The same reading, one element under the document element at a time, for a host that
    // takes each block and lets it go: the whole tree never exists. The same failures are
    // thrown, before the first element is given.
    xml::ElementStream ReadElements() const;

    // Writes the document as the XML port writes it. A text the port refuses (a control
    // character in a value) throws before any file is touched.
    void Write(const pugi::xml_document& document) const;
    // Replaces the file's content with text, atomically, keeping the previous version as
    // BackupPath(). A symbolic link is followed, so the link stays and its target changes;
    // a new file gets the permissions the umask allows, an old one keeps its own. Throws
    // ProjectFileError "cannot write project 'F': REASON" (REASON in words, "permission
    // denied"), and then the file and its backup are as they were.
    void WriteText(std::string_view text) const;

private:
    std::filesystem::path file_;
    std::string what_;
};

// A document that comes as text rather than a file (a host's clipboard), read as strictly as a
// project file. Throws ProjectFileError "cannot read WHAT: REASON".
std::shared_ptr<pugi::xml_document> ReadDocumentText(std::string_view text,
                                                     const std::string& what);

}  // namespace zerbin
