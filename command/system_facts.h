#pragma once

#include <string>
#include <vector>

#include "command/observation.h"

// What `kestrel explain` asks of the operating system: defined once in command/linux and once in
// command/windows.

namespace kestrel::command {

// Whether GPUs are reached through device files.
bool HasDeviceFiles();

// /dev/kfd and the render nodes below /dev/dri of a system whose files are below `root`, "" for
// this one. Empty on Windows.
std::vector<DeviceFile> ReadDeviceFiles(const std::string& root);

// The cards of AMD, with the kernel's figures; on Linux from /sys/class/drm below `root`, on
// Windows from the registry, which has only the total of the VRAM.
std::vector<Card> ReadCards(const std::string& root);

}  // namespace kestrel::command
