"""The log: its settings are checked before the logging library reads them, and its lines are harmless."""
import os

import program
from program import Case, document, showing

GOOD = showing('SUM(a)')
TO_CONSOLE = ('log4cplus.rootLogger=DEBUG, A\nlog4cplus.appender.A=log4cplus::ConsoleAppender\n'
              'log4cplus.appender.A.layout=log4cplus::PatternLayout\n'
              'log4cplus.appender.A.layout.ConversionPattern=[%c] %m%n\n')


class Settings(Case):
    def render_with(self, settings, **options):
        return self.run_program('render', self.write('v.xml', GOOD), '--db', self.database(), '--log-config', settings,
                                cwd=self.folder, **options)

    def refused(self, settings, *texts):
        done = self.render_with(settings)
        self.assert_clean_failure(done, 3, f'{settings}: ', *texts)
        self.assertTrue(all(line.startswith('tessera: ') for line in done.stderr.splitlines()), done.stderr)

    def test_that_are_not_there(self):
        self.refused('none.properties', 'no such file')

    def test_with_mistakes(self):
        self.refused(self.write('log.properties', 'log4cplus.rootLogger=LOUD, A\nlog4cplus.appender.A=log4cplus::Nothing\n'),
                     'Nothing')

    def test_that_configure_nothing(self):
        self.refused(self.write('log.properties', 'something=else\n'), 'no logger has an appender')

    def test_that_are_empty(self):
        self.refused(self.write('log.properties', ''), 'it is empty')

    def test_that_are_no_file(self):
        os.mkfifo(self.folder / 'pipe')
        self.refused('pipe', 'this is a named pipe')
        self.refused('/dev/zero', 'this is a device')
        self.refused(self.folder, 'this is a directory')

    def test_number_of_threads(self):
        for number in ('-1', '65', '99999999999999999999', 'many', ''):
            self.refused(self.write('log.properties', f'{TO_CONSOLE} log4cplus.threadPoolSize = {number}\r\n'), 'threadPoolSize')
        done = self.render_with(self.write('log.properties', f'{TO_CONSOLE}log4cplus.threadPoolSize=2\n'))
        self.assertEqual(done.returncode, 0, done.stderr)

    def test_one_file_includes_another(self):
        (self.folder / 'more').mkdir()
        self.write('more/console.properties', TO_CONSOLE)
        done = self.render_with(self.write('log.properties', '  include more/console.properties\r\n'))
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertIn('[tessera.host] ', done.stderr)

    def test_files_that_include_each_other(self):
        self.write('a.properties', TO_CONSOLE + 'include b.properties\n')
        self.write('b.properties', 'include\ta.properties \n')
        self.refused('a.properties', 'it includes itself')
        self.write('c.properties', 'include c.properties')
        self.refused('c.properties', 'it includes itself')

    def test_widths_that_nobody_can_wait_for(self):
        for width, is_refused in (('999999999', True), ('-10000', True), ('.99999', True), ('40.40', False), ('-9999', False)):
            self.write('w.properties', TO_CONSOLE + 'log4cplus.appender.A.layout=log4cplus::PatternLayout\n'
                       f'log4cplus.appender.A.layout.ConversionPattern=%p %{width}m%n\n')
            done = self.render_with('w.properties')
            if is_refused:
                self.assert_clean_failure(done, 3, 'a width in a layout is larger than 9999')
            else:
                self.assertEqual(done.returncode, 0, done.stderr)

    def test_more_files_than_anyone_needs(self):
        """Each file includes the next one twice, which would be more files than could ever be read."""
        for number in range(40):
            self.write(f'{number}.properties', f'include {number + 1}.properties\n' * 2)
        self.write('40.properties', TO_CONSOLE)
        done = self.render_with('0.properties')
        self.assert_clean_failure(done, 3, 'more than 100 files are included')

    def test_included_file_that_cannot_be_read(self):
        os.mkfifo(self.folder / 'pipe')
        for name, reason in (('none', 'there is no such file'), ('pipe', 'this is a named pipe'), ('/dev/zero', 'this is a device')):
            self.write('log.properties', f'{TO_CONSOLE}include {name}\n')
            self.assert_clean_failure(self.render_with('log.properties'), 3, f'{name}: ', reason)


class Lines(Case):
    def test_cannot_control_a_terminal(self):
        """A document may hold U+007F to U+009F, which terminals obey like the escape character."""
        path = self.write('v.xml', document('<graph id="g"><node id="a"/><link id="l" from="a" to="n&#x9b;2J&#x7f;&#xe9;"/></graph>'))
        done = self.run_program('render', path, '--db', self.database())
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertIn('Unknown node id in link found <n\\x9b2J\\x7f\u00e9>', done.stderr)
        self.assertFalse([c for c in done.stderr if c != '\n' and ord(c) < 0x20 or 0x7f <= ord(c) < 0xa0], done.stderr)

    def test_cannot_reorder_the_text(self):
        path = self.write('v.xml', document('<graph id="g"><node id="a"/><link id="l" from="a" to="n&#x202e;x&#x2066;y&#x2028;z&#x200f;"/></graph>'))
        done = self.run_program('render', path, '--db', self.database())
        self.assertIn('Unknown node id in link found <n\\u202ex\\u2066y\\u2028z\u200f>', done.stderr)

    def test_of_the_settings_do_not_either(self):
        name = 'none\x1b[2J'
        done = self.run_program('render', self.write('v.xml', GOOD), '--db', self.database(), '--log-config', name)
        self.assert_clean_failure(done, 3, 'none\\x1b[2J: ')


if __name__ == '__main__':
    program.main()
