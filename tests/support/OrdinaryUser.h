// The rights of an ordinary user, for tests that an administrator runs.
#pragma once

#include <sys/types.h>
#include <unistd.h>

namespace zq::testing {

// Where the process is an administrator's, it acts as nobody until the end; else nothing changes.
class OrdinaryUser {
 public:
  static constexpr uid_t Nobody = 65534;

  OrdinaryUser() : before_(::geteuid()), isReady_(before_ != 0 || ::seteuid(Nobody) == 0) {}
  ~OrdinaryUser() {
    if (::seteuid(before_) != 0)
      ::_exit(1);
  }
  OrdinaryUser(const OrdinaryUser&) = delete;
  OrdinaryUser& operator=(const OrdinaryUser&) = delete;

  // False where the process may not give up its rights.
  bool isReady() const { return isReady_; }

  // Gives a folder to the user that the process will be.
  static bool own(const char* path) {
    return ::geteuid() != 0 || ::chown(path, Nobody, gid_t(-1)) == 0;
  }

 private:
  uid_t before_;
  bool isReady_;
};

} // namespace zq::testing
