// Makes the next pick of a league's draft, takes it back, and stores nothing:  draft FOLDER NAME
#include <cstdio>

#include <HLLeague/DraftOrder.h>
#include <HLLeague/Drafting.h>
#include <HLLeague/Failure.h>
#include <HLLeague/Find.h>
#include <HLLeague/League.h>

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  try {
    HLLeague::LeagueOptions options;
    options.folder = argv[1];
    HLLeague::League league(options);
    HLLeague::DraftSession draft(league);
    HLLeague::WantedPick wanted;
    wanted.words.who = argv[2];
    const HLLeague::ChangedPick made = HLLeague::FillPick(draft, wanted);
    const auto manager = HLLeague::DraftOrder(draft.Season()).ManagerOn(made.number);
    std::printf("%s would take %s.\n", HLLeague::FullName(*manager).c_str(),
                made.now.what->PickName().c_str());
    HLLeague::UndoLast(draft);
    std::printf("%zu picks are not saved.\n", draft.Unsaved().size());
    return 0;
  } catch (const HLLeague::Failure& failure) {
    std::printf("%s\n%s\n", failure.what(), failure.Hint().c_str());
    return 1;
  }
}
