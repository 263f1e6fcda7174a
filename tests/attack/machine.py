"""What an attack runs on: the build tree, the runtimes and a memory group with a limit."""

import os
import pathlib
import signal
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
BUILD = ROOT / "build/linux"
ATTACK = BUILD / "tests/attack"
KESTREL = BUILD / "bin/kestrel"
HARNESS = BUILD / "bin/kestrel-harness"
PROBES = {"C++": ATTACK / "attack_probe", "C": ATTACK / "attack_probe_c"}
NO_MEMORY = ATTACK / "libattack_no_memory.so"
RECORDED_MEMINFO = ATTACK / "libattack_recorded_meminfo.so"
SHORT_READS = ATTACK / "libattack_short_reads.so"
START_MARKER = ATTACK / "libattack_start_marker.so"
MEMINFO = ROOT / "tests/platform/linux/machines/linux_6_12/proc/meminfo"
TIMEOUT = 120  # seconds; far more than any single run takes

# In bytes. With the swap of the recorded machine this is less than the 1.5 GiB whose allocation the
# probes forecast, and which the machine has.
GROUP_LIMIT = 512 << 20

V1 = pathlib.Path("/sys/fs/cgroup/memory")
V2 = pathlib.Path("/sys/fs/cgroup")


def environment(runtime, preloaded=(), **variables):
    """The environment of a program over the runtime: "simulated", "lying" or "real". The free memory of
    the machine is that of a recorded one."""
    folders = {"simulated": ":".join(str(BUILD / f"simulator/runtime/{n}") for n in (5, 6, 7)),
               "lying": str(ATTACK / "lying_runtime")}
    kept = {name: value for name, value in os.environ.items()
            if name not in ("LD_LIBRARY_PATH", "LD_PRELOAD") and not name.startswith("ATTACK_")}
    if runtime in folders:
        kept["LD_LIBRARY_PATH"] = folders[runtime]
    if runtime == "simulated":
        kept["KESTREL_SIM_MACHINE"] = str(ROOT / "simulator/machines/apu-and-card.toml")
    libraries = [RECORDED_MEMINFO, *preloaded]
    return {**kept, "LC_ALL": "C", "LD_PRELOAD": " ".join(map(str, libraries)),
            "ATTACK_MEMINFO": str(MEMINFO), **variables}


class MemoryGroup:
    """A memory group with a limit, which lives as long as the `with` block. Its `directory` is None,
    and `reason` says why, where none can be created."""

    def __enter__(self):
        self.directory, self.reason = None, ""
        version_1 = (V1 / "memory.limit_in_bytes").exists()
        directory = (V1 if version_1 else V2) / f"kestrelcore-attack-{os.getpid()}"
        self.limit = "memory.limit_in_bytes" if version_1 else "memory.max"
        try:
            directory.mkdir()
            self.directory = directory
            (directory / self.limit).write_text(str(GROUP_LIMIT))
        except OSError as error:
            self.__exit__()
            self.reason = str(error)
        return self

    def __exit__(self, *_):
        for _ in range(3000):  # a minute: it stays busy for a moment after its last process has ended
            try:
                if self.directory is not None:
                    self.directory.rmdir()
                self.directory = None
                return
            except OSError:
                time.sleep(0.02)
        print(f"{self.directory} could not be removed", file=sys.stderr)

    def places(self):
        """The places to run in, each as what comes before a command: outside, and in the group, which
        this creates where a command is repeated by hand."""
        inside = ["sh", "-c", f'mkdir -p "$0" && echo {GROUP_LIMIT} >"$0/{self.limit}" &&'
                  ' echo $$ >"$0/cgroup.procs" && exec "$@"', str(self.directory)]
        return {"outside": [], **({"in a group": inside} if self.directory else {})}


class IdleProcess:
    """A stopped process for `kestrel watch` and the harness to measure: it uses no processor."""

    def __enter__(self):
        self.process = subprocess.Popen(["sh", "-c", "kill -s STOP $$"])
        os.waitpid(self.process.pid, os.WUNTRACED)
        return self.process.pid

    def __exit__(self, *_):
        self.process.kill()
        self.process.wait()


def run(command, timeout=TIMEOUT, **options):
    """Runs a command and returns its exit status (negative: the signal; None: it hung), standard
    output and standard error."""
    with subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, start_new_session=True, **options) as process:
        try:
            output, error = process.communicate(timeout=timeout)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            process.communicate()
            return None, "", ""
    return process.returncode, output.decode(errors="replace"), error.decode(errors="replace")
