#pragma once

#include <string_view>
#include <vector>

#include "simulator/control.h"
#include "simulator/environment.h"

// The masks that hide devices from a program: lists of indices, such as "2,0". The first entry that
// is no index of a device ends the list; "-1" so hides all.

namespace kestrel::simulator {

// ROCR_VISIBLE_DEVICES: an empty mask hides all devices, a repeated index ends the list, and an
// index may be written in any form that strtol accepts. Returns the visible devices in their order.
std::vector<int> DevicesOfRocrMask(std::string_view mask, int device_count);

// HIP_VISIBLE_DEVICES, which counts the devices that ROCR_VISIBLE_DEVICES leaves: an empty mask
// hides none, a repeated index counts once, and an index is written without sign, space or leading
// zero. Returns the visible devices in the order of the mask.
std::vector<int> DevicesOfHipMask(std::string_view mask, int device_count);

// Returns the machine as its masks show it. A fault of a device follows the device to its new
// index, and is dropped with it. `claimed_device_count` stays.
Machine VisiblePart(Machine machine, const Environment& environment);

}  // namespace kestrel::simulator
