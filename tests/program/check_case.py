"""Shared by the tests of `tessera check`."""
from program import Case


class CheckCase(Case):
    def findings(self, text, *options, status=1):
        """Returns the findings without the file's name: "LINE:COLUMN: severity: text"."""
        path = self.write('v.xml', text)
        done = self.run_program('check', path, *options)
        self.assertEqual(done.returncode, status, done.stderr)
        self.assertEqual(done.stdout, '')
        lines = done.stderr.splitlines()
        for line in lines:
            self.assertTrue(line.startswith(f'{path}:'), line)
        return [line[len(str(path)) + 1:] for line in lines]

    def assert_finds(self, text, *expected, options=(), status=1):
        """Expects exactly these findings; each is given by its beginning."""
        found = self.findings(text, *options, status=status)
        for line, begin in zip(found, expected):
            self.assertTrue(line.startswith(begin), f'{line!r} does not begin with {begin!r}')
        self.assertEqual(len(found), len(expected), found)

    def graph(self, content, display=''):
        return f'<v><diagram>\n<graph id="g">\n{content}\n</graph>{display}</diagram></v>'
