"""The Python module over the C API: parse, list, diagnostics, write, render, refusals."""
import os
import sys
import tempfile
import unittest

import modelbridge

MODELS = sys.argv.pop(1) if len(sys.argv) > 1 else os.environ["MODELBRIDGE_MODELS_DIR"]
BANK = os.path.join(MODELS, "bank.xmi")


class ModelBridgeFromPython(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.dir = self.folder.name

    def tearDown(self):
        self.folder.cleanup()

    def test_parse_list_write_render(self):
        m = modelbridge.parse(BANK)
        self.assertTrue(m.ok)
        self.assertEqual(m.classes, ["Account", "Customer", "SavingsAccount"])
        self.assertEqual([d.severity for d in m.diagnostics], ["information"])
        self.assertEqual(modelbridge.parse(BANK, specified=True).diagnostics, [])
        self.assertTrue(m.report.startswith("Parsed 116 lines from file 'bank.xmi'"))
        m.write_class("Customer", self.dir)
        self.assertTrue(os.path.exists(os.path.join(self.dir, "Customer.tv")))
        self.assertIn("final class SavingsAccount ^= inherits Account\n", m.render_class("SavingsAccount"))
        m.write_classes(["Account", "Customer"], os.path.join(self.dir, "both"))
        self.assertTrue(os.path.exists(os.path.join(self.dir, "both.tv")))
        with self.assertRaises(KeyError):
            m.write_class("Nobody", self.dir)
        with self.assertRaises(KeyError):
            m.render_class("Nobody")
        self.assertFalse(os.path.exists(os.path.join(self.dir, "Nobody.tv")))
        with self.assertRaises(modelbridge.Error) as failed:
            m.write_class("Account", os.path.join(self.dir, "no", "such"))
        self.assertEqual(len(failed.exception.diagnostics), 1)
        self.assertIn("for 'write' access.", failed.exception.diagnostics[0])

    def test_update_keeps_the_users_bodies(self):
        m = modelbridge.parse(BANK)
        out = os.path.join(self.dir, "out")
        report = m.update(out)
        self.assertTrue(report.ok)
        self.assertEqual([(f.file, f.outcome, f.changes) for f in report.files],
                         [("Account.tv", "created", True), ("Customer.tv", "created", True),
                          ("SavingsAccount.tv", "created", True)])
        path = os.path.join(out, "Customer.tv")
        with open(path) as f:
            text = f.read()
        with open(path, "w") as f:
            f.write(text.replace("end;", "\tinvariant true;\nend;"))
        checked = m.update(out, check=True, diff=True)
        self.assertEqual([f.outcome for f in checked.files], ["unchanged", "unchanged", "unchanged"])
        self.assertEqual(checked.files[1].diff, "")
        with self.assertRaises(KeyError):
            m.update(out, ["Nobody"])
        with open(os.path.join(out, ".modelbridge", "record"), "w") as f:
            f.write("nonsense\n")
        broken = m.update(out)
        self.assertFalse(broken.ok)
        self.assertTrue(broken.error.endswith("record:1: not a record of ModelBridge, or one of a newer version"))

    def test_diagnostics_options_and_names(self):
        bad = os.path.join(self.dir, "bad.xmi")
        with open(bad, "w") as out:
            out.write("<XMI>\n<a b=c/>\n</XMI>\n")
        m = modelbridge.parse(bad)
        self.assertFalse(m.ok)
        self.assertEqual(m.diagnostics, [modelbridge.Diagnostic(
            "fatal", bad, 2, 6, "Syntax error at ''c''.", "bad.xmi (2,6): Fatal error! Syntax error at ''c''.")])
        with self.assertRaises(ValueError):
            modelbridge.parse(BANK, indent="")

        kunde = os.path.join(self.dir, "kunde.xmi")
        with open(kunde, "w", encoding="utf-8") as out:
            out.write("<XMI><XMI.content><UML:Model xmi.id='m'><UML:Namespace.ownedElement>"
                      "<UML:Class xmi.id='k' name='Kundé'></UML:Class>"
                      "</UML:Namespace.ownedElement></UML:Model></XMI.content></XMI>\n")
        names = modelbridge.parse(kunde)
        self.assertEqual(names.classes, ["Kundé"])
        names.write_class("Kundé", self.dir)
        self.assertTrue(os.path.exists(os.path.join(self.dir, "Kundé.tv")))

    def test_switches_are_keywords(self):
        entity = os.path.join(self.dir, "entity.xmi")
        with open(entity, "w") as out:
            out.write("<XMI><XMI.content><UML:Model xmi.id='m'><UML:Namespace.ownedElement>"
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
            modelbridge.parse(entity, no_such_switch=True)


if __name__ == "__main__":
    unittest.main()
