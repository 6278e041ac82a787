// The least that any program must do to get hidutil's output: launch it, read to the end, reap it.
// `Zephlin status` is measured against it.

#include <spawn.h>
#include <stddef.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

int main(void) {
  char* const arguments[] = {"/usr/bin/hidutil",
                             "property",
                             "--matching",
                             "{\"PrimaryUsagePage\":1,\"PrimaryUsage\":6}",
                             "--get",
                             "CapsLockDelayOverride",
                             NULL};
  int ends[2];
  if (pipe(ends) == -1) {
    return 1;
  }
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDERR_FILENO);
  posix_spawn_file_actions_addclose(&actions, ends[0]);
  posix_spawn_file_actions_addclose(&actions, ends[1]);
  pid_t child;
  if (posix_spawn(&child, arguments[0], &actions, NULL, arguments, environ) != 0) {
    return 1;
  }
  close(ends[1]);
  char text[4096];
  while (read(ends[0], text, sizeof text) > 0) {
  }
  int status = 0;
  return waitpid(child, &status, 0) == child && status == 0 ? 0 : 1;
}
