"""What a machine offers to a program, and how much of it is free.

Every call measures afresh and returns plain values; sizes are in bytes. A call that fails raises a
subclass of `KestrelError`, whose `code` says what failed and whose `message` says it in words.

    >>> import kestrelcore
    >>> kestrelcore.will_fail_to_allocate(8 << 30)
    False

Calls that ask the GPU runtime do so on a short-lived thread of their own, since they select devices
there: the current HIP device of the calling thread stays what it was.
"""

from kestrelcore._errors import (
    DeviceQueryError,
    InvalidArgumentError,
    KestrelError,
    MemoryQueryError,
    NoDevicesError,
    OutOfMemoryError,
    ProcessError,
    ProcessorUnsupportedError,
    Status,
)
from kestrelcore._library import __version__
from kestrelcore._meters import (
    Forecast,
    GpuMemory,
    Limit,
    Memory,
    Vram,
    cpu_usage,
    gpu_memory,
    memory,
    memory_forecast,
    process_memory,
    vram,
    will_fail_to_allocate,
)
from kestrelcore._surveys import Cpu, Gpu, Survey, cpu, gpus, survey

__all__ = [
    "Cpu",
    "DeviceQueryError",
    "Forecast",
    "Gpu",
    "GpuMemory",
    "InvalidArgumentError",
    "KestrelError",
    "Limit",
    "Memory",
    "MemoryQueryError",
    "NoDevicesError",
    "OutOfMemoryError",
    "ProcessError",
    "ProcessorUnsupportedError",
    "Status",
    "Survey",
    "Vram",
    "__version__",
    "cpu",
    "cpu_usage",
    "gpu_memory",
    "gpus",
    "memory",
    "memory_forecast",
    "process_memory",
    "survey",
    "vram",
    "will_fail_to_allocate",
]
