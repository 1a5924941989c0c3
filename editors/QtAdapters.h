// The Qt adapters of the ports: messages as message boxes, "serve pending events" as Qt's event
// processing, and the editor port making the windows of this library. A Qt host installs them
// once its QApplication exists; headless hosts keep the core's defaults.
#pragma once

#include <memory>

class QWidget;

namespace zerbin {

struct IObject;
struct Message;

// Installs the three adapters for the process.
void InstallQtAdapters();
// Puts the headless defaults back.
void RemoveQtAdapters();

// A message as a modal box over the active window, with its title, icon and buttons; the
// answer as the message port gives it (kMessageOk, ...).
int ShowMessageBox(const Message& message);

// The host's window as IAppObject_Show takes it; the window is held weakly.
std::shared_ptr<IObject> HostWindowOf(QWidget* window);

}  // namespace zerbin
