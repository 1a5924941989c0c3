// Draws the thirteen images of the parameter list (editors/icons/KEY.png at 16 pixels and
// KEY@2x.png at 32) with QPainter. The PNGs are committed; this program is their source, run
// again after a change: draw_small_images <repository>/editors/icons
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>

#include <cstdio>
#include <functional>
#include <map>

namespace {

using Draw = std::function<void(QPainter&)>;

// Every image is drawn on a 16 by 16 grid; the 32 pixel one is the same drawing scaled.
void Cell(QPainter& p, const QColor& fill, const QString& letter) {
    p.setPen(QPen(fill.darker(160), 1));
    p.setBrush(fill);
    p.drawRoundedRect(QRectF(1.5, 1.5, 13, 13), 2.5, 2.5);
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(letter.size() > 1 ? 7 : 10);
    font.setBold(true);
    p.setFont(font);
    p.setPen(Qt::white);
    p.drawText(QRectF(1, 1, 14, 14), Qt::AlignCenter, letter);
}

void Field(QPainter& p, const QColor& fill, const QString& letter) {
    Cell(p, fill, letter);
    p.setPen(QPen(QColor(40, 40, 40), 1));
    p.setBrush(QColor(250, 250, 250));
    p.drawRect(QRectF(9.5, 9.5, 5, 5));
}

void Led(QPainter& p, const QColor& colour) {
    QRadialGradient glow(QPointF(6.5, 6.5), 7);
    glow.setColorAt(0, colour.lighter(170));
    glow.setColorAt(1, colour);
    p.setPen(QPen(QColor(60, 60, 60), 1));
    p.setBrush(glow);
    p.drawEllipse(QRectF(2.5, 2.5, 11, 11));
}

void Switch(QPainter& p, bool on) {
    p.setPen(QPen(QColor(70, 70, 70), 1));
    p.setBrush(on ? QColor(60, 160, 70) : QColor(190, 190, 190));
    p.drawRoundedRect(QRectF(1.5, 4.5, 13, 7), 3.5, 3.5);
    p.setBrush(Qt::white);
    p.drawEllipse(QRectF(on ? 8.5 : 2.5, 5.5, 5, 5));
}

const std::map<QString, Draw>& Drawings() {
    static const std::map<QString, Draw> drawings = {
        {"cp", [](QPainter& p) { Cell(p, QColor(40, 110, 190), "P"); }},
        {"nvi", [](QPainter& p) { Cell(p, QColor(40, 150, 80), "I"); }},
        {"nvo", [](QPainter& p) { Cell(p, QColor(200, 120, 20), "O"); }},
        {"cpfield", [](QPainter& p) { Field(p, QColor(40, 110, 190), "P"); }},
        {"nvifield", [](QPainter& p) { Field(p, QColor(40, 150, 80), "I"); }},
        {"nvofield", [](QPainter& p) { Field(p, QColor(200, 120, 20), "O"); }},
        {"error",
         [](QPainter& p) {
             p.setPen(QPen(QColor(140, 20, 20), 1));
             p.setBrush(QColor(210, 40, 40));
             p.drawEllipse(QRectF(1.5, 1.5, 13, 13));
             p.setPen(QPen(Qt::white, 2, Qt::SolidLine, Qt::RoundCap));
             p.drawLine(QPointF(8, 4), QPointF(8, 9));
             p.drawPoint(QPointF(8, 12));
         }},
        {"cross",
         [](QPainter& p) {
             p.setPen(QPen(QColor(190, 30, 30), 2.5, Qt::SolidLine, Qt::RoundCap));
             p.drawLine(QPointF(4, 4), QPointF(12, 12));
             p.drawLine(QPointF(12, 4), QPointF(4, 12));
         }},
        {"ledon", [](QPainter& p) { Led(p, QColor(40, 200, 40)); }},
        {"ledoff", [](QPainter& p) { Led(p, QColor(70, 90, 70)); }},
        {"switchon", [](QPainter& p) { Switch(p, true); }},
        {"switchoff", [](QPainter& p) { Switch(p, false); }},
        {"info",
         [](QPainter& p) {
             p.setPen(QPen(QColor(20, 70, 150), 1));
             p.setBrush(QColor(50, 120, 210));
             p.drawEllipse(QRectF(1.5, 1.5, 13, 13));
             p.setPen(QPen(Qt::white, 2, Qt::SolidLine, Qt::RoundCap));
             p.drawPoint(QPointF(8, 4.5));
             p.drawLine(QPointF(8, 7.5), QPointF(8, 12));
         }},
    };
    return drawings;
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: draw_small_images <folder>\n");
        return 2;
    }
    for (const auto& [key, draw] : Drawings()) {
        for (const int scale : {1, 2}) {
            QImage image(16 * scale, 16 * scale, QImage::Format_ARGB32_Premultiplied);
            image.fill(Qt::transparent);
            QPainter painter(&image);
            painter.setRenderHint(QPainter::Antialiasing);
            painter.setRenderHint(QPainter::TextAntialiasing);
            painter.scale(scale, scale);
            draw(painter);
            painter.end();
            const QString name = QStringLiteral("%1/%2%3.png")
                                     .arg(QString::fromLocal8Bit(argv[1]), key,
                                          scale == 2 ? QStringLiteral("@2x") : QString());
            if (!image.save(name)) {
                std::fprintf(stderr, "draw_small_images: error: cannot write '%s'\n",
                             qPrintable(name));
                return 1;
            }
        }
    }
    return 0;
}
