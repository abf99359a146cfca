"""The tables of the program: what help names, options accept and the program can do."""
import re

import program
from program import Case, document

GRAPH = ('<graph id="g"><node id="a"/><node id="b"/><link id="1" from="a" to="b"/></graph><display>'
         '<node id="a" displayName="First"/></display>')
# How the files of each format begin.
BEGINNINGS = {'json': b'{', 'xml': b'<?xml', 'svg': b'<', 'png': b'\x89PNG', 'pdf': b'%PDF-'}
PICTURES = ['svg', 'png', 'pdf']


class Tables(Case):
    def help(self, *command):
        done = self.run_program(*command, '--help')
        self.assertEqual((done.returncode, done.stderr), (0, ''))
        return re.sub(r'\s+', ' ', done.stdout)

    def test_help_names_the_subcommands_and_each_has_its_own(self):
        text = self.help()
        for name, purpose in [('render', 'Makes one diagram'), ('session', 'Runs requests'), ('check', 'Reports everything')]:
            self.assertIn(f'{name} {purpose}', text)
            self.assertIn(purpose, self.help(name))

    def test_an_unknown_subcommand_is_answered_with_all_of_them(self):
        done = self.run_program('frob')
        self.assert_clean_failure(done, 2, 'there is no command frob; there are render, session and check')

    def test_subcommands_have_the_options_of_their_groups(self):
        options = {name: set(re.findall(r'--[a-z-]+', self.help(name))) for name in ('render', 'session', 'check')}
        common = {'--help', '--filter', '--locale', '--catalogs', '--log-config', '--log-level', '--query-timeout', '--max-memory', '--db'}
        layout = {'--acyclic', '--max-elements', '--max-id-bytes'}
        self.assertEqual(options['check'] - {'--version'}, common | {'--fix', '--output'})
        self.assertEqual(options['session'] - {'--version'}, common | layout)
        self.assertEqual(options['render'] - {'--version'},
                         common | layout | {'--stop-after', '--dump-passes', '--time-passes', '--verify', '--output', '--format',
                                            '--theme', '--direction', '--fit', '--fold', '--layers', '--paper', '--keep', '--save-layout', '--scale', '--mode',
                                            '--fail-on', '--against'})

    def test_every_format_is_written_by_ending_and_by_option(self):
        self.assertIn('json, xml, svg, png, pdf or changes (default', self.help('render'))
        viewpoint, database = self.write('v.xml', document(GRAPH)), self.database()
        for name, beginning in BEGINNINGS.items():
            for target, options in [(f'x.{name}', ()), (f'x.{name.upper()}', ()), ('x.other', ('--format', name))]:
                out = self.folder / target
                done = self.run_program('render', viewpoint, '--db', database, '-o', out, *options)
                self.assertEqual(done.returncode, 0, done.stderr)
                self.assertTrue(out.read_bytes().startswith(beginning), (name, target))

    def test_standard_output_is_json(self):
        done = self.run_program('render', self.write('v.xml', document(GRAPH)), '--db', self.database())
        self.assertTrue(done.stdout.startswith('{'))

    def test_a_file_ending_without_format_is_answered_with_all_of_them(self):
        done = self.run_program('render', self.write('v.xml', document(GRAPH)), '--db', self.database(), '-o', self.folder / 'x.doc')
        self.assert_clean_failure(done, 2, 'the ending does not name a format; add --format with json, xml, svg, png, pdf or changes')

    def test_an_ending_and_a_format_that_differ_are_refused(self):
        out = self.folder / 'x.svg'
        done = self.run_program('render', self.write('v.xml', document(GRAPH)), '--db', self.database(), '-o', out,
                                '--format', 'png')
        self.assert_clean_failure(done, 2, f'{out}: the ending names the format svg, but --format is png')
        self.assertFalse(out.exists())

    def test_options_of_pictures_need_a_picture(self):
        viewpoint, database = self.write('v.xml', document(GRAPH)), self.database()
        for name in BEGINNINGS:
            for option in (('--theme', 'dark'), ('--direction', 'tb'), ('--paper', 'a4'), ('--scale', '2')):
                fits = name in {'--scale': ['png'], '--paper': ['pdf']}.get(option[0], PICTURES)
                done = self.run_program('render', viewpoint, '--db', database, '-o', self.folder / f'x.{name}', *option)
                if fits:
                    self.assertEqual(done.returncode, 0, done.stderr)
                else:
                    self.assert_clean_failure(done, 2, option[0] + ' is for ')

    def test_modes_and_filters_are_named(self):
        text = self.help('render')
        self.assertIn('The display mode: bandwidth, ratio or size (default: bandwidth)', text)
        self.assertIn('(selection or global)', text)
        done = self.run_program('render', 'v.xml', '--db', 'x.db', '--filter', 'other=1')
        self.assert_clean_failure(done, 2, 'the filters are called "selection" and "global"')
        done = self.run_program('render', 'v.xml', '--db', 'x.db', '--mode', 'other')
        self.assert_clean_failure(done, 2, 'bandwidth')


if __name__ == '__main__':
    program.main()
