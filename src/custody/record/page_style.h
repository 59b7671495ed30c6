// How the page of a record looks, on the screen and on A4.
#pragma once

#include <string_view>

namespace zolvane {

inline constexpr std::string_view pageStyle = R"(
@page { size: A4; margin: 14mm 13mm 16mm;
  @bottom-left { content: "Adjustment record"; font: 8pt sans-serif; color: #555 }
  @bottom-right { content: counter(page) " / " counter(pages); font: 8pt sans-serif; color: #555 } }
body { font: 9.5pt/1.35 "Helvetica Neue", Arial, "Liberation Sans", "DejaVu Sans", sans-serif; color: #1a1a1a;
  background: #fff; max-width: 184mm; margin: 8mm auto; print-color-adjust: exact }
@media print { body { margin: 0; max-width: none } }
h1 { font-size: 20pt; margin: 0; letter-spacing: -0.01em }
h2 { font-size: 13pt; margin: 7mm 0 2mm; padding-bottom: 1mm; border-bottom: 1.5pt solid #14506e; break-after: avoid }
h3 { font-size: 10.5pt; margin: 3mm 0 1mm; break-after: avoid }
p { margin: 1mm 0 2mm }
dl { display: grid; grid-template-columns: max-content 1fr; gap: 0.6mm 4mm; margin: 3mm 0; padding: 3mm;
  background: #f1f5f7; border-left: 3pt solid #14506e }
dt { color: #555 }
dd { margin: 0; overflow-wrap: anywhere }
i { color: #777 }
table { border-collapse: collapse; width: 100%; font-size: 8.5pt; margin: 1mm 0 3mm }
th { text-align: left; font-weight: 600; color: #14506e; border-bottom: 1pt solid #14506e }
th, td { padding: 0.5mm 1.5mm; vertical-align: top; overflow-wrap: anywhere }
td { border-bottom: 0.5pt solid #dde3e6 }
tr { break-inside: avoid }
th.group { color: #1a1a1a; background: #f1f5f7; border-bottom: 0.5pt solid #b9c6cc; padding-top: 1mm }
.findings td:not(:last-child), .findings th { white-space: nowrap; overflow-wrap: normal }
.findings small { margin-left: 0 }
.numbers td { font-variant-numeric: tabular-nums }
small { color: #555; margin-left: 1.5mm }
tr.moved, p.moved { font-weight: 600; color: #b3261e }
figure { margin: 0 0 3mm; break-inside: avoid }
figcaption { font-size: 8pt; color: #555 }
svg { display: block; width: 100%; height: auto; font-family: inherit }
.plots { display: grid; grid-template-columns: repeat(3, 1fr); gap: 2mm 3mm }
.signatures td { height: 9mm }
footer { margin-top: 5mm; font-size: 8pt; color: #555 }
text { font-size: 9px; fill: #1a1a1a }
.middle { text-anchor: middle } .end { text-anchor: end }
.tick, .value, .label { font-size: 8.5px; fill: #444 } .value { font-size: 8px }
.axis { font-size: 9px; fill: #444 }
.name { font-size: 8.5px; font-weight: 600; fill: #1a1a1a }
text.moved { fill: #b3261e; font-weight: 600 }
polyline { fill: none; stroke: #1a1a1a } rect { fill: none }
.grid { stroke: #dde3e6; stroke-width: 0.7 } .one { stroke: #8a979d; stroke-width: 0.9 }
.frame { stroke: #8a979d; stroke-width: 0.9 } .leader { stroke: #8a979d; stroke-width: 0.6 }
.cross { stroke: #14506e; stroke-width: 1.1 } .dot { fill: #14506e }
.cross.moved, .arrow { stroke: #b3261e; stroke-width: 1.4 } .dot.moved { fill: #b3261e }
.bar { fill: #a9c6d4; stroke: #14506e; stroke-width: 0.7 } .bar.moved { fill: #f0c2be; stroke: #b3261e }
polyline.before { stroke: #777; stroke-dasharray: 3 2 } circle.before { fill: #777 }
polyline.curve { stroke: #14506e; stroke-width: 1.5 } circle.curve { fill: #14506e }
polyline.curve.moved { stroke: #b3261e } circle.curve.moved { fill: #b3261e }
)";

}  // namespace zolvane
