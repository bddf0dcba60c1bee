#!/usr/bin/python3
"""Opens the dialog from each of examples/, and from the one in C++ built with another C++ library.

usage: tests/example_hosts.py FOLDER [HOST ...]

FOLDER holds the module, the checking layer, the helper library and the examples as they were built.
Each host runs in a process of its own on a screen and a bus made for this run, once with the module
and once with the checking layer, which must have nothing to say. Its windows are read and worked at
as a screen reader does. The Status page has to show the whole report that the headers tell of, and what
the host's emulator says; then trace is switched on and OK pressed, and the host has to print what
came of it and to end with status 0. Ends with status 0 if all that holds.
"""
import importlib.machinery
import importlib.util
import os
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.dont_write_bytecode = True


def load(path):
    loader = importlib.machinery.SourceFileLoader(path.name.replace("-", "_"), str(path))
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader(loader.name, loader))
    loader.exec_module(module)
    return module


def whole_report():
    """The lines of the report in the header's comment, sorted."""
    comment = (ROOT / "frame/interfaces/IOrnVETMTrace.h").read_text()
    comment = comment[comment.index("A whole report"):comment.index("(NUL)")]
    return sorted(re.findall(r"/// +(\w.*: \w.*)", comment))


def work(screen, reader):
    sheet = reader.window("dialog", "ETM Control")
    reader.mark(sheet, "check box", "Enable ETM")
    reader.turn(sheet, "Status")
    shown = sorted(re.sub(r":\s+", ": ", line)
                   for line in reader.read(sheet, "ETM Resources").splitlines() if line.strip())
    if shown != whole_report():
        raise screen.Failure(f"Status shows {shown}")
    if not reader.read(sheet, "Emulator/ETB Info").startswith("Example emulator"):
        raise screen.Failure("Status says nothing of the emulator")
    reader.press(sheet, "OK")


def run(screen, command, expected):
    """Returns what went wrong."""
    with subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True) as process:
        try:
            work(screen, screen.Reader(process))
            said = process.communicate(timeout=screen.PATIENCE)[0]
        except (screen.Failure, subprocess.TimeoutExpired, screen.gi.repository.GLib.Error) as failure:
            process.kill()
            return f"{failure}; {process.communicate()[0]}"
    if process.returncode != 0:
        return f"status {process.returncode}: {said}"
    missing = [words for words in expected if words not in said]
    return f"it does not print {missing} but {said}" if missing else None


def main():
    binaries = pathlib.Path(sys.argv[1]).resolve()
    screen = load(ROOT / "tools/screen-reader")
    screen.begin()
    other = binaries / "example_libcxx"
    subprocess.run(["clang++", "-std=c++11", "-stdlib=libc++", "-Wall", "-Wextra", "-Wpedantic", "-Werror",
                    "-I", ROOT / "frame/interfaces", ROOT / "examples/host.cpp", "-o", other,
                    "-L", binaries, "-lKVETMHostHelper", "-ldl", "-Wl,-rpath,$ORIGIN"], check=True)
    linked = subprocess.run(["ldd", other], capture_output=True, text=True, check=True).stdout
    if "libc++.so" not in linked:
        sys.exit("it is no other C++ library")
    hosts = {"C++": [binaries / "example_cpp"], "C": [binaries / "example_c"], "libc++": [other],
             "Python": [sys.executable, ROOT / "examples/host.py"]}
    sent = ["capability\n", "enable\n", "value 0 = 0x1\n"]
    rounds = {"KVETMControl.so": sent, "KVETMHostCheck.so": [*sent, " 0 breaches, 0 remarks\n"]}
    helper = {"Python": [binaries / "libKVETMHostHelper.so"]}
    failed = 0
    for name in sys.argv[2:] or hosts:
        for library, expected in rounds.items():
            fault = run(screen, [*hosts[name], binaries / library, *helper.get(name, [])], expected)
            failed += fault is not None
            print(f"{name}, {library}: {fault or 'shows a full Status page'}", flush=True)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
