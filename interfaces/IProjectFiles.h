// The project file service as a host reaches it through the plug-in: every project comes from
// a file through the component's strict XML reader and goes back to one atomically, the
// previous version kept as FILE~.
#pragma once

#include <memory>
#include <string>

#include <pugixml.hpp>

#include "interfaces/IObject.h"

namespace zerbin {

struct IProjectFiles : virtual IObject {
    // The document of the file; nullptr, with why set ("cannot read project 'F': REASON",
    // line and column in REASON where known), when it is not well-formed XML 1.0 or can't
    // be read. Throws only std::bad_alloc.
    virtual std::shared_ptr<pugi::xml_document> IProjectFiles_Read(const std::string& file,
                                                                   std::string& why) = 0;
    // Writes the document to the file: all of it or, when false is returned with why set
    // ("cannot write project 'F': no space left on device"), nothing; a text XML cannot
    // carry is refused before the file is touched. Throws only std::bad_alloc.
    virtual bool IProjectFiles_Write(const std::string& file, const pugi::xml_document& document,
                                     std::string& why) = 0;
    // As Read and Write for any other file of the host's: a dictionary or device document it
    // reads, a drawing or image list it exports. what names the file in why ("cannot read
    // dictionary 'F': REASON").
    virtual std::shared_ptr<pugi::xml_document> IProjectFiles_ReadAs(const std::string& file,
                                                                     const std::string& what,
                                                                     std::string& why) = 0;
    virtual bool IProjectFiles_WriteText(const std::string& file, const std::string& what,
                                         const std::string& text, std::string& why) = 0;
    // As ReadAs for a document that comes as text (blocks on the host's clipboard): "cannot
    // read WHAT: REASON".
    virtual std::shared_ptr<pugi::xml_document> IProjectFiles_ReadText(const std::string& text,
                                                                       const std::string& what,
                                                                       std::string& why) = 0;
};

}  // namespace zerbin
