#include <kestrelcore.h>

// Refers to the library, so that it is loaded, and does not call it.
int main(int count, char** /*arguments*/) {
  return count > 99 ? kestrel_survey_cpu(nullptr, nullptr) : 0;
}
