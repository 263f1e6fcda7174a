"""The calls leave the current HIP device of the calling thread alone."""

import conftest
import pytest

# A host that calls the same runtime itself. Its two devices have different amounts of free memory,
# so that the amount shows which of them is current.
HOST = f"""
import ctypes
runtime = ctypes.CDLL({str(conftest.RUNTIME)!r})
def free_memory():
    free, total = ctypes.c_size_t(), ctypes.c_size_t()
    assert runtime.hipMemGetInfo(ctypes.byref(free), ctypes.byref(total)) == 0
    return free.value
def select(device):
    assert runtime.hipSetDevice(device) == 0
"""
FREE = [7 << 30, 3 << 30]  # of each device


@pytest.mark.parametrize(
    ("current", "call"),
    [(0, "gpus()"), (0, "survey()"), (1, "vram()"), (0, "gpu_memory(1)"), (1, "gpu_memory(0)")],
)
def test_current_device_stays_the_same(run, current, call):
    program = f"select({current})\nkestrelcore.{call}\nprint(json.dumps(free_memory()))"
    assert run(HOST + program, "apu-and-card") == FREE[current]


def test_library_uses_the_runtime_of_the_host(run):
    program = "select(1)\nprint(json.dumps([free_memory(), kestrelcore.gpu_memory(1).free]))"
    assert run(HOST + program, "apu-and-card") == [FREE[1], FREE[1]]
