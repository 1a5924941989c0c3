#include "studio/Screenshot.h"

#include <optional>

#include <QApplication>
#include <QMouseEvent>
#include <QPixmap>

#include "studio/CanvasScene.h"
#include "studio/OverviewDock.h"
#include "studio/StudioWindow.h"

namespace zerbin::studio {

void BuildExample(StudioWindow& window) {
    const std::string sensor = window.PlaceBlock("IO_CHANNEL", QPointF(0, 40));
    const std::string setpoint = window.PlaceBlock("SETPOINT_UNIT", QPointF(0, 160));
    const std::string schedule = window.PlaceBlock("WEEKLY_SCHEDULE", QPointF(0, 290));
    const std::string pid = window.PlaceBlock("PID_LOOP", QPointF(300, 0));
    const std::string thermostat = window.PlaceBlock("THERMOSTAT", QPointF(300, 220));
    const std::string fan = window.PlaceBlock("FAN_STAGE", QPointF(580, 80));
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

namespace {

void SendMouse(QWidget* viewport, QEvent::Type type, QPoint at, Qt::MouseButtons buttons) {
    QMouseEvent event(type, at, viewport->mapToGlobal(at), Qt::LeftButton, buttons, Qt::NoModifier);
    QApplication::sendEvent(viewport, &event);
}

}  // namespace

bool RenderScreenshot(StudioWindow& window, const QString& project, const QString& file,
                      bool wiring) {
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
    window.Overview().Redraw();
    QApplication::processEvents();
    const std::string sensor =
        window.Project().BlockKeys().empty() ? std::string() : window.Project().BlockKeys().front();
    const std::optional<QPointF> start = window.Scene().TerminalPos(sensor, "Value", true);
    if (!wiring || !start) {
        return window.grab().save(file);
    }
    QWidget* viewport = window.View().viewport();
    const QPoint from = window.View().mapFromScene(*start);
    SendMouse(viewport, QEvent::MouseButtonPress, from, Qt::LeftButton);
    SendMouse(viewport, QEvent::MouseMove, from + QPoint(120, 150), Qt::LeftButton);
    QApplication::processEvents();
    const bool saved = window.grab().save(file);
    SendMouse(viewport, QEvent::MouseButtonRelease, from + QPoint(120, 150), Qt::NoButton);
    return saved;
}

}  // namespace zerbin::studio
