"""The records are those of the C header, field by field."""

import ctypes
import os
import subprocess

import pytest
from kestrelcore import _library

RECORDS = {
    "kestrel_result": _library.Result,
    "kestrel_cpu": _library.CpuRecord,
    "kestrel_gpu": _library.GpuRecord,
    "kestrel_forecast": _library.ForecastRecord,
}


@pytest.mark.parametrize("name", RECORDS)
def test_record_has_the_layout_of_the_header(tmp_path, name):
    record = RECORDS[name]
    fields = [field for field, _ in record._fields_]
    offsets = "".join(
        f'printf("%zu %zu\\n", offsetof({name}, {field}), sizeof(instance.{field}));'
        for field in fields
    )
    source = tmp_path / "layout.c"
    source.write_text(
        f"#include <kestrelcore.h>\n#include <stdio.h>\n"
        f'int main(void) {{ {name} instance; printf("%zu\\n", sizeof instance); {offsets} }}\n'
    )
    program = tmp_path / "layout"
    include = os.environ["KESTREL_TEST_INCLUDE"]
    subprocess.run(["cc", f"-I{include}", source, "-o", program], check=True)
    lines = subprocess.run([program], capture_output=True, text=True, check=True).stdout.split("\n")
    expected = [str(ctypes.sizeof(record))]
    for field in fields:
        descriptor = getattr(record, field)
        expected.append(f"{descriptor.offset} {descriptor.size}")
    assert lines[:-1] == expected
