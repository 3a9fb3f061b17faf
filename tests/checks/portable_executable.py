"""Reads which names a Windows DLL or program exports and imports, for the checks beside this one."""
import struct

EXPORTS, IMPORTS, DELAYED_IMPORTS = 0, 1, 13
BY_ORDINAL = 1 << 63


def is_portable_executable(path):
    with open(path, "rb") as file:
        return file.read(2) == b"MZ"


class PortableExecutable:
    """A 64-bit image; addresses in it are relative to where it is loaded."""

    def __init__(self, path):
        with open(path, "rb") as file:
            self._bytes = file.read()
        header = self._number("<I", 0x3C)
        if self._bytes[header : header + 4] != b"PE\0\0":
            raise ValueError(f"{path} is no portable executable")
        section_count, optional_size = self._number("<H", header + 6), self._number("<H", header + 20)
        optional = header + 24
        if self._number("<H", optional) != 0x20B:
            raise ValueError(f"{path} is not for a 64-bit system")
        self._directories = optional + 112
        sections = optional + optional_size
        self._sections = [struct.unpack_from("<8sIIII", self._bytes, sections + 40 * n) for n in range(section_count)]

    def exports(self):
        """The exported names; what is exported by number alone stands as "#number"."""
        table = self._directory(EXPORTS)
        if not table:
            return set()
        base, functions, names = struct.unpack_from("<III", self._bytes, table + 16)
        addresses, name_list, number_list = struct.unpack_from("<III", self._bytes, table + 28)
        used = {n for n in range(functions) if self._number("<I", self._at(addresses) + 4 * n)}
        found = set()
        for n in range(names):
            found.add(self._text(self._number("<I", self._at(name_list) + 4 * n)))
            used.discard(self._number("<H", self._at(number_list) + 2 * n))
        return found | {f"#{base + n}" for n in used}

    def imports(self):
        """The imported names by DLL, as they are written in the file; delayed ones too."""
        found = {}
        for directory, size, name_at, thunks_at in ((IMPORTS, 20, 12, 0), (DELAYED_IMPORTS, 32, 4, 16)):
            entry = self._directory(directory)
            while entry and self._number("<I", entry + name_at):
                names = found.setdefault(self._text(self._number("<I", entry + name_at)), set())
                names |= self._thunks(self._number("<I", entry + thunks_at) or self._number("<I", entry + 16))
                entry += size
        return found

    def _thunks(self, address):
        names, place = set(), self._at(address)
        while thunk := self._number("<Q", place):
            names.add(f"#{thunk & 0xFFFF}" if thunk & BY_ORDINAL else self._text(thunk + 2))
            place += 8
        return names

    def _directory(self, number):
        """Where in the file a table begins; nothing when there is none."""
        address = self._number("<I", self._directories + 8 * number)
        return self._at(address) if address else None

    def _at(self, address):
        for _, virtual_size, virtual, raw_size, raw in self._sections:
            if virtual <= address < virtual + max(virtual_size, raw_size):
                return address - virtual + raw
        raise ValueError(f"no section holds address {address:#x}")

    def _number(self, form, place):
        return struct.unpack_from(form, self._bytes, place)[0]

    def _text(self, address):
        start = self._at(address)
        return self._bytes[start : self._bytes.index(b"\0", start)].decode("ascii")
