// The windows of the example host, where the package has them: the QApplication, the host's
// own window, and the parameter list of a block opened through IAppObject_Show.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>

#include "interfaces/IAppObject.h"

class WindowSession {
public:
    // Makes the QApplication; before the first block, so that the plug-in sees it.
    WindowSession(int& argc, char** argv);
    ~WindowSession();
    WindowSession(const WindowSession&) = delete;
    WindowSession& operator=(const WindowSession&) = delete;

    // Opens the parameter list of block, owned by the host's window, and runs until the user
    // closes the windows. With snapshot, renders the list with the block's icon and caption
    // to that PNG instead and closes it.
    void Show(const std::shared_ptr<zerbin::IAppObject>& block,
              const std::optional<std::filesystem::path>& snapshot);

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};
