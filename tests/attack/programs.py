"""The programs under attack, and how they may end and what they may print under a fault."""

import dataclasses
import re

import machine
import outcomes

UNITS = {"Bytes": 0, "B": 0, "KiB": 1, "MiB": 2, "GiB": 3, "TiB": 4}
NUMBER = re.compile(r"-?\d+(?:\.\d+)?(?: (?:Bytes|B|[KMGT]iB|[KMGT]B|%)|%)?")

# The exit statuses that are documented (command/exit_status.h); the harness has one after a run.
STATUSES = {"fits": {0, 1, 2, 74}, "harness": {0}}
OTHER_STATUSES = {0, 70, 74}

# Lines that an undisturbed run does not print: what stands for a part that failed.
GPU_MESSAGE = ("(Error trying to query ROCm gpus: .+|Out of memory|The GPU runtime threw an exception)")
CPU_MESSAGE = "Unsupported processor architecture"
MEMORY_MESSAGE = r"Failed to get global memory status\."
FAILURES = re.compile("|".join([
    f"Failed to retrieve GPU information: {GPU_MESSAGE}",
    f"Failed to retrieve CPU information: {CPU_MESSAGE}",
    r"(Machine physical|Free) V?RAM \.+ 0 Bytes",
    r"CPU Usage \(PID '\d+'\) \.+ -1%",
    r"Mem Usage \(PID '\d+'\) \.+ 18446744\.07 TB%",
    rf" +(HIP: )?({GPU_MESSAGE}|{CPU_MESSAGE}|{MEMORY_MESSAGE})",
    r' +"status": "(no_devices|device_query_failed|memory_query_failed|architecture_unsupported|'
    r'out_of_memory|runtime_failed)",',
    rf' +"message": "({GPU_MESSAGE}|{CPU_MESSAGE}|{MEMORY_MESSAGE})",',
    r" +libamdhip64\.so\.[5-7](, already loaded)?: .+",  # `explain`: why a runtime was passed over,
    r" +used: /.+/libamdhip64\.so\.[5-7]",                # and the next one
    r"device = \[\]",                                    # `record`, without devices
    r"  'kestrel explain' looks for the reason",
    r"  none",
    r' +"\w+": (null|\[\]),?',
    r' +"limit": "unknown",',
    r"RAM unknown available",
    r"VRAM \d+ unknown free",
    r"PID \d+ (ended|cannot be measured|\d+\.\d % unknown)",
    r"\[\[fault\]\]",
    r"device = (\[\]|\d+)",  # of `record`, up to the status
    r"claimed_device_count = -?\d+",
    r'(name|arch) = ""',
    r"integrated = false",
    r"(total|free|properties)_memory = 0",
    r'operation = "hip\w+"',
    r'status = "hipError\w+"',
    r"Machine physical VRAM \.+ (9|17)\.00 GiB",  # one card of the lying runtime
]))

# What a survey prints of a part that it could not read: its exit status is then not 0.
INCOMPLETE = re.compile(f"{CPU_MESSAGE}|{MEMORY_MESSAGE}|Invalid hip device|Failed to set hip device|"
                        "Failed to get memory info|Out of memory|threw an exception")


@dataclasses.dataclass
class Program:
    """A command line of a program."""

    name: str
    command: list

    @property
    def statuses(self):
        return STATUSES.get(self.name.split()[0], OTHER_STATUSES)


def all_programs(pid):
    """The programs; `pid` is that of a process which does nothing."""
    kestrel = {"survey": [], "survey json": ["--format", "json"], "fits": ["1536MiB"],
               "fits vram": ["--vram", "1GiB"], "explain": [], "record": [],
               "watch": [str(pid), "--count", "1", "--interval", "10ms"]}
    harness = {"harness machine": ["--hardware-test", "--mem-test", "-s", "0"],
               "harness process": ["--cpu-test", "--mem-test", "-p", str(pid), "-s", "1"]}
    return [*(Program(name, [str(machine.KESTREL), name.split()[0], *arguments])
              for name, arguments in kestrel.items()),
            *(Program(name, [str(machine.HARNESS), *arguments]) for name, arguments in harness.items())]


def shape(line):
    return NUMBER.sub("#", line)


def parts(output):
    """The lines of an output; those of `watch` say several things."""
    return re.split("; |\n", output)


def figures(line):
    """The numbers of a line, amounts of memory in bytes."""
    found = []
    for text in NUMBER.findall(line):
        number, _, unit = text.rstrip("%").partition(" ")
        found.append(float(number) * 1024 ** UNITS.get(unit, 0))
    return found


def is_near(figure, right):
    """The memory of a process or of a memory group moves a little."""
    return figure == right or (abs(figure - right) <= outcomes.MOVING and right > 1 << 20)


def strange_lines(output, reference, failures=True):
    """The lines that neither the undisturbed run printed, apart from how figures move, nor a documented
    failure explains (unless `failures` are not allowed)."""
    known = {}
    for line in parts(reference):
        known.setdefault(shape(line), []).append(figures(line))
    strange = []
    for line in parts(output):
        candidates = known.get(shape(line), [])
        near = any(all(map(is_near, figures(line), right)) for right in candidates)
        if not near and not (failures and FAILURES.fullmatch(line)):
            strange.append(line)
    return strange


def complaint(program, result, reference, lost_output=False, throws=False):
    """What is wrong with how a program ended; "" if nothing is. `reference` is its undisturbed output;
    `throws` says that the fault may throw, which the harness lets through, as it promises."""
    status, output, error = result
    if status is None:
        return "hangs"
    if status < 0:
        thrown = "terminate called after throwing an instance of " in error
        allowed = program.name.startswith("harness") and (thrown if throws else "std::bad_alloc" in error)
        return "" if allowed else f"ended by signal {-status}: {error.strip()}"
    if status not in program.statuses:
        return f"ended with the undocumented status {status}: {error.strip()}"
    if program.name.startswith("survey") and status == 0 and INCOMPLETE.search(output):
        return "ended with 0 although a part of the survey failed"
    strange = [] if lost_output else strange_lines(output, reference)
    if strange:
        return f"ended with {status} and printed {strange[0]!r}"
    if status not in (0, 1) and not error and not output:
        return f"ended with {status} without a word"
    return ""
