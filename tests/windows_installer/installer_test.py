#!/usr/bin/env python3
"""The packages of a release: what they hold, and what the installer does to a machine.

    installer_test.py CHECKOUT BUILD-FOLDER VERSION STAND-IN
"""
import os
import shutil
import subprocess
import sys
import tempfile
import unittest
import zipfile
from pathlib import Path

from wine_machine import WineMachine, files_below, folders_below, wait_until

CHECKOUT, BUILD, VERSION, STAND_IN = Path(sys.argv[1]), Path(sys.argv[2]), sys.argv[3], Path(sys.argv[4])
NAME = "quillmar-obs-plugin"
OLD_VERSION = "0.0.1"
DONE, IN_USE, NO_OBS, LINK, NOT_WRITABLE = 0, 3, 4, 5, 6

MACHINE_FOLDER = rf"C:\ProgramData\obs-studio\plugins\{NAME}"
MACHINE_UNINSTALLER = r"C:\Program Files\Quillmar for OBS Studio"
LISTED = rf"Software\Microsoft\Windows\CurrentVersion\Uninstall\{NAME}"
MACHINE_RECORD = rf"Software\{NAME}\C:/ProgramData/obs-studio"
PORTABLE = "C:\\Stream tools\\OBS قابل حمل"
PORTABLE_DATA = rf"{PORTABLE}\data\obs-plugins\{NAME}"
PORTABLE_RECORD = rf"Software\{NAME}\C:/Stream tools/OBS قابل حمل"


def make_packages(tree, version, output):
    subprocess.run(["cmake", f"-DTREE={tree}", f"-DOUTPUT={output}", f"-DVERSION={version}", "-P",
                    CHECKOUT / "packaging/windows/make_packages.cmake"], check=True, stdout=subprocess.DEVNULL)
    return output / f"{NAME}-{version}-windows-x64"


# Without what a debugger reads: GCC keeps it in the library itself, where Visual Studio writes a file of its own.
def install_tree(layout, folder):
    subprocess.run(["cmake", "--install", BUILD, "--component", layout, "--prefix", folder, "--strip"], check=True,
                   stdout=subprocess.DEVNULL)


def setUpModule():
    global work, machine, tree, package, old_package
    work = Path(tempfile.mkdtemp())
    tree = work / "tree"
    install_tree("machine", tree)
    package = make_packages(tree, VERSION, work / "new")
    old_package = make_packages(older_tree(), OLD_VERSION, work / "old")
    machine = WineMachine(work)


def tearDownModule():
    machine.shut_down()
    shutil.rmtree(work)


# An earlier version with other texts, and with files and a folder that this one no longer has.
def older_tree():
    older = work / "older"
    shutil.copytree(tree, older)
    (older / NAME / "data/locale/en-US.ini").write_text("Old=\"old\"\n")
    (older / NAME / "data/locale/old.ini").write_text("Old=\"old\"\n")
    (older / NAME / "data/old/deep").mkdir(parents=True)
    (older / NAME / "data/old/deep/picture.txt").write_text("old")
    (older / NAME / "bin/64bit/imageformats/qold.dll").write_text("old")
    return older


def below(windows_path, part):
    return windows_path + "\\" + part.replace("/", "\\")


class Packages(unittest.TestCase):
    def test_tree_is_the_module_its_texts_and_two_plugins_of_qt(self):
        texts = {f"{NAME}/data/{name}" for name in ("LICENSE", *files_below(CHECKOUT / "data"))}
        binaries = (f"{NAME}.dll", "tls/qschannelbackend.dll", "imageformats/qwebp.dll")
        self.assertEqual(set(files_below(tree)), texts | {f"{NAME}/bin/64bit/{name}" for name in binaries})

    def test_portable_layout_lies_beside_the_modules_of_obs(self):
        portable = work / "portable"
        install_tree("portable", portable)
        # Stripping leaves its time in the library.
        self.assertEqual(sizes(files_below(portable)), sizes(as_portable(files_below(tree))))

    def test_zip_holds_the_tree(self):
        with zipfile.ZipFile(f"{package}.zip") as archive:
            content = {name: archive.read(name) for name in archive.namelist() if not name.endswith("/")}
        self.assertEqual(content, files_below(tree))

    def test_incomplete_tree_makes_no_package(self):
        broken = work / "broken"
        shutil.copytree(tree, broken)
        (broken / NAME / "bin/64bit/tls/qschannelbackend.dll").unlink()
        with self.assertRaises(subprocess.CalledProcessError), open(os.devnull, "w") as quiet:
            subprocess.run(["cmake", f"-DTREE={broken}", f"-DOUTPUT={work / 'none'}", f"-DVERSION={VERSION}", "-P",
                            CHECKOUT / "packaging/windows/make_packages.cmake"], check=True, stderr=quiet)
        self.assertFalse((work / "none").exists())


def as_portable(files):
    places = {f"{NAME}/bin/64bit/": "obs-plugins/64bit/", f"{NAME}/data/": f"data/obs-plugins/{NAME}/"}
    return {place + name.removeprefix(folder): content for name, content in files.items()
            for folder, place in places.items() if name.startswith(folder)}


def sizes(files):
    return {name: len(content) for name, content in files.items()}


class Machine(unittest.TestCase):
    """Each test finds a machine on which nothing was ever installed."""

    def setUp(self):
        self.machine = machine
        self.addCleanup(self.clear)

    def clear(self):
        self.machine.forget_files()
        for key in (rf"Software\{NAME}", LISTED):
            self.machine.run("reg", "delete", "HKLM\\" + key, "/f")

    def install(self, which=None, *words):
        return self.machine.run(f"{which or package}-installer.exe", "/S", *words)

    # In the foreground, and so without deleting itself.
    def uninstall_here(self, folder):
        return self.machine.run(f"{self.machine.path(folder)}/uninstall.exe", "/S", f"_?={folder}")

    # As Windows does it: the program works on as a copy of itself.
    def uninstall(self, folder, key):
        self.assertTrue(self.machine.registry(key))
        self.machine.run(f"{self.machine.path(folder)}/uninstall.exe", "/S")
        self.assertTrue(wait_until(lambda: not self.machine.registry(key)))

    def files(self, folder):
        return files_below(self.machine.path(folder))

    def write(self, path, text="mine"):
        place = self.machine.path(path)
        place.parent.mkdir(parents=True, exist_ok=True)
        place.write_text(text)
        return place

    def stand_in(self, name):
        place = self.machine.path(f"C:\\{name}")
        shutil.copy(STAND_IN, place)
        return place

    def listed_version(self):
        return self.machine.registry(LISTED).get("DisplayVersion")


class WholeMachine(Machine):
    def test_files_and_entry_are_where_they_belong(self):
        self.assertEqual(self.install(), DONE)
        self.assertEqual(self.files(r"C:\ProgramData\obs-studio"),
                         {f"plugins/{name}": content for name, content in files_below(tree).items()})
        entry = self.machine.registry(LISTED)
        self.assertEqual(entry["DisplayName"], "Quillmar for OBS Studio")
        self.assertEqual(entry["DisplayVersion"], VERSION)
        self.assertEqual(entry["UninstallString"], rf'"{MACHINE_UNINSTALLER}\uninstall.exe"')
        self.assertEqual(list(self.files(MACHINE_UNINSTALLER)), ["uninstall.exe"])

    def test_upgrade_takes_away_what_the_old_version_left_and_nothing_else(self):
        self.assertEqual(self.install(old_package), DONE)
        self.assertIn("data/old/deep/picture.txt", self.files(MACHINE_FOLDER))
        self.assertEqual(self.listed_version(), OLD_VERSION)
        self.write(below(MACHINE_FOLDER, "data/locale/mine.ini"))
        self.write(below(MACHINE_FOLDER, "data/old/mine.txt"))
        self.assertEqual(self.install(), DONE)
        expected = {name.removeprefix(NAME + "/"): content for name, content in files_below(tree).items()}
        expected |= {"data/locale/mine.ini": b"mine", "data/old/mine.txt": b"mine"}
        self.assertEqual(self.files(MACHINE_FOLDER), expected)
        self.assertNotIn("data/old/deep", folders_below(self.machine.path(MACHINE_FOLDER)))
        self.assertEqual(self.listed_version(), VERSION)

    def test_uninstalling_leaves_what_is_not_of_the_module(self):
        folder = self.machine.path(r"C:\ProgramData\obs-studio\plugins\other-module\data")
        folder.mkdir(parents=True)
        kept = [self.write(r"C:\users\developer\Downloads\Quillmar\package.zip"),
                self.write(rf"C:\users\developer\AppData\Roaming\obs-studio\plugin_config\{NAME}\settings.ini"),
                self.write(below(MACHINE_FOLDER, "bin/64bit/mine.dll"))]
        self.assertEqual(self.install(old_package), DONE)
        self.assertEqual(self.install(), DONE)
        self.uninstall(MACHINE_UNINSTALLER, LISTED)
        self.assertTrue(all(path.read_text() == "mine" for path in kept))
        self.assertEqual(list(self.files(r"C:\ProgramData\obs-studio")), [f"plugins/{NAME}/bin/64bit/mine.dll"])
        self.assertTrue(folder.is_dir())
        self.assertNotIn("data", folders_below(self.machine.path(MACHINE_FOLDER)))
        self.assertTrue(wait_until(lambda: not self.machine.path(MACHINE_UNINSTALLER).exists()))
        self.assertEqual(self.machine.registry(rf"{MACHINE_RECORD}\Files"), {})

    def test_uninstalling_takes_away_every_folder_that_it_made(self):
        self.assertEqual(self.install(), DONE)
        self.uninstall(MACHINE_UNINSTALLER, LISTED)
        self.assertFalse(self.machine.path(r"C:\ProgramData\obs-studio").exists())

    def test_empty_folders_of_others_stay(self):
        self.machine.path(r"C:\ProgramData\obs-studio\plugins").mkdir(parents=True)
        self.assertEqual(self.install(), DONE)
        self.uninstall(MACHINE_UNINSTALLER, LISTED)
        self.assertEqual(folders_below(self.machine.path(r"C:\ProgramData\obs-studio")), {"plugins"})

    def test_refuses_while_obs_runs(self):
        with self.machine.running(self.stand_in("obs64.exe")):
            self.assertEqual(self.install(), IN_USE)
        self.assertFalse(self.machine.path(r"C:\ProgramData\obs-studio").exists())
        self.assertEqual(self.install(), DONE)
        with self.machine.running(self.stand_in("obs64.exe")):
            self.assertEqual(self.uninstall_here(MACHINE_UNINSTALLER), IN_USE)
        self.assertEqual(len(self.files(MACHINE_FOLDER)), len(files_below(tree)))

    def test_refuses_while_the_module_is_loaded(self):
        self.assertEqual(self.install(old_package), DONE)
        before = self.files(MACHINE_FOLDER)
        module = below(MACHINE_FOLDER, f"bin/64bit/{NAME}.dll")
        with self.machine.running(self.stand_in("somebody.exe"), module):
            self.assertEqual(self.install(), IN_USE)
            self.assertEqual(self.uninstall_here(MACHINE_UNINSTALLER), IN_USE)
        self.assertEqual(self.files(MACHINE_FOLDER), before)
        self.assertEqual(self.listed_version(), OLD_VERSION)

    def test_follows_no_link(self):
        elsewhere = self.machine.path(r"C:\elsewhere")
        elsewhere.mkdir()
        link = self.machine.path(MACHINE_FOLDER)
        link.parent.mkdir(parents=True)
        link.symlink_to(elsewhere)
        self.assertEqual(self.install(), LINK)
        self.assertEqual(list(elsewhere.iterdir()), [])

    def test_upgrades_through_no_link(self):
        self.assertEqual(self.install(old_package), DONE)
        victim = self.write(r"C:\elsewhere\picture.txt")
        link = self.machine.path(below(MACHINE_FOLDER, "data/old/deep"))
        shutil.rmtree(link)
        link.symlink_to(victim.parent)
        self.assertEqual(self.install(), LINK)
        self.assertEqual(victim.read_text(), "mine")

    def test_uninstalls_through_no_link(self):
        self.assertEqual(self.install(), DONE)
        victim = self.write(r"C:\elsewhere\qschannelbackend.dll")
        link = self.machine.path(below(MACHINE_FOLDER, "bin/64bit/tls"))
        shutil.rmtree(link)
        link.symlink_to(victim.parent)
        self.assertEqual(self.uninstall_here(MACHINE_UNINSTALLER), LINK)
        self.assertEqual(victim.read_text(), "mine")

    def test_writes_into_no_file_of_others(self):
        victim = self.write(r"C:\elsewhere\victim.dll")
        module = self.machine.path(below(MACHINE_FOLDER, f"bin/64bit/{NAME}.dll"))
        module.parent.mkdir(parents=True)
        os.link(victim, module)
        self.assertEqual(self.install(), DONE)
        self.assertEqual(victim.read_text(), "mine")
        self.assertEqual(self.files(MACHINE_FOLDER)[f"bin/64bit/{NAME}.dll"], (tree / NAME / f"bin/64bit/{NAME}.dll").read_bytes())

    def test_file_in_place_of_a_folder_is_an_error(self):
        self.write(r"C:\ProgramData\obs-studio\plugins")
        self.assertEqual(self.install(), NOT_WRITABLE)
        self.assertEqual(self.files(r"C:\ProgramData\obs-studio"), {"plugins": b"mine"})


class PortableObs(Machine):
    def setUp(self):
        super().setUp()
        for name in (r"bin\64bit\obs64.exe", r"obs-plugins\64bit\other.dll", r"data\obs-plugins\other\locale\en-US.ini",
                     r"config\obs-studio\global.ini"):
            self.write(rf"{PORTABLE}\{name}")
        self.before = self.files(PORTABLE)
        self.folders_before = folders_below(self.machine.path(PORTABLE))

    def install_portable(self, which=None, folder=PORTABLE):
        return self.install(which, f"/D={folder}")

    def test_files_lie_beside_those_of_this_obs(self):
        self.assertEqual(self.install_portable(), DONE)
        files = self.files(PORTABLE)
        self.assertGreater(len(files.pop(f"data/obs-plugins/{NAME}/uninstall.exe")), 0)
        self.assertEqual(files, self.before | as_portable(files_below(tree)))
        self.assertFalse(self.machine.path(r"C:\ProgramData\obs-studio").exists())
        self.assertEqual(self.machine.registry(LISTED), {})

    def test_upgrade_and_uninstalling_leave_the_rest_alone(self):
        self.assertEqual(self.install_portable(old_package), DONE)
        self.assertIn("obs-plugins/64bit/imageformats/qold.dll", self.files(PORTABLE))
        self.assertEqual(self.install_portable(folder=PORTABLE + "\\"), DONE)
        self.assertNotIn("obs-plugins/64bit/imageformats/qold.dll", self.files(PORTABLE))
        self.uninstall(PORTABLE_DATA, rf"{PORTABLE_RECORD}\Files")
        self.assertTrue(wait_until(lambda: folders_below(self.machine.path(PORTABLE)) == self.folders_before))
        self.assertEqual(self.files(PORTABLE), self.before)

    def test_uninstalling_on_a_machine_without_records(self):
        self.assertEqual(self.install_portable(), DONE)
        self.machine.run("reg", "delete", rf"HKLM\Software\{NAME}", "/f")
        self.machine.run(f"{self.machine.path(PORTABLE_DATA)}/uninstall.exe", "/S")
        self.assertTrue(wait_until(lambda: self.files(PORTABLE) == self.before))

    def test_two_places_do_not_know_each_other(self):
        self.assertEqual(self.install(), DONE)
        self.assertEqual(self.install_portable(), DONE)
        self.uninstall(MACHINE_UNINSTALLER, LISTED)
        self.assertIn(f"obs-plugins/64bit/{NAME}.dll", self.files(PORTABLE))

    def test_folder_without_obs_is_refused(self):
        self.write(r"C:\Somewhere\mine.txt")
        self.assertEqual(self.install_portable(folder=r"C:\Somewhere"), NO_OBS)
        self.assertEqual(self.files(r"C:\Somewhere"), {"mine.txt": b"mine"})

    def test_uninstaller_elsewhere_does_nothing(self):
        self.assertEqual(self.install_portable(), DONE)
        before = self.files(PORTABLE)
        shutil.copy(self.machine.path(PORTABLE_DATA) / "uninstall.exe", self.machine.path(r"C:\uninstall.exe"))
        self.assertEqual(self.machine.run(self.machine.path(r"C:\uninstall.exe"), "/S", rf"_?={PORTABLE}"), NO_OBS)
        self.assertEqual(self.files(PORTABLE), before)

    def test_follows_no_link(self):
        victim = self.write(r"C:\elsewhere\qwebp.dll")
        self.machine.path(rf"{PORTABLE}\obs-plugins\64bit\imageformats").symlink_to(victim.parent)
        self.assertEqual(self.install_portable(), LINK)
        self.assertEqual(victim.read_text(), "mine")
        self.assertFalse(self.machine.path(PORTABLE_DATA).exists())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
