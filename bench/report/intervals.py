"""Which measurements of the CPU usage are made, and over which lengths. Pure functions."""

import random

# By interval in milliseconds: how far the lengths lie from it, and how many there are. Where the interval
# allows, the range is at least as wide as a step of /proc/<pid>/stat, 10 ms, so that the lengths meet every
# part of a step. Whole milliseconds, as GetCpuUsage takes no others.
OFF_STEP = {5: (2, 60), 10: (5, 60), 20: (5, 60), 50: (10, 120), 100: (20, 40), 200: (40, 15), 500: (100, 6)}
# Both are whole steps of /proc/<pid>/stat. 100 ms are whole ticks of the kernel at 100, 250, 300 and
# 1,000 Hz; 50 ms are 12.5 ticks at 250 Hz.
IN_STEP = {50: (0, 40), 100: (0, 20)}
LONGEST_TICK = 0.01  # seconds, with a kernel of 100 Hz


def plan(intervals, methods, scale):
    """Method, interval, pause and length of each measurement, in random order; the pause in seconds.

    Every method gets the same lengths, and the same pauses before them, so that the measurements start at
    any moment between two ticks. Each run has the same plan.
    """
    generator = random.Random(1)
    planned = []
    for interval, (spread, count) in intervals.items():
        for _ in range(max(1, round(count * scale))):
            pause = generator.uniform(0, LONGEST_TICK)
            length = generator.randint(interval - spread, interval + spread)
            planned += [(method, interval, pause, length) for method in methods]
    generator.shuffle(planned)
    return planned
