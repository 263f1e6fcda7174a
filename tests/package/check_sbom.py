"""Checks what packaging/sbom writes of made-up files, and that packaging/check_sbom notices faults.

    check_sbom.py SOURCE WORK
"""

import json
import os
import shutil
import subprocess
import sys
from pathlib import Path

FILES = ["kestrelcore-1.2.3.tar.gz", "libkestrelcore-c0_1.2.3-1_amd64.deb", "kestrel-tools_1.2.3-1_amd64.deb",
         "kestrelcore-simulator_1.2.3-1_amd64.deb", "kestrelcore-1.2.3-windows-x86_64.zip",
         "kestrelcore-1.2.3-py3-none-win_amd64.whl"]


def change(path, value):
    """A fault: what sets the member at the path, of keys and indices, to the value."""
    def apply(document):
        for key in path[:-1]:
            document = document[key]
        document[path[-1]] = value
    return apply


FAULTS = [
    change(["spdxVersion"], "SPDX-2.2"),
    change(["documentNamespace"], "https://example.org/a#b"),
    change(["creationInfo", "created"], "2026-01-01T00:00:00"),
    change(["creationInfo", "creators"], ["packaging/sbom"]),
    change(["packages", 0, "SPDXID"], "SPDXRef-Part_0"),
    change(["packages", 1, "SPDXID"], "SPDXRef-Part-0"),
    change(["packages", 0, "licenseDeclared"], "GPL-3.0-or-later WITH MIT"),
    change(["packages", 0, "filesAnalyzed"], True),
    change(["packages", -1, "checksums", 0, "checksumValue"], "0" * 64),
    change(["packages", -1, "packageFileName"], "other"),
    change(["relationships", 0, "relatedSpdxElement"], "SPDXRef-File-99"),
    change(["relationships"], []),
]


def main() -> None:
    source, work = Path(sys.argv[1]), Path(sys.argv[2])
    shutil.rmtree(work, ignore_errors=True)
    files = work / "dist"
    files.mkdir(parents=True)
    for name in FILES:
        (files / name).write_text(name, encoding="utf-8")
    # The versions of Debian packages that need not be installed here.
    query = work / "bin" / "dpkg-query"
    query.parent.mkdir()
    query.write_text("#!/bin/sh\nprintf '%s' 4.5-6\n", encoding="utf-8")
    query.chmod(0o755)
    environment = {**os.environ, "PATH": f"{query.parent}:{os.environ['PATH']}", "SOURCE_DATE_EPOCH": "1"}

    def written():
        return subprocess.run([sys.executable, source / "packaging/sbom", files, "1.2.3"], check=True,
                              capture_output=True, text=True, env=environment).stdout

    def checked(document):
        (work / "sbom").write_text(json.dumps(document), encoding="utf-8")
        return subprocess.run([sys.executable, source / "packaging/check_sbom", work / "sbom", files],
                              check=False, capture_output=True, text=True)

    text = written()
    assert written() == text, "the same files give another text"
    result = checked(json.loads(text))
    assert result.returncode == 0, result.stderr
    for name in ("sbom", "SHA256SUMS"):
        (files / name).write_text("not listed", encoding="utf-8")
    result = checked(json.loads(text))
    assert result.returncode == 0, result.stderr
    parts = {part["name"]: part["versionInfo"] for part in json.loads(text)["packages"]}
    assert parts["toml++"] == "4.5-6" and parts[FILES[0]] == "1.2.3", parts
    for number, fault in enumerate(FAULTS):
        document = json.loads(text)
        fault(document)
        result = checked(document)
        assert result.returncode == 1 and result.stderr.startswith("packaging/check_sbom: "), (number, result)


main()
