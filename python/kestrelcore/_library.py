"""The C library, its records and its functions."""

from __future__ import annotations

import ctypes
import sys
import threading
from pathlib import Path
from typing import Any, Callable, TypeVar

from kestrelcore._errors import error_of

_T = TypeVar("_T")
_Record = TypeVar("_Record", bound=ctypes.Structure)

OK = 0
CAPACITY_TOO_SMALL = 2


class Result(ctypes.Structure):
    """kestrel_result"""

    _fields_ = [
        ("struct_size", ctypes.c_size_t),
        ("status", ctypes.c_int32),
        ("message", ctypes.c_char * 1020),
    ]


class CpuRecord(ctypes.Structure):
    """kestrel_cpu"""

    _fields_ = [
        ("struct_size", ctypes.c_size_t),
        ("architecture", ctypes.c_int32),
        ("extensions", ctypes.c_uint32),
    ]


class GpuRecord(ctypes.Structure):
    """kestrel_gpu"""

    _fields_ = [
        ("struct_size", ctypes.c_size_t),
        ("total_memory", ctypes.c_uint64),
        ("dedicated_memory", ctypes.c_uint64),
        ("device_id", ctypes.c_int32),
        ("integration_type", ctypes.c_int32),
        ("detection_platform", ctypes.c_int32),
        ("name", ctypes.c_char * 257),
        ("architecture_name", ctypes.c_char * 257),
        ("detection_platform_version", ctypes.c_char * 66),
    ]


class ForecastRecord(ctypes.Structure):
    """kestrel_forecast"""

    _fields_ = [
        ("struct_size", ctypes.c_size_t),
        ("outcome", ctypes.c_int32),
        ("limit", ctypes.c_int32),
        ("spare", ctypes.c_uint64),
        ("missing", ctypes.c_uint64),
        ("available", ctypes.c_uint64),
        ("committable", ctypes.c_uint64),
        ("limit_group", ctypes.c_char * 1024),
    ]


def _load() -> ctypes.CDLL:
    """Loads the library that is part of the package or, without one, the system's."""
    name = "kestrelcore-c.dll" if sys.platform == "win32" else "libkestrelcore-c.so.0"
    packaged = Path(__file__).with_name(name)
    return ctypes.CDLL(str(packaged) if packaged.exists() else name)


_library = _load()


def _declare(name: str, result: Any, *arguments: Any) -> Any:
    function = getattr(_library, name)
    function.restype = result
    function.argtypes = arguments
    return function


def _declare_call(name: str, *arguments: Any) -> Any:
    """A function that returns a status and takes a result last."""
    return _declare(name, ctypes.c_int32, *arguments, ctypes.POINTER(Result))


_U64_POINTER = ctypes.POINTER(ctypes.c_uint64)
_SIZE_POINTER = ctypes.POINTER(ctypes.c_size_t)
_GPUS = (ctypes.POINTER(GpuRecord), ctypes.c_size_t, _SIZE_POINTER)

version_text = _declare("kestrel_version_text", ctypes.c_char_p)
cpu_architecture_name = _declare("kestrel_cpu_architecture_name", ctypes.c_char_p, ctypes.c_int32)
cpu_extension_name = _declare("kestrel_cpu_extension_name", ctypes.c_char_p, ctypes.c_uint32)
gpu_integration_name = _declare("kestrel_gpu_integration_name", ctypes.c_char_p, ctypes.c_int32)
gpu_platform_name = _declare("kestrel_gpu_platform_name", ctypes.c_char_p, ctypes.c_int32)
survey_cpu = _declare_call("kestrel_survey_cpu", ctypes.POINTER(CpuRecord))
survey_gpus = _declare_call("kestrel_survey_gpus", *_GPUS)
gpu_memory = _declare_call("kestrel_gpu_memory", ctypes.c_int32, _U64_POINTER, _U64_POINTER)
cpu_usage = _declare_call(
    "kestrel_cpu_usage", ctypes.c_int32, ctypes.c_int32, ctypes.POINTER(ctypes.c_float)
)
process_used_ram = _declare_call("kestrel_process_used_ram", ctypes.c_int32, _U64_POINTER)
machine_physical_ram = _declare_call("kestrel_machine_physical_ram", _U64_POINTER)
available_ram = _declare_call("kestrel_available_ram", _U64_POINTER)
machine_physical_vram = _declare_call("kestrel_machine_physical_vram", _U64_POINTER)
available_vram = _declare_call("kestrel_available_vram", _U64_POINTER)
will_fail_to_allocate = _declare_call(
    "kestrel_will_fail_to_allocate", ctypes.c_uint64, ctypes.POINTER(ctypes.c_int32)
)
memory_forecast = _declare_call(
    "kestrel_memory_forecast", ctypes.c_uint64, ctypes.POINTER(ForecastRecord)
)

__version__: str = version_text().decode()


def text(value: bytes) -> str:
    """A text of the library. Names of devices are the runtime's, so any byte may be in them."""
    return value.decode("utf-8", "replace")


def new(record: type[_Record]) -> _Record:
    """A record with its size set, as every call expects it."""
    instance = record()
    instance.struct_size = ctypes.sizeof(instance)
    return instance


def call(function: Any, *arguments: Any, accept: int = OK) -> int:
    """Calls a function that takes a result last, and returns its status.

    Raises a `KestrelError` for any status but success and `accept`.
    """
    result = new(Result)
    status: int = function(*arguments, ctypes.byref(result))
    if status not in (OK, accept):
        raise error_of(status, text(result.message))
    return status


def figure(function: Any, *arguments: Any) -> int:
    """Calls a function whose only output is a number of bytes, and returns that."""
    value = ctypes.c_uint64()
    call(function, *arguments, ctypes.byref(value))
    return value.value


def on_own_thread(action: Callable[[], _T]) -> _T:
    """Runs `action` on a new thread, and returns or raises what it does.

    The GPU runtime keeps a current device for each thread, and some calls change it. On a thread of
    their own they leave that of the caller's alone.
    """
    outcome: list[_T] = []
    failure: list[BaseException] = []

    def run() -> None:
        try:
            outcome.append(action())
        except BaseException as error:  # handed to the calling thread
            failure.append(error)

    thread = threading.Thread(target=run, name="kestrelcore")
    thread.start()
    thread.join()
    if failure:
        raise failure[0]
    return outcome[0]
