"""Compares what methods report as a process's use of the processors with what it used.

    accuracy.py BURST_LOG [SCALE]

BURST_LOG is the program kestrelcore_burst_log. Prints two lists as an object in JSON: "accuracy" over
intervals of random lengths, and "accuracy_in_step" over those of intervals.IN_STEP. Both hold for each
load, method and interval the errors in points, where 100 points are one processor. SCALE multiplies the
number of measurements. The module kestrelcore must be importable. psutil is left out if it is not
installed, and the task clock of perf if the system refuses it.
"""

import ctypes
import json
import os
import signal
import struct
import subprocess
import sys
import time

import burst_log
import kestrelcore
from intervals import IN_STEP, OFF_STEP, plan

try:
    import psutil
except ImportError:
    psutil = None

DUTIES = (100, 37)  # percent of one processor


def ticks_of_stat(pid):
    """User and system time: fields 14 and 15, the second of all being in parentheses."""
    with open(f"/proc/{pid}/stat", "rb") as stat:
        fields = stat.read().rpartition(b")")[2].split()
    return int(fields[11]) + int(fields[12])


def by_kestrelcore(process, seconds):
    return kestrelcore.cpu_usage(process.pid, seconds) * os.sysconf("SC_NPROCESSORS_ONLN")


def by_psutil(process, seconds):
    return process.cpu_percent(seconds)


def by_raw_stat(process, seconds):
    first, start = ticks_of_stat(process.pid), time.monotonic()
    time.sleep(seconds)
    used = (ticks_of_stat(process.pid) - first) / os.sysconf("SC_CLK_TCK")
    return 100 * used / (time.monotonic() - start)


def open_task_clock(pid):
    """The scheduler's own clock of a thread, by perf_event_open(2); -1 if this process may not."""
    perf_event_open, software, task_clock = 298, 1, 1
    attributes = struct.pack("=IIQ", software, 128, task_clock).ljust(128, b"\0")
    return ctypes.CDLL(None).syscall(perf_event_open, attributes, pid, -1, -1, 0)


def by_task_clock(process, seconds):
    clock, start = open_task_clock(process.pid), time.monotonic()
    try:
        time.sleep(seconds)
        nanoseconds = struct.unpack("=Q", os.read(clock, 8))[0]
        return nanoseconds / 1e7 / (time.monotonic() - start)
    finally:
        os.close(clock)


def available_methods():
    methods = {"kestrelcore": by_kestrelcore, "raw stat": by_raw_stat}
    if psutil:
        methods["psutil"] = by_psutil
    clock = open_task_clock(os.getpid())
    if clock >= 0:
        os.close(clock)
        methods["perf task clock"] = by_task_clock
    return methods


def measure(process, intervals, scale):
    """Method, interval, start and end in nanoseconds, and the percentage reported for one processor."""
    methods = available_methods()
    for method, interval, pause, length in plan(intervals, methods, scale):
        time.sleep(pause)
        start = time.monotonic_ns()
        percent = methods[method](process, length / 1000)
        yield method, interval, start, time.monotonic_ns(), percent


def errors_of_load(program, duty, intervals, scale):
    with subprocess.Popen([program, str(duty)], stdout=subprocess.PIPE, text=True) as child:
        try:
            while child.poll() is None and ticks_of_stat(child.pid) == 0:
                time.sleep(0.01)
            measured = list(measure(psutil.Process(child.pid) if psutil else child, intervals, scale))
        finally:
            child.send_signal(signal.SIGTERM)
            log = burst_log.parse(child.communicate()[0])
    errors = {}
    for method, interval, start, end, percent in measured:
        errors.setdefault((method, interval), []).append(percent - burst_log.percent_used(log, start, end))
    return [
        {"duty": duty, "method": method, "interval": at, "spread": intervals[at][0], "errors": values}
        for (method, at), values in sorted(errors.items())
    ]


def main():
    scale = float(sys.argv[2]) if len(sys.argv) > 2 else 1
    off_step = [entry for duty in DUTIES for entry in errors_of_load(sys.argv[1], duty, OFF_STEP, scale)]
    in_step = errors_of_load(sys.argv[1], 100, IN_STEP, scale)
    json.dump({"accuracy": off_step, "accuracy_in_step": in_step}, sys.stdout)


if __name__ == "__main__":
    main()
