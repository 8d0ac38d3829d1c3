#include "LegendDrawing.h"

namespace Vorn::Workbench {

namespace {

using LegendItem = PlacedLegend::Item;

// Samples repeat what LaneDrawing draws, at a smaller size.
void drawSample(TimelineCanvas *canvas, const PlacedLegend &legend)
{
    // Symbols are centred in the width of a bar, so that all texts start at the same distance.
    const double x = legend.x;
    const double middle = x + 9;
    const double y = legend.y;
    const auto bar = [&](const char *cssClass) {
        canvas->svg.rectangle(x, y - 5, 18, 10, cssClass);
    };
    switch (legend.item) {
    case LegendItem::Down:
        bar("bar");
        break;
    case LegendItem::Repeat:
        bar("bar");
        canvas->svg.line(x + 6, y - 3, x + 6, y + 3, "repeat");
        canvas->svg.line(x + 12, y - 3, x + 12, y + 3, "repeat");
        break;
    case LegendItem::Withdrawn:
        bar("bar-withdrawn");
        canvas->symbol(middle, y, Symbols::withdrawn);
        break;
    case LegendItem::Forgotten:
        bar("bar-withdrawn");
        canvas->symbol(middle, y, Symbols::forgotten);
        break;
    case LegendItem::Chord:
        bar("bar-chord");
        break;
    case LegendItem::Dropped:
        canvas->symbol(middle, y, Symbols::dropped);
        break;
    case LegendItem::Timed:
        canvas->svg.line(x, y, x + 18, y, "timed");
        break;
    case LegendItem::Due:
        canvas->svg.line(middle - 4, y - 7, middle - 4, y + 7, "due");
        canvas->symbol(middle - 4, y + 1, Symbols::due);
        break;
    case LegendItem::Late:
        canvas->svg.rectangle(x, y - 2, 18, 4, "late");
        break;
    case LegendItem::Click:
        canvas->symbol(middle, y, Symbols::clickPress);
        canvas->symbol(middle, y, Symbols::clickRelease);
        break;
    case LegendItem::Press:
        canvas->symbol(middle, y, Symbols::press);
        break;
    case LegendItem::LongPress:
        canvas->symbol(middle, y, Symbols::longPress);
        break;
    case LegendItem::Release:
        canvas->symbol(middle, y, Symbols::release);
        break;
    case LegendItem::On:
        canvas->symbol(middle, y, Symbols::on);
        break;
    case LegendItem::Off:
        canvas->symbol(middle, y, Symbols::off);
        break;
    }
}

} // namespace

void drawLegend(TimelineCanvas *canvas)
{
    for (const PlacedLegend &legend : canvas->layout.legend) {
        drawSample(canvas, legend);
        canvas->svg.text(legend.x + 24, legend.y + 4, legend.text, "muted");
    }
}

} // namespace Vorn::Workbench
