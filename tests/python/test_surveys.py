import kestrelcore

PRINT_GPUS = """
import dataclasses
print(json.dumps([dataclasses.asdict(gpu) for gpu in kestrelcore.gpus()]))
"""

PRINT_FAILURE = """
try:
    kestrelcore.gpus()
except kestrelcore.KestrelError as error:
    print(json.dumps([type(error).__name__, error.code, error.message]))
"""

PRINT_SURVEY = """
survey = kestrelcore.survey()
print(json.dumps([len(survey.gpus), str(survey.gpu_error), survey.cpu.architecture,
                  survey.cpu_error]))
"""


def test_gpus_have_every_figure_of_the_machine(run):
    first, second = run(PRINT_GPUS, "apu-and-card")
    assert first == {
        "name": "AMD Radeon RX 7600",
        "device_id": 0,
        "total_memory": 8 << 30,
        "dedicated_memory": 0,
        "integration_type": "Discrete",
        "detection_platform": "ROCm",
        "detection_platform_version": "",
        "architecture_name": "gfx1102",
    }
    assert (second["device_id"], second["integration_type"]) == (1, "Integrated")


def test_every_device_of_a_large_machine_is_listed(run):
    gpus = run(PRINT_GPUS, "nine-devices")
    assert [gpu["device_id"] for gpu in gpus] == list(range(9))


def test_names_of_the_longest_length_are_whole(run):
    (gpu,) = run(PRINT_GPUS, "longest-names")
    assert len(gpu["name"]) == 256
    assert len(gpu["architecture_name"]) == 256


def test_runtime_that_counts_zero_devices_has_an_empty_list(run):
    assert run(PRINT_GPUS, "zero-devices") == []


def test_machine_without_gpus_raises(run):
    assert run(PRINT_FAILURE, "no-gpu") == [
        "NoDevicesError",
        kestrelcore.Status.NO_DEVICES,
        "Error trying to query ROCm gpus: No hip devices found!",
    ]


def test_failed_device_raises_with_its_number(run):
    assert run(PRINT_FAILURE, "properties-fail") == [
        "DeviceQueryError",
        kestrelcore.Status.DEVICE_QUERY_FAILED,
        "Error trying to query ROCm gpus: Invalid hip device at device id'1'",
    ]


def test_survey_reports_both(run):
    assert run(PRINT_SURVEY, "apu-and-card") == [2, "None", "x86_64", None]


def test_survey_of_a_machine_without_gpus_does_not_raise(run):
    message = "Error trying to query ROCm gpus: No hip devices found!"
    assert run(PRINT_SURVEY, "no-gpu") == [0, message, "x86_64", None]


def test_cpu_has_the_extension_that_the_library_requires():
    cpu = kestrelcore.cpu()
    assert cpu.architecture == "x86_64"
    assert "AVX2" in cpu.extensions
