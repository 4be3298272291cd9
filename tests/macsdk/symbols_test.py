#!/usr/bin/env python3
"""Holds the symbols that the code names, the drawings of our own and symbols.txt against each other."""
import pathlib
import re
import unittest

TOP = pathlib.Path(__file__).resolve().parents[2]
DRAWINGS = TOP / "src/ui/symbols"
OLDEST_SYSTEM = (13, 0)
LITERAL = re.compile(r'"([a-z]+(?:\.[a-z0-9]+)*)"')
# Where a plain word in quotes names a symbol: the rows of the two tables, and whatever is called a symbol.
TABLE_ROWS = {"TabTable.h": re.compile(r'\{tabIndex::\w+, "[^"]*", ("[^"]*")'),
              "RemoteModel.cpp": re.compile(r'\{RemoteSection::\w+,\s*"[^"]*",\s*("[^"]*")')}
NAMED_SYMBOL = re.compile(r'[sS]ymbol\w*\s*(?:=|:|\([^)]*\)[^{;]*\{)\s*([^;{}]*)|\bSymbol\s*\{[^}]*?\bname:\s*([^\n;}]*)')


def sources():
    for folder in ("tabs", "shell", "ui"):
        for file in sorted((TOP / "src" / folder).rglob("*")):
            if file.suffix in (".cpp", ".h", ".qml"):
                yield file


def table():
    lines = (TOP / "tests/macsdk/symbols.txt").read_text().splitlines()
    rows = [line.split(" ") for line in lines if not line.startswith("#")]
    names = [name for name, _ in rows]
    assert names == sorted(set(names)), "symbols.txt is not in order, or names something twice"
    return {name: tuple(map(int, version.split("."))) for name, version in rows}


def named_in(file):
    """Words with dots are symbols wherever they stand."""
    text = file.read_text()
    named = {word for word in LITERAL.findall(text) if "." in word}
    places = ["".join(groups) for groups in NAMED_SYMBOL.findall(text)]
    # In a table of texts the name of the text says so.
    places += re.findall(r'\{"\w*[sS]ymbol",\s*("[^"]*")\}', text)
    if file.name in TABLE_ROWS:
        places += TABLE_ROWS[file.name].findall(text)
    for place in places:
        named.update(LITERAL.findall(place))
    return named


class SymbolsTest(unittest.TestCase):
    maxDiff = None
    named = {symbol: file for file in sources() for symbol in named_in(file)}

    def test_every_symbol_that_is_named_is_in_the_table_and_no_other(self):
        self.assertEqual(sorted(self.named), sorted(table()))

    def test_every_symbol_has_a_drawing_for_systems_without_it(self):
        missing = [name for name in self.named if not (DRAWINGS / f"{name.replace('.', '_')}.svg").is_file()]
        self.assertEqual(missing, [])

    def test_nothing_is_drawn_for_nobody(self):
        drawn = {file.stem.replace("_", ".") for file in DRAWINGS.glob("*.svg")} - {"StatusIcon"}
        self.assertEqual(sorted(drawn), sorted(self.named))

    def test_the_oldest_system_that_we_run_on_has_every_symbol(self):
        self.assertEqual({name: since for name, since in table().items() if since > OLDEST_SYSTEM}, {})

    def test_the_tables_of_the_code_are_read(self):
        self.assertLessEqual({"phone", "command", "return", "magnifyingglass", "folder"}, set(self.named))


if __name__ == "__main__":
    unittest.main()
