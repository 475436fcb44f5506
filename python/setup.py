"""Wheels with the shared library inside belong to one system; all else is in pyproject.toml."""
from pathlib import Path

from setuptools import Distribution, setup

HAS_LIBRARY = any(Path(__file__).parent.joinpath("kpf", name).exists()
                  for name in ("libkpf.so.1", "kpf.dll"))
OPTIONS = {}

if HAS_LIBRARY:
    from wheel.bdist_wheel import bdist_wheel

    class WheelOfThisSystem(bdist_wheel):
        """For any Python 3, as nothing in it was compiled against one, but for this system alone."""

        def finalize_options(self):
            super().finalize_options()
            self.root_is_pure = False

        def get_tag(self):
            return ("py3", "none", super().get_tag()[2])

    OPTIONS["cmdclass"] = {"bdist_wheel": WheelOfThisSystem}


class WithLibrary(Distribution):
    def has_ext_modules(self):
        return HAS_LIBRARY


setup(distclass=WithLibrary, **OPTIONS)
