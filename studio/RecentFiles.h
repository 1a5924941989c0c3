// The "Open recent" menu: the last projects opened or saved, newest first, kept in the user's
// settings across runs.
#pragma once

#include <functional>

#include <QMenu>
#include <QString>

namespace zerbin::studio {

class RecentFiles {
public:
    // open is called with the file the user picks from menu.
    RecentFiles(QMenu* menu, std::function<void(const QString&)> open);
    // file moves to the top of the list.
    void Add(const QString& file);

private:
    void Fill();

    QMenu* menu_;
    std::function<void(const QString&)> open_;
};

}  // namespace zerbin::studio
