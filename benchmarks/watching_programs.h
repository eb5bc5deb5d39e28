// The programs inotifywait and fswatch as candidates of watching_benchmark.
#pragma once

#include "benchmarks/watching_candidates.h"

// "Inotifywait" or "Fswatch", each set up for speed: the events that are looked for and no others,
// one path a line and nothing else, fswatch by inotify and with the least latency that it
// documents. A thread reads the lines from a pipe and reports. Adding again is their users' loop
// around a program that ends with its first report. Null for other names.
std::unique_ptr<Watching> makeProgramWatching(const std::string& candidate,
                                              Watching::Report report);
