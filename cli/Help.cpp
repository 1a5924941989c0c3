#include "cli/Help.h"

namespace zerbin::cli {

std::string UsageText() {
    return R"txt(USAGE: zerbin [options] <command> [arguments]

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
  check [TYPE... | --project PROJECT]
                      create block types and show their messages; or list the blocks
                      of PROJECT whose type changed since it was saved;
                      exit status 1 when any message was shown or block listed
  set PROJECT BLOCK NAME=VALUE...
                      write parameter values into a saved project
  flat PROJECT        one line per block setting: BLOCK, NAME, VALUE
  diff A B            what changed from project A to B; exit 1 when they differ
  merge BASE OURS THEIRS
                      three-way merge of projects into OURS (a git merge driver)
  import PROJECT FROM [--update | --keep]
                      the blocks of FROM merged into PROJECT by key
  reset PROJECT [BLOCK...]
                      parameters back to their type's defaults
  copy PROJECT FROM_BLOCK TO_BLOCK...
                      parameters copied by name to other blocks

A block of a project is named by its key (the studio's "Key"), else its user name, else
#N, its place in the project counted from 1. A command that writes a project writes all
of it or nothing, keeping the previous version as PROJECT~.

Messages of the blocks go to stderr as "TITLE: TEXT". Exit status 2 means a usage error;
3 a file that cannot be read (dictionary, device document, project, or a definition that
is a folder, a FIFO, a device, too large or not permitted), named with the reason; 1 any
other failure: a block type that fails, a value the editors would refuse, output that
cannot be written.
)txt";
}

std::string CommandUsageText(Command command) {
    switch (command) {
        case Command::Types:
            return R"txt(USAGE: zerbin [options] types

One line per block type of the library, sorted by folder name: the folder name, ID, NAME
and CATEGORY of its definition, separated by tabs.
)txt";
        case Command::Show:
            return R"txt(USAGE: zerbin [options] show TYPE

Creates a block of TYPE and shows its header values, its CDB dimension, a table of the
members in layout order (kind, name, SNVT id, class, length, ordering number, CDB
position, value as shown to the user in the unit system of --units) and a table of its
outputs with their reference codes.
)txt";
        case Command::Image:
            return R"txt(USAGE: zerbin [options] image TYPE [--set NAME=VALUE]... [--ref INPUT=HEX]...
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
)txt";
        case Command::Save:
            return R"txt(USAGE: zerbin [options] save TYPE [--set NAME=VALUE]... [--ref INPUT=HEX]...
                                 [--user-name TEXT] [--x X] [--y Y] [--export-index N]

Creates a block of TYPE as image does, builds its image once and prints a project document:
a root element "Project" holding the block's element.

  --user-name TEXT    the name the user gave the block
  --x X, --y Y        its place on the canvas
)txt";
        case Command::Export:
            return R"txt(USAGE: zerbin [options] export TYPE [--set NAME=VALUE]... [--user-name TEXT]
                                   [--key KEY] (--sim | --interop)

Creates a block of TYPE and prints the lean form for other tools, under a root element
"Project".

  --key KEY           the block's extended key, written as its "Key" element
  --sim               the form for a simulator
  --interop           the form for the exchange with other tools
)txt";
        case Command::Load:
            return R"txt(USAGE: zerbin [options] load FILE [--intel]

For each element directly under the root of the project FILE, in document order: creates
the block type named by the element, restores it from the element and prints its user
name, its type and its image, separated by tabs, one line a block: a tab, carriage return,
line feed or backslash in the user name is written \t, \r, \n or \\. A block that fails
is named on stderr and the rest go on; exit status 1 (3 for a definition that cannot be
read).

  --intel             images with the least significant byte first
)txt";
        case Command::Check:
            return R"txt(USAGE: zerbin [options] check [TYPE...]
       zerbin [options] check --project PROJECT

First, when the library has a manifest (library.xml) that names the least dictionary
version it needs, a dictionary of an older version, or of none, refuses the library:
exit status 1.

Creates each TYPE, or every type of the library, and builds its image. The messages the
blocks show go to stderr; a type that fails is named there and the rest go on. Exit status
1 when any message was shown or any type failed, 3 when a definition cannot be read, else 0.

With --project, restores every block of PROJECT instead and lists, one line each, the
blocks whose type changed since the project was saved (the block element's TypeStamp is
not the type's now, or the project names a parameter or output the type no longer has):
  BLOCK (TYPE): type changed: saved as STAMP, now STAMP
  BLOCK (TYPE): NAME 'VALUE' kept: REASON   a value the type no longer takes, kept as saved
  BLOCK (TYPE): output NAME kept: ...       a displayable output the type no longer has
  BLOCK (TYPE): NAME new: 'VALUE'           a parameter the block had no value for
  BLOCK (TYPE): type not in the library; the block is kept as saved
Exit status 1 when any block is listed, else 0.
)txt";
        case Command::Set:
            return R"txt(USAGE: zerbin [options] set PROJECT BLOCK NAME=VALUE...

Restores BLOCK of the saved PROJECT, writes each value in the order given through the
same rules as the editors (an enumeration, a selector and a device list take the label
they show as well as a code; a unit selector re-derives its dependents) and writes the
project back: the parameters that changed and the block's image ("CDB"); nothing else of
the file changes. A value the editors would refuse is named with the reason, and nothing
is written: exit status 1.
)txt";
        case Command::Flat:
            return R"txt(USAGE: zerbin [options] flat PROJECT

Prints each setting of each block on one line, BLOCK<TAB>NAME<TAB>VALUE, sorted by block
(numbers in names compared as numbers) and within a block in the order the type gives.
NAME is a parameter, or one of @type, @name, @x, @y, @export-index, @color,
"@displayable OUTPUT" and "@wire INPUT" (the value SOURCE/OUTPUT: the block and output
that feed the input). The image is left out: it follows from the rest. Tabs, line ends
and backslashes in values are written \t, \r, \n and \\. Use it as a git textconv
driver so that a diff of a project reads as parameters.
)txt";
        case Command::Diff:
            return R"txt(USAGE: zerbin [options] diff A B

Tells what changed from project A to project B, block by block: "+ BLOCK (TYPE)" added,
"- BLOCK (TYPE)" removed, "BLOCK: retyped", "renamed", "moved", "BLOCK: wire to INPUT:
OLD → NEW" and "BLOCK NAME: OLD → NEW" for a parameter. Blocks are matched by key, else
user name, else place. Exit status 0 when they are the same, 1 when they differ, 2 or 3
on trouble, as diff's.
)txt";
        case Command::Merge:
            return R"txt(USAGE: zerbin [options] merge BASE OURS THEIRS

Merges the changes from BASE to THEIRS into OURS, by block and setting, and writes OURS:
the arguments of a git merge driver, %O %A %B. Changes to different parameters, blocks
or wires merge. A setting changed both ways keeps OURS and is listed on stderr as
"BLOCK NAME: ours X, theirs Y"; so is a value from THEIRS the editors refuse beside ours,
and a block deleted on one side and changed on the other (it stays as OURS has it). Blocks
both sides added under the same key are both kept, THEIRS under a new key. Exit status 1
when there was a conflict.
)txt";
        case Command::Import:
            return R"txt(USAGE: zerbin [options] import PROJECT FROM [--update | --keep]

Merges the blocks of FROM into PROJECT by key. A block PROJECT lacks (no such key, or the
key on another type) is created, with a new key and export index where they are taken.
A block PROJECT has is kept as it is (--keep, the default) or updated (--update): user
name, place, displayable outputs, wires and the values of its parameters from FROM, values
through the editors' rules; it keeps its export index. Prints "created", "updated" or
"kept" and the block's key, one line a block.
)txt";
        case Command::Reset:
            return R"txt(USAGE: zerbin [options] reset PROJECT [BLOCK...]

Sets the parameters of each BLOCK (of every block when none is named) back to their
type's defaults and brings its image up to date; names, places, references and wires
stay.
)txt";
        case Command::Copy:
            return R"txt(USAGE: zerbin [options] copy PROJECT FROM_BLOCK TO_BLOCK...

Copies the parameters of FROM_BLOCK by name to each TO_BLOCK, of any type, where the name
exists and the value is valid there (a unit selector first). What was not copied is
listed on stdout, BLOCK<TAB>NAME<TAB>why, one line each.
)txt";
    }
    return UsageText();
}

std::string VersionText() {
    return std::string("zerbin ") + ZERBIN_VERSION + "\n";
}

}  // namespace zerbin::cli
