"""Whether a model of some size fits, and where: does_it_fit.py GIB"""

import sys

import kestrelcore

gib = int(sys.argv[1]) if len(sys.argv) > 1 else 8
gpus = kestrelcore.survey().gpus
free_gib = kestrelcore.vram().available >> 30 if gpus else 0
if gpus and free_gib >= gib:
    print(f"{gib} GiB fit on {gpus[0].name}, which has {free_gib} GiB free.")
elif kestrelcore.will_fail_to_allocate(gib << 30):
    print(f"{gib} GiB do not fit.")
else:
    print(f"{gib} GiB fit into RAM alone.")
