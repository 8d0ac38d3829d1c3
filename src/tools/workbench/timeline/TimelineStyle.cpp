#include "TimelineStyle.h"

namespace Vorn::Workbench {

namespace {

// Plain class selectors, and a second set of rules for the dark colours: viewers other than
// browsers support neither custom properties nor media queries, and must still get the light
// colours right. The outline of some texts has the background's colour, so that lines beneath do
// not cross them.
const char *const styleSheet = R"(
text { font-family: system-ui, "Segoe UI", "Noto Sans", "Liberation Sans", Arial, sans-serif; font-size: 11px; fill: #1f2328 }
text.title { font-size: 16px; font-weight: 600 }
text.device-name { font-size: 12px; font-weight: 600; fill: #59636e }
text.lane { font-size: 12px; font-weight: 600 }
text.muted, text.flag-label { fill: #59636e }
text.tick { fill: #59636e }
text.event, text.tick, text.flag-label, text.failure-label { stroke: #ffffff; stroke-width: 3px; stroke-linejoin: round; paint-order: stroke }
text.failure-label { fill: #b3121f; font-weight: 600 }
text.identifier-label { fill: #0a4a8f }
.paper { fill: #ffffff }
.stripe { fill: #f4f6f8 }
.grid { stroke: #d5dbe1 }
.axis { stroke: #8a939d }
.bar { fill: #5b9bdf }
.bar-withdrawn { fill: #5b9bdf; fill-opacity: 0.35 }
.bar-switch { fill: #2f9e8f }
.bar-chord { fill: #8457d9 }
.bar-chord-unmapped { fill: none; stroke: #8457d9; stroke-dasharray: 3 2 }
.repeat { stroke: #ffffff; stroke-width: 1.5 }
.open { fill: #ffffff; fill-opacity: 0.75 }
.timed { stroke: #bc4c00; stroke-width: 2; stroke-opacity: 0.6 }
.due { stroke: #bc4c00; stroke-width: 1.5; stroke-dasharray: 3 2; fill: #bc4c00 }
.flag { fill: #bc4c00 }
.late { fill: #fbc38b }
.withdrawn { stroke: #1f2328; stroke-width: 2.5; fill: none }
.forgotten { stroke: #cf222e; stroke-width: 2.5; fill: none }
.dropped { stroke: #cf222e; stroke-width: 2; fill: #ffffff }
.leader { stroke: #8a939d }
.leader-long-press { stroke: #bc4c00; stroke-width: 1.5 }
.press { fill: #1a7f37 }
.release { fill: #57606a }
.long-press { fill: #bc4c00 }
.on { fill: #16776a }
.off { fill: #ffffff; stroke: #16776a; stroke-width: 1.5 }
.link { stroke: #8457d9; stroke-width: 2; fill: none }
.link-end { fill: #ffffff; stroke: #8457d9; stroke-width: 2 }
.identifier { fill: #d8e8fa; stroke: #9cc3ee }
.device { stroke: #59636e; stroke-dasharray: 5 4 }
.remark { stroke: #9a6700; stroke-dasharray: 1 3 }
.failure { stroke: #cf222e; stroke-width: 1.5 }
.break { fill: #ffffff; fill-opacity: 0.85 }
.break-edge { stroke: #8a939d; stroke-dasharray: 2 3 }
@media (prefers-color-scheme: dark) {
text { fill: #e6edf3 }
text.device-name { fill: #9aa4af }
text.muted, text.flag-label { fill: #9aa4af }
text.tick { fill: #9aa4af }
text.event, text.tick, text.flag-label, text.failure-label { stroke: #0d1117 }
text.failure-label { fill: #ff8b83 }
text.identifier-label { fill: #a9d1ff }
.paper { fill: #0d1117 }
.stripe { fill: #141a22 }
.grid { stroke: #2a313a }
.axis { stroke: #6b7580 }
.bar { fill: #4a8fe0 }
.bar-withdrawn { fill: #4a8fe0 }
.bar-switch { fill: #39b3a2 }
.bar-chord { fill: #9b74ef }
.bar-chord-unmapped { fill: none; stroke: #9b74ef }
.repeat { stroke: #0d1117 }
.open { fill: #0d1117 }
.timed { stroke: #f0883e }
.due { stroke: #f0883e; fill: #f0883e }
.flag { fill: #f0883e }
.late { fill: #8a4b1c }
.withdrawn { stroke: #e6edf3 }
.forgotten { stroke: #f85149 }
.dropped { stroke: #f85149; fill: #0d1117 }
.leader { stroke: #6b7580 }
.leader-long-press { stroke: #f0883e }
.press { fill: #3fb950 }
.release { fill: #9aa4af }
.long-press { fill: #f0883e }
.on { fill: #39b3a2 }
.off { fill: #0d1117; stroke: #39b3a2 }
.link { stroke: #9b74ef }
.link-end { fill: #0d1117; stroke: #9b74ef }
.identifier { fill: #12335c; stroke: #2c5c99 }
.device { stroke: #9aa4af }
.remark { stroke: #d29922 }
.failure { stroke: #f85149 }
.break { fill: #0d1117 }
.break-edge { stroke: #6b7580 }
}
)";

} // namespace

QString timelineStyle()
{
    return QString::fromLatin1(styleSheet);
}

} // namespace Vorn::Workbench
