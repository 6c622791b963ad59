// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Style of the HTML report, for screens in light and dark and for paper.
 */
#ifndef PTZCTL_CHECK_HTML_STYLE_H
#define PTZCTL_CHECK_HTML_STYLE_H

namespace ptzctl::check {

inline constexpr const char *kHtmlStyle = R"(:root {
  color-scheme: light dark;
  --page: #fbfbfa; --ink: #1d2125; --faint: #5c6670; --line: #d8dce0; --panel: #f0f2f4;
  --fail: #b3151d; --differs: #8a5a00; --pass: #1c6b34; --quiet: #5c6670;
  --fail-back: #fdecec; --differs-back: #fff4dc; --pass-back: #e8f5ec; --quiet-back: #eef0f2;
}
@media (prefers-color-scheme: dark) {
  :root {
    --page: #16191c; --ink: #e4e7ea; --faint: #9aa5af; --line: #343b42; --panel: #20252a;
    --fail: #ff9a94; --differs: #f0c26a; --pass: #84d39a; --quiet: #9aa5af;
    --fail-back: #41191b; --differs-back: #3a2d10; --pass-back: #16331f; --quiet-back: #262c31;
  }
}
* { box-sizing: border-box; }
body { margin: 0 auto; padding: 2rem 1.5rem 4rem; max-width: 88rem; background: var(--page); color: var(--ink);
  font: 15px/1.45 system-ui, "DejaVu Sans", sans-serif; }
header p { max-width: 60rem; color: var(--faint); }
h1 { margin: 0; font-size: 1.6rem; }
h2 { margin: 2.5rem 0 .75rem; padding-top: 1rem; border-top: 3px solid var(--ink); font-size: 1.25rem;
  overflow-wrap: anywhere; }
code, pre, dd { font-family: ui-monospace, "DejaVu Sans Mono", monospace; font-size: .92em; overflow-wrap: anywhere; }
dl { display: flex; flex-wrap: wrap; gap: .5rem 2rem; margin: 0 0 1rem; }
dt { color: var(--faint); font-size: .8rem; }
dd { margin: 0; }
.counts { display: flex; flex-wrap: wrap; gap: .5rem; margin: 0 0 1rem; padding: 0; list-style: none; }
.counts li { padding: .4rem .8rem; border-radius: .4rem; }
.counts b { font-size: 1.2rem; }
.none { opacity: .45; }
.counts .fail, .counts .error, .badge.fail, .badge.error { background: var(--fail-back); color: var(--fail); }
.counts .differs, .badge.differs { background: var(--differs-back); color: var(--differs); }
.counts .pass, .badge.pass { background: var(--pass-back); color: var(--pass); }
.counts .skipped, .counts .not-equipped, .badge.skipped, .badge.not-equipped { background: var(--quiet-back);
  color: var(--quiet); }
.badge { display: inline-block; padding: .1rem .5rem; border-radius: .3rem; font-weight: 600; white-space: nowrap; }
.trouble { padding: .6rem .8rem; border-left: 4px solid var(--fail); background: var(--fail-back); color: var(--fail); }
table { width: 100%; margin: 1.5rem 0; border-collapse: collapse; table-layout: fixed; }
caption { padding: .4rem 0; font-size: 1.05rem; font-weight: 600; text-align: left; }
th, td { padding: .5rem .6rem; border-bottom: 1px solid var(--line); text-align: left; vertical-align: top;
  overflow-wrap: anywhere; }
thead th { border-bottom: 2px solid var(--faint); color: var(--faint); font-size: .8rem; }
th:nth-child(1) { width: 9rem; }
th:nth-child(2) { width: 22%; }
th:nth-child(3) { width: 16%; }
th:nth-child(4) { width: 21%; }
.object { font-size: .93em; }
tbody th { font-weight: 400; }
tbody th code { font-weight: 600; }
tbody th p { margin: .2rem 0 0; color: var(--faint); }
td ul { margin: .4rem 0 0; padding-left: 1.1rem; }
pre { margin: .5rem 0 0; padding: .4rem .6rem; border-radius: .3rem; background: var(--panel); white-space: pre-wrap; }
.more { margin: .3rem 0 0; color: var(--faint); }
@media (max-width: 50rem) {
  thead { display: none; }
  tr, td, tbody th { display: block; width: auto; border: 0; padding: .15rem 0; }
  tr { padding: .7rem 0; border-bottom: 1px solid var(--line); }
}
@media print {
  @page { size: A4 landscape; margin: 12mm; }
  :root { color-scheme: light; --page: #fff; --ink: #000; --faint: #444; --line: #bbb; --panel: #f4f4f4; --fail: #900;
    --differs: #640; --pass: #040; --quiet: #444; --fail-back: #fff; --differs-back: #fff; --pass-back: #fff;
    --quiet-back: #fff; }
  body { max-width: none; padding: 0; font-size: 9pt; }
  section + section { break-before: page; }
  tr { break-inside: avoid; }
  thead { display: table-header-group; }
  .badge, .counts li { border: 1px solid currentColor; }
}
)";

} // namespace ptzctl::check

#endif
