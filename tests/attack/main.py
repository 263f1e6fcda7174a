"""Runs the attacks. script/attack builds what they need and explains the arguments."""

import sys

import allocations
import hip_calls
import program_system_calls
import short_reads
import system_calls

ATTACKS = {
    "system-calls": system_calls.attack,
    "program-system-calls": program_system_calls.attack,
    "short-reads": short_reads.attack,
    "allocations": allocations.attack,
    "hip-calls": hip_calls.attack,
}


def main(arguments):
    quick = "--quick" in arguments
    names = [argument for argument in arguments if argument != "--quick"]
    if any(name not in ATTACKS for name in names):
        print(f"usage: script/attack [--quick] [{' | '.join(ATTACKS)}]...", file=sys.stderr)
        return 2
    succeeded = [ATTACKS[name](quick) for name in names or ATTACKS]
    return 0 if all(succeeded) else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
