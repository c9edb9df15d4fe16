"""`export`, `draft board --html` and `--watch`: lists as rows, pages that hold all and break nothing."""
import html.parser
import json
import re
import subprocess
import time

import support
from drafting import DraftTest
from support import USAGE, csv_of

OF_LEAGUE = {"players": "player info", "managers": "manager info", "prizes": "prize info",
             "positions": "position info", "teams": "team info", "seasons": "season info"}
OF_SEASON = ["season-managers", "season-prizes", "winnings", "money", "picks", "board"]
VOID = {"meta", "br", "hr", "img", "link"}


class Page(html.parser.HTMLParser):
    """The rows of a page's table; what is opened must be closed, and nothing may come from elsewhere."""

    def __init__(self, text):
        super().__init__()
        self.open, self.rows, self.refresh, self.text = [], [], None, ""
        self.feed(text)
        assert not self.open, self.open

    def handle_starttag(self, tag, attrs):
        attrs = dict(attrs)
        assert tag not in ("script", "link", "img", "iframe") and not {"src", "href"} & set(attrs), (tag, attrs)
        if attrs.get("http-equiv") == "refresh":
            self.refresh = attrs["content"]
        if tag == "tr":
            self.rows.append([])
        if tag in ("td", "th"):
            self.rows[-1].append("")
        if tag not in VOID:
            self.open.append(tag)

    def handle_endtag(self, tag):
        assert self.open.pop() == tag, tag

    def handle_data(self, data):
        if {"td", "th"} & set(self.open):
            self.rows[-1][-1] += data
        elif "style" not in self.open:
            self.text += data


class Export(DraftTest):
    def test_every_list_in_every_format(self):
        self.use_fixture()
        for what in [*OF_LEAGUE, *OF_SEASON]:
            rows = json.loads(self.done("export", what, "--format", "json"))
            header, *lines = csv_of(self.done("export", what))
            page = Page(self.done("export", what, "--format", "html"))
            self.assertEqual(len(page.rows[0]), len(header), what)
            self.assertEqual({len(line) for line in [*lines, *page.rows]}, {len(header)}, what)
            self.assertEqual((len(lines), len(page.rows) - 1), (len(rows), len(rows)), what)
            for row, line in zip(rows, lines):
                said = {None: "", True: "yes", False: "no"}
                self.assertEqual([said[v] if v is None or isinstance(v, bool) else str(v) for v in row.values()], line)
            if what in OF_LEAGUE:
                self.assertEqual(sorted(row["id"] for row in rows),
                                 sorted(row.get("id") for row in self.rows(OF_LEAGUE[what])), what)
                self.refused("export", what, "--season", "2021", says="--season", code=USAGE)
        year, season = 2014, next(r["id"] for r in self.rows("season info") if r["season year"] == 2014)
        picks = json.loads(self.done("export", "picks", "--season", year, "--json"))
        self.assertEqual({p["pick"]: p["manager id"] for p in picks if p["manager id"]},
                         {r["draft no"]: r["manager id"] for r in self.of_season("draft info", season)})

    def test_players_go_out_and_come_back(self):
        out = self.folder / "players.csv"
        self.done("export", "players", "--output", out)
        told = self.told("import", "players", out)
        self.assertEqual((told["added"], told["changed"], told["refused"]), ([], [], []))
        self.assertEqual(len(told["unchanged"]), 486)

    def test_hostile_names_stay_text(self):
        name = '<b>"A&B"</b>\','
        self.done("player", "add", "<script>alert(1)</script>", name, "--position", "QB", "--team", "AMB")
        self.done("draft", "pick", "P487")
        for what in ("players", "picks", "board"):
            page = Page(self.done("export", what, "--format", "html"))
            self.assertTrue(any(name in cell for row in page.rows for cell in row), what)
        self.assertIn(["487", "<script>alert(1)</script>", name, "QB", "AMB", "no"], csv_of(self.done("export", "players")))

    def test_safe_csv_holds_no_formulas(self):
        self.done("player", "add", "=1+1", "@Lee", "--position", "QB", "--team", "1")
        self.assertEqual(csv_of(self.done("export", "players"))[1][1:3], ["=1+1", "@Lee"])
        self.assertEqual(csv_of(self.done("export", "players", "--safe"))[1][1:3], ["'=1+1", "'@Lee"])
        self.refused("export", "players", "--safe", "--format", "html", says="goes with CSV", code=USAGE)

    def test_files_are_not_written_over(self):
        out = self.folder / "teams.html"
        out.write_text("mine")
        self.refused("export", "teams", "--output", out, says="--force")
        self.refused("export", "teams", "--output", self.path, "--force", says="the league's own")
        self.refused("draft", "board", "--html", out, says="no page of a board")
        self.refused("draft", "board", "--html", self.path, says="no page of a board")
        self.refused("draft", "board", "--refresh", "5", says="--html", code=USAGE)
        self.refused("draft", "board", "--html", self.folder / "b.html", "--refresh", "0", says="3600", code=USAGE)
        self.refused("export", "teams", "--output", self.folder / "none" / "x", says="could not be written",
                     code=support.SYSTEM_FAILED)
        self.assertEqual(out.read_text(), "mine")
        self.done("export", "teams", "--format", "html", "--output", out, "--force")
        self.assertEqual(len(Page(out.read_text("utf-8")).rows), 33)
        self.assertEqual([p.name for p in self.folder.glob("*.being-made")], [])


class Board(DraftTest):
    def test_the_page_follows_a_shell(self):
        out, kept, text = self.folder / "board.html", [], None
        with subprocess.Popen([support.PROGRAM, *map(str, self.at), "shell"], stdin=subprocess.PIPE,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, env=support.environment()) as shell:
            for line in (f"board --html '{out}' --refresh 5", "pick P1", "pick P2 --manager Marrowgate", "undo", "save",
                         "clear 1", "quit --discard"):
                shell.stdin.write(f"{line}\n".encode())
                shell.stdin.flush()
                end = time.monotonic() + support.SECONDS
                while not out.exists() or out.read_text("utf-8") == text:
                    self.assertLess(time.monotonic(), end, line)
                    time.sleep(0.02)
                text = out.read_text("utf-8")
                page = Page(text)
                self.assertEqual(page.refresh, "5")
                kept.append((re.search(r"\d+ of 12 picks made.*", page.text)[0], page.text.count("On the clock"),
                             sum("on the clock" in cell for row in page.rows for cell in row)))
                if "Marrowgate" in line:
                    self.assertIn("picked by Marrowgate", page.rows[1][2])
        counts = [text.split(" picks")[0] for text, *_ in kept]
        self.assertEqual(counts, ["0 of 12", "1 of 12", "2 of 12", "1 of 12", "1 of 12", "0 of 12", "1 of 12"])
        self.assertEqual(["(*)" in text for text, *_ in kept], [False, True, True, True, False, True, False])
        self.assertTrue(all(clock[1:] == (1, 1) for clock in kept), kept)

    def test_a_watcher_sees_what_others_do(self):
        told = self.folder / "told"
        with open(told, "wb") as stream:
            watcher = subprocess.Popen([support.PROGRAM, *map(str, self.at), "draft", "board", "--watch"],
                                       stdout=stream, stderr=subprocess.STDOUT, env=support.environment())
        def wait_for(text):
            end = time.monotonic() + 60
            while text not in told.read_text("utf-8"):
                self.assertLess(time.monotonic(), end, told.read_text("utf-8"))
                self.assertIsNone(watcher.poll())
                time.sleep(0.1)
        try:
            wait_for("0 of 12 picks made")
            self.done("draft", "pick", "P1")
            wait_for("1 of 12 picks made")
            shell = subprocess.Popen([support.PROGRAM, *map(str, self.at), "shell"], stdin=subprocess.PIPE,
                                     stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, env=support.environment())
            shell.stdin.write(b"pick P2\nsave\n")
            shell.stdin.flush()
            wait_for("Waiting for it")
            shell.communicate(b"quit\n")
            wait_for("2 of 12 picks made")
        finally:
            watcher.kill()
            watcher.wait()
        self.shell("board --watch", code=USAGE)


if __name__ == "__main__":
    support.main()
