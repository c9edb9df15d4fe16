#include "cli/output/HtmlPage.h"

#include "league/Utf8.h"

namespace cli {

using namespace HLLeague;

namespace {

constexpr std::size_t kColours = 8;

constexpr const char* kStyle = R"(
:root{color-scheme:light dark;--bg:#f6f7f9;--card:#fff;--ink:#1b2430;--soft:#5b6675;--line:#d5dbe3;--head:#e9edf2;
--due:#fff3c9;--due-line:#b97a00;--c0:#c62b3f;--c1:#1f6fbf;--c2:#1d7f4e;--c3:#a1540c;--c4:#7a3fb3;--c5:#4b5563;
--c6:#0b7c86;--c7:#b02a86}
*{box-sizing:border-box}
body{margin:0;background:var(--bg);color:var(--ink);font:16px/1.4 system-ui,"Segoe UI",Roboto,"Helvetica Neue",Arial,sans-serif}
main{max-width:70rem;margin:0 auto;padding:1.25rem}
h1{font-size:1.6rem;line-height:1.2;margin:0}
p.note{color:var(--soft);margin:.2rem 0 1rem}
.box{background:var(--card);border:1px solid var(--line);border-radius:8px;overflow-x:auto}
table{border-collapse:collapse;width:100%}
th,td{text-align:left;padding:.4rem .7rem;border-bottom:1px solid var(--line);vertical-align:top;overflow-wrap:break-word}
tbody tr:last-child>*{border-bottom:0}
thead th{background:var(--head);font-size:.8rem;color:var(--soft)}
.n{text-align:right;font-variant-numeric:tabular-nums}
.none{color:var(--soft)}
.pos{display:inline-block;min-width:2.4em;padding:0 .35em;border:1.5px solid;border-radius:4px;text-align:center;
font-size:.75em;font-weight:700;line-height:1.5}
.c0{color:var(--c0)}.c1{color:var(--c1)}.c2{color:var(--c2)}.c3{color:var(--c3)}.c4{color:var(--c4)}.c5{color:var(--c5)}
.c6{color:var(--c6)}.c7{color:var(--c7)}
.sum td{font-weight:700;border-top:2px solid var(--line)}
.board main{max-width:none;padding:1vw}
.board{font-size:clamp(12px,.82vw,22px)}
.board header{display:flex;flex-wrap:wrap;gap:.5rem 2rem;align-items:baseline;margin-bottom:.8rem}
.board p.note{margin:0}
.clock{margin:0;padding:.25rem .8rem;border:2px solid var(--due-line);border-radius:8px;background:var(--due);font-size:1.35rem}
.board table{table-layout:fixed}
.board th,.board td{border-right:1px solid var(--line);padding:.3rem .45rem;overflow-wrap:anywhere}
.board tr>:last-child{border-right:0}
.board thead th{font-size:1em;color:var(--ink);text-align:center;hyphens:auto}
.board tr>:first-child{width:4.6em;text-align:center;white-space:nowrap}
.board tbody th{background:var(--head)}
.top{display:flex;justify-content:space-between;gap:.3em;color:var(--soft);font-size:.85em}
.who{display:none}
td b{display:block;font-weight:650}
.first{font-size:.85em;color:var(--soft)}
.mark{display:block;font-size:.8em;color:var(--soft)}
.empty{color:var(--soft)}
.due{background:var(--due);outline:3px solid var(--due-line);outline-offset:-3px}
.due b{color:var(--ink)}
@media screen and (prefers-color-scheme:dark){:root{--bg:#12161c;--card:#1a2029;--ink:#e8ecf2;--soft:#a0abba;--line:#323c4a;
--head:#232b36;--due:#453500;--due-line:#f0b429;--c0:#ff8591;--c1:#79b8ff;--c2:#6fd39b;--c3:#f5a961;--c4:#c9a0f5;--c5:#b6c0cd;
--c6:#62d0da;--c7:#f48fd1}}
@media screen and (max-width:700px){main,.board main{padding:.75rem}.board{font-size:16px}h1{font-size:1.3rem}
.lists th,.lists td{padding:.35rem .25rem;font-size:.82rem}.lists thead th{font-size:.72rem}
.board table,.board tbody,.board td,.board tbody th,.cards table,.cards tbody,.cards tr,.cards td{display:block;width:auto}
.board thead,.cards thead{display:none}
.board tbody tr{display:flex;flex-direction:column}
.board tbody tr.back{flex-direction:column-reverse}.board tr.back th{order:1}
.board tbody th,.board tr>:first-child{width:auto;text-align:left;border-right:0;padding:.45rem .6rem}
.board tbody th::before{content:"Round "}
.board td{border-right:0;padding:.45rem .6rem}.who{display:inline}.pos~.who::before{content:" \b7\a0"}
.top{font-size:.85em}td b,.first{display:inline}
.cards tr{padding:.5rem .2rem;border-bottom:1px solid var(--line)}
.lists .cards td{display:flex;justify-content:space-between;gap:1rem;border:0;padding:.1rem .6rem;text-align:right}
.cards td::before{content:attr(data-name);color:var(--soft)}}
@page{size:landscape;margin:10mm}
@media print{body{background:#fff;font-size:10pt}main,.board main{max-width:none;padding:0}.board{font-size:6.5pt}
.board th,.board td{padding:.1rem .18rem}
.box{border:0;border-radius:0;overflow:visible}table{border:1px solid #888}thead{display:table-header-group}tr,.top{break-inside:avoid}
th,td{padding:.15rem .35rem;border-color:#888}.clock{font-size:1.2em}.due{outline:2px solid #000}}
)";

}  // namespace

std::string HtmlText(std::string_view text) {
  std::string html;
  for (const char c : Printable(std::string(text))) {
    switch (c) {
      case '&':
        html += "&amp;";
        break;
      case '<':
        html += "&lt;";
        break;
      case '>':
        html += "&gt;";
        break;
      case '"':
        html += "&quot;";
        break;
      case '\'':
        html += "&#39;";
        break;
      default:
        html += c;
    }
  }
  return html;
}

PositionBadges::PositionBadges(League& league) {
  const auto positions = league.Service().GetPlayerPositions();
  league.RaiseShownMessages();
  for (const auto& position : positions->Items())
    m_numbers.emplace(position->Abbr(), m_numbers.size() % kColours);
}

std::string PositionBadges::Html(const std::string& abbr) const {
  if (abbr.empty()) return {};
  const auto number = m_numbers.find(abbr);
  return "<span class=\"pos" + (number == m_numbers.end() ? "" : " c" + std::to_string(number->second)) +
         "\">" + HtmlText(abbr) + "</span>";
}

std::string HtmlPage::Text() const {
  std::string text(isBoard ? kBoardPageBeginning : "<!doctype html>\n");
  text +=
      "<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta name=\"viewport\" content=\"width=device-width,initial-scale=1\">\n";
  if (refresh) text += "<meta http-equiv=\"refresh\" content=\"" + std::to_string(*refresh) + "\">\n";
  text += "<title>" + HtmlText(title) + "</title>\n<style>" + kStyle + "</style>\n</head>\n<body class=\"" +
          (isBoard ? "board" : "lists") + "\">\n<main>\n<header>\n<h1>" + HtmlText(title) +
          "</h1>\n<p class=\"note\">" + HtmlText(note) + "</p>\n";
  // A board continues in its header.
  return text + (isBoard ? "" : "</header>\n") + body + "</main>\n</body>\n</html>\n";
}

}  // namespace cli
