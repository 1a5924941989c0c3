// Renders the studio window to a picture: the README's screenshots come from here.
#pragma once

#include <QString>

namespace zerbin::studio {

class StudioWindow;

// Places and wires a small controller: a schedule and a room thermostat feeding a fan stage,
// with a type-selectable multiplexer, as an engineer would start a project.
void BuildExample(StudioWindow& window);

// Opens project (or builds the example when it is empty), selects a block, fits the canvas and
// writes the window to file. With wiring, a wire is being dragged from the example's input
// channel, the terminals that take it lit. False when the picture can't be written.
bool RenderScreenshot(StudioWindow& window, const QString& project, const QString& file,
                      bool wiring = false);

}  // namespace zerbin::studio
