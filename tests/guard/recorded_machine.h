#pragma once

#include <string>

namespace kestrel::tests {

// Where the calling process seems to be. Its memory group is the same either way.
enum class Place { kOutsideOfContainers, kContainer };

// The ids of this process and of another one. They are always the same, because an id with more
// digits takes more instructions.
constexpr int kOwnPid = 12345;
constexpr int kOtherPid = 23456;

// Makes this program read the files of a recorded machine, which are below `root`, instead of those
// of the machine that it runs on. The number of system calls stays the same. All processes have the
// same memory and clock, and the steady clock goes on by a microsecond whenever it is read.
void UseRecordedMachine(const std::string& root);

void SetPlace(Place place);

}  // namespace kestrel::tests
