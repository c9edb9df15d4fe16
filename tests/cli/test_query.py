"""`query`: select statements on the fixtures, against answers worked out from the expected rows."""
import support
from support import FIXTURES, REFUSED

LEAGUE = FIXTURES / "league.mdb"


class Query(support.CliTest):
    def rows(self, statement):
        return support.tsv_rows(self.succeed("query", statement, "--file", LEAGUE))[1]

    def test_conditions_and_order(self):
        players = support.expected_rows("player info")
        retired = [p[:1] for p in players if p[5] == "-1" and p[4] is None]
        self.assertEqual(self.rows("select id from [player info] where [is retired] = true and [team id] is null "
                                   "order by id"), retired)
        rankings = sorted((int(r[3]), int(r[1])) for r in support.expected_rows("playing info") if r[0] == "11")
        self.assertEqual(self.rows("select ranking, [manager id] from [playing info] where [season id] = 11 "
                                   "order by ranking"), [[str(a), str(b)] for a, b in rankings])

    def test_like(self):
        players = support.expected_rows("player info")
        wanted = [p[0] for p in players if p[2].lower().startswith("b") and "v" in p[2].lower()]
        self.assertTrue(wanted)
        self.assertEqual([r[0] for r in self.rows("select id from [player info] where [last name] like 'B*v*' "
                                                  "order by id")], wanted)

    def test_join_and_aggregate(self):
        last_names = {m[0]: m[2] for m in support.expected_rows("manager info")}
        picks = [[d[1], last_names[d[2]]] for d in support.expected_rows("draft info") if d[0] == "5"]
        self.assertEqual(self.rows("select d.[draft no], m.[last name] from [draft info] d inner join [manager info] m "
                                   "on d.[manager id] = m.[id] where d.[season id] = 5 order by d.[draft no]"), picks)
        highest = max(int(p[0]) for p in support.expected_rows("player info"))
        self.assertEqual(self.rows("select max(id) as highestid from [player info]"), [[str(highest)]])
        self.assertEqual(self.rows("select max(id) as highestid from [player info] where id < 0"), [[None]])

    def test_json_keeps_columns_of_one_name_apart(self):
        teams = {team[0]: team[1] for team in support.expected_rows("team info")}
        joined = ("select p.id, t.id, t.abbr from [player info] p inner join [team info] t on p.[team id] = t.id "
                  "where p.id = 1")
        self.assertEqual(support.json_of(self.succeed("query", joined, "--file", LEAGUE, "--json")),
                         [{"p.id": 1, "t.id": 12, "abbr": teams["12"]}])
        twice = "select id, abbr, id from [team info] where id = 1"
        self.assertEqual(support.json_of(self.succeed("query", twice, "--file", LEAGUE, "--json")),
                         [{"id": 1, "abbr": teams["1"], "id 2": 1}])

    def test_broken_statements_are_refused_and_print_nothing(self):
        cases = {
            "select": "", "": "", "select * from": "", "select * from [no such table]": "no such table",
            "select [no such column] from [team info]": "no such column",
            "select * from [team info] where": "", "select * from [team info] where id =": "",
            "select * from [team info] where name like '[a'": "", "select * from [team info] where ((id = 1)": "",
            "select * from [team info] where name = 'open": "", "select * from []": "",
            "select * from [team info] where name > 3": "", "select * from [team info] order by": "",
            "delete from [team info]": "", "drop table [team info]": "", "select * frm [team info]": "",
            "select * from [team info]; delete from [team info]": "", "(" * 5000: "",
        }
        before = support.digest(LEAGUE)
        for statement, says in cases.items():
            with self.subTest(statement=statement[:60]):
                done = self.fail_with(REFUSED, "query", statement, "--file", LEAGUE, says=says)
                self.assertEqual(done.stdout, "")
        self.assertEqual(support.digest(LEAGUE), before)


if __name__ == "__main__":
    support.main()
