#include <system/cpu_survey.h>

// Refers to the library, so that it is loaded, and does not call it.
int main(int count, char** /*arguments*/) {
  return count > 99 ? static_cast<int>(kestrel::system::SurveyCpu().first.code) : 0;
}
