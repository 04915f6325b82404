// The kzgis command as a program.

#include <iostream>

#include "tools/command.h"

int main(int argc, char** argv) {
  std::ios::sync_with_stdio(false);
  return kzgis::tools::run_command(argc, argv);
}
