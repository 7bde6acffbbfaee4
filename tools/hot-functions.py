#!/usr/bin/env python3
"""Writes the list of the library's functions that typical runs execute, in the order in which
the build lays them out ahead of the rest of its code (cmake/HotFunctions.cmake).

A process maps a shared library's code in windows of pages around each page it touches. Code
that runs is spread all over the library, so that a parse of a small model mapped most of it;
laid out together, the code that runs fills a few windows. The functions come in the order of
the phases of a run (startup, parse, generation, the sample host's runs), and within a phase by
the instructions spent in them, the busiest first.

Usage: tools/hot-functions.py BUILD_DIR [OUTPUT]
BUILD_DIR is a build with MODELBRIDGE_BENCH=ON (end_to_end_bench, generate_xmi, modelbridge-gen);
OUTPUT defaults to tools/hot-functions.txt. Needs valgrind.
"""

import os
import re
import subprocess
import sys
import tempfile

HEADER = """\
# The library's functions that typical runs execute, in the order the build lays them out
# ahead of the rest of its code, one section name (after ".text.") a line.
# Written by tools/hot-functions.py; write it again when the code has changed much.
"""

# callgrind_annotate's lines: "  1,234 ( 0.12%)  file:function [object]"
COST_LINE = re.compile(r"^\s*([\d,]+)\s+\([^)]*\)\s+\S*?:(\S+)\s+\[")


def defined_functions(library):
    """Function symbols defined in `library`, and for each address the names at it."""
    out = subprocess.run(["nm", "--defined-only", library], check=True, capture_output=True, text=True).stdout
    names, at = set(), {}
    for line in out.splitlines():
        parts = line.split()
        if len(parts) == 3 and parts[1] in "tTwWi":
            names.add(parts[2])
            at.setdefault(parts[0], set()).add(parts[2])
    return names, {name: at[address] for address, group in at.items() for name in group}


def section_name(name, aliases):
    """The name of the section that holds `name`'s code: a complete-object constructor or
    destructor that is an alias of the base-object one lies in the base-object one's."""
    base = re.sub(r"([CD])1([EI])", r"\g<1>2\g<2>", name, count=1)
    return base if base != name and base in aliases.get(name, ()) else name


def costs(command, scratch, index):
    """Instructions by function (mangled) of one run of `command` under callgrind."""
    out_file = os.path.join(scratch, "callgrind.%d" % index)
    subprocess.run(["valgrind", "--tool=callgrind", "--demangle=no", "--callgrind-out-file=" + out_file] + command,
                   check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    report = subprocess.run(["callgrind_annotate", "--inclusive=no", "--threshold=100", out_file],
                            check=True, capture_output=True, text=True).stdout
    found = {}
    for line in report.splitlines():
        match = COST_LINE.match(line)
        if match:
            name = re.sub(r"'\d+$", "", match.group(2))  # callgrind marks recursion levels
            found[name] = found.get(name, 0) + int(match.group(1).replace(",", ""))
    return found


def phases(build, scratch):
    """The runs of each phase, in the order their code is laid out."""
    bench = os.path.join(build, "bench", "end_to_end_bench")
    host = os.path.join(build, "examples", "modelbridge-gen")
    models = {}
    for shape, megabytes, flags in (("synthetic", "1", []), ("prose", "1", ["--prose"]), ("xmi2", "0.5", ["--xmi2"])):
        models[shape] = os.path.join(scratch, shape + ".xmi")
        subprocess.run([os.path.join(build, "bench", "generate_xmi"), models[shape], megabytes] + flags, check=True)
    xmi1 = (models["synthetic"], models["prose"])
    out = os.path.join(scratch, "out")
    return [
        [[bench, "--measure", "none", models["synthetic"]]],
        [[bench, "--measure", task, model] for task in ("parse", "parse-ext") for model in xmi1],
        [[bench, "--measure", task, model] for task in ("generate", "generate-ext") for model in xmi1],
        [[host, model, "--list"] for model in models.values()] +
        [[host, model, "--specified", "--list"] for model in xmi1] +
        # the second run into the same folder is an update
        [[host, model, "-o", out + "-" + shape] for shape, model in models.items() for _ in range(2)],
    ]


def main():
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__)
    build = sys.argv[1]
    output = sys.argv[2] if len(sys.argv) == 3 else os.path.join(os.path.dirname(__file__), "hot-functions.txt")
    defined, aliases = defined_functions(os.path.join(build, "libModelBridge.so"))
    order, placed = [], set()
    with tempfile.TemporaryDirectory() as scratch:
        runs = 0
        for phase in phases(build, scratch):
            spent = {}
            for command in phase:
                runs += 1
                for name, cost in costs(command, scratch, runs).items():
                    spent[name] = spent.get(name, 0) + cost
            for name in sorted(spent, key=lambda name: (-spent[name], name)):
                section = section_name(name, aliases)
                if name in defined and section not in placed:
                    placed.add(section)
                    order.append(section)
    with open(output, "w") as file:
        file.write(HEADER + "".join(name + "\n" for name in order))
    print("%d functions written to %s" % (len(order), output))


if __name__ == "__main__":
    main()
