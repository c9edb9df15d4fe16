"""`search`: players and teams, managers, prizes and positions by the beginnings of their names."""
import json
import random

from leagues import LeagueTest
from support import USAGE


def documents(text):
    """The JSON documents that stand one behind the other."""
    found, at, decoder = [], 0, json.JSONDecoder()
    while text[at:].strip():
        document, at = decoder.raw_decode(text, at + len(text[at:]) - len(text[at:].lstrip()))
        found.append(document)
    return found


def begins(name, word):
    return bool(name) and name.lower().startswith(word.lower())


def fits_player(words, row):
    first, last = row["first name"], row["last name"]
    if len(words) == 1:
        return begins(first, words[0]) or begins(last, words[0])
    pairs = [(words[i], words[(i + 1) % len(words)]) for i in range(len(words))]
    return any((begins(last, a) and begins(first, b)) or (begins(last, b) and begins(first, a)) for a, b in pairs)


class Finding(LeagueTest):
    def setUp(self):
        super().setUp()
        self.use_fixture()

    def answers(self, asked):
        """What one shell finds for many texts with their options."""
        out, _ = self.shell(*[f'search "{text}" {options} --json' for text, options in asked])
        return documents(out)

    def test_brackets_reach_the_search(self):
        positions = {row["desc"] for row in self.rows("position info")}
        for text, fits in (("[qw]", lambda c: c in "qw"), ("[!a-z]", lambda c: not c.isalpha())):
            wanted = sorted(name for name in positions if any(fits(c) for c in name.lower()))
            self.assertEqual(sorted(one["desc"] for one in self.told("search", text, "--type", "positions")), wanted)

    def test_players_and_teams_are_those_of_a_scan(self):
        plain = [row for row in self.rows("player info")
                 if ((row["first name"] or "") + (row["last name"] or "")).isascii()]
        teams = self.rows("team info")
        chance = random.Random(4)
        asked, expected = [("", "")], []
        while len(asked) < 40:
            words = []
            for _ in range(chance.choice((1, 1, 2, 3))):
                name = chance.choice(plain)[chance.choice(("first name", "last name"))] or ""
                words.append(name[:chance.randint(1, 4)])
            if all(word.isalpha() for word in words):
                asked.append((chance.choice(" ,;").join(words), chance.choice(("", "--no-retired"))))
        for text, options in asked:
            words = text.replace(",", " ").replace(";", " ").split() or [""]
            expected.append({f"P{row['id']}" for row in plain
                             if fits_player(words, row) and not (options and row["is retired"])}
                            | {f"T{row['id']}" for row in teams
                               if any(begins(row[c], text) for c in ("name", "nickname", "abbr"))})
        shown = {f"P{row['id']}" for row in plain} | {f"T{row['id']}" for row in teams}
        for (text, options), wanted, found in zip(asked, expected, self.answers(asked), strict=True):
            ids = [one["id"] for one in found]
            self.assertEqual(set(ids) & shown, wanted, f"{text} {options}")
            self.assertEqual(len(ids), len(set(ids)), text)
            kinds = [one["kind"] for one in found]
            self.assertEqual(kinds, sorted(kinds), "players come first")
        self.assertGreater(sum(map(len, expected[1:])), 100)

    def test_the_other_kinds_are_those_of_a_scan(self):
        managers, prizes, positions = map(self.rows, ("manager info", "prize info", "position info"))
        playing = {row["manager id"] for row in self.of_season("playing info", 11)}
        put_up = {row["prize id"] for row in self.of_season("money distribution info", 11)}
        asked, expected = [], []
        for text in ("", "b", "BR", "ca", "we", "high", "score", "back", "e", "zzz", "a b"):
            named = {row["id"] for row in managers if begins(row["last name"], text) or begins(row["first name"], text)}
            described = {row["id"] for row in prizes if text.lower() in row["desc"].lower()}
            for options, ids in (("managers", named), ("managers --season", named & playing),
                                 ("prizes", described), ("prizes --season", described & put_up),
                                 ("positions", {row["id"] for row in positions
                                                if text.lower() in row["desc"].lower()})):
                asked.append((text, f"--type {options}"))
                expected.append(ids)
        for one, wanted, found in zip(asked, expected, self.answers(asked), strict=True):
            self.assertEqual(sorted(row["id"] for row in found), sorted(wanted), one)
        self.assertGreater(sum(map(len, expected)), 100)

    def test_what_people_see(self):
        text = self.done("search", "quarter", "--type", "positions")
        self.assertEqual(text, "id  short  position\n 1  QB     Quarterback\n")
        self.assertEqual(self.done("search", "zzzz"), "")
        self.assertEqual(self.told("search", "zzzz"), [])
        two = [one["name"] for one in self.told("search", "Cupid", "Kelvawick")]
        self.assertEqual(two, ["Cupid Kelvawick"], "words need no quotes")

    def test_whatever_is_typed_ends_in_a_result_or_a_message(self):
        for kind in ("players", "managers", "prizes", "positions"):
            said = self.refused("search", "O'Brien", "--type", kind, says="Error in searching")
            self.assertIn("O?Brien", said)
            for text in ('"', "[", "]", "[!a]", "*", "?", "#", "%", "a" * 10000, " ", ",,;"):
                self.assertIn(self.attempt("search", text, "--type", kind), (0, 1), text)
            self.assertIn(self.attempt("search", b"\xff\xfe\xc3", "--type", kind), (0, 1))
        self.assertEqual(len(self.told("search", "P?rcival")), len(self.told("search", "Percival")))
        self.refused("search", "x'; delete from [player info]; --", says="Error in searching")

    def attempt(self, *words):
        import support  # a word that is no text cannot go through str()
        import subprocess
        done = subprocess.run([support.PROGRAM, "--folder", str(self.folder), *words], capture_output=True,
                              timeout=support.SECONDS, env=support.environment(), check=False)
        self.assertNotIn(b"runtime error", done.stderr)
        self.assertNotIn(b"Sanitizer", done.stderr)
        return done.returncode

    def test_options_that_do_not_go_together(self):
        self.refused("search", "a", "--season", says="--type managers", code=USAGE)
        self.refused("search", "a", "--type", "prizes", "--no-retired", says="--type players", code=USAGE)
        self.refused("search", "a", "--type", "teams", says="teams", code=USAGE)
        self.refused("search", says="TEXT", code=USAGE)
        self.done("settings", "--current-season", "0")
        self.refused("search", "a", "--type", "managers", "--season", says="No season is the current one")


if __name__ == "__main__":
    import support
    support.main()
