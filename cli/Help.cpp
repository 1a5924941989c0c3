#include "cli/Help.h"

namespace zerbin::cli {

std::string UsageText() {
    return R"(USAGE: zerbin [options] <command> [arguments]

OPTIONS (before the command):
  --library DIR       the block library: DIR/T/T.xml for type T, DIR/DataSheets
                      (default: the shipped one)
  --dictionary FILE   the SNVT dictionary (default: the shipped one)
  --device FILE       the owner device document (default: the shipped one)
  --short-float       manage short floats: Float parameters take 2 bytes
  --units si|us       unit system of the converter (default si)
  -h, --help          this text; 'zerbin COMMAND --help' tells about one command
  --version           the version of zerbin

COMMANDS:
  types               the block types of the library: folder, ID, name, category
  show TYPE           a new block: header, CDB layout of its members, outputs
  image TYPE          the CDB image of a new block
  save TYPE           a project document holding a new block
  export TYPE         the simulator or interoperability form of a new block
  load FILE           user name, type and image of each block of a project
  check [TYPE...]     create block types and show their messages;
                      exit status 1 when any message was shown

Messages of the blocks go to stderr as "TITLE: TEXT". Exit status 2 means a usage error;
3 a file that cannot be read (dictionary, device document, project, or a definition that
is a folder, a FIFO, a device, too large or not permitted), named with the reason; 1 any
other failure: a block type that fails, a value the editors would refuse, output that
cannot be written.
)";
}

std::string CommandUsageText(Command command) {
    switch (command) {
        case Command::Types:
            return R"(USAGE: zerbin [options] types

One line per block type of the library, sorted by folder name: the folder name, ID, NAME
and CATEGORY of its definition, separated by tabs.
)";
        case Command::Show:
            return R"(USAGE: zerbin [options] show TYPE

Creates a block of TYPE and shows its header values, its CDB dimension, a table of the
members in layout order (kind, name, SNVT id, class, length, ordering number, CDB
position, value as shown to the user in the unit system of --units) and a table of its
outputs with their reference codes.
)";
        case Command::Image:
            return R"(USAGE: zerbin [options] image TYPE [--set NAME=VALUE]... [--ref INPUT=HEX]...
                                  [--export-index N] [--intel]

Creates a block of TYPE, writes each --set attribute value and each --ref input reference in
the order given, and prints its CDB image on one line.

  --set NAME=VALUE    write VALUE to the attribute NAME, as the tool's editors do; an
                      enumeration or a selector takes the label it shows as well
                      as a code. A value the editors would refuse is not written
                      and is reported, exit status 1
  --ref INPUT=HEX     give the input INPUT the reference HEX (4 digits, 6 when extended)
  --export-index N    the block's export index (-32768 to 32767)
  --intel             the image with the least significant byte first
)";
        case Command::Save:
            return R"(USAGE: zerbin [options] save TYPE [--set NAME=VALUE]... [--ref INPUT=HEX]...
                                 [--user-name TEXT] [--x X] [--y Y] [--export-index N]

Creates a block of TYPE as image does, builds its image once and prints a project document:
a root element "Project" holding the block's element.

  --user-name TEXT    the name the user gave the block
  --x X, --y Y        its place on the canvas
)";
        case Command::Export:
            return R"(USAGE: zerbin [options] export TYPE [--set NAME=VALUE]... [--user-name TEXT]
                                   [--key KEY] (--sim | --interop)

Creates a block of TYPE and prints the lean form for other tools, under a root element
"Project".

  --key KEY           the block's extended key, written as its "Key" element
  --sim               the form for a simulator
  --interop           the form for the exchange with other tools
)";
        case Command::Load:
            return R"(USAGE: zerbin [options] load FILE [--intel]

For each element directly under the root of the project FILE, in document order: creates
the block type named by the element, restores it from the element and prints its user
name, its type and its image, separated by tabs, one line a block: a tab, carriage return,
line feed or backslash in the user name is written \t, \r, \n or \\. A block that fails
is named on stderr and the rest go on; exit status 1 (3 for a definition that cannot be
read).

  --intel             images with the least significant byte first
)";
        case Command::Check:
            return R"(USAGE: zerbin [options] check [TYPE...]

Creates each TYPE, or every type of the library, and builds its image. The messages the
blocks show go to stderr; a type that fails is named there and the rest go on. Exit status
1 when any message was shown or any type failed, 3 when a definition cannot be read, else 0.
)";
    }
    return UsageText();
}

std::string VersionText() {
    return std::string("zerbin ") + ZERBIN_VERSION + "\n";
}

}  // namespace zerbin::cli
