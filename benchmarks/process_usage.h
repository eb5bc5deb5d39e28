// What a process takes of the machine.
#pragma once

#include <QtCore/QtGlobal>

// Readings of /proc; those of a process that has gone are zero.
struct ProcessReading {
  double processorSeconds = 0; // of all its threads, in the program and in the kernel for it
  double sleeps = 0;           // how often its threads went to sleep, and so were woken
  double seconds = 0;          // when it was taken, on the monotonic clock

  static ProcessReading of(qint64 process);
};

// Between two readings.
struct ProcessUsage {
  double processorPercent = 0; // of one processor
  double wakeUps = 0;          // a second

  static ProcessUsage between(const ProcessReading& first, const ProcessReading& last);
};

struct ProcessMemory {
  double resident = 0;     // MiB
  double proportional = 0; // the same with what is shared divided among those who share it

  static ProcessMemory of(qint64 process);
};
