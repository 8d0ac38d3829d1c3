#ifndef VORN_WORKBENCH_TIMELINESTYLE_H
#define VORN_WORKBENCH_TIMELINESTYLE_H

#include <QString>

namespace Vorn::Workbench {

/// The style sheet (CSS) of a timeline: the fonts of its texts, and the colour of each class of
/// element on a light and on a dark background.
QString timelineStyle();

} // namespace Vorn::Workbench

#endif
