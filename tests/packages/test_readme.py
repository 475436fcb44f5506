"""README's lines, run as they stand there on a system that knows nothing of the library."""
import os
import pathlib
import re
import unittest

from scratch_system import ScratchSystem

BUILD = os.environ["BUILD"]
README = pathlib.Path(os.environ["README"]).read_text(encoding="utf-8")

# Installing needs no building here: this test belongs to a build. All else is the real thing.
CMAKE = """#!/bin/bash
case "$*" in
  "--preset release" | "--build build/release") ;;
  *) exec /usr/bin/cmake "$@" ;;
esac
"""
SUDO = """#!/bin/bash
exec "$@"
"""
FROM_C = "From C, and any language that calls C"


def block_after(heading, language):
    """The first block of code in that language below a heading."""
    text = README.split("\n## " + heading + "\n", 1)[1]
    return re.search("```%s\n(.*?)```" % language, text, re.S)[1]


class Readme(ScratchSystem):
    def setUp(self):
        super().setUp()
        (self.folder / "program.cpp").write_text(block_after("A complete program", "cpp"))
        (self.folder / "rows.c").write_text(block_after(FROM_C, "c"))
        (self.folder / "build").mkdir()
        (self.folder / "build/release").symlink_to(BUILD)
        self.stand_ins = self.folder / "stand-ins"
        for name, text in (("cmake", CMAKE), ("sudo", SUDO), ("setup", "#!/bin/sh\n")):
            file = self.stand_ins / name
            file.parent.mkdir(exist_ok=True)
            file.write_text(text)
            file.chmod(0o755)
        (self.folder / "scripts").symlink_to(self.stand_ins)

    def test_the_lines_one_after_the_other_in_one_folder(self):
        """What one of them leaves is not in the way of the next."""
        (self.folder / "rows.py").write_text(block_after("From Python", "python"))
        lines = block_after("Installing", "sh")
        self.assertIn("ldconfig", lines)
        self.run_as_root("\n".join((
            lines + "./program", block_after(FROM_C, "sh") + "mv frame.pgm of_c.pgm",
            "/usr/bin/python3 rows.py")), [self.stand_ins])
        self.assertEqual((self.folder / "clip.kpf").stat().st_size, 2998)
        self.assertFalse((self.folder / "clip.kpf.incomplete.txt").exists())
        white, black = b"\xff" * 640, bytes(640)
        for name in ("of_c.pgm", "frame.pgm"):
            self.assertEqual((self.folder / name).read_bytes(),
                             b"P5 640 480 255\n" + white * 101 + black * 379, name)

    def test_the_target_uninstall_leaves_nothing(self):
        self.run_as_root("cmake --install build/release; test -e /usr/local/include/vlm_internal.h\n"
                         "cmake --build build/release --target uninstall", [self.stand_ins])
        left = [file for file in (self.folder / "system/usr/local").rglob("*") if not file.is_dir()]
        self.assertEqual(left, [])
        self.assertEqual(list((self.folder / "system/usr/local").rglob("vlm_internal")), [])


if __name__ == "__main__":
    unittest.main()
