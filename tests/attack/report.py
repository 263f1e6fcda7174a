"""What an attack found."""

import collections
import concurrent.futures
import os
import shlex
import threading
import time


class Report:
    """Counts the faults of one attack and prints a line for each wrong outcome."""

    def __init__(self, attack):
        self.attack = attack
        self.faults = 0
        self.wrong = 0
        self.foreign = collections.Counter()
        self.notes = []
        self.lock = threading.Lock()
        self.began = time.monotonic()

    def count(self, faults):
        with self.lock:
            self.faults += faults

    def add_wrong(self, what, command, environment=None):
        """`command` (with what `environment` adds to the caller's) does it again."""
        added = [f"{name}={shlex.quote(value)}" for name, value in sorted((environment or {}).items())
                 if os.environ.get(name) != value]
        with self.lock:
            self.wrong += 1
            print(f"{self.attack}: {what}; again: {' '.join([*added, shlex.join(map(str, command))])}",
                  flush=True)

    def count_foreign(self, place):
        """An end of the process inside of a library that is not ours."""
        with self.lock:
            self.foreign[place] += 1

    def note(self, text):
        """Something that a reader of the counts should know."""
        with self.lock:
            self.notes.append(text)

    def end(self):
        if self.faults == 0:
            self.add_wrong("no fault struck", [])
        for text in self.notes:
            print(f"attack {self.attack}: {text}")
        seconds = time.monotonic() - self.began
        print(f"attack {self.attack}: {self.faults:,} faults, {self.wrong:,} wrong"
              f" ({seconds:.0f} s)", flush=True)


def for_each(tasks, work):
    """Calls work(*task) for each task on several threads: at most four, since the programs that run at
    the same time share one memory group, whose figures may move by `outcomes.MOVING` alone."""
    with concurrent.futures.ThreadPoolExecutor(min(4, os.cpu_count())) as pool:
        for future in [pool.submit(work, *task) for task in tasks]:
            future.result()
