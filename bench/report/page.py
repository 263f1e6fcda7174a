"""Writes the page and its charts from the measurements. Pure functions, but for `write`."""

from pathlib import Path
from statistics import median
from string import Template
from textwrap import fill

import charts
from summary import (
    ACCURACY_GOAL,
    GOALS,
    file_list,
    goal_values,
    is_missed,
    mean_error,
    mean_size,
    middle_half,
    missed_goals,
    number,
    overhead_per_device,
    ratio,
    shortest_interval,
    spread_per_device,
    ways_in_order,
)

FIGURES = [figure for figure, _, _ in GOALS]
LOADS = {100: "busy", 37: "37 percent"}
# The methods of the accuracy, each with its class in the chart.
METHODS = {"kestrelcore": "own", "perf task clock": "limit", "psutil": "peer", "raw stat": "stat"}
# The programs whose start is measured, each with the one that loads nothing.
STARTS = {
    "a C++ program": None,
    "linked": "a C++ program",
    "linked, installed HIP": "a C++ program",
    "lazy": "a C++ program",
    "a C program": None,
    "C interface": "a C program",
}
# What is known about goals that are not met: figures, and why they may miss their goal.
REASONS = (
    (
        ("getAvailableRAM", "willFailToAllocate"),
        "`getAvailableRAM` and `willFailToAllocate` also check that `/sys/fs/cgroup` shows the whole hierarchy "
        "of memory groups, and that the path of the own group begins at its top. Otherwise a container that "
        "mounts the machine's hierarchy would get the limits of another group.",
    ),
    (
        ("getProcessUsedRAM, own process",),
        "`getProcessUsedRAM` opens `/proc/self/statm` for the calling process, which is right in the `/proc` of "
        "any process namespace. The kernel takes a tenth of the time of the call to follow that link.",
    ),
    (
        ("getProcessUsedRAM, another process",),
        "`getProcessUsedRAM` refuses the id of a thread and a `/proc` of another process namespace, which takes "
        "a fifth of its time for another process. libgtop reads the file alone.",
    ),
    (
        ("GetCpuUsage, another process",),
        "`GetCpuUsage` counts the online processors at every call, which takes half of its time for another "
        "process. The kernel offers no faster way that is right for a process confined to some processors.",
    ),
    (
        ("accuracy",),
        "The kernel brings the clock of another process that runs without a pause up to date at its ticks "
        "alone. They are 10 ms apart at 100 Hz, 4 ms at 250 Hz and 1 ms at 1,000 Hz. The steps of psutil "
        "are 10 ms at any of these rates.",
    ),
)
WAY_CLASSES = {"kestrelcore": "own", "C interface": "c", "limit": "limit"}


def row(*cells):
    return "| " + " | ".join(cells) + " |"


def in_code(figure):
    """The name of the call as code, and whom it measures as text."""
    call, comma, process = figure.partition(",")
    return f"`{call}`{comma}{process}"


def verdict(value, most):
    if value is None:
        return row("not measured", "")[2:]
    return row(number(value), "**not met**" if is_missed(value, most) else "met")[2:]


def aim(most, reference):
    """What a figure is compared with: `most` times the reference."""
    reference = "its limit" if reference == "limit" else reference
    return reference if most == 1 else f"{most:g} times {reference}"


def goals_table(data):
    values = goal_values(data)
    rows = [
        f"| {in_code(figure)} | {aim(most, reference)} | " + verdict(values[figure], most)
        for figure, reference, most in GOALS
    ]
    _, interval, reference, most = ACCURACY_GOAL
    figure = f"mean error of `GetCpuUsage` for a busy process over about {interval} ms"
    rows.append(f"| {figure} | {aim(most, reference)} | " + verdict(values["accuracy"], most))
    return "\n".join(rows)


def reasons(missed):
    """Why goals are missed; empty if no reason is known for any of them."""
    known = [text for figures, text in REASONS if missed.intersection(figures)]
    if not known:
        return ""
    items = [fill(text, 106, initial_indent="- ", subsequent_indent="  ") for text in known]
    return "\nWhere a goal is not met, these are the reasons that are known:\n\n" + "\n".join(items) + "\n"


def count_of(counts, what):
    return str(counts[what]) if counts else ""


def calls_table(data, figure):
    ways = data["times"][figure]
    rows = [
        f"### {figure}\n",
        row("way", "median, µs", "middle half, µs", "times the limit", "system calls", "allocations"),
        "|---|---|---|---|---|---|",
    ]
    for way in ways_in_order(ways):
        counts = data["counts"].get(figure, {}).get(way)
        half = " to ".join(map(number, middle_half(ways[way])))
        times = number(ratio(ways, way, "limit"))
        name = f"**{way}**" if way == "kestrelcore" else way
        calls, allocations = count_of(counts, "system_calls"), count_of(counts, "allocations")
        rows.append(row(name, number(median(ways[way])), half, times, calls, allocations))
    return "\n".join(rows)


def devices_table(devices):
    rows = []
    for count, figures in devices.items():
        medians = [
            number(median(figures[figure][way]))
            for figure in ("SurveyGpus", "getMachinePhysicalVRAM", "getAvailableVRAM")
            for way in ("kestrelcore", "limit")
        ]
        overhead = number(overhead_per_device(devices, "SurveyGpus", int(count)))
        rows.append(row(f"{int(count):,}", *medians[:2], overhead, *medians[2:5]))
    return "\n".join(rows)


def measured_starts(programs):
    """Without the program that needs an installed HIP runtime, if there is none."""
    return [(name, without) for name, without in STARTS.items() if name in programs]


def start_table(programs):
    rows = []
    for name, without in measured_starts(programs):
        milliseconds = median(programs[name]) / 1000
        half = " to ".join(number(value / 1000) for value in middle_half(programs[name]))
        more = number(milliseconds - median(programs[without]) / 1000) if without else ""
        rows.append(row(name, number(milliseconds), half, more))
    return "\n".join(rows)


def mean_and_largest(errors):
    return f"{number(mean_size(errors))} ({number(max(map(abs, errors)))})"


def lengths_text(interval, spread):
    return f"{interval - spread} to {interval + spread} ms" if spread else f"{interval} ms"


def accuracy_table(accuracy, duty):
    measured = [entry for entry in accuracy if entry["duty"] == duty]
    methods = [name for name in METHODS if name in {entry["method"] for entry in measured}]
    rows = [row("interval", *methods), "|---" * (len(methods) + 1) + "|"]
    for interval, spread in sorted({(entry["interval"], entry["spread"]) for entry in measured}):
        errors = {entry["method"]: entry["errors"] for entry in measured if entry["interval"] == interval}
        cells = [mean_and_largest(errors[name]) for name in methods]
        rows.append(row(lengths_text(interval, spread), *cells))
    return "\n".join(rows)


def advice(accuracy):
    intervals = [(points, shortest_interval(accuracy, points)) for points in (10, 5, 2)]
    known = [f"within {points} points from about {at} ms on" for points, at in intervals if at is not None]
    if not known:
        return "No interval measured here keeps the mean error of `GetCpuUsage` within 10 points."
    return f"The mean error of `GetCpuUsage` stays {', '.join(known)}."


def machine_text(machine):
    kind = "a virtual machine with " if machine["virtual"] else ""
    return f"{kind}{machine['processors']} processors ({machine['processor']})"


def page(template, data, folder):
    peers, machine = data["peers"], data["machine"]
    missing = [name for name, version in peers.items() if version is None]
    files = data["counts"]["willFailToAllocate"]["kestrelcore"]["files"]
    return Template(template).substitute(
        folder=folder,
        date=data["date"],
        revision=machine["revision"],
        machine=machine_text(machine),
        kernel=machine["kernel"],
        libc=machine["libc"],
        compiler=machine["compiler"],
        load_before=f"{data['load'][0]:.1f}",
        load_after=f"{data['load'][1]:.1f}",
        installed=", ".join(f"{name} {version}" for name, version in peers.items() if version) or "nothing",
        missing=f" Not installed: {', '.join(missing)}." if missing else "",
        goals=goals_table(data),
        reasons=reasons(missed_goals(data)),
        calls="\n\n".join(calls_table(data, figure) for figure in FIGURES),
        files=file_list(files),
        devices=devices_table(data["devices"]),
        survey_spread=f"{spread_per_device(data['devices'], 'SurveyGpus', 16):.2f}",
        vram_spread=f"{spread_per_device(data['devices'], 'getMachinePhysicalVRAM', 16):.2f}",
        start=start_table(data["times"]["start"]),
        processors=machine["processors"],
        accuracy_busy=accuracy_table(data["accuracy"], 100),
        accuracy_bursts=accuracy_table(data["accuracy"], 37),
        accuracy_in_step=accuracy_table(data["accuracy_in_step"], 100),
        advice=advice(data["accuracy"]),
        repetitions=len(data["times"]["SurveyCpu"]["kestrelcore"]),
        duration=data["seconds"],
    )


def calls_chart(times):
    groups = [
        (
            figure,
            [
                (way, WAY_CLASSES.get(way, "peer"), median(times[figure][way]))
                for way in ways_in_order(times[figure])
            ],
        )
        for figure in FIGURES
    ]
    return charts.bars("Time of one call", "µs, logarithmic", groups)


def devices_chart(devices):
    def curve(figure, way):
        return [(int(count), median(figures[figure][way])) for count, figures in devices.items()]

    series = [
        ("SurveyGpus", "own", curve("SurveyGpus", "kestrelcore")),
        ("its HIP calls", "limit", curve("SurveyGpus", "limit")),
        ("getMachinePhysicalVRAM", "own second", curve("getMachinePhysicalVRAM", "kestrelcore")),
        ("its HIP calls", "limit second", curve("getMachinePhysicalVRAM", "limit")),
    ]
    return charts.lines("Time by number of GPUs", "devices", "µs", series)


def start_chart(programs):
    entries = [
        (name, "own" if without else "limit", median(programs[name]) / 1000)
        for name, without in measured_starts(programs)
    ]
    return charts.bars("Start to end of a program", "ms, logarithmic", [("", entries)])


def accuracy_chart(accuracy):
    series = []
    for duty, style in ((100, ""), (37, " second")):
        for method, kind in METHODS.items():
            intervals = sorted({entry["interval"] for entry in accuracy if entry["method"] == method})
            curve = [(at, max(mean_error(accuracy, duty, at, method), 0.01)) for at in intervals]
            if curve:
                series.append((f"{method}, {LOADS[duty]}", kind + style, curve))
    return charts.lines("Mean error by interval", "interval, ms", "points of one processor", series)


def write(data, output):
    """Writes the page, and the charts to a folder of its name next to it."""
    template = Path(__file__).with_name("page.md.in").read_text()
    folder = output.with_suffix("")
    folder.mkdir(parents=True, exist_ok=True)
    output.write_text(page(template, data, folder.name))
    (folder / "calls.svg").write_text(calls_chart(data["times"]))
    (folder / "devices.svg").write_text(devices_chart(data["devices"]))
    (folder / "start.svg").write_text(start_chart(data["times"]["start"]))
    (folder / "accuracy.svg").write_text(accuracy_chart(data["accuracy"]))
