#pragma once

// The diagnostic routines. Each prints one report on std::cout; error values of the library are
// printed as they are.

// The CPU block and the GPU block of SurveyHardware().
void PrintHardwareSurvey();

// One line with the CPU usage of `pid` over `split_ms` milliseconds; blocks for that long.
void PrintCpuUsage(int pid, int split_ms);

// One line with the memory that `pid` occupies.
void PrintProcessMemory(int pid);

// The machine's RAM and VRAM, physical and free.
void PrintMachineMemory();
