"""Reads what a Mach-O object (64 bits, little endian) takes from elsewhere."""
import struct

SEGMENT, SYMBOL_TABLE = 0x19, 0x2
KIND_OF_SYMBOL, IN_SECTION, OF_DEBUGGER, EXTERNAL = 0x0e, 0x0e, 0xe0, 0x01
MACHINES = {"x86_64": 0x01000007, "arm64": 0x0100000c}


class Object:
    """`imports` and `defines` are names of symbols as C writes them, without the leading underscore;
    `sent` the selectors that the code sends or names; `methods` those that it implements, as in -[Class name:]."""

    def __init__(self, data, machine):
        magic, kind, _, _, commands = struct.unpack_from("<5I", data)
        if magic != 0xfeedfacf or kind != MACHINES[machine]:
            raise ValueError(f"the object is not one of the platform for {machine}")
        self.data, self.sections, self.symbols = data, [], []
        at = 32
        for _ in range(commands):
            command, size = struct.unpack_from("<2I", data, at)
            if command == SEGMENT:
                self.read_sections(at)
            elif command == SYMBOL_TABLE:
                self.read_symbols(at)
            at += size
        outside = [name for name, kind, section, _ in self.symbols if kind & EXTERNAL and section == 0]
        inside = [name for name, kind, section, _ in self.symbols if kind & KIND_OF_SYMBOL == IN_SECTION]
        self.imports = {plain(name) for name in outside}
        self.methods = {name for name in inside if name.startswith(("-[", "+["))}
        self.defines = {plain(name) for name in inside} - self.methods
        self.sent = set(self.read_selectors())

    def read_sections(self, at):
        count = struct.unpack_from("<I", self.data, at + 64)[0]
        for place in range(at + 72, at + 72 + 80 * count, 80):
            name = self.data[place:place + 16].rstrip(b"\0").decode()
            address, size, offset, _, relocations, amount = struct.unpack_from("<2Q4I", self.data, place + 32)
            self.sections.append((name, address, size, offset, relocations, amount))

    def read_symbols(self, at):
        symbols, count, strings, _ = struct.unpack_from("<4I", self.data, at + 8)
        for place in range(symbols, symbols + 16 * count, 16):
            text, kind, section, _, value = struct.unpack_from("<IBBHQ", self.data, place)
            name = self.text_at(strings + text)
            # Relocations count these by their place, so those for a debugger stay in the list as well.
            self.symbols.append((name, 0 if kind & OF_DEBUGGER else kind, section, value))

    def read_selectors(self):
        """Each place of __objc_selrefs points at a name; what the linker is to add there is in a relocation."""
        for name, _, _, offset, relocations, amount in self.sections:
            if name != "__objc_selrefs":
                continue
            for place in range(relocations, relocations + 8 * amount, 8):
                within, info = struct.unpack_from("<2I", self.data, place)
                target = struct.unpack_from("<Q", self.data, offset + within)[0]
                if info >> 27 & 1:
                    target += self.symbols[info & 0xffffff][3]
                yield self.text_at(self.offset_of(target))

    def offset_of(self, address):
        for _, start, size, offset, _, _ in self.sections:
            if start <= address < start + size:
                return offset + address - start
        raise ValueError(f"the object has nothing at address {address:#x}")

    def text_at(self, offset):
        return self.data[offset:self.data.index(b"\0", offset)].decode()


def plain(name):
    return name[1:] if name.startswith("_") else name
