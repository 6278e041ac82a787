// WithPrivateBin DIRECTORY PROGRAM [ARGUMENT …]
//
// Runs PROGRAM where DIRECTORY stands as /usr/bin and /run is empty, in a mount namespace of its
// own, so that a program of the tests can stand as /usr/bin/hidutil, or a service listen at its
// usual place, without a trace on the machine. Descriptors, signals, environment and process
// identifier stay as they are.

#define _GNU_SOURCE
#include <fcntl.h>
#include <sched.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mount.h>
#include <unistd.h>

static void fail(const char* what) {
  perror(what);
  exit(126);
}

static void write_file(const char* path, const char* text) {
  const int file = open(path, O_WRONLY | O_CLOEXEC);
  const size_t length = strlen(text);
  if (file == -1 || write(file, text, length) != (ssize_t)length) {
    fail(path);
  }
  close(file);
}

static void map_to_itself(const char* path, unsigned identifier) {
  char map[64];
  snprintf(map, sizeof map, "%u %u 1", identifier, identifier);
  write_file(path, map);
}

// Anyone may have a mount namespace within a user namespace in which he keeps his own identity.
static void enter_namespaces(void) {
  const uid_t user = geteuid();
  const gid_t group = getegid();
  if (user == 0) {
    if (unshare(CLONE_NEWNS) == -1) {
      fail("unshare");
    }
    return;
  }
  if (unshare(CLONE_NEWUSER | CLONE_NEWNS) == -1) {
    fail("unshare");
  }
  map_to_itself("/proc/self/uid_map", user);
  write_file("/proc/self/setgroups", "deny");
  map_to_itself("/proc/self/gid_map", group);
}

int main(int argc, char* argv[]) {
  if (argc < 3) {
    fprintf(stderr, "usage: WithPrivateBin DIRECTORY PROGRAM [ARGUMENT ...]\n");
    return 64;
  }
  enter_namespaces();
  if (mount("none", "/", NULL, MS_REC | MS_PRIVATE, NULL) == -1) {
    fail("mount /");
  }
  if (mount(argv[1], "/usr/bin", NULL, MS_BIND, NULL) == -1) {
    fail("mount /usr/bin");
  }
  if (mount("none", "/run", "tmpfs", 0, "mode=755") == -1) {
    fail("mount /run");
  }
  execv(argv[2], argv + 2);
  fail(argv[2]);
  return 126;
}
