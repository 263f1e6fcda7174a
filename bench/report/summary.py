"""What the measurements say: medians, ratios, and which goals are met. Pure functions."""

import math
from collections import Counter
from statistics import median, quantiles

OWN_WAYS = ("kestrelcore", "C interface", "limit")
# Figure, what it is compared with, and the largest ratio. The project's own aims.
GOALS = (
    ("SurveyCpu", "limit", 1.15),
    ("getMachinePhysicalRAM", "limit", 1.15),
    ("getAvailableRAM", "limit", 1.15),
    ("willFailToAllocate", "limit", 1.15),
    ("getProcessUsedRAM, own process", "libgtop", 1.0),
    ("getProcessUsedRAM, another process", "libgtop", 1.0),
    ("GetCpuUsage, own process", "raw stat", 0.5),
    ("GetCpuUsage, another process", "raw stat", 0.5),
)
ACCURACY_GOAL = (100, 50, "psutil", 0.5)  # duty, interval, compared with, the largest ratio


def file_list(files):
    """The files by name, and those of memory groups by how many groups they were read for."""
    groups = Counter(file.rpartition("/")[2] for file in files if file.startswith("/sys/fs/cgroup/"))
    plain = [f"`{file}`" for file in dict.fromkeys(files) if not file.startswith("/sys/fs/cgroup/")]
    return ", ".join(plain + [f"`{name}` of {count} memory groups" for name, count in groups.items()])


def number(value):
    """Three significant digits, without an exponent."""
    if value == 0:
        return "0"
    rounded = float(f"{value:.3g}")
    decimals = 2 - math.floor(math.log10(abs(rounded)))
    return f"{rounded:,.{max(decimals, 0)}f}"


def middle_half(values):
    """The first and the third quartile."""
    if len(values) < 2:
        return values[0], values[0]
    first, _, third = quantiles(values, n=4)
    return first, third


def ways_in_order(ways):
    """kestrelcore's own and the limit, then the others by their medians."""
    others = sorted((way for way in ways if way not in OWN_WAYS), key=lambda way: median(ways[way]))
    return [way for way in OWN_WAYS if way in ways] + others


def ratio(ways, way, reference):
    """None if one of them was not measured."""
    if way not in ways or reference not in ways:
        return None
    return median(ways[way]) / median(ways[reference])


def mean_size(errors):
    return sum(map(abs, errors)) / len(errors)


def mean_error(accuracy, duty, interval, method):
    """In points of one processor; None if it was not measured."""
    for entry in accuracy:
        if (entry["duty"], entry["interval"], entry["method"]) == (duty, interval, method):
            return mean_size(entry["errors"])
    return None


def accuracy_ratio(accuracy):
    duty, interval, reference, _ = ACCURACY_GOAL
    own = mean_error(accuracy, duty, interval, "kestrelcore")
    other = mean_error(accuracy, duty, interval, reference)
    return own / other if own is not None and other else None


def goal_values(data):
    """The measured ratios by figure, that of the accuracy as "accuracy"; None if not measured."""
    times = data["times"]
    values = {figure: ratio(times[figure], "kestrelcore", reference) for figure, reference, _ in GOALS}
    return values | {"accuracy": accuracy_ratio(data["accuracy"])}


def is_missed(value, most):
    return value is not None and value > most


def missed_goals(data):
    """The figures whose ratio is larger than their goal's."""
    largest = {figure: most for figure, _, most in GOALS} | {"accuracy": ACCURACY_GOAL[3]}
    values = goal_values(data)
    return {figure for figure, value in values.items() if is_missed(value, largest[figure])}


def shortest_interval(accuracy, points):
    """The shortest interval from which on every mean error of kestrelcore is within `points`."""
    within = None
    for interval in sorted({entry["interval"] for entry in accuracy}, reverse=True):
        duties = {entry["duty"] for entry in accuracy}
        if max(mean_error(accuracy, duty, interval, "kestrelcore") for duty in duties) > points:
            break
        within = interval
    return within


def overhead_per_device(devices, figure, count):
    """Microseconds beyond the bare HIP calls, for each device."""
    ways = devices[str(count)][figure]
    return (median(ways["kestrelcore"]) - median(ways["limit"])) / count


def spread_per_device(devices, figure, least):
    """The largest time per device over the smallest, among machines of `least` devices and more."""
    per_device = [
        median(ways[figure]["kestrelcore"]) / int(count)
        for count, ways in devices.items()
        if int(count) >= least
    ]
    return max(per_device) / min(per_device)
