import os
import subprocess
import sys
import threading
import time

import kestrelcore
import pytest


def test_memory_figures_are_of_one_machine():
    memory = kestrelcore.memory()
    assert 0 < memory.available <= memory.total
    assert memory.used == memory.total - memory.available


def test_memory_of_this_process_is_the_default():
    assert kestrelcore.process_memory() > 0
    assert kestrelcore.process_memory(os.getpid()) > 0


def test_process_memory_grows_with_what_is_touched():
    before = kestrelcore.process_memory()
    block = bytearray(os.urandom(64)) * (1 << 20)  # 64 MiB, touched
    assert kestrelcore.process_memory() - before > len(block) // 2


def test_busy_process_uses_the_processor():
    with subprocess.Popen([sys.executable, "-c", "while True: pass"]) as process:
        try:
            # Without a limit of time: a busy machine may take long to give the process its share.
            while kestrelcore.cpu_usage(process.pid, 0.1) == 0:
                pass
        finally:
            process.kill()


# If the call kept the interpreter's lock, this test would take an hour, and ctest would end it.
def test_other_threads_run_during_the_interval():
    begun = threading.Event()

    def measure():
        begun.set()
        kestrelcore.cpu_usage(interval=3600)

    thread = threading.Thread(target=measure, daemon=True)
    thread.start()
    begun.wait()
    time.sleep(0.2)  # until the call has begun
    assert thread.is_alive()


@pytest.mark.parametrize("pid", [0, -5, 2**31, -(2**40)])
def test_pid_out_of_range_is_an_invalid_argument(pid):
    for measure in (kestrelcore.process_memory, kestrelcore.cpu_usage):
        with pytest.raises(kestrelcore.InvalidArgumentError) as raised:
            measure(pid)
        assert raised.value.code is kestrelcore.Status.INVALID_ARGUMENT
        assert isinstance(raised.value, ValueError)


def test_absent_process_raises_with_its_pid():
    with subprocess.Popen([sys.executable, "-c", ""]) as process:
        process.wait()
    for measure in (kestrelcore.process_memory, kestrelcore.cpu_usage):
        with pytest.raises(kestrelcore.ProcessError) as raised:
            measure(process.pid)
        assert raised.value.code is kestrelcore.Status.PROCESS_QUERY_FAILED
        assert str(raised.value) == f"Failed to open process with PID {process.pid}"


@pytest.mark.parametrize("interval", [-0.1, 2.0**40, float("inf"), float("nan")])
def test_interval_out_of_range_is_an_invalid_argument(interval):
    with pytest.raises(kestrelcore.InvalidArgumentError):
        kestrelcore.cpu_usage(interval=interval)


def test_smallest_allocation_fits_and_the_largest_does_not():
    assert not kestrelcore.will_fail_to_allocate(0)
    assert kestrelcore.will_fail_to_allocate(2**64 - 1)


def test_forecast_says_by_how_much():
    small = kestrelcore.memory_forecast(0)
    assert small.fits and small.missing == 0
    assert small.spare == small.available + small.committable
    assert small.limit is not kestrelcore.Limit.UNKNOWN
    assert (small.limit_group != "") == (small.limit is kestrelcore.Limit.GROUP)
    large = kestrelcore.memory_forecast(2**64 - 1)
    assert not large.fits and large.spare == 0
    assert large.missing == 2**64 - 1 - large.available - large.committable


@pytest.mark.parametrize("nbytes", [-1, 2**64])
def test_size_out_of_range_is_an_invalid_argument(nbytes):
    for forecast in (kestrelcore.will_fail_to_allocate, kestrelcore.memory_forecast):
        with pytest.raises(kestrelcore.InvalidArgumentError):
            forecast(nbytes)


PRINT_VRAM = """
vram = kestrelcore.vram()
second = kestrelcore.gpu_memory(1)
print(json.dumps([vram.total, vram.available, second.free, second.total]))
"""

PRINT_FAILURES = """
failures = []
for call in (kestrelcore.vram, lambda: kestrelcore.gpu_memory(0),
             lambda: kestrelcore.gpu_memory(-1)):
    try:
        call()
    except kestrelcore.KestrelError as error:
        failures.append(type(error).__name__)
print(json.dumps(failures))
"""


def test_vram_is_that_of_the_devices(run):
    assert run(PRINT_VRAM, "apu-and-card") == [12 << 30, 7 << 30, 3 << 30, 4 << 30]


def test_vram_without_gpus_raises(run):
    assert run(PRINT_FAILURES, "no-gpu") == [
        "NoDevicesError",
        "NoDevicesError",
        "InvalidArgumentError",
    ]
