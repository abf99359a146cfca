#!/usr/bin/env python3
"""What is shipped is built so that mistakes in memory are hard to exploit. Reads the built files with readelf."""
import json
import pathlib
import platform
import re
import shlex
import subprocess

import program
from program import Case

# A name that belongs to another library: std, __gnu_cxx, boost, fmt. In "_ZNSt6vectorIN9tessera_1..." the first part counts.
FOREIGN = re.compile(r'_Z(T[ITSV]|G[VR])?(N[VK]*)?(S[tabsiod]|9__gnu_cxx|5boost|3fmt)')
ENDBR64 = b'\xf3\x0f\x1e\xfa'
COMPILED_WITH = ('-fstack-protector-strong', '-fstack-clash-protection', '-fcf-protection=full')
SHIPPED = ('platform', 'support', 'core', 'host', 'draw', 'cli')  # folders
IS_X86_64 = platform.machine() == 'x86_64'


def readelf(path, *options):
    return subprocess.run(['readelf', '-W', *options, path], capture_output=True, text=True, check=True, timeout=120).stdout


def symbols(path, table):
    """Yields (address, type, name) of what the file defines."""
    for line in readelf(path, table).splitlines():
        fields = line.split()
        if len(fields) >= 8 and fields[0].rstrip(':').isdigit() and fields[6].isdigit():
            yield int(fields[1], 16), fields[3], fields[7]


def starts_with_endbr64(path, addresses):
    """Whether the code at all these addresses is marked as the target of an indirect branch."""
    content = path.read_bytes()
    segments = [[int(field, 16) for field in line.split()[1:5]] for line in readelf(path, '--program-headers').splitlines()
                if line.split()[:1] == ['LOAD']]
    for address in addresses:
        for offset, start, _, size in segments:
            if start <= address < start + size:
                if content[offset + address - start:][:4] != ENDBR64:
                    return False
    return True


def compiled_without(path):
    """Returns the options that a unit of the file was compiled without; all of them when no unit says how."""
    producers = re.findall(r'DW_AT_producer.*', readelf(path, '--debug-dump=info', '--dwarf-depth=1'))
    units = [line for line in producers if 'C++' in line]
    return {option for option in COMPILED_WITH if not units or not all(option in unit for unit in units)}


def problems_of(path):
    """Returns the names of the properties that the file lacks."""
    headers = readelf(path, '--file-header', '--program-headers')
    dynamic = readelf(path, '--dynamic')
    imported = readelf(path, '--dyn-syms')
    exported = list(symbols(path, '--dyn-syms'))
    is_program = 'INTERP' in headers
    functions = [address for address, kind, name in (symbols(path, '--symbols') if is_program else exported)
                 if kind == 'FUNC' and (name == 'main' or not is_program)]
    has = {
        'position-independent': re.search(r'Type:\s+DYN', headers) and (not is_program or re.search(r'FLAGS_1.*\bPIE\b', dynamic)),
        'relro': 'GNU_RELRO' in headers,
        'bind now': 'BIND_NOW' in dynamic,
        'no executable stack': re.search(r'GNU_STACK.* RW ', headers),
        'stack protector': '__stack_chk_fail' in imported,
        'indirect branches': not IS_X86_64 or (functions and starts_with_endbr64(path, functions)),
        'no foreign names': not any(FOREIGN.match(name) for _, _, name in exported),
    }
    return {name for name, holds in has.items() if not holds} | compiled_without(path)


class Hardening(Case):
    def test_all_that_is_shipped(self):
        executable = pathlib.Path(program.PROGRAM).resolve()
        libraries = [path for path in (executable.parent.parent / 'lib').glob('libtessera*.so*') if not path.is_symlink()]
        self.assertGreaterEqual(len(libraries), 4)
        self.assertEqual({path.name: problems_of(path) for path in (executable, *libraries)},
                         {path.name: set() for path in (executable, *libraries)})

    def test_calls_that_can_be_checked_are(self):
        executable = pathlib.Path(program.PROGRAM).resolve()
        self.assertRegex(readelf(executable, '--dyn-syms'), r'UND __(?!stack)\w+_chk@')
        compiled = json.loads((executable.parents[1] / 'compile_commands.json').read_text())
        commands = [each['command'] for each in compiled
                    if pathlib.Path(each['file']).relative_to(program.ROOT).parts[0] in SHIPPED]
        self.assertGreater(len(commands), 100)
        for command in commands:
            levels = [option for option in shlex.split(command) if 'FORTIFY' in option]
            self.assertEqual(levels, ['-U_FORTIFY_SOURCE', '-D_FORTIFY_SOURCE=3'], command)

    def build(self, name, *options):
        source = self.write('planted.cpp', '#include <string>\n#include <vector>\n'
                            'template class std::vector<std::string>;\n'
                            'int fill(char*);\n'
                            'int entry() { char text[64]; return fill(text); }\n'
                            'int fill(char* text) { return text[0] = text[1]; }\n'
                            'int main() { return entry(); }\n')
        target = self.folder / name
        subprocess.run(['c++', '-g', '-O1', '-fno-inline', *options, source, '-o', target], check=True, timeout=60)
        return target

    def test_what_lacks_them_is_found(self):
        plain = ('-fno-stack-protector', '-fno-stack-clash-protection', '-fcf-protection=none', '-Wl,-z,norelro,-z,lazy,-z,execstack')
        everything = {'relro', 'bind now', 'no executable stack', 'stack protector', 'no foreign names', *COMPILED_WITH}
        if IS_X86_64:
            everything.add('indirect branches')
        self.assertEqual(problems_of(self.build('libplanted.so', '-shared', '-fPIC', *plain)), everything)
        self.assertEqual(problems_of(self.build('planted', '-no-pie', *plain)) - {'no foreign names'},
                         (everything | {'position-independent'}) - {'no foreign names'})

    def test_what_has_them_is_not_found(self):
        options = (*COMPILED_WITH, '-Wl,-z,relro,-z,now,-z,noexecstack', '-fvisibility=hidden')
        self.assertEqual(problems_of(self.build('planted', '-fPIE', '-pie', *options)), set())


if __name__ == '__main__':
    program.main()
