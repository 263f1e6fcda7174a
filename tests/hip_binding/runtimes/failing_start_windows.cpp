#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE /*module*/, DWORD /*reason*/, LPVOID /*reserved*/) {
  return FALSE;
}
