#!/usr/bin/env python3
"""Each check is green for the project as it is, and red for a copy with one thing broken.

    checks_can_fail.py CHECKOUT MODULE
"""
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

CHECKS = Path(__file__).parent
CHECKOUT, MODULE = Path(sys.argv[1]), sys.argv[2]
PARTS = ("service", "packages", "ui", "obs", "catalogue", "plugin", "data", "tests/checks")


def run(check, argument):
    return subprocess.run([sys.executable, CHECKS / check, argument], capture_output=True, text=True)


class BrokenCopy(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.copy = Path(folder.name)
        for part in PARTS:
            if (CHECKOUT / part).is_dir():
                shutil.copytree(CHECKOUT / part, self.copy / part)

    def assert_red(self, check, message, file, addition=None, old=None, new=""):
        path = self.copy / file
        text = path.read_text(encoding="utf-8") if path.exists() else ""
        if old is not None:
            self.assertIn(old, text)
        text = text.replace(old, new, 1) if old is not None else text + addition
        path.write_text(text, encoding="utf-8")
        result = run(check, self.copy)
        self.assertEqual(result.returncode, 1, result.stdout + result.stderr)
        self.assertIn(message, result.stdout)

    def test_service_knows_catalogue(self):
        self.assert_red("include_edges.py", "service must not know catalogue", "service/routes.cpp",
                        '\n#include "catalogue/product_list.h"\n')

    def test_packages_know_session(self):
        self.assert_red("include_edges.py", "packages must not know service", "packages/sha256.cpp",
                        '\n#include "service/session.h"\n')

    def test_base_of_ui_knows_dock(self):
        self.assert_red("include_edges.py", "ui_base must not know dock", "ui/localisation.cpp",
                        '\n#include "ui/dock_panel.h"\n')

    def test_catalogue_uses_obs(self):
        self.assert_red("include_edges.py", "only obs/ and plugin/ may use OBS", "catalogue/product_list.cpp",
                        "\n#  include <obs-module.h>\n")
        self.assert_red("include_edges.py", "only obs/ and plugin/ may use OBS", "catalogue/product_list.h",
                        '\n#include "obs/libobs.h"\n')

    def test_private_qt(self):
        self.assert_red("include_edges.py", "private Qt API", "plugin/module.cpp", "\n#include <private/qzipreader_p.h>\n")

    def test_product_knows_demo(self):
        self.assert_red("include_edges.py", "plugin must not know demo", "plugin/module.cpp", '\n#include "demo/x.h"\n')

    def test_release_by_hand(self):
        self.assert_red("release_calls.py", "obs_source_release by hand", "obs/source_insertion.cpp",
                        "\nvoid f(obs_source_t *s) { obs_source_release(s); }\n")

    def test_freed_by_hand(self):
        self.assert_red("release_calls.py", "bfree by hand", "plugin/module.cpp", "\nvoid f(char *s) { bfree (s); }\n")

    def test_release_in_comment_is_fine(self):
        with (self.copy / "obs/source_insertion.cpp").open("a", encoding="utf-8") as file:
            file.write('\n// obs_source_release(s);\nconst char *text = "bfree(x)";\n')
        self.assertEqual(run("release_calls.py", self.copy).returncode, run("release_calls.py", CHECKOUT).returncode)

    def test_key_without_text(self):
        self.assert_red("locale_keys.py", "Status.NoSuchKey has no text", "service/account.cpp",
                        '\nconst char *key = "Status.NoSuchKey";\n')

    def test_text_that_nobody_shows(self):
        self.assert_red("locale_keys.py", "Status.NobodyShowsThis: has a text that no code shows", "data/locale/fa-IR.ini",
                        '\nStatus.NobodyShowsThis="x"\n')

    def test_words(self):
        self.assert_red("wording.py", "means nothing to readers", "plugin/module.cpp", "\n// As the " + "spec says.\n")
        self.assert_red("wording.py", "means nothing to readers", "data/note.md", "Part" + " 4.4\n")

    def test_symbol_too_many(self):
        result = run("exports.py", Path(sys.executable).resolve())
        self.assertEqual(result.returncode, 1)
        self.assertIn("obs_module_load is not exported", result.stdout)
        self.assertIn("PyObject_Call is exported", result.stdout)

    def test_module_itself_is_green(self):
        self.assertEqual(run("exports.py", MODULE).returncode, 0)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
