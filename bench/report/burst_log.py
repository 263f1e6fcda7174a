"""Reads what kestrelcore_burst_log prints: pairs of a time and of the processor time used by then, in ns."""

import bisect


def parse(text):
    return [tuple(map(int, line.split())) for line in text.splitlines()]


def used_at(log, moment):
    """The processor time used by `moment`; between two pairs in proportion."""
    if not log or not log[0][0] <= moment <= log[-1][0]:
        raise ValueError("the log of the load does not cover the measurement")
    place = min(bisect.bisect(log, (moment, float("inf"))), len(log) - 1)
    (start, used), (end, used_by_end) = log[place - 1], log[place]
    return used + (used_by_end - used) * (moment - start) / max(end - start, 1)


def percent_used(log, start, end):
    """The use of one processor between two times."""
    return 100 * (used_at(log, end) - used_at(log, start)) / (end - start)
