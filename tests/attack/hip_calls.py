"""Every HIP call of the runtime fails, throws, or lies."""

import re

import machine
import probe
import programs
from lying_model import Lie, STEPS, expected, expected_error
from report import Report, for_each

CALLS = {"C++": ["SurveyGpus", "SurveyHardware", "getMachinePhysicalVRAM", "getAvailableVRAM"],
         "C": ["kestrel_survey_gpus", "kestrel_survey_hardware", "kestrel_gpu_memory",
               "kestrel_machine_physical_vram", "kestrel_available_vram"]}
OUTSIDE = [-2**31, -1, 8, 999_999, 2**31 - 1]  # of the enumeration of statuses
FEW_STATUSES = [1, 2, 100, 101, 999]
MOST = 2**31 - 1


def statuses(quick):
    text = (machine.ROOT / "simulator/statuses.inc").read_text(encoding="utf-8")
    all_of_them = [int(number) for number in re.findall(r"STATUS\((\d+),", text)]
    return [*(FEW_STATUSES if quick else [status for status in all_of_them if status != 0]), *OUTSIDE]


def lies(quick):
    """All that the runtime does to us."""
    targets = [("hipGetDeviceCount", None),
               *((operation, device) for operation in STEPS for device in (None, 0, 1))]
    for operation, device in targets:
        for writes in (False, True):
            for status in statuses(quick):
                yield Lie(operation, device, status=status, writes=writes)
            for thrown in ("bad_alloc", "error", "number"):
                yield Lie(operation, device, thrown=thrown, writes=writes)
        yield Lie(operation, device, status=1, no_text="null-text")
    for count in (-2**31, -1, 0, 1, MOST):
        yield Lie(count=count)
    yield Lie(unterminated=True)


def believe(report, name, lie):
    """Runs a probe over one lie and compares what it prints with what the lie should lead to."""
    # With a count of 2^31 - 1 this meter asks so many devices, as it promises: for hours.
    calls = [call for call in CALLS[name] if lie.count != MOST or "hysical" not in call]
    command, environment, lines = probe.run(name, "lying", *calls, ATTACK_HIP=lie.text)
    if lines is None or len(lines) != len(calls):
        report.add_wrong(f"{lie.text}: the probe did not come to an end", command, environment)
    report.count(len(lines or []))
    for line in lines or []:
        right = (expected(line.call, lie), expected_error(line.call, lie))
        for result in (line.without_doubled_status(), line.again_without_doubled_status()):
            if (line.end, line.leaked, result, line.error) != ("exit 0", 0, probe.escaped(right[0]),
                                                               probe.escaped(right[1] * 2)):
                report.add_wrong(f"{line.call}, {lie.text!r}: {line.end}, {line.leaked} descriptors left"
                                 f" open, {result!r} and {line.error!r} instead of {right!r}",
                                 [*command[:1], line.call], environment)
                break


def believe_in_program(report, program, lie, reference):
    """Runs a program over one lie. What it prints of the honest runtime may be missing, and what a part
    that failed prints may be there, but no figure of a call that failed."""
    # A count of 2^31 - 1 keeps the harness busy for hours, as above.
    if lie.count == MOST and program.name.startswith("harness"):
        return
    environment = machine.environment("lying", ATTACK_HIP=lie.text)
    result = machine.run(program.command, env=environment)
    report.count(1)
    wrong = programs.complaint(program, result, reference, lost_output=lie.unterminated,
                               throws=bool(lie.thrown))
    if wrong:
        report.add_wrong(f"{program.name}, {lie.text!r}: {wrong}", program.command, environment)


def attack(quick):
    report = Report("hip-calls")
    for_each([(report, name, lie) for name in machine.PROBES for lie in lies(quick)], believe)
    with machine.IdleProcess() as pid:
        tasks = []
        for program in programs.all_programs(pid):
            honest = machine.run(program.command, env=machine.environment("lying"))[1]
            tasks += [(report, program, lie, honest) for lie in lies(quick)
                      if not quick or lie.status in (None, 1, -1)]
        for_each(tasks, believe_in_program)
    report.end()
    return report.wrong == 0
