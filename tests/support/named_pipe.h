#ifndef KZGIS_TESTS_SUPPORT_NAMED_PIPE_H
#define KZGIS_TESTS_SUPPORT_NAMED_PIPE_H

#include <sys/stat.h>
#include <unistd.h>

#include <stdexcept>
#include <string>

/// A named pipe without anybody at its other end.
///
/// Who waits for that end is ended by an alarm, and the whole test program with it.
class NamedPipe {
 public:
  explicit NamedPipe(const std::string& path) {
    if (mkfifo(path.c_str(), 0600) != 0) throw std::runtime_error("no pipe " + path);
    alarm(kPatience_s);
  }
  ~NamedPipe() { alarm(0); }
  NamedPipe(const NamedPipe&) = delete;
  NamedPipe& operator=(const NamedPipe&) = delete;

 private:
  static constexpr unsigned kPatience_s = 20;
};

#endif
