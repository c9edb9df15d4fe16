#!/usr/bin/env python3
"""Writes the sample league in data/sample/: CSV files for `halcyra create --sample`.

Cities, nicknames and people are invented. The same files come out every time.
Usage: tools/make-sample-league.py [FOLDER]
"""

import csv
import pathlib
import random
import sys

POSITIONS = [
    ("QB", "Quarterback"),
    ("RB", "Running back"),
    ("WR", "Wide receiver"),
    ("TE", "Tight end"),
    ("K", "Kicker"),
    ("DEF", "Team defense"),
]
TEAM_POSITION = 6

TEAMS = [
    ("AMB", "Amberfall", "Herons"), ("ASP", "Aspenmoor", "Anvils"), ("BAR", "Barrowgate", "Badgers"),
    ("BEL", "Bellwether", "Bellringers"), ("BRI", "Brightmere", "Beacons"), ("CAN", "Candlewick", "Comets"),
    ("CIN", "Cinderbank", "Stokers"), ("COP", "Copperhollow", "Coyotes"), ("DRI", "Driftwater", "Dories"),
    ("DUN", "Dunmarrow", "Dragoons"), ("EBB", "Ebbsworth", "Egrets"), ("ELD", "Elderglen", "Elks"),
    ("FAL", "Fallowby", "Flintknappers"), ("FEN", "Fennimarsh", "Ferrymen"), ("GRA", "Granitebeck", "Geckos"),
    ("GUL", "Gullhaven", "Gulls"), ("HAR", "Harrowdale", "Haymakers"), ("HOL", "Hollowbrook", "Hedgehogs"),
    ("IRO", "Ironmeadow", "Irons"), ("JUN", "Juniper Cross", "Jugglers"), ("KES", "Kestrelton", "Kites"),
    ("LAR", "Larkspur Falls", "Larks"), ("MIS", "Mistlethwaite", "Millwrights"), ("NET", "Nettlestone", "Newts"),
    ("OAK", "Oakenshaw", "Otters"), ("PEB", "Pebblecombe", "Puffins"), ("QUI", "Quillhaven", "Quills"),
    ("ROW", "Rowanbridge", "Rooks"), ("SAL", "Saltmarrow", "Skippers"), ("THI", "Thistledown", "Thatchers"),
    ("UMB", "Umberwell", "Umpires"), ("WIL", "Willowmere", "Wardens"),
]

# Players of each position in a team.
SQUAD = [(1, 2), (2, 4), (3, 5), (4, 2), (5, 1)]
FREE_AGENTS = 16
RETIRED = 16

PRIZE_TYPES = ["Weekly", "Season", "Playoffs", "Fun"]
PRIZES = [
    ("Weekly high score", 1), ("Weekly second place", 1), ("Weekly best team defense", 1),
    ("Season champion", 2), ("Season runner-up", 2), ("Season third place", 2), ("Most points of the season", 2),
    ("Playoff winner", 3), ("Playoff finalist", 3), ("Best playoff week", 3),
    ("Best draft", 4), ("Unluckiest loss", 4),
]

FIRST_NAMES = [
    "Abner", "Alaric", "Anson", "Barnaby", "Basil", "Benedikt", "Caspar", "Cedric", "Clement", "Corin", "Cuthbert",
    "Dorian", "Edmund", "Elmo", "Emeric", "Evander", "Fabian", "Florian", "Gawain", "Godfrey", "Hadrian", "Hector",
    "Humbert", "Ignatz", "Isidor", "Jasper", "Jocelyn", "Kilian", "Lambert", "Leander", "Lionel", "Lucian", "Magnus",
    "Merrick", "Néstor", "Octavian", "Olaf", "Osric", "Percival", "Quentin", "Rainer", "Roderick", "Rufus", "Séamus",
    "Sebald", "Silvan", "Tancred", "Theobald", "Ulric", "Valentin", "Wendel", "Wilfred", "Yorick", "Zacharias", "Zoltán",
]
FRONT = [
    "Amber", "Ash", "Bramble", "Brindle", "Cobble", "Copper", "Crumble", "Dapple", "Dimble", "Fennel", "Fiddle",
    "Gander", "Gorse", "Hazel", "Huckle", "Jingle", "Kettle", "Lantern", "Marrow", "Mottle", "Nettle", "Nimble",
    "Pebble", "Pumpkin", "Quibble", "Rumble", "Saddle", "Sorrel", "Tangle", "Thimble", "Trundle", "Wobble",
]
BACK = [
    "bottom", "bridge", "brook", "by", "croft", "dale", "field", "ford", "gate", "ham", "hollow", "hurst", "ley",
    "marsh", "moor", "stone", "thorpe", "thwaite", "ton", "wick", "wood", "worth",
]


def people(source, count):
    """Distinct (first name, last name) pairs; some last names have an apostrophe or a hyphen."""
    seen = set()
    while len(seen) < count:
        last = source.choice(FRONT) + source.choice(BACK)
        kind = source.random()
        if kind < 0.04:
            last = "O'" + last
        elif kind < 0.08:
            last = last + "-" + source.choice(FRONT)
        person = (source.choice(FIRST_NAMES), last)
        if person not in seen:
            seen.add(person)
            yield person


def players(source):
    """Rows of players.csv: every team's squad, then free agents and retired players, who have no team."""
    slots = []
    for team in range(1, len(TEAMS) + 1):
        for position, count in SQUAD:
            slots += [(position, team, False)] * count
    slots += [(source.randint(1, 5), "", False) for _ in range(FREE_AGENTS)]
    slots += [(source.randint(1, 5), "", True) for _ in range(RETIRED)]
    for number, ((first, last), (position, team, retired)) in enumerate(zip(people(source, len(slots)), slots), 1):
        yield number, first, last, position, team, "true" if retired else "false"


def write(folder, name, header, rows):
    with open(folder / name, "w", encoding="utf-8", newline="") as out:
        writer = csv.writer(out)
        writer.writerow(header)
        writer.writerows(rows)


def main():
    folder = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else pathlib.Path(__file__).parent.parent / "data" / "sample"
    source = random.Random(1906)
    write(folder, "positions.csv", ["id", "abbr", "desc"], [(i, *p) for i, p in enumerate(POSITIONS, 1)])
    write(folder, "teams.csv", ["id", "abbr", "name", "nickname", "position id"],
          [(i, *t, TEAM_POSITION) for i, t in enumerate(TEAMS, 1)])
    write(folder, "prize-types.csv", ["type id", "type name"], list(enumerate(PRIZE_TYPES, 1)))
    write(folder, "prizes.csv", ["id", "desc", "type id"], [(i, *p) for i, p in enumerate(PRIZES, 1)])
    write(folder, "players.csv", ["id", "first name", "last name", "position id", "team id", "is retired"],
          players(source))
    write(folder, "managers.csv", ["id", "first name", "last name"],
          [(i, *p) for i, p in enumerate(people(source, 12), 1)])


if __name__ == "__main__":
    main()
