import pickle

import kestrelcore
from kestrelcore import _errors, _library


def test_every_failure_has_the_same_base_class():
    for status in kestrelcore.Status:
        assert isinstance(_errors.error_of(status, "text"), kestrelcore.KestrelError)


def test_failure_holds_code_and_message():
    error = _errors.error_of(6, "text")
    assert isinstance(error, kestrelcore.NoDevicesError)
    assert error.code is kestrelcore.Status.NO_DEVICES
    assert error.message == str(error) == "text"


def test_status_of_a_later_library_is_kept_as_a_number():
    error = _errors.error_of(1234, "text")
    assert type(error) is kestrelcore.KestrelError
    assert error.code == 1234


def test_failure_can_be_passed_to_another_process():
    error = pickle.loads(pickle.dumps(_errors.error_of(6, "text")))
    assert (type(error), error.code, error.message) == (kestrelcore.NoDevicesError, 6, "text")


def test_statuses_are_those_of_the_library():
    name = _library._declare("kestrel_status_name", _library.version_text.restype, int_type())
    for status in kestrelcore.Status:
        assert name(status).decode() == f"KESTREL_{status.name}"
    assert name(max(kestrelcore.Status) + 1) == b"KESTREL_STATUS_UNKNOWN"


def int_type():
    return _library.ctypes.c_int32
