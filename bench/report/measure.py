"""Runs the programs of bench/ and collects what they print."""

import json
import os
import platform
import re
import subprocess
import sys
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
BUILD = ROOT / "build/bench"
PEERS = ("cpu_features", "cpuinfo", "hwloc", "libgtop", "libproc2", "libstatgrab", "libuv", "psutil")
GPU_FIGURES = ("SurveyGpus", "getMachinePhysicalVRAM", "getAvailableVRAM")
DEVICES = (1, 2, 4, 8, 16, 32, 64, 128, 256, 512, 1024)
MACHINE = """[[device]]
count = {}
name = "AMD Instinct MI300X"
arch = "gfx942:sramecc+:xnack-"
integrated = false
total_memory = 206_158_430_208
free_memory = 205_084_688_384
"""


def build():
    configure = ["-S", ROOT, "-B", BUILD, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release"]
    left_out = [f"-D{option}=OFF" for option in ("KESTRELCORE_BUILD_COMMAND", "KESTRELCORE_BUILD_HARNESS")]
    options = ["-DKESTRELCORE_BUILD_BENCHMARKS=ON", "-DBUILD_TESTING=OFF", *left_out]
    subprocess.run(["cmake", *configure, *options], check=True, stdout=sys.stderr)
    subprocess.run(["cmake", "--build", BUILD], check=True, stdout=sys.stderr)


def environment(devices, folder):
    """That of a machine with so many simulated GPUs, whose description is written to `folder`."""
    machine = Path(folder, "machine.toml")
    machine.write_text(MACHINE.format(devices))
    runtimes = [str(BUILD / "simulator/runtime" / generation) for generation in "567"]
    return os.environ | {
        "KESTREL_SIM_MACHINE": str(machine),
        "LD_LIBRARY_PATH": ":".join([*runtimes, str(BUILD / "c")]),
        "PYTHONPATH": str(ROOT / "python"),
    }


def times(report):
    """Microseconds by figure and way, from a report of Google Benchmark.

    Of the processor, so that other programs disturb less; of the wall for what runs in processes of
    its own, which a suffix of the name shows.
    """
    found = {}
    for entry in report["benchmarks"]:
        if entry["run_type"] == "iteration" and not entry.get("error_occurred"):
            figure, way, *suffix = entry["name"].split("/")
            time_of = "real_time" if suffix else "cpu_time"
            found.setdefault(figure, {}).setdefault(way, []).append(entry[time_of])
    return found


def run_benchmarks(names, repetitions, devices=1):
    with tempfile.TemporaryDirectory() as folder:
        report = Path(folder, "report.json")
        subprocess.run(
            [
                BUILD / "bench/kestrelcore_bench",
                f"--benchmark_filter={names}",
                "--benchmark_enable_random_interleaving=true",
                f"--benchmark_repetitions={repetitions}",
                "--benchmark_min_time=0.01",
                f"--benchmark_out={report}",
            ],
            check=True,
            env=environment(devices, folder),
            capture_output=True,
            text=True,
        )
        return times(json.loads(report.read_text()))


def times_by_devices():
    """As `run_benchmarks`, by the number of simulated GPUs. In rounds, as one process has one number."""
    found = {str(devices): {} for devices in DEVICES}
    for devices in DEVICES * 3:
        for figure, ways in run_benchmarks("^(" + "|".join(GPU_FIGURES) + ")/", 7, devices).items():
            for way, values in ways.items():
                found[str(devices)].setdefault(figure, {}).setdefault(way, []).extend(values)
    return found


def parse_counts(text):
    counts = {}
    for line in text.splitlines():
        name, system_calls, allocations, *files = line.split("\t")
        entry = {"system_calls": int(system_calls), "allocations": int(allocations), "files": files}
        counts.setdefault(name.split("/")[0], {})[name.split("/")[1]] = entry
    return counts


def run_with_environment(*command):
    with tempfile.TemporaryDirectory() as folder:
        finished = subprocess.run(
            command, check=True, env=environment(1, folder), stdout=subprocess.PIPE, text=True
        )
        return finished.stdout


def versions():
    """By peer; None for one that is not installed."""
    lines = (BUILD / "bench/peers.tsv").read_text().splitlines()
    found = dict(line.split("\t") for line in lines)
    if found.get("cpuinfo") == "":  # its pkg-config file does not say
        package = output_of("dpkg-query", "--show", "--showformat=${Version}", "libcpuinfo-dev")
        found["cpuinfo"] = package or "of unknown version"
    try:
        import psutil

        found["psutil"] = psutil.__version__
    except ImportError:
        pass
    return {peer: found.get(peer) for peer in PEERS}


def output_of(*command):
    """Empty if the command fails or is not installed."""
    try:
        return subprocess.run(command, cwd=ROOT, capture_output=True, text=True).stdout.strip()
    except OSError:
        return ""


def machine():
    processors = re.findall(r"model name\s*: (.*)", Path("/proc/cpuinfo").read_text())
    is_virtual = re.search(r"^flags\s*:.* hypervisor( |$)", Path("/proc/cpuinfo").read_text(), re.MULTILINE)
    return {
        "processor": processors[0] if processors else platform.machine(),
        "processors": os.sysconf("SC_NPROCESSORS_ONLN"),
        "virtual": bool(is_virtual),
        "kernel": platform.release().partition("-")[0],  # without the name of a build
        "libc": " ".join(platform.libc_ver()),
        "compiler": output_of("c++", "--version").partition("\n")[0],
        "revision": output_of("git", "describe", "--always", "--dirty", "--abbrev=10"),
    }


def measure_all(say):
    """Everything that the page shows."""
    begin, load = time.monotonic(), os.getloadavg()[0]
    if load > 1:
        say(f"The load average is {load:.1f}: other programs distort the figures.")
    say("system calls and allocations")
    counts = parse_counts(run_with_environment(BUILD / "bench/kestrelcore_bench", "--counts"))
    say("times next to the limits and the peers")
    result = {"times": run_benchmarks("-^(" + "|".join(GPU_FIGURES) + ")/", 101)}
    say("simulated GPUs")
    result["devices"] = times_by_devices()
    say("accuracy of the CPU usage")
    command = [sys.executable, ROOT / "bench/report/accuracy.py", BUILD / "bench/kestrelcore_burst_log"]
    result |= json.loads(run_with_environment(*command))
    return result | {
        "counts": counts,
        "machine": machine(),
        "peers": versions(),
        "date": time.strftime("%Y-%m-%d"),
        "load": [load, os.getloadavg()[0]],
        "seconds": round(time.monotonic() - begin),
    }
