"""Makes one wheel for every Python 3 of a platform: the library inside is loaded by ctypes."""

import os

from setuptools import Distribution, setup

try:
    from setuptools.command.bdist_wheel import bdist_wheel  # since setuptools 70.1
except ImportError:
    from wheel.bdist_wheel import bdist_wheel


class PlatformDistribution(Distribution):
    def has_ext_modules(self):
        return True


class PlatformWheel(bdist_wheel):
    def get_tag(self):
        return "py3", "none", os.environ["KESTRELCORE_WHEEL_PLATFORM"]


setup(cmdclass={"bdist_wheel": PlatformWheel}, distclass=PlatformDistribution)
