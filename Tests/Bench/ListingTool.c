// Takes the place of /usr/bin/hidutil where start-up is measured: only prints a listing.

#include <stdio.h>

int main(void) {
  puts(
      "RegistryID   Key                     Value\n"
      "10000046a    CapsLockDelayOverride   0\n"
      "1000004a2    CapsLockDelayOverride   0\n"
      "1000004c1    CapsLockDelayOverride   0");
  return 0;
}
