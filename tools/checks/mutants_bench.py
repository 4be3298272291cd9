"""Builds a changed source of src/ beside a build tree and runs test programs with it; changes nothing in either."""
import collections
import json
import os
import pathlib
import re
import resource
import shlex
import shutil
import subprocess
import sys
import tempfile
import threading
import time

ADDRESS_SPACE = 24 << 30
INCLUDES = re.compile(r'\A(?:(?:#.*|//.*|\s*)\n)*#include.*\n')


def run(command, **options):
    return subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                          **options)


def limited():
    """A mistake may never end, or ask for all memory."""
    os.setsid()
    resource.setrlimit(resource.RLIMIT_AS, (ADDRESS_SPACE, ADDRESS_SPACE))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


class Bench:
    """`started` has the program that a test program starts as another process, and the variable that names it."""

    def __init__(self, top, build, on_a_desktop, started):
        self.top, self.build, self.on_a_desktop, self.started = top, build, on_a_desktop, started
        self.room = pathlib.Path(tempfile.mkdtemp(prefix='velloway-mutants.'))
        self.seconds = {}
        self.links = {}
        self.objects = {}
        self.compilers = {}
        self.prefixes = {}
        self.lock = threading.Lock()
        self.first_runs = collections.defaultdict(threading.Lock)

    def remove(self):
        shutil.rmtree(self.room, ignore_errors=True)

    def prepare(self, programs):
        if not (self.build / 'build.ninja').exists():
            run(['cmake', '--preset', 'linux', '-B', self.build], cwd=self.top, check=True)
        targets = [f'tests/{program}' for program in programs]
        if run(['ninja', '-C', self.build, '-j2', *targets]).returncode:
            sys.exit('The unchanged sources do not build.')
        for entry in json.loads((self.build / 'compile_commands.json').read_text()):
            self.compilers[entry['file']] = shlex.split(entry['command'])
        for program in programs:
            for each in self.parts(program):
                self.links[each] = self.link_command(f'tests/{each}')
                self.objects[each] = self.objects_in(each)

    def parts(self, program):
        """The program, and the one that it starts."""
        return [program, self.started[program][0]] if program in self.started else [program]

    def objects_in(self, program):
        """The names of the objects that the program is linked of, and not of all that it might have been."""
        words = list(self.links[program])
        words[words.index('-o') + 1] = os.devnull
        listed = subprocess.run([*words, '-fuse-ld=lld', '-Wl,--trace'], cwd=self.build, text=True,
                                stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout
        return set(re.findall(r'[\w.]+\.o\b', listed))

    def sees(self, program, source):
        return any(f'{source.name}.o' in self.objects[each] for each in self.parts(program))

    def time_of(self, program):
        """How long the program takes on the unchanged sources, where it has to pass."""
        with self.first_runs[program]:
            if program not in self.seconds:
                start = time.monotonic()
                if not self.passes(self.build / 'tests' / program, program, 300, os.environ):
                    sys.exit(f'{program} fails on the unchanged sources.')
                self.seconds[program] = time.monotonic() - start
        return self.seconds[program]

    def link_command(self, target):
        lines = subprocess.run(['ninja', '-C', self.build, '-t', 'commands', target], check=True, text=True,
                               stdout=subprocess.PIPE).stdout.splitlines()
        words = shlex.split(lines[-1])
        return words[words.index('&&') + 1:words.index('&&', words.index('&&') + 1)]

    def passes(self, path, program, seconds, environment):
        command = [path, '--gtest_brief=1', '--gtest_fail_fast']
        if self.on_a_desktop(program):
            command.insert(0, self.top / 'tests/desktop/with-desktop')
        process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL, cwd=self.build, env=environment,
                                   preexec_fn=limited)
        try:
            return process.wait(seconds) == 0
        except subprocess.TimeoutExpired:
            process.terminate()
            try:
                process.wait(5)
            except subprocess.TimeoutExpired:
                os.killpg(process.pid, 9)
                process.wait()
            return False

    def compiler(self, source, optimised):
        """The command for a source, without its last three parts: no warnings, no words on input and output."""
        words = [word for word in self.compilers[str(source)] if not word.startswith('-W') or word.startswith('-Wl')]
        words = words[1:] if words[0].endswith('ccache') else words
        words = words[:words.index('-o')]
        if not optimised:
            words = ['-O0' if word in ('-O2', '-O3') else word for word in words]
        return [*words, '-w', '-iquote', str(source.parent)]

    def prefix(self, source):
        """What the source includes, compiled ahead: most of the time of a compilation."""
        with self.lock:
            if source not in self.prefixes:
                folder = self.room / f'prefix{len(self.prefixes)}'
                folder.mkdir()
                header = folder / 'prefix.h'
                found = INCLUDES.match(source.read_text())
                header.write_text(found[0] if found and '#if' not in found[0] else '')
                done = run([*self.compiler(source, False), '-x', 'c++-header', header, '-o', f'{header}.gch'],
                           cwd=self.build)
                self.prefixes[source] = ['-include', str(header)] if done.returncode == 0 else []
            return self.prefixes[source]

    def compiled(self, source, text, folder, optimised=False):
        copy, out = folder / source.name, folder / 'changed.o'
        copy.write_text(text)
        ahead = [] if optimised else self.prefix(source)
        done = run([*self.compiler(source, optimised), *ahead, '-c', copy, '-o', out], cwd=self.build)
        return out if done.returncode == 0 else None

    def linked(self, program, source, changed, folder):
        words = list(self.links[program])
        out = folder / pathlib.Path(program).name
        words[words.index('-o') + 1] = str(out)
        own = [word for word in words if word.endswith(f'/{source.name}.o')]
        if own:
            words = [str(changed) if word == own[0] else word for word in words]
        else:
            words.insert(words.index('-o'), str(changed))
        return out if run([*words, '-fuse-ld=lld'], cwd=self.build).returncode == 0 else None

    def is_same_code(self, source, before, after):
        """Whether the optimised code is the same, byte by byte."""
        folder = pathlib.Path(tempfile.mkdtemp(dir=self.room))
        bytes_of = []
        for text in before, after:
            out = self.compiled(source, text, folder, optimised=True)
            bytes_of.append(out.read_bytes() if out else os.urandom(8))
        return bytes_of[0] == bytes_of[1]

    def outcome(self, mistake, programs):
        source = self.top / mistake.path
        if str(source) not in self.compilers:
            return 'not of this machine'
        lines = source.read_text().split('\n')
        before = '\n'.join(lines)
        lines[mistake.line:mistake.line + len(mistake.before)] = mistake.after
        after = '\n'.join(lines)
        folder = pathlib.Path(tempfile.mkdtemp(dir=self.room))
        try:
            changed = self.compiled(source, after, folder)
            if not changed:
                return 'does not compile'
            for program in [each for each in programs if self.sees(each, source)]:
                paths = [self.linked(each, source, changed, folder) for each in self.parts(program)]
                if None in paths:
                    return 'does not compile'
                environment = dict(os.environ)
                if len(paths) > 1:
                    environment[self.started[program][1]] = str(paths[1])
                if not self.passes(paths[0], program, 10 + 8 * self.time_of(program), environment):
                    return 'killed'
            return 'equivalent' if self.is_same_code(source, before, after) else 'survived'
        finally:
            shutil.rmtree(folder, ignore_errors=True)
