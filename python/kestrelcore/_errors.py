"""The failures that calls raise."""

from __future__ import annotations

import enum


class Status(enum.IntEnum):
    """Why a call failed. The numbers are those of the C interface."""

    INVALID_ARGUMENT = 1
    CAPACITY_TOO_SMALL = 2
    OUT_OF_MEMORY = 3
    PROCESSOR_UNSUPPORTED = 4
    ARCHITECTURE_UNSUPPORTED = 5
    NO_DEVICES = 6
    DEVICE_QUERY_FAILED = 7
    PROCESS_QUERY_FAILED = 8
    MEMORY_QUERY_FAILED = 9
    RUNTIME_FAILED = 10


class KestrelError(Exception):
    """A call failed. The base class of everything that this package raises for a failed call.

    `code` is a `Status`, or a plain number if a later library has a status that this version of the
    package does not know. `message` says in words what failed.
    """

    code: int
    message: str

    def __init__(self, code: int, message: str) -> None:
        super().__init__(code, message)
        self.code = code
        self.message = message

    def __str__(self) -> str:
        return self.message


class InvalidArgumentError(KestrelError, ValueError):
    """A pid below 1, or a device number that no device has."""


class OutOfMemoryError(KestrelError, MemoryError):
    """The library or the GPU runtime ran out of memory."""


class ProcessorUnsupportedError(KestrelError):
    """The processor lacks AVX2 or has an architecture that the survey does not know."""


class NoDevicesError(KestrelError):
    """The machine has no GPU runtime, or that runtime finds no device."""


class DeviceQueryError(KestrelError):
    """The GPU runtime failed to answer a query about a device."""


class ProcessError(KestrelError):
    """There is no such process, it ended during the call, or its figures could not be read."""


class MemoryQueryError(KestrelError):
    """The operating system did not report its memory figures."""


_CLASSES: dict[int, type[KestrelError]] = {
    Status.INVALID_ARGUMENT: InvalidArgumentError,
    Status.OUT_OF_MEMORY: OutOfMemoryError,
    Status.PROCESSOR_UNSUPPORTED: ProcessorUnsupportedError,
    Status.ARCHITECTURE_UNSUPPORTED: ProcessorUnsupportedError,
    Status.NO_DEVICES: NoDevicesError,
    Status.DEVICE_QUERY_FAILED: DeviceQueryError,
    Status.PROCESS_QUERY_FAILED: ProcessError,
    Status.MEMORY_QUERY_FAILED: MemoryQueryError,
}


def error_of(code: int, message: str) -> KestrelError:
    """The exception for a status of the C interface other than success."""
    try:
        code = Status(code)
    except ValueError:
        pass  # a later library has this status
    return _CLASSES.get(code, KestrelError)(code, message)
