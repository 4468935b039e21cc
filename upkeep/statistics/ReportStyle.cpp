#include "upkeep/statistics/ReportStyle.h"

namespace tsl {

// One colour, from pale to dark for the fields of the week, so that it is read by its lightness
// alone; the other way round where the page is dark.
const char kReportStyle[] = R"css(:root {
  color-scheme: light dark;
  --page: #fcfcfb; --text: #1d242c; --quiet: #57616d; --rule: #dfe3e6; --accent: #2b6a99;
  --area: #2b6a991f; --rest: #e9edf0;
  --h0: #eef1f3; --h1: #cfe1ee; --h2: #a4c8e1; --h3: #72a9cf; --h4: #4488b7; --h5: #236596;
  --h6: #0f4169;
}
@media (prefers-color-scheme: dark) {
  :root {
    --page: #14181c; --text: #e4e8eb; --quiet: #a2adb8; --rule: #2d353d; --accent: #69a9d8;
    --area: #69a9d829; --rest: #262d34;
    --h0: #20262c; --h1: #1f3d54; --h2: #245779; --h3: #2f76a1; --h4: #4a97c6; --h5: #80bbdf;
    --h6: #c3e0f2;
  }
}
* { box-sizing: border-box; }
body {
  margin: 0 auto; padding: 3rem 1.25rem; max-width: 62rem; background: var(--page);
  color: var(--text); font: 1rem/1.5 system-ui, -apple-system, "Segoe UI", Roboto, sans-serif;
  -webkit-text-size-adjust: 100%;
}
header, section { margin: 0 0 3.5rem; }
h1 { margin: 0; font-size: 2.25rem; font-weight: 650; letter-spacing: -.02em; line-height: 1.2; }
h2 { margin: 0; font-size: 1.25rem; font-weight: 650; letter-spacing: -.01em; }
p { margin: .25rem 0 0; max-width: 52rem; overflow-wrap: anywhere; }
.summary { font-size: 1.125rem; margin-top: .5rem; }
.words, .key, caption, footer { color: var(--quiet); font-size: .875rem; }
.empty { margin: 0 0 3.5rem; padding: 2rem; border: 1px solid var(--rule); border-radius: .5rem; }
.tiles {
  display: grid; grid-template-columns: repeat(auto-fit, minmax(8.5rem, 1fr)); gap: 1.5rem 1rem;
  margin: 0 0 3.5rem; padding: 1.5rem 0; border: solid var(--rule); border-width: 1px 0;
}
.tiles div { display: flex; flex-direction: column-reverse; justify-content: flex-end; }
.tiles dt { color: var(--quiet); font-size: .875rem; }
.tiles dd { margin: 0; font-size: 1.5rem; font-weight: 600; letter-spacing: -.01em; }
.tiles dd, .number, .y, .legend { font-variant-numeric: tabular-nums; }
.plot {
  display: grid; grid-template-columns: auto minmax(0, 1fr); gap: .5rem .75rem; margin: 1.5rem 0 0;
  color: var(--quiet); font-size: .8125rem; line-height: 1rem;
}
.plot svg { display: block; width: 100%; height: 12rem; overflow: visible; }
.plot svg.week { height: 12.25rem; }
.y { display: flex; flex-direction: column; justify-content: space-between; margin: -.5rem 0; text-align: right; }
.x { grid-column: 2; position: relative; height: 1rem; }
.x span { position: absolute; transform: translateX(-50%); white-space: nowrap; }
.x span:first-child:not(:only-child) { left: 0 !important; transform: none; }
.x span:last-child:not(:only-child) { left: auto !important; right: 0; transform: none; }
.days { display: grid; grid-template-rows: repeat(7, 1fr); align-items: center; }
.hours { grid-column: 2; display: grid; grid-template-columns: repeat(4, 1fr); }
.grid { stroke: var(--rule); stroke-width: 1; vector-effect: non-scaling-stroke; }
.column { fill: var(--accent); }
.rest { fill: var(--rest); }
.area { fill: var(--area); }
.line { fill: none; stroke: var(--accent); stroke-width: 2; stroke-linejoin: round; vector-effect: non-scaling-stroke; }
.week rect { stroke: var(--page); stroke-width: 2; vector-effect: non-scaling-stroke; }
.h0 { fill: var(--h0); } .h1 { fill: var(--h1); } .h2 { fill: var(--h2); } .h3 { fill: var(--h3); }
.h4 { fill: var(--h4); } .h5 { fill: var(--h5); } .h6 { fill: var(--h6); }
.key { margin-top: 1.25rem; }
.legend {
  display: flex; flex-wrap: wrap; gap: .25rem 1rem; margin: .25rem 0 0; padding: 0;
  list-style: none; color: var(--quiet); font-size: .8125rem;
}
.legend svg { width: .875rem; height: .875rem; margin-right: .375rem; vertical-align: -.125rem; border-radius: .125rem; }
.pair { display: grid; grid-template-columns: repeat(auto-fit, minmax(min(100%, 22rem), 1fr)); gap: 0 3rem; align-items: start; }
.scroll { margin: 1rem 0 0; overflow: auto; }
#numbers .scroll:first-child { max-height: 48.625rem; }
.scroll:focus-visible { outline: 2px solid var(--accent); outline-offset: .25rem; }
table { width: 100%; border-collapse: collapse; font-size: .875rem; }
caption { padding: 0 0 .5rem; text-align: left; }
.top caption { display: none; }
th, td { padding: .375rem .5rem; border-bottom: 1px solid var(--rule); text-align: left; vertical-align: top; }
th:first-child { padding-left: 0; }
th:last-child, td:last-child { padding-right: 0; }
th { font-weight: 400; }
thead th { position: sticky; top: 0; background: var(--page); color: var(--quiet); font-size: .8125rem; }
thead th, td, td span, #numbers th { white-space: nowrap; }
.number { text-align: right; }
.top th:first-child { width: 70%; min-width: 8rem; overflow-wrap: anywhere; white-space: normal; }
#numbers th, #numbers td { padding-top: .25rem; padding-bottom: .25rem; }
.share { display: block; width: 100%; height: .25rem; margin: .25rem 0 .125rem; }
i { color: var(--quiet); }
footer { border-top: 1px solid var(--rule); padding-top: 1rem; }
code { font: .9em ui-monospace, Consolas, monospace; }
@media (max-width: 40rem) {
  body { padding: 1.75rem 1.25rem; }
  h1 { font-size: 1.875rem; }
  header, section, .tiles { margin-bottom: 2.75rem; }
  .tiles { grid-template-columns: repeat(2, 1fr); }
  table { font-size: .8125rem; }
  th, td { padding-left: .25rem; padding-right: .25rem; }
  #store td:not(.number), #store thead th { white-space: normal; }
  #numbers .scroll:first-child { max-height: 24rem; }
}
@media print {
  :root {
    --page: #fff; --text: #000; --quiet: #444; --rule: #ccc; --accent: #2b6a99; --area: #2b6a991f;
    --rest: #e9edf0; --h0: #eef1f3; --h1: #cfe1ee; --h2: #a4c8e1; --h3: #72a9cf; --h4: #4488b7;
    --h5: #236596; --h6: #0f4169;
  }
  @page { margin: 15mm; }
  body { max-width: none; padding: 0; font-size: 10pt; print-color-adjust: exact; }
  section, tr, .tiles { break-inside: avoid; }
  #numbers, #numbers .pair, #numbers .scroll { break-inside: auto; }
  h2, .words, caption, thead { break-after: avoid; }
  h1 { font-size: 22pt; }
  header, section, .tiles { margin-bottom: 8mm; }
  .tiles { grid-template-columns: repeat(6, auto); padding: 4mm 0; }
  .plot { margin-top: 4mm; }
  .plot svg, .plot svg.week { height: 42mm; }
  .scroll, #numbers .scroll:first-child { max-height: none; overflow: visible; }
  th, td { padding-top: .8mm !important; padding-bottom: .8mm !important; }
  thead th { position: static; }
  .pair { grid-template-columns: 1fr 1fr; }
  #numbers .pair { display: block; }
  #numbers .scroll:first-child { columns: 2; column-gap: 8mm; margin-bottom: 6mm; }
  #numbers .scroll.day { columns: 3; }
  #numbers table, #numbers thead th { font-size: 7.5pt; }
  #numbers .scroll:last-child { break-inside: avoid; }
}
)css";

} // namespace tsl
