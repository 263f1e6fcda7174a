"""Every system call of the library's calls fails, with every error.

The probe makes each call of the interface in a process that it forks. strace counts system calls for
each process, so that one run under strace lets the n-th such system call of every interface call fail.
The probe's own process makes few calls; those that it forks first make more than those, which are not
the library's (--pad), and then the call under attack."""

import collections
import dataclasses
import functools
import operator

import machine
import outcomes
import probe
import trace
from report import Report, for_each

MARGIN = 16  # calls that the probe's own process may make in one run more than in another


@dataclasses.dataclass
class Fault:
    """One system call that fails in one way."""

    call: str
    error: str
    throws: bool = True  # no memory for the C library means none for the surveys

    def must_succeed(self, line):
        """The loader and the runtimes open files of their own, and repeat nothing."""
        return (self.error == "EINTR" and self.call in outcomes.REPEATED
                and not outcomes.GPU_CALLS.fullmatch(line.call))

    @property
    def hides_limits(self):
        return self.error in outcomes.ABSENT and self.call in outcomes.READING

    @staticmethod
    def may_last(line):
        """The simulated runtime reads its machine file once."""
        return "Simulated HIP runtime: " in line.error


@dataclasses.dataclass
class Victim:
    """A probe in a place, its calls without a fault, and the system calls that they make."""

    name: str
    before: list
    lines: dict = dataclasses.field(default_factory=dict)   # by call of the interface
    counts: dict = dataclasses.field(default_factory=dict)  # also by call: of each system call
    own: collections.Counter = None    # what the probe's own process makes
    ahead: collections.Counter = None  # what a process makes before the call under attack

    def struck_by(self, call, occurrence):
        """The calls of the interface that make the system call so often."""
        return [name for name, counts in self.counts.items() if counts[call] >= occurrence]

    def most(self):
        """Each system call, and how often a call of the interface makes it at most."""
        return functools.reduce(operator.or_, self.counts.values())


def analyse(name, before):
    """Records a probe without a fault."""
    command, environment, _ = probe.run(name, "simulated", before=before)
    threads, (_, output, _) = trace.record(command, environment)
    victim = Victim(name, before)
    for line in probe.parse(output):
        made = threads.pop(line.process)
        first = made.index(trace.MARK)
        last = made.index(trace.MARK, first + 1)
        victim.lines[line.call] = line
        victim.counts[line.call] = collections.Counter(made[first:last])
        victim.ahead = (victim.ahead or collections.Counter()) | collections.Counter(made[:first])
    own = [collections.Counter(made) for made in threads.values()]
    victim.own = functools.reduce(operator.or_, own)
    return victim


def strike(report, victim, outside, fault, occurrence):
    """One run: in every call of the interface, the occurrence of the system call fails."""
    padding = victim.own[fault.call] + MARGIN
    names = victim.struck_by(fault.call, occurrence)
    command = [*victim.before, str(machine.PROBES[victim.name]),
               f"--pad={trace.number_of(fault.call)}:{padding}", *names]
    when = padding + victim.ahead[fault.call] + occurrence
    environment = machine.environment("simulated")
    struck, (status, output, _) = trace.inject(command, environment, fault.call, fault.error, when)
    lines = probe.parse(output) if status == 0 else []
    again = trace.before_strace(command, trace.injection(fault.call, fault.error, when))
    if [line.call for line in lines] != names:
        report.add_wrong(f"the probe ended with {status}", again, environment)
    report.count(len(struck & {line.process for line in lines}))
    for line in lines:
        wrong = outcomes.complaint(line, victim.lines[line.call], outside.lines[line.call], fault)
        if wrong:
            report.add_wrong(f"{line.call}: {fault.call} number {occurrence} fails with {fault.error}:"
                             f" {wrong}", again, environment)


def errors_for(call, occurrence, quick):
    """The quick attack takes one error of each kind that the library distinguishes: an interruption, a
    file that is absent, and another, in turn where it is not a file that is read."""
    if not quick:
        return trace.ALL_ERRORS
    others = ["EIO"] if call in outcomes.READING else trace.OTHER_ERRORS
    return ["EINTR", "ENOENT", others[occurrence % len(others)]]


def faults_of(victim, quick):
    """Each fault with the occurrence that it strikes."""
    for call, count in sorted(victim.most().items()):
        for occurrence in range(1, count + 1):
            for error in errors_for(call, occurrence, quick) if call not in trace.LEFT_ALONE else []:
                yield Fault(call, error), occurrence


def attack(quick):
    report = Report("system-calls")
    with machine.MemoryGroup() as group:
        if not group.directory:
            report.note(f"not run in a memory group, since none can be created: {group.reason}")
        tasks = []
        for name in machine.PROBES:
            victims = {place: analyse(name, before) for place, before in group.places().items()}
            tasks += [(report, victim, victims["outside"], fault, occurrence)
                      for victim in victims.values()
                      for fault, occurrence in faults_of(victim, quick)]
        for_each(tasks, strike)
    report.end()
    return report.wrong == 0
