// The program: which command is meant, and how it ends.
#pragma once

namespace zq::app {

// Runs the command that the arguments name, `run` where they name none, and returns the exit
// status. Failures are one line on standard error; messages of the libraries underneath are not
// shown, warnings of this program's own are.
int runProgram(int argc, char** argv);

} // namespace zq::app
