"""Tests of the installed Python package over simulated GPUs.

The simulator takes its machine from the environment of the process, so each machine has a process of
its own. KESTREL_TEST_RUNTIME names the simulated HIP runtime, KESTREL_TEST_MACHINES the folder of
the machine files.
"""

import json
import os
import subprocess
import sys
from pathlib import Path

import pytest

RUNTIME = Path(os.environ["KESTREL_TEST_RUNTIME"])
MACHINES = Path(os.environ["KESTREL_TEST_MACHINES"])


def environment(machine):
    """The environment of a process that sees the machine; without GPUs if it is None."""
    values = {name: value for name, value in os.environ.items() if "VISIBLE_DEVICES" not in name}
    values.pop("KESTREL_SIM_MACHINE", None)
    values["LD_LIBRARY_PATH"] = str(RUNTIME.parent)
    if machine is not None:
        values["KESTREL_SIM_MACHINE"] = str(MACHINES / f"{machine}.toml")
    return values


@pytest.fixture
def run():
    """run(program, machine): what the program prints as JSON on that machine."""

    def run_program(program, machine=None):
        prelude = "import json, kestrelcore\n"
        process = subprocess.run(
            [sys.executable, "-c", prelude + program],
            env=environment(machine),
            capture_output=True,
            text=True,
            check=False,
        )
        assert process.returncode == 0, process.stderr
        assert process.stderr == ""
        return json.loads(process.stdout)

    return run_program
