"""Meters: how much is used, and how much is free."""

from __future__ import annotations

import ctypes
import enum
import os
from dataclasses import dataclass

from kestrelcore import _library as library
from kestrelcore._errors import Status, error_of

_LARGEST_INT = 2**31 - 1
_LARGEST_SIZE = 2**64 - 1
_FAILS = 2  # KESTREL_FORECAST_FAILS


@dataclass(frozen=True)
class Memory:
    """The machine's physical RAM, in bytes."""

    total: int
    """What the machine has, whatever limit this process runs under."""
    available: int
    """What this process can get without swapping; on Linux no more than the limits of its
    container leave it."""

    @property
    def used(self) -> int:
        """What is not available."""
        return self.total - self.available


@dataclass(frozen=True)
class Vram:
    """The GPUs' memory, in bytes."""

    total: int
    """The sum of all devices."""
    available: int
    """What is free on device 0 alone; see `gpu_memory` for the others."""


@dataclass(frozen=True)
class GpuMemory:
    """The memory of one GPU, in bytes, as its runtime counts allocations."""

    free: int
    total: int


class Limit(enum.Enum):
    """Which figure decides how much RAM is available."""

    UNKNOWN = 0
    MACHINE = 1
    """The machine's own free RAM."""
    GROUP = 2
    """The limit of a memory group (Linux)."""
    COMMIT = 3
    """The commit limit (Linux without overcommit)."""


@dataclass(frozen=True)
class Forecast:
    """The forecast of an allocation. Sizes are in bytes."""

    fits: bool
    spare: int
    """What can still be allocated after it, if it fits."""
    missing: int
    """By how much it is too large, if it does not fit."""
    available: int
    """RAM that this process can get without swapping."""
    committable: int
    """What it can get beyond that."""
    limit: Limit
    limit_group: str
    """The directory of the memory group whose limit decides; empty without one."""


def cpu_usage(pid: int | None = None, interval: float = 0.5) -> float:
    """How busy a process keeps the machine, in percent of all its processors.

    One busy thread on eight processors gives 12.5, all of them busy 100. Measures over the next
    `interval` seconds and blocks for about that long; other threads run meanwhile. Without a pid the
    process is this one. Intervals below 0.1 seconds are too short to be precise.

    Raises `InvalidArgumentError` for a pid below 1 and `ProcessError` if the process cannot be
    measured.
    """
    if not 0 <= interval <= _LARGEST_INT / 1000:
        raise _invalid("The interval is negative or too long")
    percent = ctypes.c_float()
    library.call(library.cpu_usage, _pid(pid), round(interval * 1000), ctypes.byref(percent))
    return percent.value


def process_memory(pid: int | None = None) -> int:
    """The resident memory (working set) of a process in bytes; without a pid that of this one.

    Raises `InvalidArgumentError` for a pid below 1 and `ProcessError` if the process cannot be
    measured.
    """
    return library.figure(library.process_used_ram, _pid(pid))


def memory() -> Memory:
    """The machine's RAM. Raises `MemoryQueryError` if the system does not report its figures."""
    return Memory(
        total=library.figure(library.machine_physical_ram),
        available=library.figure(library.available_ram),
    )


def vram() -> Vram:
    """The GPUs' memory. Raises `NoDevicesError` without a GPU, `DeviceQueryError` if one fails."""
    return library.on_own_thread(
        lambda: Vram(
            total=library.figure(library.machine_physical_vram),
            available=library.figure(library.available_vram),
        )
    )


def gpu_memory(device: int) -> GpuMemory:
    """The memory of one device.

    Raises `NoDevicesError` without a GPU, `InvalidArgumentError` for a number that no device has,
    and `DeviceQueryError` if the device fails.
    """
    if not 0 <= device <= _LARGEST_INT:
        raise _invalid("The device number is negative or too large")
    return library.on_own_thread(lambda: _gpu_memory(device))


def will_fail_to_allocate(nbytes: int) -> bool:
    """Whether an allocation of `nbytes` would fail now.

    Exactly when it exceeds the available RAM by more than the system can still commit beyond it.
    Raises `MemoryQueryError` if the system does not report its figures.
    """
    will_fail = ctypes.c_int32()
    library.call(library.will_fail_to_allocate, _size(nbytes), ctypes.byref(will_fail))
    return will_fail.value != 0


def memory_forecast(nbytes: int) -> Forecast:
    """Whether an allocation of `nbytes` would fit now, by how much, and what decides it.

    Raises `MemoryQueryError` if the system does not report its figures.
    """
    record = library.new(library.ForecastRecord)
    library.call(library.memory_forecast, _size(nbytes), ctypes.byref(record))
    return Forecast(
        fits=record.outcome != _FAILS,
        spare=record.spare,
        missing=record.missing,
        available=record.available,
        committable=record.committable,
        limit=Limit(record.limit) if record.limit in range(4) else Limit.UNKNOWN,
        limit_group=os.fsdecode(record.limit_group),
    )


def _gpu_memory(device: int) -> GpuMemory:
    free = ctypes.c_uint64()
    total = ctypes.c_uint64()
    library.call(library.gpu_memory, device, ctypes.byref(free), ctypes.byref(total))
    return GpuMemory(free.value, total.value)


def _invalid(message: str) -> Exception:
    return error_of(Status.INVALID_ARGUMENT, message)


def _pid(pid: int | None) -> int:
    if pid is None:
        return os.getpid()
    if not -_LARGEST_INT <= pid <= _LARGEST_INT:
        raise _invalid("The pid is too large")  # ctypes would cut it to another process's
    return pid


def _size(nbytes: int) -> int:
    if not 0 <= nbytes <= _LARGEST_SIZE:
        raise _invalid("The size is negative or too large")
    return nbytes
