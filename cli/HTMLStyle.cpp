#include "cli/HTMLStyle.h"

namespace browsersweep::cli {

const std::string_view pageStyle = R"css(
:root { color-scheme: light dark; --page: #ffffff; --card: #f6f7f9; --edge: #d3d8df;
  --text: #1b1e23; --quiet: #515a66; --bar: #1d5fa8; --track: #dfe4ea; --failed: #a3201d; }
@media (prefers-color-scheme: dark) {
  :root { --page: #15171b; --card: #1d2026; --edge: #3a404a; --text: #e9ebee; --quiet: #b1b8c2;
    --bar: #74aef0; --track: #353b45; --failed: #ff9d94; } }
* { box-sizing: border-box; }
body { margin: 0 auto; padding: 2rem 1.25rem 3rem; max-width: 68rem; background: var(--page);
  color: var(--text); font: 1rem/1.5 system-ui, sans-serif; }
h1 { margin: 0 0 .25rem; font-size: 1.75rem; line-height: 1.2; }
h2 { margin: 2.5rem 0 .75rem; font-size: 1.25rem; }
h3 { display: flex; justify-content: space-between; gap: 1rem; margin: 0 0 .5rem;
  font-size: 1.0625rem; }
h4 { margin: 1rem 0 .25rem; color: var(--quiet); font-size: .875rem; font-weight: 600; }
p { margin: .25rem 0; }
.quiet, figcaption { color: var(--quiet); font-size: .875rem; }
.total { margin: .75rem 0 0; font-size: 2.25rem; font-weight: 700; line-height: 1.2; }
.failed { color: var(--failed); font-weight: 600; }
h3 span { white-space: nowrap; }
figure { margin: 0; }
figcaption { margin-top: .5rem; }
.chart { margin: 0; padding: 0; list-style: none; }
.chart li { display: flex; flex-wrap: wrap; justify-content: space-between; gap: 0 1rem;
  margin: .5rem 0 0; }
.chart .name { overflow-wrap: anywhere; }
.chart .value { margin-left: auto; font-variant-numeric: tabular-nums; }
.chart svg { display: block; flex: 0 0 100%; width: 100%; height: .625rem; }
.track { fill: var(--track); }
.bar { fill: var(--bar); }
.cards { display: grid; margin-top: .75rem;
  grid-template-columns: repeat(auto-fill, minmax(min(20rem, 100%), 1fr));
  gap: 1rem; }
.card { padding: 1rem 1.25rem 1.25rem; border: 1px solid var(--edge); border-radius: .75rem;
  background: var(--card); }
.scroll { overflow-x: auto; }
.scroll:focus-visible { outline: 3px solid var(--bar); outline-offset: 2px; }
table { width: 100%; border-collapse: collapse; font-size: .9375rem; }
caption { padding-bottom: .5rem; color: var(--quiet); font-size: .875rem; text-align: left; }
th, td { padding: .3rem .75rem; text-align: left; vertical-align: baseline; }
thead th { border-bottom: 2px solid var(--edge); }
tbody th { font-weight: 400; white-space: nowrap; }
tbody { border-bottom: 1px solid var(--edge); }
thead button { padding: 0; border: 0; background: none; color: inherit; font: inherit;
  cursor: pointer; text-decoration: underline dotted; text-underline-offset: .2em; }
thead button:focus-visible { outline: 3px solid var(--bar); outline-offset: 2px; }
[aria-sort="ascending"] button::after { content: " \25B2"; }
[aria-sort="descending"] button::after { content: " \25BC"; }
tfoot th, tfoot td { font-weight: 700; }
.search { width: 100%; max-width: 24rem; margin: .5rem 0 1rem; padding: .4rem .6rem; font: inherit;
  border: 1px solid var(--edge); border-radius: .5rem; background: var(--card);
  color: var(--text); }
.figure { text-align: right; white-space: nowrap; font-variant-numeric: tabular-nums; }
@media (forced-colors: active) { .bar { fill: CanvasText; } .track { fill: GrayText; } }
@media print { body { max-width: none; padding: 0; } .card { break-inside: avoid; } }
)css";

const std::string_view pageStyleDigest = "hLNmiQ6jqp1Uef6xxKFYxWYm9mPnkHd87dmkJuhHU0M=";

}  // namespace browsersweep::cli
