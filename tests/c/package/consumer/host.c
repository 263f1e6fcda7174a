#include <kestrelcore.h>
#include <stdio.h>

int main(void) {
  uint64_t bytes = 0;
  kestrel_status status = kestrel_machine_physical_ram(&bytes, NULL);
  printf("%s %s\n", kestrel_version_text(), kestrel_status_name(status));
  return bytes > 0 ? 0 : 1;
}
