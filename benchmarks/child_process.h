// Processes that a benchmark starts, read through a pipe.
#pragma once

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <vector>

// A child process with a pipe from its standard output.
struct Child {
  pid_t process = -1; // -1 where it could not be started
  int output = -1;
};

// Starts the program `arguments[0]`. `input` becomes its standard input and `errors` its standard
// error; -1 leaves it this process's own.
inline Child startChild(const std::vector<std::string>& arguments, int input = -1,
                        int errors = -1) {
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0)
    return {};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  if (input >= 0)
    posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
  if (errors >= 0)
    posix_spawn_file_actions_adddup2(&actions, errors, STDERR_FILENO);
  std::vector<char*> words;
  for (const std::string& argument : arguments)
    words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);
  Child child;
  if (::posix_spawnp(&child.process, words[0], &actions, nullptr, words.data(), environ) != 0)
    child.process = -1;
  posix_spawn_file_actions_destroy(&actions);
  ::close(ends[1]);
  child.output = ends[0];
  return child;
}

// Everything up to the end of what `descriptor` gives.
inline std::string readAll(int descriptor) {
  std::string text;
  char bytes[256];
  for (ssize_t count; (count = ::read(descriptor, bytes, sizeof bytes)) > 0;)
    text.append(bytes, std::size_t(count));
  return text;
}
