"""The wheel as a user meets it: built from the build tree, installed offline into a fresh
virtual environment of the python3 that runs this test, and used there end to end with
nothing of the build on its paths."""
import os
import subprocess
import sys
import tempfile
import unittest
import zipfile

BUILD, MODELS = sys.argv.pop(1), sys.argv.pop(1)
ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))

USE = r"""
import sys, modelbridge
from modelbridge import _native
with modelbridge.parse(sys.argv[1]) as model:
    report = model.update(sys.argv[2])
    print(modelbridge.__version__)
    print(" ".join(model.classes))
    print(" ".join(f.outcome.value for f in report.files))
    print(_native.lib._name)
    print(modelbridge.__file__)
"""


class WheelInAFreshEnvironment(unittest.TestCase):
    def test_install_offline_and_use(self):
        with tempfile.TemporaryDirectory() as work:
            built = subprocess.run([sys.executable, os.path.join(ROOT, "tools", "modelbridge_wheel.py"), BUILD,
                                    os.path.join(work, "dist")], check=True, capture_output=True, text=True)
            wheel = built.stdout.strip()
            self.assertRegex(os.path.basename(wheel), r"^modelbridge-\d+(\.\d+)+-py3-none-linux_x86_64\.whl$")
            with zipfile.ZipFile(wheel) as archive:
                names = set(archive.namelist())
                self.assertLessEqual({"modelbridge/__init__.py", "modelbridge/_native.py", "modelbridge/_build.py",
                                      "modelbridge/py.typed"}, names)
                self.assertTrue(any(n.startswith("modelbridge/libModelBridge.so.") for n in names), names)
                record = [n for n in names if n.endswith(".dist-info/RECORD")]
                self.assertEqual(len(record), 1)
                listed = {line.split(",")[0] for line in archive.read(record[0]).decode().splitlines()}
                self.assertEqual(listed, names)

            venv = os.path.join(work, "venv")
            subprocess.run([sys.executable, "-m", "venv", venv], check=True)
            python = os.path.join(venv, "bin", "python")
            environment = {k: v for k, v in os.environ.items()
                           if k not in ("PYTHONPATH", "MODELBRIDGE_LIBRARY", "LD_LIBRARY_PATH", "PYTHONHOME")}
            subprocess.run([python, "-m", "pip", "install", "--no-index", "--no-cache-dir",
                            "--disable-pip-version-check", "-q", wheel], check=True, env=environment)
            used = subprocess.run([python, "-c", USE, os.path.join(MODELS, "bank.xmi"), os.path.join(work, "spec")],
                                  check=True, capture_output=True, text=True, cwd=work, env=environment)
            version, classes, outcomes, library, module = used.stdout.splitlines()
            self.assertEqual(classes, "Account Customer SavingsAccount")
            self.assertEqual(outcomes, "created created created")
            self.assertTrue(os.path.exists(os.path.join(work, "spec", "Account.tv")))
            self.assertTrue(module.startswith(venv), module)
            self.assertTrue(library.startswith(os.path.join(os.path.dirname(module), "libModelBridge.so.")), library)
            self.assertTrue(os.path.basename(wheel).startswith(f"modelbridge-{version}-"))


if __name__ == "__main__":
    unittest.main()
