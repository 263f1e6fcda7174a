"""Runs the probes and reads what they print."""

import dataclasses
import re

import machine


@dataclasses.dataclass
class Line:
    """What became of one call."""

    call: str
    fault: str
    process: int
    end: str
    leaked: int
    allocations: int
    first: str
    again: str
    error: str

    def without_doubled_status(self):
        return without_doubled_status(self.first)

    def again_without_doubled_status(self):
        return without_doubled_status(self.again)


def without_doubled_status(text):
    """The C calls return their status and write it to their results: these must agree. A call with
    two results returns the first status that is a failure."""
    status, _, result = text.partition(" ")
    if not status.startswith("KESTREL_"):
        return text
    statuses = re.findall(r"(?:^|\| )(KESTREL_\w+) '", result)
    failed = [other for other in statuses if other != "KESTREL_OK"]
    return result if status == (failed or ["KESTREL_OK"])[0] else text


def escaped(text):
    """A text as the probes print it."""
    return "".join(letter if " " <= letter <= "~" and letter != "\\" else f"\\x{ord(letter):02X}"
                   for letter in text)


def parse(output):
    fields = [line.split("\t") for line in output.splitlines()]
    return [Line(call, fault, int(process), end, int(leaked), int(allocations), *texts)
            for call, fault, process, end, leaked, allocations, *texts in fields]


def run(probe, runtime, *arguments, before=(), **variables):
    """Returns the command, its environment, and the probe's lines; None instead of lines where the
    probe itself did not end as it should."""
    command = [*before, str(machine.PROBES[probe]), *arguments]
    environment = machine.environment(runtime, **variables)
    # Each of its calls has its own limit of time; they may be thousands.
    status, output, _ = machine.run(command, timeout=None, env=environment)
    return command, environment, parse(output) if status == 0 else None
