// What the candidates of watching_benchmark are put to, each in a process of its own.
#pragma once

#include <map>
#include <string>
#include <vector>

// What was measured, by the name of the figure: a value for each sample.
using Figures = std::map<std::string, std::vector<double>>;

// Folders below the benchmark's own that all share: files/000 to files/099 with a thousand files
// each, "w" and a number counted through.
std::string sharedFile(const std::string& folder, int number);
constexpr int SharedFiles = 100'000;
constexpr int SharedFilesInAFolder = 1'000;

// The main function of such a process: --candidate NAME WORK FOLDER, FOLDER its own in that of the
// benchmark. For each line that it reads it does the work once and prints "figure value" lines and
// "end"; instead of that "failed".
int runWatchingCandidate(int argc, char** argv);
