#include "studio/Screenshot.h"

#include <QApplication>
#include <QPixmap>

#include "studio/CanvasScene.h"
#include "studio/StudioWindow.h"

namespace zerbin::studio {

void BuildExample(StudioWindow& window) {
    const std::string sensor = window.PlaceBlock("IO_CHANNEL", QPointF(0, 40));
    const std::string setpoint = window.PlaceBlock("SETPOINT_UNIT", QPointF(0, 150));
    const std::string schedule = window.PlaceBlock("WEEKLY_SCHEDULE", QPointF(0, 270));
    const std::string pid = window.PlaceBlock("PID_LOOP", QPointF(280, 0));
    const std::string thermostat = window.PlaceBlock("THERMOSTAT", QPointF(280, 200));
    const std::string fan = window.PlaceBlock("FAN_STAGE", QPointF(540, 60));
    window.RequestWire(Wire{sensor, "Value", pid, "Measure"});
    window.RequestWire(Wire{setpoint, "Setpoint", pid, "Setpoint"});
    window.RequestWire(Wire{sensor, "Value", thermostat, "SpaceTemp"});
    window.RequestWire(Wire{schedule, "Occupancy", thermostat, "Occupancy"});
    window.RequestWire(Wire{pid, "Output", fan, "Demand"});
    window.RequestWire(Wire{thermostat, "Heat", fan, "Enable"});
    // A wire the types refuse, so that the message log has something to show.
    window.RequestWire(Wire{schedule, "Occupancy", pid, "Enable"});
    window.SelectBlock(pid);
}

bool RenderScreenshot(StudioWindow& window, const QString& project, const QString& file) {
    window.resize(1280, 800);
    window.show();
    // Nobody is there to click a box away: messages go to the log.
    window.Log().SetPresenter(nullptr);
    if (project.isEmpty()) {
        BuildExample(window);
    } else if (!window.OpenProject(project)) {
        return false;
    }
    // A small example may fill the canvas a little larger than life.
    window.View().ZoomToFit(1.3);
    QApplication::processEvents();
    return window.grab().save(file);
}

}  // namespace zerbin::studio
