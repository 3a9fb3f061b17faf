#!/usr/bin/env python3
"""Each check is green for the project as it is, and red for a copy with one thing broken.

    checks_can_fail.py CHECKOUT MODULE
"""
import json
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

CHECKS = Path(__file__).parent
CHECKOUT, MODULE = Path(sys.argv[1]), Path(sys.argv[2])
IS_FOR_WINDOWS = MODULE.suffix == ".dll"


def run(check, *arguments):
    return subprocess.run([sys.executable, CHECKS / check, *arguments], capture_output=True, text=True)


class Broken(unittest.TestCase):
    """Has a copy of the folders in `parts`, to break."""

    parts = ()

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.copy = Path(folder.name)
        shutil.copy(CHECKOUT / "CMakeLists.txt", self.copy)
        for part in self.parts:
            if (CHECKOUT / part).is_dir():
                shutil.copytree(CHECKOUT / part, self.copy / part)

    def assert_red_of(self, result, message):
        self.assertEqual(result.returncode, 1, result.stdout + result.stderr)
        self.assertIn(message, result.stdout)


class BrokenCopy(Broken):
    parts = ("service", "packages", "ui", "obs", "catalogue", "plugin", "data", "tests/checks")

    def assert_red(self, check, message, file, addition=None, old=None, new=""):
        path = self.copy / file
        text = path.read_text(encoding="utf-8") if path.exists() else ""
        if old is not None:
            self.assertIn(old, text)
        text = text.replace(old, new, 1) if old is not None else text + addition
        path.write_text(text, encoding="utf-8")
        self.assert_red_of(run(check, self.copy), message)

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


class BrokenManifest(Broken):
    """What OBS's plug-in manager reads."""

    parts = ("data",)

    def assert_red(self, message, change):
        path = self.copy / "data/manifest.json"
        manifest = json.loads(path.read_text(encoding="utf-8"))
        change(manifest)
        path.write_text(json.dumps(manifest), encoding="utf-8")
        self.assert_red_of(run("manifest.py", self.copy), message)

    def test_as_it_is(self):
        self.assertEqual(run("manifest.py", self.copy).returncode, 0)

    def test_key_that_is_missing(self):
        for key in json.loads((CHECKOUT / "data/manifest.json").read_text(encoding="utf-8")):
            with self.subTest(key):
                shutil.copy(CHECKOUT / "data/manifest.json", self.copy / "data")
                self.assert_red(f"{key} is missing", lambda manifest: manifest.pop(key))

    def test_key_that_obs_does_not_know(self):
        self.assert_red("OBS reads no author", lambda manifest: manifest.update(author="x"))

    def test_text_instead_of_a_truth_value(self):
        self.assert_red("has_icon is no bool", lambda manifest: manifest.update(has_icon="no"))

    def test_empty_text(self):
        self.assert_red("description says nothing", lambda manifest: manifest.update(description=""))

    def test_other_module(self):
        self.assert_red("id is not quillmar-obs-plugin", lambda manifest: manifest.update(id="x"))

    def test_other_version(self):
        self.assert_red("version is 0.1.2", lambda manifest: manifest.update(version="0.1.2"))

    def test_version_of_the_build(self):
        self.assert_red_of(run("manifest.py", self.copy, "7.0.0"), "the project's is 7.0.0")

    def test_address_without_protection(self):
        self.assert_red("website address is not https", lambda manifest: manifest.update(urls={"website": "http://x"}))

    def test_address_that_obs_does_not_know(self):
        self.assert_red("OBS reads no address home", lambda manifest: manifest.update(urls={"home": "https://x"}))

    def test_picture_that_is_not_there(self):
        self.assert_red("has_banner, but there is no banner.png", lambda manifest: manifest.update(has_banner=True))

    def test_no_json(self):
        (self.copy / "data/manifest.json").write_text("{,}", encoding="utf-8")
        self.assert_red_of(run("manifest.py", self.copy), "manifest.json")


class BuiltModule(unittest.TestCase):
    def test_symbol_too_many(self):
        result = run("exports.py", Path(sys.executable).resolve())
        self.assertEqual(result.returncode, 1)
        self.assertIn("obs_module_load is not exported", result.stdout)
        self.assertIn("PyObject_Call is exported", result.stdout)

    def test_module_itself_is_green(self):
        self.assertEqual(run("exports.py", MODULE).returncode, 0)


class BuiltWindowsModule(Broken):
    """Breaks names in a copy of the built DLL, each by one of the same length."""

    parts = ("obs/windows",)

    def patched(self, old, new):
        self.assertEqual(len(old), len(new))
        content = MODULE.read_bytes()
        self.assertIn(old + b"\0", content)
        path = self.copy / MODULE.name
        path.write_bytes(content.replace(old + b"\0", new + b"\0"))
        return path

    def listed(self, dll, old, new):
        path = self.copy / f"obs/windows/{dll}.def"
        text = path.read_text(encoding="ascii")
        self.assertIn(old, text)
        path.write_text(text.replace(old, new, 1), encoding="ascii")

    def test_as_it_is(self):
        self.assertEqual(run("exports.py", MODULE).stdout, "")
        self.assertEqual(run("exports.py", MODULE).returncode, 0)
        self.assertEqual(run("imports.py", MODULE, self.copy).stdout, "")
        self.assertEqual(run("imports.py", MODULE, self.copy).returncode, 0)

    def test_export_by_another_name(self):
        result = run("exports.py", self.patched(b"obs_module_unload", b"obs_module_unlock"))
        self.assert_red_of(result, "obs_module_unload is not exported")
        self.assert_red_of(result, "obs_module_unlock is exported")

    def test_compiler_library(self):
        path = self.patched(b"Qt6Core.dll", b"libgcc1.dll")
        self.assert_red_of(run("imports.py", path, self.copy), "needs libgcc1.dll")
        self.assert_red_of(run("imports.py", path, self.copy), "does not use qt6core.dll")

    def test_other_library_of_qt(self):
        path = self.patched(b"Qt6Core.dll", b"Qt6Test.dll")
        self.assert_red_of(run("imports.py", path, self.copy), "needs qt6test.dll")

    def test_call_that_is_not_listed(self):
        self.listed("obs", "    obs_scene_create\n", "")
        self.assert_red_of(run("imports.py", MODULE, self.copy), "obs.dll: obs_scene_create is used and not listed")

    def test_listed_call_that_nobody_makes(self):
        self.listed("obs-frontend-api", "EXPORTS\n", "EXPORTS\n    obs_frontend_nobody\n")
        self.assert_red_of(run("imports.py", MODULE, self.copy), "obs_frontend_nobody is listed and not used")


if __name__ == "__main__":
    built = "BuiltWindowsModule" if IS_FOR_WINDOWS else "BuiltModule"
    unittest.main(argv=sys.argv[:1], defaultTest=["BrokenCopy", "BrokenManifest", built], verbosity=2)
