"""What each call is to return over the lying runtime, from what the headers say."""

import dataclasses

GIGABYTE = 1 << 30
OUT_OF_MEMORY, UNKNOWN = 2, 999  # the statuses that an exception of the runtime counts as
PREFIX = "Error trying to query ROCm gpus: "
STEPS = {"hipGetDeviceProperties": "Invalid hip device at device id'",
         "hipSetDevice": "Failed to set hip device at device id'",
         "hipMemGetInfo": "Failed to get memory info for hip device at device id'"}


@dataclasses.dataclass(frozen=True)
class Card:
    """A device of the lying runtime."""

    name: str
    arch: str
    integrated: bool
    in_properties: int
    free: int
    total: int


CARDS = [Card("First Card", "gfx1100", False, 9 * GIGABYTE + 1, 6 * GIGABYTE, 8 * GIGABYTE),
         Card("Second Card", "gfx1103", True, 17 * GIGABYTE + 1, 12 * GIGABYTE, 16 * GIGABYTE)]


@dataclasses.dataclass(frozen=True)
class Lie:
    """How the runtime behaves; `text` is ATTACK_HIP."""

    operation: str = ""
    device: int = None
    status: int = None
    writes: bool = False
    thrown: str = ""
    count: int = None
    unterminated: bool = False
    no_text: str = ""   # what hipGetErrorString does instead: "null-text" or "throws"

    @property
    def text(self):
        words = {"in": self.operation, "device": self.device, "status": self.status,
                 "throw": self.thrown, "count": self.count}
        flags = [*(["writes"] if self.writes else []), *(["unterminated"] if self.unterminated else []),
                 *(["null-text"] if self.no_text == "null-text" else [])]
        return " ".join([f"{key}={value}" for key, value in words.items() if value not in (None, "")]
                        + flags)

    def fails(self, operation, device=None):
        """Whether the call returns a failure or throws."""
        return self.operation == operation and self.device in (None, device) or (
            operation == "hipGetDeviceProperties" and device is not None and device >= len(CARDS))

    def failure(self, operation, device=None):
        """The status that a failure counts as."""
        if self.operation != operation or self.device not in (None, device):
            return 101
        return self.status if not self.thrown else OUT_OF_MEMORY if self.thrown == "bad_alloc" else UNKNOWN

    def failure_text(self, operation, device=None):
        return "" if self.no_text else f"status {self.failure(operation, device)}"

    @property
    def claimed(self):
        """The number that hipGetDeviceCount writes."""
        if self.fails("hipGetDeviceCount"):
            return 77 if self.writes else 0
        return len(CARDS) if self.count is None else self.count


def name_of(lie, text):
    return "x" * 256 if lie.unterminated else text


def survey(lie):
    """The outcome of the survey of GPUs: the code and the message, or what is thrown."""
    if lie.fails("hipGetDeviceCount"):
        return ("throws", lie.thrown) if lie.thrown else (3, PREFIX + "No hip devices found!")
    for device in range(lie.claimed):
        for operation, message in STEPS.items():
            if lie.fails(operation, device):
                if lie.thrown and device < len(CARDS):
                    return "throws", lie.thrown
                return 4, f"{PREFIX}{message}{device}'"
    return 1, ""


def gpus_text(lie):
    code, message = survey(lie)
    if code == "throws":
        return "bad_alloc" if message == "bad_alloc" else "exception"
    cards = CARDS[:max(lie.claimed, 0)] if code == 1 else []
    text = f"{code} '{message}' {len(cards)} GPUs"
    for device, card in enumerate(cards):
        text += (f"; {device} '{name_of(lie, card.name)}' {'Integrated' if card.integrated else 'Discrete'}"
                 f" {card.total} ROCm gcnArchName='{name_of(lie, card.arch)}'")
    return text


def c_gpus_text(lie):
    code, message = survey(lie)
    if code == "throws":
        name, message = (("OUT_OF_MEMORY", "Out of memory") if message == "bad_alloc" else
                         ("RUNTIME_FAILED", "The GPU runtime threw an exception"))
    else:
        name = {1: "OK", 3: "NO_DEVICES", 4: "DEVICE_QUERY_FAILED"}[code]
    cards = CARDS[:max(lie.claimed, 0)] if name == "OK" else []
    text = f"KESTREL_{name} '{message}' {len(cards)} GPUs"
    for device, card in enumerate(cards):
        text += (f"; {device} '{name_of(lie, card.name)}' '{name_of(lie, card.arch)}'"
                 f" {1 if card.integrated else 2} {card.total} 1")
    return text


def physical_vram(lie):
    """The sum, and the lines on standard error."""
    if lie.fails("hipGetDeviceCount"):
        return 0, [f"hipGetDeviceCount failed: {lie.failure_text('hipGetDeviceCount')}"]
    if lie.claimed == 0:
        return 0, ["getMachinePhysicalVRAM_ROCm no HIP devices found"]
    total, lines = 0, []
    for device in range(lie.claimed):
        if lie.fails("hipGetDeviceProperties", device):
            text = lie.failure_text("hipGetDeviceProperties", device)
            lines.append(f"hipGetDeviceProperties failed for device {device}: {text}")
        else:
            total += CARDS[device].in_properties
    return total, lines


def available_vram(lie):
    """The C++ meter looks at the count alone, whatever the status of that query."""
    failed = lie.claimed < 1 or lie.fails("hipSetDevice", 0) or lie.fails("hipMemGetInfo", 0)
    return 0 if failed else CARDS[0].free


def c_gpu_memory(lie, device):
    """The beginning of the answer, and the device's figures."""
    if lie.fails("hipGetDeviceCount") or lie.claimed < 1:
        return "KESTREL_NO_DEVICES 'No HIP devices found'", 0, 0
    if device >= lie.claimed:
        message = "The device number is not below the number of devices"
        return f"KESTREL_INVALID_ARGUMENT '{message}'", 0, 0
    for operation in ("hipSetDevice", "hipMemGetInfo"):
        if lie.fails(operation, device):
            text = lie.failure_text(operation, device)
            return (f"KESTREL_DEVICE_QUERY_FAILED '{operation} failed for device {device}: {text}'", 0, 0)
    return "KESTREL_OK ''", CARDS[device].free, CARDS[device].total


def c_physical_vram(lie):
    total, lines = physical_vram(lie)
    if lie.fails("hipGetDeviceCount") or lie.claimed < 1:
        return f"KESTREL_NO_DEVICES '{(lines or ['No HIP devices found'])[0]}' 0"
    status = "KESTREL_DEVICE_QUERY_FAILED" if lines else "KESTREL_OK"
    return f"{status} '{chr(10).join(lines)}' {total}"


CPU = "1 '' x86_64 [AVX, AVX2]"
C_CPU = "KESTREL_OK '' 0 3"


def expected(call, lie):
    """The result, as the probes write it, without the status that the C calls return besides."""
    if call == "SurveyHardware":
        gpus = gpus_text(lie)
        return gpus if survey(lie)[0] == "throws" else f"{gpus} | {CPU}"
    if call in ("kestrel_gpu_memory", "kestrel_available_vram"):
        answer, free, total = c_gpu_memory(lie, 1 if call == "kestrel_gpu_memory" else 0)
        return f"{answer} {free} {total}" if call == "kestrel_gpu_memory" else f"{answer} {free}"
    return {"SurveyGpus": gpus_text, "kestrel_survey_gpus": c_gpus_text,
            "getMachinePhysicalVRAM": lambda lie: str(physical_vram(lie)[0]),
            "getAvailableVRAM": lambda lie: str(available_vram(lie)),
            "kestrel_machine_physical_vram": c_physical_vram,
            "kestrel_survey_hardware": lambda lie: f"{c_gpus_text(lie)} | {C_CPU}"}[call](lie)


def expected_error(call, lie):
    """What a C++ call writes to standard error."""
    lines = physical_vram(lie)[1] if call == "getMachinePhysicalVRAM" else []
    return "".join(line + "\n" for line in lines)
