"""Writes what an installed package says of itself, from pyproject.toml.

Usage: make_metadata.py FOLDER

For installations that pip has no part in: `cmake --install` and Debian's package. Other programs
find the package's entry points there. Prints the version of Python, which names where it belongs.
"""
import pathlib
import sys
import tomllib


def metadata(project):
    yield "Metadata-Version: 2.1"
    yield f"Name: {project['name']}"
    yield f"Version: {project['version']}"
    yield f"Summary: {project['description']}"
    yield f"License: {project['license']['text']}"
    yield f"Requires-Python: {project['requires-python']}"
    for need in project["dependencies"]:
        yield f"Requires-Dist: {need}"


def entry_points(project):
    for group, points in project["entry-points"].items():
        yield f"[{group}]"
        yield from (f"{name} = {target}" for name, target in points.items())


def main(folder):
    source = pathlib.Path(__file__).with_name("pyproject.toml")
    project = tomllib.loads(source.read_text(encoding="utf-8"))["project"]
    folder.mkdir(parents=True, exist_ok=True)
    for name, lines in (("METADATA", metadata(project)), ("entry_points.txt", entry_points(project))):
        (folder / name).write_text("\n".join(lines) + "\n", encoding="utf-8")
    print(f"{sys.version_info.major}.{sys.version_info.minor}")


if __name__ == "__main__":
    main(pathlib.Path(sys.argv[1]))
