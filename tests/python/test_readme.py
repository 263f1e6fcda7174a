"""The programs in the READMEs run, and print the devices of the machine."""

import re
import subprocess
import sys
from pathlib import Path

import conftest
import pytest

ROOT = Path(__file__).parents[2]


@pytest.mark.parametrize("readme", ["README.md", "python/README.md"])
def test_program_prints_devices_and_forecast(readme):
    text = (ROOT / readme).read_text(encoding="utf-8")
    (program,) = re.findall(r"```python\n(.*?)```", text, re.DOTALL)
    process = subprocess.run(
        [sys.executable, "-c", program],
        env=conftest.environment("apu-and-card"),
        capture_output=True,
        text=True,
        check=True,
    )
    lines = process.stdout.splitlines()
    assert lines[:2] == [
        "AMD Radeon RX 7600 gfx1102 8 GiB",
        "AMD Radeon 780M gfx1103 4 GiB",
    ]
    assert re.fullmatch(r"\d+ GiB of RAM available", lines[2])
    assert lines[3] in ("8 GiB would fit", "8 GiB would fail")
