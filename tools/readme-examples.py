"""Runs the code blocks of README.md that are marked runnable, and checks that every path of the
project that README.md and HACKING.md name exists.

    python3 tools/readme-examples.py BUILD_DIR

A block marked runnable has the line "<!-- runnable -->" before its opening fence. Each runs in
a fresh folder that holds the project's examples/ and tests/ (as links) and an empty out/:
shell blocks with bash -e and the build's program first on PATH, Python blocks with the build's
package, C++ blocks compiled against the project's headers and the build's library (C++20 for a
host of the importer, C++17 for one of the facade) and run. Prints one line per block and
"N passed, N failed" at the end; exits 1 when any block or path fails.
"""

import os
import re
import subprocess
import sys
import tempfile
from typing import List, Tuple

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
MARK = "<!-- runnable -->"


def runnable_blocks(text: str) -> List[Tuple[int, str, str]]:
    """(line, language, code) of each block marked runnable."""
    lines = text.split("\n")
    blocks = []
    for i, line in enumerate(lines):
        if line.strip() != MARK:
            continue
        fence = lines[i + 1]
        if not fence.startswith("```"):
            raise SystemExit(f"README.md:{i + 1}: the mark stands before no code block")
        end = lines.index("```", i + 2)
        blocks.append((i + 2, fence[3:].strip(), "\n".join(lines[i + 2:end]) + "\n"))
    return blocks


def run_block(language: str, code: str, build: str, work: str) -> subprocess.CompletedProcess:
    environment = dict(os.environ)
    environment["PATH"] = os.path.join(build, "examples") + os.pathsep + environment.get("PATH", "")
    environment["PYTHONPATH"] = os.path.join(build, "python")
    environment["MODELBRIDGE_LIBRARY"] = os.path.join(build, "libModelBridge.so")
    if language == "sh":
        command = ["bash", "-euo", "pipefail", "-c", code]
    elif language == "python":
        command = [sys.executable, "-c", code]
    elif language == "cpp":
        source = os.path.join(work, "host.cpp")
        with open(source, "w") as file:
            file.write(code)
        importer = '"Generated/XMLImporter.h"' in code
        flags = ["-std=c++20", "-I" + ROOT, "-I" + os.path.join(ROOT, "include"),
                 "-I" + os.path.join(build, "generated")] if importer else ["-std=c++17", "-I" + os.path.join(ROOT, "include")]
        compiled = subprocess.run([os.environ.get("CXX", "c++"), *flags, "-o", os.path.join(work, "host"), source,
                                   "-L" + build, "-lModelBridge", "-Wl,-rpath," + build],
                                  capture_output=True, text=True)
        if compiled.returncode != 0:
            return compiled
        command = [os.path.join(work, "host")]
    else:
        raise SystemExit(f"no way to run a block of '{language}'")
    return subprocess.run(command, cwd=work, env=environment, capture_output=True, text=True, timeout=300)


def missing_paths(text: str) -> List[str]:
    """Paths of the project a text names that don't exist."""
    found = re.findall(r"(?<![\w/.-])((?:examples|tools|tests|bench|python|cmake|include|facade)/[\w./-]*[\w])", text)
    return sorted({p for p in found if not os.path.exists(os.path.join(ROOT, p))})


def main() -> int:
    if len(sys.argv) != 2:
        raise SystemExit("usage: readme-examples.py BUILD_DIR")
    build = os.path.abspath(sys.argv[1])
    passed = failed = 0
    for name in ("README.md", "HACKING.md"):
        with open(os.path.join(ROOT, name)) as file:
            missing = missing_paths(file.read())
        for path in missing:
            print(f"{name}: names {path}, which doesn't exist")
        failed += len(missing)
    with open(os.path.join(ROOT, "README.md")) as file:
        blocks = runnable_blocks(file.read())
    for line, language, code in blocks:
        with tempfile.TemporaryDirectory() as work:
            for shared in ("examples", "tests"):
                os.symlink(os.path.join(ROOT, shared), os.path.join(work, shared))
            os.mkdir(os.path.join(work, "out"))
            result = run_block(language, code, build, work)
        if result.returncode == 0:
            passed += 1
            print(f"README.md:{line}: {language} block passed")
        else:
            failed += 1
            print(f"README.md:{line}: {language} block FAILED with {result.returncode}\n{result.stdout}{result.stderr}")
    if not blocks:
        print("README.md: no block is marked runnable")
        failed += 1
    print(f"{passed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
