"""Every system call of the programs fails, from the end of the loader on."""

import collections
import dataclasses

import machine
import outcomes
import programs
import trace
from report import Report, for_each


@dataclasses.dataclass(frozen=True)
class Fault:
    """The `when`-th such call of each thread fails, start-up included; it is the `occurrence`-th of the
    program's own."""

    call: str
    when: int
    occurrence: int


def own_calls(threads):
    """The faults that strike each call that the program itself makes. The main thread counts what the
    loader does too: what another thread makes less often than that cannot be struck without it."""
    main = next(made for made in threads.values() if trace.MARK in made)
    loader = collections.Counter(main[:main.index(trace.MARK)])
    faults = set()
    for made in threads.values():
        ahead = loader if made is main else collections.Counter()
        seen = collections.Counter()
        for call in made[sum(ahead.values()):]:
            seen[call] += 1
            when = ahead[call] + seen[call]
            if call not in trace.LEFT_ALONE and when > loader[call]:
                faults.add(Fault(call, when, seen[call]))
    return sorted(faults, key=lambda fault: (fault.call, fault.when))


def errors_for(fault, quick):
    """One error a call in the quick attack, in turn."""
    errors = ["EINTR", "ENOENT", *trace.OTHER_ERRORS, "EPERM"]
    return [errors[fault.occurrence % len(errors)]] if quick else errors


def strike(report, environment, run, fault, error):
    """Lets one call fail in a run of a program, a Run."""
    struck, result = trace.inject(run.command, environment, fault.call, error, fault.when)
    report.count(len(struck))
    # A limit whose files are absent does not count: the figures are those outside of the group.
    hidden = error in outcomes.ABSENT and fault.call in outcomes.READING
    wrong = programs.complaint(run.program, result, run.output + (run.outside if hidden else ""),
                               lost_output=fault.call == "write")
    if wrong:
        again = trace.before_strace(run.command, trace.injection(fault.call, error, fault.when))
        report.add_wrong(f"{run.program.name}: {fault.call} number {fault.occurrence} fails with"
                         f" {error}: {wrong}", again, environment)


@dataclasses.dataclass
class Run:
    """A program in a place, with what it prints there and outside of memory groups."""

    program: programs.Program
    command: list
    output: str
    outside: str


def attack(quick):
    report = Report("program-system-calls")
    environment = machine.environment("simulated", [machine.START_MARKER])
    with machine.MemoryGroup() as group, machine.IdleProcess() as pid:
        if not group.directory:
            report.note(f"not run in a memory group, since none can be created: {group.reason}")
        tasks = []
        for program in programs.all_programs(pid):
            outside = ""
            for before in group.places().values():
                command = [*before, *program.command]
                threads, (_, output, _) = trace.record(command, environment)
                outside = outside or output
                run = Run(program, command, output, outside)
                tasks += [(report, environment, run, fault, error)
                          for fault in own_calls(threads) for error in errors_for(fault, quick)]
        for_each(tasks, strike)
    report.end()
    return report.wrong == 0
