// What a block's drawing takes from its type: the type's name, description and icon, and the
// names of its visible inputs and outputs. The visibility of a terminal comes with the type's
// definition, so one look serves every block of the type; reading it from each block would
// make every member of every block, which a large project cannot afford.
#pragma once

#include <string>
#include <vector>

#include <QPixmap>
#include <QString>

namespace zerbin::studio {

struct TerminalName {
    std::string name;
    QString label;
};

struct BlockLook {
    QString type;
    QString description;
    QPixmap icon;
    std::vector<TerminalName> inputs;
    std::vector<TerminalName> outputs;
    // The width of every block of the type: its own texts, and a name of the type and a
    // number.
    qreal width = 0;
};

}  // namespace zerbin::studio
