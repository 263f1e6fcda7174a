"""Surveys: what the machine offers."""

from __future__ import annotations

import ctypes
from dataclasses import dataclass

from kestrelcore import _library as library
from kestrelcore._errors import KestrelError

_EXTENSION_BITS = (1, 2, 4)


@dataclass(frozen=True)
class Cpu:
    """What the processor offers."""

    architecture: str
    """"x86_64" or "ARM64"."""
    extensions: tuple[str, ...]
    """The vector extensions that CPUID shows, in ascending order: "AVX", "AVX2"."""


@dataclass(frozen=True)
class Gpu:
    """One graphics processor."""

    name: str
    """As the GPU runtime reports it."""
    device_id: int
    """The HIP device number, from 0."""
    total_memory: int
    """Bytes."""
    dedicated_memory: int
    """Bytes. No survey fills it yet: 0."""
    integration_type: str
    """"Integrated", "Discrete" or "Unknown"."""
    detection_platform: str
    """"ROCm"."""
    detection_platform_version: str
    """Empty: the HIP survey does not fill it."""
    architecture_name: str
    """The architecture's name, for example "gfx1100"."""


@dataclass(frozen=True)
class Survey:
    """Both surveys side by side. A survey that failed has an error and no data."""

    cpu: Cpu | None
    cpu_error: KestrelError | None
    gpus: tuple[Gpu, ...]
    gpu_error: KestrelError | None


def cpu() -> Cpu:
    """Surveys the processor.

    Raises `ProcessorUnsupportedError` if the library cannot run on it or does not know its
    architecture.
    """
    record = library.new(library.CpuRecord)
    library.call(library.survey_cpu, ctypes.byref(record))
    names = [
        library.text(library.cpu_extension_name(bit))
        for bit in _EXTENSION_BITS
        if record.extensions & bit
    ]
    return Cpu(library.text(library.cpu_architecture_name(record.architecture)), tuple(names))


def gpus() -> tuple[Gpu, ...]:
    """Lists every GPU that the HIP runtime sees, in ascending device order. All or nothing.

    Raises `NoDevicesError` if the machine has no runtime or that counts no device (a runtime that
    counts zero devices gives an empty list), and `DeviceQueryError` if one device fails. Blocks for
    as long as the runtime does, which starts itself at its first call in a process.
    """
    return library.on_own_thread(_list_gpus)


def survey() -> Survey:
    """Surveys the GPUs and the processor; neither failure stops the other, or raises."""
    found_gpus: tuple[Gpu, ...] = ()
    gpu_error = None
    found_cpu = None
    cpu_error = None
    try:
        found_gpus = gpus()
    except KestrelError as error:
        gpu_error = error
    try:
        found_cpu = cpu()
    except KestrelError as error:
        cpu_error = error
    return Survey(found_cpu, cpu_error, found_gpus, gpu_error)


def _list_gpus() -> tuple[Gpu, ...]:
    count = ctypes.c_size_t()
    library.call(library.survey_gpus, None, 0, ctypes.byref(count))
    while count.value > 0:
        capacity = count.value
        records = (library.GpuRecord * capacity)()
        records[0].struct_size = ctypes.sizeof(library.GpuRecord)
        status = library.call(
            library.survey_gpus,
            records,
            capacity,
            ctypes.byref(count),
            accept=library.CAPACITY_TOO_SMALL,  # a device was added since it was counted
        )
        if status == library.OK:
            return tuple(_gpu_of(record) for record in records[: count.value])
    return ()


def _gpu_of(record: library.GpuRecord) -> Gpu:
    return Gpu(
        name=library.text(record.name),
        device_id=record.device_id,
        total_memory=record.total_memory,
        dedicated_memory=record.dedicated_memory,
        integration_type=library.text(library.gpu_integration_name(record.integration_type)),
        detection_platform=library.text(library.gpu_platform_name(record.detection_platform)),
        detection_platform_version=library.text(record.detection_platform_version),
        architecture_name=library.text(record.architecture_name),
    )
