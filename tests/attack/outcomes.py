"""What a call of the library may return under a fault: the right result, or a failure that its header
documents. Anything else is wrong."""

import re

MOVING = 64 << 20  # bytes by which the free memory of a group may move between two calls
GPU_CALLS = re.compile(r".*(Gpu|gpu|VRAM|vram|Hardware|hardware).*")
MEMORY_CALLS = re.compile(r"getAvailableRAM|getUsedRAM|willFailToAllocate|kestrel_available_ram|"
                          r"kestrel_used_ram|kestrel_will_fail_to_allocate|kestrel_memory_forecast")

# The errors of a file that this process does not have, which means that there is no such limit
# (docs/memory-in-containers.md).
ABSENT = {"ENOENT", "ENOTDIR", "ENODEV", "EACCES", "EPERM"}
READING = {"open", "openat", "read", "pread64", "access", "faccessat", "faccessat2"}
# The calls that a signal may interrupt, and that are then made again.
REPEATED = {"open", "openat", "read", "pread64", "clock_nanosleep"}

NO_GPUS = (r"3 'Error trying to query ROCm gpus: No hip devices found!' 0 GPUs|"
           r"4 'Error trying to query ROCm gpus: (Invalid hip device|Failed to set hip device|"
           r"Failed to get memory info for hip device) at device id'\d+'' 0 GPUs")
NO_CPU = r"2 'Unsupported processor architecture' Unknown \[\]"
ANY_GPUS = rf"({NO_GPUS}|1 '' \d+ GPUs.*)"
ANY_CPU = rf"({NO_CPU}|1 '' x86_64 .*)"

C_NO_CPU = r"KESTREL_ARCHITECTURE_UNSUPPORTED 'Unsupported processor architecture' 2 0"
C_NO_MEMORY_FOR_CPU = r"KESTREL_OUT_OF_MEMORY 'Out of memory' 2 0"
C_NO_GPUS = (r"KESTREL_(NO_DEVICES|DEVICE_QUERY_FAILED|OUT_OF_MEMORY|RUNTIME_FAILED) '.+' 0 GPUs")
C_ANY_GPUS = rf"({C_NO_GPUS}|KESTREL_OK '' \d+ GPUs.*)"
C_ANY_CPU = rf"({C_NO_CPU}|{C_NO_MEMORY_FOR_CPU}|KESTREL_OK '' 0 \d+)"
C_NO_MEMORY = r"KESTREL_MEMORY_QUERY_FAILED 'Failed to get global memory status\.' "
C_NO_PROCESS = r"KESTREL_PROCESS_QUERY_FAILED '.+' "
C_NO_VRAM = r"KESTREL_(NO_DEVICES|DEVICE_QUERY_FAILED) '.+' "

# What each call returns where it fails.
FAILURES = {
    "SurveyCpu": NO_CPU,
    "SurveyGpus": NO_GPUS,
    "SurveyHardware": rf"{ANY_GPUS} \| {ANY_CPU}",
    "CpuInstructionSetExtensionsToStr": "(?!)",
    "GetCpuUsage": r"-1\.000000",
    "getMachinePhysicalRAM": "0",
    "getAvailableRAM": "0",
    "getUsedRAM": "0",
    "getProcessUsedRAM": "-1",
    "GetCpuUsage of itself": r"-1\.000000",
    "getProcessUsedRAM of itself": "-1",
    "getMachinePhysicalVRAM": r"\d+",  # the sum of the devices that could be read
    "getAvailableVRAM": "0",
    "willFailToAllocate": "0",
    "kestrel_survey_cpu": rf"{C_NO_CPU}|{C_NO_MEMORY_FOR_CPU}",
    "kestrel_survey_gpus": C_NO_GPUS,
    "kestrel_survey_hardware": rf"{C_ANY_GPUS} \| {C_ANY_CPU}",
    "kestrel_gpu_memory": C_NO_VRAM + "0 0",
    "kestrel_cpu_usage": C_NO_PROCESS + r"-1\.000000",
    "kestrel_process_used_ram": C_NO_PROCESS + "0",
    "kestrel_machine_physical_ram": C_NO_MEMORY + "0",
    "kestrel_available_ram": C_NO_MEMORY + "0",
    "kestrel_used_ram": C_NO_MEMORY + "0",
    "kestrel_machine_physical_vram": C_NO_VRAM + r"\d+",
    "kestrel_available_vram": C_NO_VRAM + "0",
    "kestrel_will_fail_to_allocate": C_NO_MEMORY + "0",
    "kestrel_memory_forecast": C_NO_MEMORY + "0 0 0 0 0 ''",
}

# The calls that report every failure in one line on standard error, and how that begins.
REPORTS = {
    "GetCpuUsage": r"Failed to (open process with|get (new )?process times for) PID |^$",
    "getMachinePhysicalVRAM": r"hipGetDevice(Count|Properties) failed|getMachinePhysicalVRAM_ROCm no ",
    "willFailToAllocate": r"Failed to get global memory status\.",
}

# The calls that let std::bad_alloc out, as C++ functions that return strings and lists do.
THROWING = {"SurveyCpu", "SurveyGpus", "SurveyHardware", "CpuInstructionSetExtensionsToStr"}


def numbers(text):
    return [float(number) for number in re.findall(r"-?\d+(?:\.\d+)?", text)]


def is_near(call, figure, right):
    """Whether a figure is the right one, as far as it moves."""
    margins = {"getProcessUsedRAM of itself": 16 << 20, "GetCpuUsage of itself": 100,
               "getProcessUsedRAM": 1 << 20, "kestrel_process_used_ram": 1 << 20}
    margin = MOVING if MEMORY_CALLS.fullmatch(call) else margins.get(call, 0)
    return abs(figure - right) <= margin and (figure < 0) == (right < 0)


def agrees(call, result, right):
    """Whether the result is the right one, apart from how much figures move."""
    if result == right:
        return True
    shapes = [re.sub(r"-?\d+(\.\d+)?", "#", text) for text in (result, right)]
    return shapes[0] == shapes[1] and all(
        is_near(call, figure, expected)
        for figure, expected in zip(numbers(result), numbers(right)))


def fails_as_documented(line):
    """Whether a call of the probe failed in the way that its header documents."""
    if not re.fullmatch(FAILURES[line.call], line.without_doubled_status()):
        return False
    return re.search(REPORTS.get(line.call, ""), line.error) is not None


def complaint(line, reference, machine, fault):
    """What is wrong with a line of the probe; "" if nothing is. `reference` is the same call without a
    fault, `machine` the same outside of memory groups."""
    if line.end != "exit 0":
        return f"ended by {line.end}"
    if line.leaked != reference.leaked:
        return f"left {line.leaked} descriptors open"
    if not agrees(line.call, line.again, reference.again) and not fault.may_last(line):
        return f"returned {line.again!r} after the fault instead of {reference.again!r}"
    if agrees(line.call, line.first, reference.first):
        return ""
    if not fault.must_succeed(line) and fails_as_documented(line):
        return ""
    if fault.throws and line.first == "bad_alloc" and line.call in THROWING:
        return ""
    if fault.hides_limits and MEMORY_CALLS.fullmatch(line.call):
        if agrees(line.call, line.first, machine.first):
            return ""
    return f"returned {line.first!r} instead of {reference.first!r}"
