"""The Python module over the C API: parse, list, diagnostics, write, render, update, the
exceptions, closing, and what the module exports."""
import os
import pathlib
import sys
import tempfile
import unittest

import modelbridge
from modelbridge import Severity

MODELS = sys.argv.pop(1) if len(sys.argv) > 1 else os.environ["MODELBRIDGE_MODELS_DIR"]
BANK = os.path.join(MODELS, "bank.xmi")


class ModelBridgeFromPython(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.dir = self.folder.name

    def tearDown(self):
        self.folder.cleanup()

    def write(self, name, text):
        path = os.path.join(self.dir, name)
        with open(path, "w", encoding="utf-8") as out:
            out.write(text)
        return path

    def test_parse_list_write_render(self):
        with modelbridge.parse(pathlib.Path(BANK)) as m:
            self.assertTrue(m.ok)
            self.assertEqual(m.classes, ["Account", "Customer", "SavingsAccount"])
            self.assertEqual([d.severity for d in m.diagnostics], [Severity.INFORMATION])
            self.assertTrue(m.report.startswith("Parsed 116 lines from file 'bank.xmi'"))
            m.write_class("Customer", pathlib.Path(self.dir))
            self.assertTrue(os.path.exists(os.path.join(self.dir, "Customer.tv")))
            self.assertIn("final class SavingsAccount ^= inherits Account\n", m.render_class("SavingsAccount"))
            m.write_classes(["Account", "Customer"], os.path.join(self.dir, "both"))
            self.assertTrue(os.path.exists(os.path.join(self.dir, "both.tv")))
            with self.assertRaises(KeyError):
                m.write_class("Nobody", self.dir)
            with self.assertRaises(KeyError):
                m.render_class("Nobody")
            self.assertFalse(os.path.exists(os.path.join(self.dir, "Nobody.tv")))
            with self.assertRaises(modelbridge.WriteError) as failed:
                m.write_class("Account", os.path.join(self.dir, "no", "such"))
            self.assertIsInstance(failed.exception, modelbridge.Error)
            [cause] = failed.exception.diagnostics
            self.assertEqual((cause.severity, cause.file, cause.line), (Severity.FATAL, "", 0))
            self.assertTrue(cause.text.startswith("Fatal error! Unable to open file"), cause.text)
            self.assertTrue(cause.message.endswith("for 'write' access: No such file or directory."), cause.message)
            self.assertEqual(str(cause), cause.text)
        self.assertEqual(modelbridge.parse(BANK, specified=True).diagnostics, [])

    def test_a_closed_model_refuses_to_generate(self):
        m = modelbridge.parse(BANK)
        self.assertFalse(m.closed)
        self.assertIn("3 classes", repr(m))
        m.close()
        m.close()
        self.assertTrue(m.closed)
        self.assertEqual(m.classes, ["Account", "Customer", "SavingsAccount"])
        for call in (lambda: m.render_class("Account"), lambda: m.write_class("Account", self.dir),
                     lambda: m.write_classes([], os.path.join(self.dir, "all")), lambda: m.update(self.dir)):
            with self.assertRaisesRegex(ValueError, "closed"):
                call()
        with self.assertRaises(TypeError):
            modelbridge.Model()

    def test_update_keeps_the_users_bodies(self):
        m = modelbridge.parse(BANK)
        out = pathlib.Path(self.dir) / "out"
        report = m.update(out)
        self.assertTrue(report.ok)
        self.assertEqual([(f.file, f.outcome, f.changes) for f in report.files],
                         [("Account.tv", modelbridge.Outcome.CREATED, True),
                          ("Customer.tv", modelbridge.Outcome.CREATED, True),
                          ("SavingsAccount.tv", modelbridge.Outcome.CREATED, True)])
        path = out / "Customer.tv"
        path.write_text(path.read_text().replace("end;", "\tinvariant true;\nend;"))
        checked = m.update(out, check=True, diff=True)
        self.assertEqual([f.outcome.value for f in checked.files], ["unchanged"] * 3)
        self.assertEqual(checked.files[1].diff, "")
        self.assertIn("invariant true;", path.read_text())
        with self.assertRaises(KeyError):
            m.update(out, ["Nobody"])
        (out / "Account.tv").write_text("written by hand\n")
        (out / ".modelbridge" / "record").write_text("nonsense\n")
        with self.assertRaises(modelbridge.UpdateError) as broken:
            m.update(out)
        [cause] = broken.exception.diagnostics
        self.assertEqual((cause.file, cause.line, cause.severity), (str(out / ".modelbridge" / "record"), 1, Severity.ERROR))
        self.assertEqual(cause.message, "not a record of ModelBridge, or one of a newer version")
        (out / ".modelbridge" / "record").unlink()
        foreign = m.update(out, ["Account"])
        self.assertFalse(foreign.ok)
        self.assertEqual(foreign.files[0].outcome, modelbridge.Outcome.FOREIGN)
        self.assertTrue(m.update(out, ["Account"], overwrite=True).ok)

    def test_errors_options_and_names(self):
        bad = self.write("bad.xmi", "<XMI>\n<a b=c/>\n</XMI>\n")
        with self.assertRaises(modelbridge.ParseError) as failed:
            modelbridge.parse(bad)
        self.assertEqual(failed.exception.diagnostics, [modelbridge.Diagnostic(
            Severity.FATAL, bad, 2, 6, "Syntax error at ''c''.", "bad.xmi (2,6): Fatal error! Syntax error at ''c''.")])
        self.assertEqual(str(failed.exception), "bad.xmi (2,6): Fatal error! Syntax error at ''c''.")
        with self.assertRaises(FileNotFoundError):
            modelbridge.parse(os.path.join(self.dir, "nowhere.xmi"))
        with self.assertRaises(IsADirectoryError):
            modelbridge.parse(self.dir)
        with self.assertRaisesRegex(ValueError, "indentation is empty"):
            modelbridge.parse(BANK, indent="")
        with self.assertRaisesRegex(ValueError, "out of bounds"):
            modelbridge.parse(BANK, line_width=5)

        kunde = self.write("kunde.xmi", "<XMI><XMI.content><UML:Model xmi.id='m'><UML:Namespace.ownedElement>"
                                        "<UML:Class xmi.id='k' name='Kundé'></UML:Class>"
                                        "</UML:Namespace.ownedElement></UML:Model></XMI.content></XMI>\n")
        names = modelbridge.parse(kunde)
        self.assertEqual(names.classes, ["Kundé"])
        names.write_class("Kundé", self.dir)
        self.assertTrue(os.path.exists(os.path.join(self.dir, "Kundé.tv")))

    def test_switches_are_keywords(self):
        entity = self.write("entity.xmi", "<XMI><XMI.content><UML:Model xmi.id='m'><UML:Namespace.ownedElement>"
                                          "<UML:Class xmi.id='c' name='Tally'><UML:Classifier.feature>"
                                          "<UML:Attribute name='a&amp;b' visibility='private'></UML:Attribute>"
                                          "</UML:Classifier.feature></UML:Class>"
                                          "</UML:Namespace.ownedElement></UML:Model></XMI.content></XMI>\n")
        entity_ref = "var a[[EntityRef'amp']]b: ?;"
        self.assertIn(entity_ref, modelbridge.parse(entity, specified=True).render_class("Tally"))
        self.assertIn(entity_ref, modelbridge.parse(entity, decode_references=False, safe_names=False).render_class("Tally"))
        self.assertIn("var a&b: ?;", modelbridge.parse(entity, specified=True, decode_references=True).render_class("Tally"))
        self.assertIn("var a&b: ?;", modelbridge.parse(entity, safe_names=False).render_class("Tally"))
        self.assertIn("var a_b: ?;", modelbridge.parse(entity).render_class("Tally"))
        with self.assertRaises(TypeError):
            modelbridge.parse(entity, no_such_switch=True)  # type: ignore[call-arg]

    def test_the_module_exports_its_api_alone(self):
        import inspect
        from modelbridge import _native
        keywords = {name for name, p in inspect.signature(modelbridge.parse).parameters.items()
                    if p.kind is p.KEYWORD_ONLY}
        self.assertLessEqual(set(_native.SWITCHES), keywords, "every switch of the library is a keyword")
        self.assertEqual(sorted(dir(modelbridge)), sorted(modelbridge.__all__))
        for name in modelbridge.__all__:
            self.assertTrue(hasattr(modelbridge, name), name)
        for hidden in ("ctypes", "os", "List", "XMI2", "ANYWHERE", "REPRODUCIBLE"):
            self.assertNotIn(hidden, modelbridge.__all__)
        self.assertRegex(modelbridge.__version__, r"^\d+\.\d+\.\d+")
        self.assertTrue(os.path.exists(os.path.join(os.path.dirname(modelbridge.__file__), "py.typed")))
        hints = inspect.get_annotations(modelbridge.parse) if hasattr(inspect, "get_annotations") else \
            modelbridge.parse.__annotations__
        self.assertIn("return", hints)
        for function in (modelbridge.Model.write_class, modelbridge.Model.update, modelbridge.Model.render_class):
            self.assertIn("return", function.__annotations__, function.__name__)


if __name__ == "__main__":
    unittest.main()
