"""Every allocation of a call fails: the n-th alone, and the n-th with all later ones, for every n until
the call needs no more. Cold, the runtime starts itself in the call; warm, it has done so before."""

import dataclasses
import tempfile

import machine
import outcomes
import probe
import programs
from report import Report, for_each


@dataclasses.dataclass
class NoMemory:
    """An allocation that fails."""

    throws: bool = True
    hides_limits: bool = False

    @staticmethod
    def must_succeed(_):
        return False

    @staticmethod
    def may_last(line):
        """The simulated runtime reads its machine file once."""
        return "Simulated HIP runtime: " in line.error


def exhaust(report, name, runtime, call, options):
    """Attacks one call of an interface."""
    command, environment, lines = probe.run(name, runtime, *options, call)
    if not lines or lines[-1].fault != "-":
        report.add_wrong(f"{call}: the probe did not come to an end", command, environment)
        return
    *faulted, reference = lines
    report.count(len(faulted))
    for line in faulted:
        wrong = outcomes.complaint(line, reference, reference, NoMemory())
        if wrong and runtime == "real" and " in lib" in line.end and "kestrelcore" not in line.end:
            report.count_foreign(line.end.partition(" in ")[2])
        elif wrong:
            report.add_wrong(f"{call}, {runtime} runtime, {' '.join(options)}, {line.fault} fails:"
                             f" {wrong}", command, environment)


def density(quick, name, runtime):
    """Up to which allocation every one fails. Loading the real runtime takes 13,000."""
    if runtime == "real":
        dense = 2 if quick else 64 if name == "C" else 0
    else:
        dense = 8 if quick else 0
    return f"--allocations={dense}"


def run_without_memory(program, first):
    """Runs a program in which allocations fail. Returns its environment and what machine.run returns, and
    how many allocations there were, if it came to its end."""
    with tempfile.NamedTemporaryFile("r") as count:
        environment = machine.environment("simulated", [machine.NO_MEMORY],
                                          ATTACK_NO_MEMORY=first, ATTACK_NO_MEMORY_COUNT=count.name)
        result = machine.run(program.command, env=environment)
        return environment, result, int(count.read() or 0)


def exhaust_program(report, program, dense):
    """Attacks a program, from its own start on."""
    _, (_, reference, _), total = run_without_memory(program, "-1")
    if total == 0:
        report.add_wrong(f"{program.name}: no allocation was counted", program.command)
    number = 0
    while number < total:
        for first in (f"{number}", f"{number}+"):
            environment, result, _ = run_without_memory(program, first)
            report.count(1)
            wrong = programs.complaint(program, result, reference)
            if wrong:
                report.add_wrong(f"{program.name}: allocation {first} fails: {wrong}", program.command,
                                 environment)
        number += 1 + (number // dense if dense else 0)


def attack(quick):
    report = Report("allocations")
    tasks = []
    for name in machine.PROBES:
        for runtime in ("simulated", "lying", "real"):
            *_, lines = probe.run(name, runtime)
            tasks += [(report, name, runtime, line.call, [density(quick, name, runtime), *warm])
                      for line in lines for warm in ([], ["--warm"])]
    for_each(tasks, exhaust)
    with machine.IdleProcess() as pid:
        for_each([(report, program, 3 if quick else 0) for program in programs.all_programs(pid)],
                 exhaust_program)
    for place, count in sorted(report.foreign.items()):
        report.note(f"{count:,} faults ended the process inside {place}, a library of the real runtime")
    report.end()
    return report.wrong == 0
