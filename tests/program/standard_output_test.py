"""Standard output has data only, whatever the libraries are told to print."""
import json
import os
import subprocess

import program
from program import Case, showing, shown_value

# Each makes a library print what it does, some of them on standard output.
SWITCHES = ({'LOG4CPLUS_LOGLOG_DEBUGENABLED': 'true'}, {'FC_DEBUG': '1023'}, {'G_MESSAGES_DEBUG': 'all'}, {'PANGO_DEBUG': 'all'},
            {'XML_DEBUG': '1', 'EXPAT_ENTROPY_DEBUG': '1', 'EXPAT_ACCOUNTING_DEBUG': '3'})
SETTINGS = ('log4cplus.configDebug=true\nlog4cplus.rootLogger=DEBUG, A\nlog4cplus.appender.A=log4cplus::ConsoleAppender\n')


class StandardOutput(Case):
    def output_of(self, *arguments, **options):
        """Returns the bytes on standard output of a run that must succeed."""
        done = subprocess.run([program.PROGRAM, *map(str, arguments)], stdin=subprocess.DEVNULL, capture_output=True,
                              timeout=60 * program.SLOW, **options)
        self.assertEqual(done.returncode, 0, done.stderr[-2000:])
        return done.stdout

    def test_switches_of_libraries_do_not_print_there(self):
        inputs = self.write('v.xml', showing('SUM(a)')), '--db', self.database()
        for form in ('json', 'png', 'pdf'):
            usual = self.output_of('render', *inputs, '--format', form)
            for switches in SWITCHES:
                shown = self.output_of('render', *inputs, '--format', form, env={**os.environ, **switches})
                self.assertEqual(shown, usual, (form, switches))

    def test_debugging_of_the_log_does_not_print_there(self):
        settings = self.write('log.properties', SETTINGS)
        inputs = self.write('v.xml', showing('SUM(a)')), '--db', self.database(), '--log-config', settings
        for more in ([], ['-o', '/dev/stdout', '--format', 'json'], ['-o', '/proc/self/fd/1', '--format', 'json']):
            self.assertEqual(shown_value(json.loads(self.output_of('render', *inputs, *more))), '1')
        answers, done = self.session(inputs[0], inputs[2], [{'request': 'create'}, {'request': 'refresh'}], '--log-config', settings)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual([answer['code'] for answer in answers], ['success', 'success'])
        self.assertIn('DEBUG', done.stderr)

    def test_log_stays_off_it(self):
        settings = self.write('log.properties', SETTINGS.replace('log4cplus.configDebug=true\n', '') +
                              'log4cplus.appender.A.layout=log4cplus::PatternLayout\n'
                              'log4cplus.appender.A.layout.ConversionPattern=[%c] %m%n\n')
        done = self.run_program('render', self.write('v.xml', showing('SUM(a)')), '--db', self.database(), '--log-config', settings)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(shown_value(json.loads(done.stdout)), '1')
        self.assertIn('[tessera.host] ', done.stderr)

    def test_few_open_files_are_enough(self):
        """The number that standard output is kept under is high, but not above the limit."""
        inputs = self.write('v.xml', showing('SUM(a)')), '--db', self.database()
        for limit in (1024, 256, 32):
            done = subprocess.run(['bash', '-c', f'ulimit -n {limit}; exec "$@"', 'bash', program.PROGRAM, 'render', *map(str, inputs)],
                                  capture_output=True, text=True)
            self.assertEqual(shown_value(json.loads(done.stdout)), '1', (limit, done.stderr))


if __name__ == '__main__':
    program.main()
