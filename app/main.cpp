#include "app/commands/program.h"

int main(int argc, char** argv) {
  return zq::app::runProgram(argc, argv);
}
