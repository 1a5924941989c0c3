// The floor of a whole-process project load: a process that only parses the project file with
// pugixml, started the same way as `zerbin load`. bench/whole_process.sh runs the two in turn.
// Run: build/bench/ParseOnly FILE
#include <cstdio>

#include <pugixml.hpp>

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: ParseOnly FILE\n");
        return 2;
    }
    pugi::xml_document document;
    const pugi::xml_parse_result result = document.load_file(argv[1]);
    if (!result) {
        std::fprintf(stderr, "%s: %s\n", argv[1], result.description());
        return 1;
    }
    // Something that depends on the whole tree, so that the parse is not thrown away.
    std::size_t elements = 0;
    for (pugi::xml_node block : document.document_element().children()) {
        elements += block.type() == pugi::node_element ? 1 : 0;
    }
    std::printf("%zu\n", elements);
    return 0;
}
