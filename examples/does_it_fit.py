"""Whether a model of some size fits, and where: does_it_fit.py GIB"""

import sys

import kestrelcore

MAX_GIB = 1_000_000_000  # in bytes less than 2**63

text = sys.argv[1] if len(sys.argv) > 1 else "8"
gib = int(text) if text.isdecimal() else 0
if not 1 <= gib <= MAX_GIB:
    print(f"GIB must be a number from 1 to {MAX_GIB}.", file=sys.stderr)
    sys.exit(2)
gpus = kestrelcore.survey().gpus
free_gib = kestrelcore.vram().available >> 30 if gpus else 0
if gpus and free_gib >= gib:
    print(f"{gib} GiB fit on {gpus[0].name}, which has {free_gib} GiB free.")
elif kestrelcore.will_fail_to_allocate(gib << 30):
    print(f"{gib} GiB do not fit.")
else:
    print(f"{gib} GiB fit into RAM alone.")
