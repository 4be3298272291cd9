"""The entries of file managers, from the file that describes one to the words of the command that it starts."""

import configparser
import pathlib

from gi.repository import Gio, GLib


def read(path):
    """The groups of an entry as dictionaries, without the escapes that every text in such a file may have."""
    parser = configparser.RawConfigParser(strict=True, delimiters=("=",), comment_prefixes=("#",))
    parser.optionxform = str
    parser.read_string(pathlib.Path(path).read_text())
    return {name: {key: _unescaped(text) for key, text in parser[name].items()} for name in parser.sections()}


def _unescaped(text):
    plain, letters = "", iter(text)
    for letter in letters:
        if letter == "\\":
            letter = next(letters)
            letter = {"s": " ", "n": "\n", "t": "\t", "r": "\r"}.get(letter, letter)
        plain += letter
    return plain


def uri(path):
    return Gio.File.new_for_path(str(path)).get_uri()


def command(exec_line, files):
    """What an application's Exec line becomes for `files`."""
    words = []
    for word in _split(exec_line):
        if word in ("%F", "%U"):  # Files of this computer come as paths in both.
            words += [str(file) for file in files]
        elif "%" in word:
            raise ValueError(f"not expanded here: {word}")
        else:
            words.append(word)
    return words


def _split(line):
    """Blanks end a word unless double quotes hold it together; a backslash counts within these only."""
    words, word, is_quoted = [], None, False
    letters = iter(line)
    for letter in letters:
        if letter == '"':
            is_quoted, word = not is_quoted, word or ""
        elif letter == " " and not is_quoted:
            words, word = words + ([word] if word is not None else []), None
        else:
            word = (word or "") + (next(letters) if letter == "\\" and is_quoted else letter)
    return words + ([word] if word is not None else [])


def nemo_command(action, files):
    """Nemo pastes the addresses into the line, each in the quotes asked for, and has the whole parsed like a shell."""
    quote = {"double": '"', "single": "'", None: ""}[action.get("Quote")]
    return _pasted(action["Exec"], "%U", [quote + uri(file) + quote for file in files])


def pcmanfm_command(profile, files):
    """PCManFM pastes the paths in, quoted for a shell, and has the whole parsed like one."""
    return _pasted(profile["Exec"], "%F", [GLib.shell_quote(str(file)) for file in files])


def _pasted(line, code, words):
    if line.count("%") != 1 or code not in line:
        raise ValueError(f"not expanded here: {line}")
    return GLib.shell_parse_argv(line.replace(code, " ".join(words)))[1]
