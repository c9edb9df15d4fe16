#include <cstdio>

#include "cli/line/App.h"
#include "cli/output/System.h"

int main(int argc, char** argv) {
  cli::PrepareStandardStreams();
  cli::Output output(stdout);
  cli::Messages messages(stderr, output, cli::IsTerminal(stderr) && cli::EnvironmentText("NO_COLOR").empty());
  return static_cast<int>(cli::Run(cli::CommandLineWords(argc, argv), output, messages));
}
