// fuzz_pack FILE.mdb PACKED: the packed form of a database file.
#include <fstream>
#include <iostream>

#include "tests/fuzz/PackedFile.h"
#include "tests/support/TestFiles.h"

int main(int count, char** words) {
  if (count != 3) {
    std::cerr << "usage: fuzz_pack FILE.mdb PACKED\n";
    return 2;
  }
  jet::test::WriteWholeFile(words[2], fuzz::Pack(jet::test::ReadWholeFile(words[1])));
}
