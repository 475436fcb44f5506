"""Where no browser can be driven, the tests of the page say so instead of failing."""
import pathlib
import subprocess
import sys
import tempfile
import unittest

HERE = pathlib.Path(__file__).parent


class Skipped(unittest.TestCase):
    def test_without_selenium(self):
        with tempfile.TemporaryDirectory() as folder:
            pathlib.Path(folder, "selenium.py").write_text("raise ImportError\n", encoding="ascii")
            for module in sorted(path.stem for path in HERE.glob("test_view_page*.py")):
                if module == pathlib.Path(__file__).stem:
                    continue
                done = subprocess.run(
                    [sys.executable, "-B", "-c", "import sys, unittest; sys.path.insert(0, sys.argv.pop(1));"
                     "unittest.main(module=None)", folder, "-v", module],
                    cwd=HERE, capture_output=True, text=True, timeout=60, check=False)
                self.assertEqual(done.returncode, 0, done.stderr)
                self.assertIn("needs chromium, chromium-driver and python3-selenium", done.stderr)
                self.assertNotIn(" ok\n", done.stderr)


if __name__ == "__main__":
    unittest.main()
