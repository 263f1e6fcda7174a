"""Records and injects system calls with strace."""

import collections
import errno
import os
import re
import tempfile

import machine

# What no fault is injected into: an injected close(2) never runs, so the descriptor would leak by the
# attack's own doing; glibc ends a process in which futex(2) fails in a way that its manual does not
# know; the others do not return, or are how the attacks themselves start and end.
LEFT_ALONE = {"close", "exit", "exit_group", "rt_sigreturn", "restart_syscall", "execve", "getppid",
              "arch_prctl", "vfork", "wait4", "futex"}

MARK = "getppid"  # the probes and the start marker call it, and nothing else does

OTHER_ERRORS = ["EIO", "EMFILE", "ENOMEM", "EACCES", "EBADF", "ENOSYS", "ESRCH", "EINVAL"]
# Each number once. strace does not know the second names that Python prefers for two of them.
ALL_ERRORS = [{"EDEADLOCK": "EDEADLK", "ENOTSUP": "EOPNOTSUPP"}.get(name, name)
              for _, name in sorted(errno.errorcode.items())]

STRACE = ["strace", "-f", "--seccomp-bpf", "-qqq", "-e", "signal=none"]


def record(command, environment):
    """Runs a command and returns the names of the system calls of each of its threads, in order, by
    thread, and what machine.run returns."""
    with tempfile.NamedTemporaryFile() as log:
        result = machine.run(before_strace(command, ["-o", log.name]), env=environment)
        lines = log.read().decode(errors="replace").splitlines()
    calls = collections.defaultdict(list)
    for line in lines:
        match = re.match(r"(\d+) +(\w+)\(", line)
        if match:
            calls[int(match[1])].append(match[2])
    return calls, result


def inject(command, environment, call, error, when):
    """Runs a command in which the `when`-th such call of each thread fails. Returns the threads that
    it struck, and what machine.run returns."""
    with tempfile.NamedTemporaryFile() as log:
        options = ["-o", log.name, *injection(call, error, when)]
        result = machine.run(before_strace(command, options), env=environment)
        text = log.read().decode(errors="replace")
    return {int(thread) for thread in re.findall(r"^(\d+) .*\(INJECTED\)", text, re.M)}, result


def injection(call, error, when):
    """The options of strace that let the `when`-th such call fail."""
    return ["-e", f"trace={call}", "-e", f"inject={call}:error={error}:when={when}"]


def before_strace(command, options):
    """The command under strace: within `sh -c ... CGROUP`, which enters a memory group, where it is
    there."""
    entering = 4 if command[0] == "sh" else 0
    return [*command[:entering], *STRACE, *options, *command[entering:]]


def number_of(call):
    """The number of a system call on this machine."""
    if not NUMBERS:
        for folder in ("/usr/include/x86_64-linux-gnu", "/usr/include"):
            header = os.path.join(folder, "asm/unistd_64.h")
            if os.path.exists(header):
                with open(header, encoding="utf-8") as file:
                    for name, number in re.findall(r"__NR_(\w+) (\d+)", file.read()):
                        NUMBERS[name] = int(number)
    return NUMBERS[call]


NUMBERS = {}
