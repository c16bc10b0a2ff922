#!/usr/bin/env python3
"""Checks that no include climbs a floor, and that no library code prints or ends the process.

The floors stand in one list, lowest first. A file may include files of its own folder and of the
folders below it; FORBIDDEN names the pairs that may not know each other although their floors
would allow it.
"""
import pathlib
import re
import sys

FLOORS = ["platform", "host", "renderer", "toolkit", "omb", "Kestra_Qor", "KestraBatch",
          "omb_qorvane", "apps"]
FORBIDDEN = {("renderer", "host"), ("toolkit", "host"), ("omb", "host"), ("omb", "renderer"),
             ("Kestra_Qor", "host"), ("KestraBatch", "host"), ("omb_qorvane", "KestraBatch"),
             ("omb_qorvane", "renderer")}
# The only folders that may know the widget library, whose headers begin with Q and a capital.
WIDGET_FOLDERS = ("KestraBatch/window/", "platform/window/qt/")
WIDGET_INCLUDE = re.compile(r'^\s*#\s*include\s+<(?:Qt\w*/)?Q[A-Za-z]\w*>')
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"')
EXITS = re.compile(r'\b(?:std::)?(?:exit|abort|_exit|quick_exit)\s*\(')
PRINTS = re.compile(r'\bstd::(?:cout|cerr)\b|\b(?:std::)?(?:printf|puts)\s*\(')


def check(path, source):
    rel = path.relative_to(source)
    floor = rel.parts[0]
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        where = f"src/{rel}:{number}"
        match = INCLUDE.match(line)
        if match:
            other = match.group(1).split("/")[0]
            if other not in FLOORS:
                yield f'{where}: include "{match.group(1)}" must begin with a folder of src/'
            elif FLOORS.index(other) > FLOORS.index(floor):
                yield f"{where}: {floor}/ may not include {other}/, which stands above it"
            elif (floor, other) in FORBIDDEN:
                yield f"{where}: {floor}/ and {other}/ may not know each other"
        if WIDGET_INCLUDE.match(line) and not rel.as_posix().startswith(WIDGET_FOLDERS):
            yield f"{where}: only {' and '.join(WIDGET_FOLDERS)} may include Qt"
        code = line.split("//")[0]
        if floor != "apps" and (EXITS.search(code) or PRINTS.search(code)):
            yield f"{where}: only apps/ may print or end the process"


def main():
    root = pathlib.Path(__file__).resolve().parent.parent
    source = root / "src"
    faults = [fault for path in sorted(source.rglob("*"))
              if path.suffix in (".h", ".cpp") and path.is_file()
              for fault in check(path, source)]
    print("\n".join(faults) if faults else "floors: clean")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
