#!/usr/bin/python3
"""Reads the includes of src/ and fails where they break the rules of docs/architecture.md.

- A folder includes only from itself and from the layers below it.
- Folders do not include one another in a circle, and neither do two files, nor the two sources of two headers.
- The core includes standard C++ and, in the folders that say so here, one library each.
- No file has more than 400 lines.
"""

import re
import sys
from pathlib import Path

SOURCE = Path(sys.argv[1]) if len(sys.argv) > 1 else Path(__file__).resolve().parents[2] / "src"

# The lowest first. Folders of one layer do not include one another.
LAYERS = [
    ["platform"],
    ["base64", "text"],
    ["json"],
    ["state"],
    ["features", "remote"],
    ["server"],
    ["tabs"],
    ["shell"],
    ["ui"],
    ["hosts"],
    ["app"],
]
CORE = {"platform", "base64", "text", "json", "state", "features", "remote", "server", "tabs", "shell"}
LIBRARIES = {
    "base64": {"immintrin.h", "tmmintrin.h", "arm_neon.h"},
    "json": {"simdjson.h"},
    "text": {"simdjson.h", "unicode/"},
}
STANDARD = set(
    """algorithm any array atomic bit bitset charconv chrono cmath compare concepts condition_variable csignal
    cstddef cstdint cstdio cstdlib cstring ctime deque exception filesystem forward_list fstream functional future
    initializer_list iomanip iosfwd ios iostream istream iterator limits list locale map memory mutex new numbers
    numeric optional ostream queue random ranges ratio regex set shared_mutex source_location span sstream stack
    stdexcept stop_token streambuf string string_view system_error thread tuple type_traits typeinfo unordered_map
    unordered_set utility valarray variant vector version""".split()
)
MOST_LINES = 400
SOURCES = {".cpp", ".h", ".mm", ".qml"}
INCLUDE = re.compile(r'^\s*#\s*(?:include|import)\s*([<"])([^>"]+)[>"]', re.MULTILINE)


class Tree:
    def __init__(self, root):
        self.root = root
        self.files = sorted(p.relative_to(root) for p in root.rglob("*") if p.suffix in SOURCES)
        self.includes = {}
        self.angled = {}
        known = set(self.files)
        for file in self.files:
            text = (root / file).read_text(encoding="utf-8")
            found = INCLUDE.findall(text)
            self.angled[file] = [name for mark, name in found if mark == "<"]
            targets = []
            for mark, name in found:
                # The views are also found from their own folder.
                places = [Path(name), Path("ui") / name, file.parent / name] if mark == '"' else []
                targets += [place for place in places if place in known][:1]
            self.includes[file] = targets


def layer_of(file):
    for number, folders in enumerate(LAYERS):
        if file.parts[0] in folders:
            return number
    return None


def room_of(file):
    """The folders of the hosts are rooms of their own; elsewhere what lies in a folder of src/ is one room."""
    return str(file.parent) if file.parts[0] == "hosts" else file.parts[0]


def unit_of(file):
    return file.with_suffix("")


def upward_arrows(tree):
    for file, targets in tree.includes.items():
        if layer_of(file) is None:
            yield f"{file}: is in no layer"
            continue
        for target in targets:
            if file.parts[0] != target.parts[0] and layer_of(target) >= layer_of(file):
                yield f"{file} includes {target}, which is not below it"


def graph(tree, node_of):
    edges = {}
    for file, targets in tree.includes.items():
        for target in targets:
            if node_of(file) != node_of(target):
                edges.setdefault(node_of(file), {})[node_of(target)] = f"{file} -> {target}"
    return edges


def circles_of_rooms(tree):
    edges = graph(tree, room_of)
    done, path, reported = set(), [], set()

    def walk(room):
        if room in path:
            circle = path[path.index(room) :] + [room]
            if frozenset(circle) not in reported:
                reported.add(frozenset(circle))
                yield "Circle: " + ", ".join(edges[a][b] for a, b in zip(circle, circle[1:]))
            return
        if room in done:
            return
        path.append(room)
        for target in sorted(edges.get(room, {})):
            yield from walk(target)
        path.pop()
        done.add(room)

    for room in sorted(edges):
        yield from walk(room)


def mutual_includes(tree):
    edges = graph(tree, unit_of)
    for one in sorted(edges):
        for other in sorted(edges[one]):
            if one < other and one in edges.get(other, {}):
                yield f"Include each other: {edges[one][other]}, {edges[other][one]}"


def foreign_headers(tree):
    for file, names in tree.angled.items():
        if file.parts[0] not in CORE:
            continue
        allowed = LIBRARIES.get(file.parts[0], set())
        for name in names:
            is_library = any(name == entry or (entry.endswith("/") and name.startswith(entry)) for entry in allowed)
            if name not in STANDARD and not is_library:
                yield f"{file} includes <{name}>, which is not standard C++"


def long_files(tree):
    for file in tree.files:
        lines = (tree.root / file).read_text(encoding="utf-8").count("\n")
        if lines > MOST_LINES:
            yield f"{file} has {lines} lines"


RULES = [upward_arrows, circles_of_rooms, mutual_includes, foreign_headers, long_files]


def breaches(root):
    tree = Tree(root)
    return [breach for rule in RULES for breach in rule(tree)]


def main():
    found = breaches(SOURCE)
    for breach in found:
        print(breach)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
