"""Counts what each call costs and compares with baseline.txt; see script/guard.

    compare.py counts PROGRAM        system calls and heap allocations, which must be equal
    compare.py instructions PROGRAM  instructions, which may differ by 3 % or by 10
    compare.py renew PROGRAM         writes baseline.txt

PROGRAM is call_counts of the build.
"""

import re
import subprocess
import sys
import tempfile
from pathlib import Path

FOLDER = Path(__file__).resolve().parent
BASELINE = FOLDER / "baseline.txt"
MACHINE = FOLDER.parent / "platform/linux/machines/linux_6_12"
REPEATS = 50
SLACK = 10  # what 50 calls share, such as the end of the loop
TOLERANCE = 0.03  # which of its functions the C library chooses depends on the processor
RENEW = "script/guard --renew"

HEAD = """\
# What each call costs over a recorded machine: the system calls, heap allocations and instructions of
# one call. Written by {renew}. The instructions are those of this build:
build {build}
"""


def run(*command, folder=None):
    done = subprocess.run([str(part) for part in command], cwd=folder, capture_output=True, text=True)
    if done.returncode != 0:
        sys.exit(f"{Path(command[0]).name} failed:\n{done.stdout}{done.stderr}")
    return done.stdout


def count_system_calls_and_allocations(program):
    """Returns the description of the build, and the two figures of each call."""
    build, *lines = run(program, MACHINE).splitlines()
    counts = {}
    for line in lines:
        name, system_calls, allocations = line.split()
        counts[name] = {"system calls": int(system_calls), "allocations": int(allocations)}
    return build.removeprefix("build "), counts


def count_instructions(program):
    with tempfile.TemporaryDirectory() as folder:
        run("valgrind", "--tool=callgrind", "--combine-dumps=yes", "--callgrind-out-file=dumps",
            program, MACHINE, REPEATS, folder=folder)
        dumps = Path(folder, "dumps").read_text()
    parts = re.findall(r"^desc: Trigger: Client Request: (\S+)$.*?^totals: (\d+)$", dumps, re.M | re.S)
    return {name: {"instructions": round(int(total) / REPEATS)} for name, total in parts}


def read_baseline():
    build, counts = "", {}
    for line in BASELINE.read_text().splitlines():
        if line.startswith("build "):
            build = line.removeprefix("build ")
        elif not line.startswith("#"):
            name, system_calls, allocations, instructions = line.split()
            counts[name] = {"system calls": int(system_calls), "allocations": int(allocations),
                            "instructions": int(instructions)}
    return build, counts


def write_baseline(build, counts, instructions):
    lines = [f"{name} {figures['system calls']} {figures['allocations']} {instructions[name]['instructions']}\n"
             for name, figures in counts.items()]
    BASELINE.write_text(HEAD.format(renew=RENEW, build=build) + "".join(lines))


def differences(baseline, counts, tolerance=0.0, slack=0):
    """Returns a sentence for each figure that rose or fell, and for each call that came or went."""
    sentences = [f"{name} is not in the baseline." for name in counts if name not in baseline]
    sentences += [f"{name} is in the baseline, but no longer counted." for name in baseline if name not in counts]
    for name, figures in counts.items():
        for kind, now in figures.items():
            before = baseline.get(name, {}).get(kind, now)
            if abs(now - before) > max(tolerance * before, slack):
                verb = "rose" if now > before else "fell"
                sentences.append(f"{name}: the {kind} of a call {verb} from {before:,} to {now:,}.")
    return sentences


def compare(figure, program):
    baseline_build, baseline = read_baseline()
    build, counts = count_system_calls_and_allocations(program)
    allowed = {}
    if figure == "instructions":
        if build != baseline_build:
            print(f"The instructions are not compared. They are those of another build:\n"
                  f"  baseline: {baseline_build}\n  here:     {build}")
            return
        counts = count_instructions(program)
        allowed = {"tolerance": TOLERANCE, "slack": SLACK}
    sentences = differences(baseline, counts, **allowed)
    if sentences:
        print("\n".join(sentences))
        sys.exit(f"If a rise is not meant, look for what the call does more than before. Otherwise, and after "
                 f"a fall, run {RENEW} and commit {BASELINE.relative_to(FOLDER.parents[1])}.")


def main():
    if len(sys.argv) != 3 or sys.argv[1] not in ("counts", "instructions", "renew"):
        sys.exit(__doc__)
    figure, program = sys.argv[1], Path(sys.argv[2]).resolve()
    if figure == "renew":
        write_baseline(*count_system_calls_and_allocations(program), count_instructions(program))
    else:
        compare(figure, program)


main()
