"""The Debian packages: what is in which, what lintian says, and that removing them leaves nothing."""
import os
import pathlib
import re
import shutil
import subprocess
import unittest

from scratch_system import ScratchSystem

LIBDIR = os.environ["LIBDIR"]
DEBS = {file.name.split("_")[0]: file for file in pathlib.Path(os.environ["DEBS"]).glob("*.deb")}
LIBRARY = next(name for name in DEBS if re.match(r"libvlm-internal\d+$", name))


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def names(package):
    listed = output("sh", "-c", 'dpkg-deb --fsys-tarfile "$1" | tar -t', "sh", str(DEBS[package]))
    return {line.removeprefix("./") for line in listed.splitlines() if not line.endswith("/")}


class Contents(unittest.TestCase):
    def test_the_library_is_alone_and_named_after_its_soname(self):
        number = LIBRARY.removeprefix("libvlm-internal")
        libraries = {name for name in names(LIBRARY) if name.startswith("usr/lib")}
        prefix = "usr/%s/libvlm_internal.so." % LIBDIR
        self.assertIn(prefix + number, libraries)
        self.assertTrue(all(name.startswith(prefix) for name in libraries), libraries)

    def test_the_rest_of_the_library_is_for_developers(self):
        expected = {"usr/include/vlm_internal.h", "usr/include/vlm_version.h",
                    "usr/include/kpf_reader.h"}
        expected |= {"usr/%s/%s" % (LIBDIR, name) for name in (
            "libvlm_internal.so", "libvlm_internal.a", "libkpf_reader.a",
            "pkgconfig/vlm_internal.pc", "pkgconfig/kpf_reader.pc",
            "cmake/vlm_internal/vlm_internal-config.cmake")}
        self.assertLessEqual(expected, names("libvlm-internal-dev"))

    def test_the_front_in_c_stands_alone(self):
        prefix = "usr/%s/" % LIBDIR
        libraries = {name for name in names("libkpf1") if name.startswith("usr/lib")}
        self.assertIn(prefix + "libkpf.so.1", libraries)
        self.assertTrue(all(name.startswith(prefix + "libkpf.so.") for name in libraries), libraries)
        expected = {"usr/include/kpf.h", "usr/include/kpf_types.h"}
        expected |= {prefix + name for name in (
            "libkpf.so", "pkgconfig/kpf.pc", "cmake/kpf/kpf-config.cmake")}
        self.assertLessEqual(expected, names("libkpf-dev"))
        for package in ("libkpf1", "libkpf-dev"):
            self.assertNotIn("libvlm", output("dpkg-deb", "-f", str(DEBS[package]), "Depends"))

    @unittest.skipUnless("kpf" in DEBS, "the tool was not built")
    def test_the_tool_comes_with_its_pages(self):
        expected = {"usr/bin/kpf", "usr/share/man/man1/kpf.1.gz",
                    "usr/share/bash-completion/completions/kpf",
                    "usr/share/zsh/vendor-completions/_kpf"}
        self.assertLessEqual(expected, names("kpf"))
        self.assertIn(LIBRARY + " (>= ", output("dpkg-deb", "-f", str(DEBS["kpf"]), "Depends"))

    @unittest.skipUnless("python3-kpf" in DEBS, "the package for Python was not built")
    def test_the_package_for_python_is_pure_and_where_debian_looks(self):
        folder = "usr/lib/python3/dist-packages/"
        found = names("python3-kpf")
        self.assertLessEqual({folder + "kpf/__init__.py", folder + "kpf/py.typed",
                              folder + "kpf/napari.yaml"}, found)
        self.assertTrue(any(name.endswith(".dist-info/entry_points.txt") for name in found), found)
        self.assertTrue(all(name.startswith((folder + "kpf", "usr/share/doc/")) for name in found))
        fields = output("dpkg-deb", "-f", str(DEBS["python3-kpf"]))
        self.assertIn("Architecture: all", fields)
        self.assertRegex(fields, r"Depends: libkpf\d+ \(>= [\d.]+\), python3 .*python3-numpy")

    def test_every_package_says_what_it_is(self):
        for package, file in DEBS.items():
            doc = "usr/share/doc/" + package
            self.assertLessEqual({doc + "/copyright", doc + "/changelog.Debian.gz"}, names(package))
            description = output("dpkg-deb", "-f", str(file), "Description")
            self.assertGreater(len(description.splitlines()), 2, package)

    @unittest.skipUnless(shutil.which("lintian"), "no lintian")
    def test_lintian_is_silent(self):
        said = subprocess.run(["lintian", "--allow-root", *map(str, DEBS.values())], check=False,
                              capture_output=True, text=True)
        self.assertEqual((said.stdout, said.returncode), ("", 0))


class Removal(ScratchSystem):
    def test_purging_leaves_nothing(self):
        root = self.folder / "installed"
        (root / "var/lib/dpkg/updates").mkdir(parents=True)
        (root / "var/lib/dpkg/status").touch()
        dpkg = "dpkg --root=%s --log=/dev/null --force-depends --force-script-chrootless " % root
        self.run_as_root(dpkg + "--install " + " ".join(map(str, DEBS.values())))
        self.assertTrue((root / "usr" / LIBDIR / "libvlm_internal.so").exists())
        self.run_as_root(dpkg + "--purge " + " ".join(DEBS))
        self.assertFalse((root / "usr").exists())


if __name__ == "__main__":
    unittest.main()
