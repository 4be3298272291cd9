"""The small mistakes that tools/checks/mutants makes in a source of C++, found line by line."""
import collections
import re

# What is looked for in a line of code, and what stands there afterwards.
SWITCHES = [
    ('comparison', re.compile(r' (==|!=|<=|>=|<|>) '),
     {'==': ['!='], '!=': ['=='], '<': ['<=', '>'], '<=': ['<'], '>': ['>=', '<'], '>=': ['>']}),
    ('connective', re.compile(r' (&&|\|\|) '), {'&&': ['||'], '||': ['&&']}),
    ('arithmetic', re.compile(r' (\+|-|\*|/|%) (?=[\w(])'),
     {'+': ['-'], '-': ['+'], '*': ['/'], '/': ['*'], '%': ['/']}),
    ('arithmetic', re.compile(r' (\+=|-=) '), {'+=': ['-='], '-=': ['+=']}),
    ('arithmetic', re.compile(r'(\+\+|--)(?=\w)'), {'++': ['--'], '--': ['++']}),
    ('boolean', re.compile(r'\b(true|false)\b'), {'true': ['false'], 'false': ['true']}),
    ('negated', re.compile(r'(?<=[\s(])(!)(?=[\w(])'), {'!': ['']}),
    ('default', re.compile(r'\b(value_or)\((?=0\))'), {'value_or': ['1 + value_or']}),
    ('default', re.compile(r'value_or\((""|nullptr|\{\})\)'), {'""': ['"X"']}),
    ('queue', re.compile(r'\b(main_|queue_|main|server)\b(?=[,.])(?!\.h)'),
     {'main_': ['queue_', 'server_'], 'queue_': ['main_'], 'main': ['queue', 'server'], 'server': ['main']}),
    ('early return', re.compile(r'^\s+(break|continue|return);$'), {'break': [''], 'continue': [''], 'return': ['']}),
]
NUMBER = re.compile(r'(?<![\w."\'])(\d+)(?![\w.\'])')
TEXT = re.compile(r'"((?:[^"\\]|\\.)+)"')
CONDITION = re.compile(r'^(\s*(?:\} else )?if \()(.+)(\) \{)$')
STATEMENT = re.compile(r'^\s+(?!return\b|using\b|const\b|auto\b)[\w:.\->\[\]<>*]+(?:\(.*\)| = .*| [+\-|&]= .*|\+\+|--);$')
STATEMENT_START = re.compile(r'^\s+(?!return\b|if\b|for\b|while\b|switch\b|do\b|const\b|auto\b|case\b|using\b|else\b)'
                             r'[\w:.\->\[\]<>*]+(?:\(| = )')
FUNCTION = re.compile(r'^(?:template <[^>]*> )?void [\w:<>]+\(.*\) (?:const |noexcept )*\{$|^\s+.*\(.*\)[^;]*\] ?(?:\(.*\) )?\{$')
TWO_ARGUMENTS = re.compile(r'(\w+)\((\w+(?:\.\w+)?), (\w+(?:\.\w+)?)([,)])')
CHOICE = re.compile(r' \? ((?:[^?:()]|::|\([^()]*\))+) : ((?:[^?:();,]|::|\([^()]*\))+)(?=[;,)])')
MEMBER = re.compile(r'\b([a-z]\w*)\.([a-z]\w*)\b(?!\()')
WEAK_HOLD = re.compile(r'\bweak_from_this\(\)')

# `before` is one line or several, `after` what replaces them, `line` the index of the first.
Mistake = collections.namedtuple('Mistake', 'path line kind before after')


def code_of(line):
    """The line without its comment; empty for a line that holds no code of a function."""
    bare = line.strip()
    if not bare or bare.startswith(('//', '#', '*', 'using ', 'namespace ', 'template', 'class ', 'struct ',
                                    'static_assert', 'assert(')):
        return ''
    # Room that is asked for in advance changes nothing but the speed.
    return '' if '.reserve(' in bare else re.sub(r'\s+//.*$', '', line)


def outside_texts(line, start):
    return line[:start].count('"') % 2 == 0


def replaced(line, match, group, new):
    return line[:match.start(group)] + new + line[match.end(group):]


def switches_of(line):
    for kind, pattern, table in SWITCHES:
        for match in pattern.finditer(line):
            for new in table.get(match[1], []) if outside_texts(line, match.start(1)) else []:
                yield kind, replaced(line, match, 1, new)
    for match in NUMBER.finditer(line):
        if outside_texts(line, match.start()):
            yield 'constant', replaced(line, match, 1, str(int(match[1]) + 1))


def texts_of(line):
    for match in TEXT.finditer(line):
        if outside_texts(line, match.start()):
            kind = 'key' if re.fullmatch(r'[a-z][A-Za-z_]+', match[1]) else 'text'
            yield kind, replaced(line, match, 1, match[1] + 'X')


def conditions_of(line):
    if match := CONDITION.match(line):
        if ';' not in match[2] and '=' not in re.sub(r'[=!<>]=', '', match[2]):
            yield 'negated', f'{match[1]}!({match[2]}){match[3]}'
        if ' = ' not in match[2]:
            yield 'dropped condition', f'{match[1]}({match[2]}) || true{match[3]}'
            yield 'dropped branch', f'{match[1]}({match[2]}) && false{match[3]}'
    for match in CHOICE.finditer(line):
        if outside_texts(line, match.start()) and match[1] != match[2]:
            yield 'choice', f'{line[:match.start()]} ? {match[2]} : {match[1]}{line[match.end():]}'


def holds_of(line, members):
    """Arguments, members and ownership."""
    for match in TWO_ARGUMENTS.finditer(line):
        if outside_texts(line, match.start()) and match[2] != match[3]:
            yield 'swapped arguments', (f'{line[:match.start()]}{match[1]}({match[3]}, {match[2]}{match[4]}'
                                        f'{line[match.end():]}')
    for match in MEMBER.finditer(line):
        others = sorted(members[match[1]])
        if outside_texts(line, match.start()) and len(others) > 1:
            yield 'swapped member', replaced(line, match, 2, others[(others.index(match[2]) + 1) % len(others)])
    if match := WEAK_HOLD.search(line):
        # Held for ever: a strong pointer has no lock(), and would not compile in its place.
        yield 'strong hold', f'{line[:match.start()]}std::weak_ptr(*new auto(shared_from_this())){line[match.end():]}'


def changes_of(line, members):
    yield from switches_of(line)
    yield from texts_of(line)
    yield from conditions_of(line)
    yield from holds_of(line, members)
    if STATEMENT.match(line):
        yield 'dropped statement', ''
    if FUNCTION.match(line):
        yield 'early return', line + ' return;'


def end_of_statement(lines, start):
    """The index behind a statement of several lines; nothing when there is none."""
    depth = 0
    for index in range(start, min(start + 14, len(lines))):
        code = re.sub(r'"(?:[^"\\]|\\.)*"', '""', code_of(lines[index]))
        depth += sum(code.count(opening) for opening in '([{') - sum(code.count(closing) for closing in ')]}')
        if depth <= 0:
            return index + 1 if depth == 0 and code.endswith(';') and index > start else None
    return None


def mistakes_of(path, name):
    lines = path.read_text().split('\n')
    members = collections.defaultdict(set)
    for line in lines:
        for match in MEMBER.finditer(code_of(line)):
            members[match[1]].add(match[2])
    for index, line in enumerate(lines):
        code = code_of(line)
        if not code:
            continue
        for kind, after in changes_of(code, members):
            yield Mistake(name, index, kind, (line,), (after,))
        following = lines[index + 1] if index + 1 < len(lines) else ''
        if STATEMENT.match(code) and STATEMENT.match(code_of(following)):
            yield Mistake(name, index, 'order', (line, following), (following, line))
        if STATEMENT_START.match(code) and (end := end_of_statement(lines, index)):
            yield Mistake(name, index, 'dropped statement', tuple(lines[index:end]), ('',))


def described(mistake):
    more = ' ...' if len(mistake.before) > len(mistake.after) else ''
    return (f'{mistake.path}: {mistake.before[0].strip()}{more} -> '
            f'{mistake.after[0].strip() or "(nothing)"}')
