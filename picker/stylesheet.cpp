#include "picker/stylesheet.h"

#include "platform/basic_text.h"

namespace quillon {
namespace {

// Colours are the host's, so that the pages fit whatever style its users have chosen.
constexpr const char* Rules = R"css(.picker {
    --gap: 1rem;
    box-sizing: border-box;
    max-width: 110rem;
    margin: 0 auto;
    padding: 0 .75rem;
    line-height: 1.4;
    overflow-wrap: anywhere;
}
.picker *, .picker *::before { box-sizing: inherit; }
.picker td { padding: 0; }
.picker img { display: block; max-width: 100%; object-fit: contain; }
.picker h1 { margin: 0; font-size: 1.4rem; }
.picker a, .picker input { touch-action: manipulation; }
.picker input { max-width: 100%; min-height: 2.2rem; padding: .2rem .7rem; font: inherit; }

.picker-bar { margin-bottom: 1rem; padding-bottom: .75rem; border-bottom: 1px solid; }
.picker-bar table { width: 100%; }
.picker-bar td:first-child { white-space: nowrap; }
.picker-bar form { display: inline; }
.picker-bar a { display: inline-block; padding: .4rem 0; }

/* Both grids: as many columns as were asked for, fewer where they would become too narrow. */
.picker-albums, .picker-index { display: block; }
.picker-albums > tbody, .picker-index > tbody {
    --column: calc((100% - (var(--wide) - 1) * var(--gap)) / var(--wide));
    display: grid;
    gap: var(--gap);
    --narrowest: max(min(var(--least), 100%), var(--column));
    grid-template-columns: repeat(auto-fill, minmax(var(--narrowest), 1fr));
}
.picker-albums > tbody > tr, .picker-index > tbody > tr { display: contents; }
.picker-albums > tbody > tr > td, .picker-index > tbody > tr > td { display: block; min-width: 0; }

.picker-index > tbody { --least: 6.5rem; max-width: calc(var(--wide) * 11rem); margin: 0 auto; }
.picker-index td { font-size: .85rem; text-align: center; }
.picker-index img { margin: 0 auto; }
.picker-index a { display: block; margin-bottom: .3rem; }
.picker-index a + br { display: none; }
.picker-index bdi:last-child { font-weight: bold; }

.picker-albums > tbody { --least: 16rem; }
.picker-albums > tbody > tr > td { padding: .75rem; border: 1px solid; border-radius: .4rem; }
.picker-albums [role=presentation] form > input[type=submit] { margin: 0 .25rem .25rem 0; padding: .2rem .4rem; }
.picker-albums input[name=ClientAction] { text-transform: capitalize; }
.picker-albums td:target { outline: 3px solid; }
.picker-album, .picker-album > tbody, .picker-album > tbody > tr > td { display: block; }
.picker-album > tbody > tr { display: flex; flex-wrap: wrap; gap: .75rem; }
.picker-album > tbody > tr > td:last-child { flex: 1 1 9rem; }
.picker ul { margin: 0 0 .5rem; padding: 0; list-style: none; }
.picker li > h2 { display: inline; margin: 0; font-size: 1.1rem; }
.picker li > h2, .picker li > bdi { margin-left: .3em; }

.picker-tracks { width: 100%; margin-top: .75rem; border-collapse: collapse; }
.picker-tracks tr + tr > td { border-top: 1px solid rgb(128 128 128 / .4); }
.picker-tracks td { padding: .3rem .2rem; vertical-align: middle; }
.picker-tracks tr:first-child { font-size: .85rem; }
.picker-tracks td + td { width: 3.4rem; white-space: nowrap; }
.picker-tracks tr:first-child td + td { white-space: normal; }
.picker-tracks td:last-child { width: 4.5rem; text-align: center; }
.picker-tracks a { display: inline-block; padding: .25rem .6rem; }
.picker-tracks form { display: inline; }

.picker nav { margin-top: 1rem; border-top: 1px solid; line-height: 2.2; }
.picker nav form { display: inline-block; margin: .15rem; }
.picker nav a { display: inline-block; }
.picker a[aria-current] { font-weight: bold; text-decoration: none; }

@media (max-width: 45rem) {
    .picker-bar table, .picker-bar tbody, .picker-bar tr, .picker-bar td {
        display: block;
        width: auto;
    }
    .picker-bar center { margin-top: .5rem; text-align: start; }
}
/* On a phone held upright the cover leaves room for what is said beside it. */
@media (max-width: 30rem) {
    .picker-albums img { width: 8.5rem; height: 8.5rem; }
}
)css";

}  // namespace

std::string PickerStylesheet() {
    return Replace(Rules, "\n", "\r\n");
}

}  // namespace quillon
