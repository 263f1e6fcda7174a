"""Every read returns fewer bytes than there are: 1, or 7. All figures stay the same."""

import dataclasses
import struct
import tempfile

import machine
import outcomes
import probe
import programs
from report import Report, for_each


@dataclasses.dataclass
class ShortReads:
    """No failure is allowed."""

    throws: bool = False
    hides_limits: bool = False

    @staticmethod
    def must_succeed(_):
        return True

    @staticmethod
    def may_last(_):
        return False


class Counted:
    """What makes reads short, and counts those that were, in a `with` block."""

    def __init__(self, report, size):
        self.report = report
        self.size = size

    def __enter__(self):
        self.file = tempfile.NamedTemporaryFile()
        self.file.write(bytes(8))
        self.file.flush()
        return {"preloaded": [machine.SHORT_READS], "ATTACK_SHORT_READS": str(self.size),
                "ATTACK_SHORT_READS_COUNT": self.file.name}

    def __exit__(self, *_):
        self.file.seek(0)
        cut = struct.unpack("q", self.file.read())[0]
        self.file.close()
        self.report.count(cut)
        if cut == 0:
            self.report.add_wrong("no read was short", [])


def shorten(report, name, place, before, size):
    """Runs a probe with whole reads and with short ones, and compares."""
    *_, whole = probe.run(name, "simulated", before=before)
    reference = {line.call: line for line in whole}
    with Counted(report, size) as variables:
        command, environment, lines = probe.run(name, "simulated", before=before, **variables)
    if lines is None:
        report.add_wrong("the probe did not come to an end", command, environment)
    for line in lines or []:
        wrong = outcomes.complaint(line, reference[line.call], reference[line.call], ShortReads())
        if wrong:
            report.add_wrong(f"{line.call} {place}, reads of {size} bytes: {wrong}",
                             [*command, line.call], environment)


def shorten_program(report, program, place, before, size):
    """The same for a program: the figures are those of an undisturbed run."""
    command = [*before, *program.command]
    expected, reference, _ = machine.run(command, env=machine.environment("simulated"))
    with Counted(report, size) as variables:
        environment = machine.environment("simulated", **variables)
        status, output, error = machine.run(command, env=environment)
    strange = programs.strange_lines(output, reference, failures=False)
    if status != expected or strange:
        report.add_wrong(f"{program.name} {place}, reads of {size} bytes: ended with {status} and"
                         f" printed {strange} {error!r}", command, environment)


def attack(_quick):
    report = Report("short-reads")
    with machine.MemoryGroup() as group, machine.IdleProcess() as pid:
        if not group.directory:
            report.note(f"not run in a memory group, since none can be created: {group.reason}")
        ways = [(place, before, size) for place, before in group.places().items() for size in (1, 7)]
        for_each([(report, name, *way) for name in machine.PROBES for way in ways], shorten)
        for_each([(report, program, *way) for program in programs.all_programs(pid)
                  for way in ways], shorten_program)
    report.end()
    return report.wrong == 0
