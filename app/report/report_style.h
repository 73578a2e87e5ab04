#pragma once

#include <string_view>

namespace quillon {

/// How a report looks: in light and dark, from a telephone's width on.
constexpr std::string_view ReportStyle = R"(
:root { color-scheme: light dark; --back: #f6f5f2; --card: #ffffff; --text: #23221f; --soft: #68655d;
  --line: #e2dfd8; --tint: #efede7; --good: #2d7a4f; --warn: #9a6200; --bad: #b3362b; --bar: #5b7fb5; }
@media (prefers-color-scheme: dark) { :root { --back: #181917; --card: #222321; --text: #e8e6e0;
  --soft: #a09d94; --line: #373834; --tint: #2b2c29; --good: #6cc394; --warn: #e0ac52; --bad: #f08478;
  --bar: #7d9fd3; } }
* { box-sizing: border-box; }
body { margin: 0; background: var(--back); color: var(--text); overflow-wrap: anywhere;
  font: 16px/1.5 system-ui, -apple-system, "Segoe UI", "Noto Sans", sans-serif; }
main { max-width: 60rem; margin: 0 auto; padding: 1.5rem 1rem 3rem; }
h1 { font-size: 1.5rem; line-height: 1.25; margin: 0 0 .25rem; }
h2 { font-size: 1.1rem; margin: 2.25rem 0 .75rem; }
h3 { font-size: .9rem; font-weight: 600; color: var(--soft); margin: 1rem 0 .25rem; }
p { margin: .25rem 0; }
.soft { color: var(--soft); font-size: .9rem; }
.pill { display: inline-block; margin: .5rem 0 .25rem; padding: .2rem .8rem; border-radius: 1rem;
  font-weight: 600; color: var(--card); background: var(--good); }
.pill.warn { background: var(--warn); } .pill.bad { background: var(--bad); }
.card, details { background: var(--card); border: 1px solid var(--line); border-radius: .6rem; }
.card { padding: .9rem 1.1rem; }
.card.alarm { border-left: .35rem solid var(--bad); }
.todo { background: var(--tint); border-radius: .4rem; padding: .6rem .8rem; margin: 0 0 .75rem; }
code { font: .9em ui-monospace, "DejaVu Sans Mono", monospace; }
ul { list-style: none; margin: 0; padding: 0; }
li { padding: .3rem 0; }
.errors li + li, .list li + li { border-top: 1px solid var(--line); }
.errors b { color: var(--bad); }
.tiles { display: grid; grid-template-columns: repeat(auto-fill, minmax(9.5rem, 1fr)); gap: .6rem; }
.tiles .card { padding: .6rem .9rem; }
.tiles b { display: block; font-size: 1.45rem; line-height: 1.2; font-variant-numeric: tabular-nums; }
.tiles span { color: var(--soft); font-size: .9rem; }
details { margin: 0 0 .5rem; }
summary { display: flex; flex-wrap: wrap; gap: 0 1rem; align-items: baseline; padding: .6rem 1.1rem;
  cursor: pointer; list-style: none; }
summary::-webkit-details-marker { display: none; }
summary::before { content: "\25B8"; color: var(--soft); width: .6rem; }
details[open] > summary::before { content: "\25BE"; }
summary b { flex: 1 1 12rem; }
summary:focus-visible { outline: 2px solid var(--bar); outline-offset: 2px; border-radius: .6rem; }
.inside { padding: 0 1.1rem .9rem; border-top: 1px solid var(--line); }
.fields { display: block; color: var(--soft); font-size: .9rem; }
.bars { display: grid; grid-template-columns: minmax(8rem, 16rem) 1fr auto; gap: .35rem .8rem;
  grid-auto-flow: dense; align-items: center; }
.bars .bar { grid-column: 2; height: .8rem; border-radius: .4rem; background: var(--tint); }
.bars .bar i { display: block; height: 100%; min-width: 2px; border-radius: .4rem; background: var(--bar); }
.bars .time { grid-column: 3; text-align: right; color: var(--soft); font-variant-numeric: tabular-nums; }
@media (max-width: 36rem) {
  .tiles { grid-template-columns: 1fr 1fr; }
  .bars { grid-template-columns: 1fr auto; }
  .bars .time { grid-column: 2; }
  .bars .bar { grid-column: 1 / -1; margin: -.2rem 0 .35rem; }
}
@media print { body { background: none; } details > .inside { display: block; } }
)";

}  // namespace quillon
