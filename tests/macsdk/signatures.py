"""Holds SIGNATURES.md against what the adapters' objects use and against the declarations in include/."""
import fnmatch
import pathlib
import re
from typing import NamedTuple

TABLE = pathlib.Path(__file__).with_name("SIGNATURES.md")
NEWEST = (13, 0)
# From here on the compiler is to know the version too, by an attribute in include/.
MARKED_FROM = (11, 0)


class Line(NamedTuple):
    name: str
    signature: str
    since: str
    note: str


class Declaration(NamedTuple):
    signature: str
    since: str


def version(text):
    return tuple(int(part) for part in text.split("."))


def cells_of(row):
    return [cell.strip().strip("`") for cell in row.strip().strip("|").split("|")]


class Table:
    """The lines by name, and the patterns of what needs no line."""

    def __init__(self, text):
        self.text, self.lines, self.patterns, self.problems = text, {}, [], []
        for row in text.split("\n"):
            if row.startswith("| `"):
                self.read(row)

    def read(self, row):
        cells = cells_of(row)
        if len(cells) == 2:
            self.patterns += re.findall(r"`([^`]+)`", row.split("|")[1])
        elif len(cells) != 4:
            self.problems.append(f"{cells[0]}: the line has {len(cells)} cells, not 4")
        elif cells[0] in self.lines:
            self.problems.append(f"{cells[0]}: has two lines")
        else:
            self.lines[cells[0]] = Line(*cells)

    def patterns_for(self, name):
        return [each for each in self.patterns if fnmatch.fnmatchcase(name, each)]


def plain_type(text):
    """A type as the table writes it: what may be absent has a question mark, the rest may not."""
    text = re.sub(r"\b(_Nonnull|__strong|__autoreleasing|__unsafe_unretained)\b", "", text)
    text = re.sub(r"\s*\b_Nullable\b", "?", text)
    text = re.sub(r"\s+", " ", text)
    return re.sub(r" ([*&),])", r"\1", re.sub(r"([(^]) ", r"\1", text)).strip()


def signature(parameters, result):
    result = plain_type(result)
    given = ", ".join(plain_type(each) for each in parameters)
    return f"({given})" + ("" if result == "void" else f" -> {result}")


def function_signature(text):
    """Of `Result (Parameters)`; the parameters are the last thing in parentheses."""
    depth = 0
    for at in range(len(text) - 1, -1, -1):
        depth += {")": 1, "(": -1}.get(text[at], 0)
        if depth == 0:
            return signature([text[at + 1:-1]], text[:at])
    raise ValueError(f"no function: {text}")


class Node:
    def __init__(self, kind, text):
        self.kind, self.text, self.children = kind, text, []

    def of_kind(self, *kinds):
        return [child for child in self.children if child.kind in kinds]

    def since(self):
        for attribute in self.of_kind("AvailabilityAttr"):
            introduced, deprecated = re.search(r"macos (\S+) (\S+)", attribute.text).groups()
            return introduced + (f" to {deprecated}" if deprecated != "0" else "")
        return ""


def tree(dump):
    """The tree that the compiler prints: two columns of lines for each level."""
    top = Node("", "")
    path = [top]
    for row in dump.split("\n"):
        if match := re.match(r"((?:[| ] )*(?:[|`]-)?)(\w+) (.*)", row):
            depth = len(match.group(1)) // 2 + 1
            node = Node(match.group(2), match.group(3))
            del path[depth:]
            path[-1].children.append(node)
            path.append(node)
    return top


def nodes_under(node):
    for child in node.children:
        yield child
        yield from nodes_under(child)


def methods_of(owner, name):
    for method in owner.of_kind("ObjCMethodDecl"):
        sign, selector, result = re.search(r" ([-+]) (\S+) '([^']*)'", method.text).groups()
        parameters = [re.search(r"'([^']*)'", each.text).group(1) for each in method.of_kind("ParmVarDecl")]
        yield f"{sign}[{name} {selector}]", Declaration(signature(parameters, result),
                                                        method.since() or owner.since())


def read_declarations(dump):
    """What include/ declares, by the name in the table, from the compiler's own print of it."""
    found = {}
    for node in nodes_under(tree(dump)):
        if node.kind in ("ObjCInterfaceDecl", "ObjCProtocolDecl", "ObjCCategoryDecl") and node.children:
            name = node.text.split()[-1]
            if node.kind == "ObjCInterfaceDecl":
                found[name] = Declaration("class", node.since())
            found.update(methods_of(node, name))
        elif node.kind in ("FunctionDecl", "VarDecl"):
            match = re.search(r" (\w+) '([^']*)'(?::'[^']*')?( \w+)*$", node.text)
            if match and " static" not in node.text:
                name, text = match.group(1, 2)
                written = function_signature(text) if node.kind == "FunctionDecl" else plain_type(text)
                found[name] = Declaration(written, node.since())
    return found


def class_named_by(symbol):
    match = re.fullmatch(r"OBJC_(?:META)?CLASS_\$_(\w+)", symbol)
    return match.group(1) if match else None


def selector_of(name):
    match = re.fullmatch(r"[-+]\[\w+ (\S+)\]", name)
    return match.group(1) if match else None


def wrong_lines(table, declared):
    """What the table says about each line, without regard to its use."""
    for line in table.lines.values():
        told = declared.get(line.name)
        if told is None:
            yield f"{line.name}: is not declared in include/"
            continue
        if told.signature != line.signature:
            yield f"{line.name}: include/ says `{told.signature}`, the table `{line.signature}`"
        match = re.fullmatch(r"(\d+\.\d+)( to \d+\.\d+)?", line.since)
        if match is None:
            yield f"{line.name}: `{line.since}` is no first version, such as 10.6, or 10.6 to 14.0"
            continue
        first = version(match.group(1))
        if first > NEWEST:
            yield f"{line.name}: came with {line.since}, and the program is to run on 13.0"
        if (told.since or first >= MARKED_FROM or match.group(2)) and told.since != line.since:
            yield f"{line.name}: include/ has it from {told.since or 'any version'}, the table from {line.since}"
        if match.group(2) and not line.note:
            yield f"{line.name}: is deprecated, and the table gives no reason for it"


def new_line(name, declared):
    told = declared.get(name)
    if told is None:
        return "declare it in include/"
    return f"| `{name}` | `{told.signature}` | {told.since or 'FIRST VERSION'} | |"


class Uses:
    """What some objects use, gathered from all of them."""

    def __init__(self, objects):
        inside = set().union(*(each.defines for each in objects))
        imports = set().union(*(each.imports for each in objects)) - inside
        self.classes = {name for name in map(class_named_by, imports) if name}
        self.symbols = {name for name in imports if not class_named_by(name)}
        self.sent = set().union(*(each.sent for each in objects))
        self.implemented = {selector_of(name) for each in objects for name in each.methods}


def missing_lines(table, declared, objects):
    uses = Uses(objects)
    unknown = uses.classes | {name for name in uses.symbols if not table.patterns_for(name)}
    for name in sorted(unknown - table.lines.keys()):
        yield f"{name}: is used and has no line in the table: {new_line(name, declared)}"
    of_platform = {selector_of(name) for name in declared}
    used = uses.sent | uses.implemented & of_platform
    for selector in sorted(used - {selector_of(name) for name in table.lines}):
        ready = [new_line(name, declared) for name in declared if selector_of(name) == selector]
        yield f"{selector}: is used and has no line in the table: {' or '.join(ready) or 'declare it in include/'}"


def unused_lines(table, objects):
    uses = Uses(objects)
    used = uses.classes | uses.symbols
    for name in table.lines:
        if name not in used and selector_of(name) not in uses.sent | uses.implemented:
            yield f"{name}: has a line in the table and is not used"
    in_use = {pattern for name in uses.symbols for pattern in table.patterns_for(name)}
    for pattern in table.patterns:
        if pattern not in in_use:
            yield f"{pattern}: is allowed without a line, and nothing of that name is used"


def problems(table, declared, objects):
    yield from table.problems
    yield from wrong_lines(table, declared)
    yield from missing_lines(table, declared, objects)
    yield from unused_lines(table, objects)
