"""A small league to draft in: four managers, three rounds, and players of one name."""
import shutil

import support
from leagues import LeagueTest

SAMPLE = support.TEST_DATA.parent.parent / "data" / "sample"
NAMESAKES = ["481,Ann,Twin,1,1,false", "482,Ann,Twin,2,1,false", "483,Ann,Twin,1,2,false", "484,Bea,Twinning,1,2,false",
             "485,Carl,de la Vere,1,,false", "486,Dan,Gone,1,3,true"]
ORDER = ["Dimblestone", "Rumblethorpe", "Nettleworth", "Marrowgate"]  # by rank
IDS = [1, 3, 6, 10]


class DraftTest(LeagueTest):
    def setUp(self):
        super().setUp()
        csv = self.folder / "csv"
        shutil.copytree(SAMPLE, csv)
        with open(csv / "players.csv", "a", encoding="utf-8") as players:
            players.write("\n".join(NAMESAKES) + "\n")
        self.done("create", "--csv", csv)
        self.path = self.folder / support.LIVE
        self.done("season", "use", "2030", "--create")
        self.done("season", "set", "--managers", "4", "--rounds", "3")
        self.done("manager", "join", *ORDER)
        self.done("manager", "rank", *ORDER)

    def stored(self):
        """Pick number -> (manager id, "P" or "T" and id), as the file has it."""
        return {row["draft no"]: (row["manager id"],
                                  f"P{row['player id']}" if row["player id"] else f"T{row['team id']}")
                for row in self.rows("draft info")}

    def expect(self, *picked, managers=None):
        """The file holds exactly these picks, None for an empty one, each of the manager whose turn it was; the
        program, in a fresh process, and an independent reader see the same."""
        serpentine = [IDS[i] for i in (0, 1, 2, 3, 3, 2, 1, 0, 0, 1, 2, 3)]
        wanted = {number: ((managers or {}).get(number, serpentine[number - 1]), who)
                  for number, who in enumerate(picked, 1) if who}
        self.assertEqual(self.stored(), wanted)
        board = self.told("draft", "board")["picks"]
        self.assertEqual({p["pick"]: (p["manager"]["id"], p["picked"]["id"]) for p in board if p["picked"]}, wanted)
        self.assert_sound()
        self.assert_seen_by_others("draft info")
