"""Bad input of every kind: each gives a clear message and the right exit status, and no partial output."""
import json
import os
import resource
import sqlite3
import subprocess

import program
from program import Case, document, showing, shown_value

GOOD = showing('SUM(a)')


class Documents(Case):
    def render_of(self, content, name='v.xml'):
        return self.run_program('render', self.write(name, content), '--db', self.database())

    def test_no_file(self):
        done = self.run_program('render', self.folder / 'none.xml', '--db', self.database())
        self.assert_clean_failure(done, 3, 'none.xml: ')

    def test_a_directory(self):
        done = self.run_program('render', self.folder, '--db', self.database())
        self.assert_clean_failure(done, 3, 'directory')

    def test_no_permission(self):
        path = self.write('v.xml', GOOD)
        database = self.database()
        path.chmod(0)
        os.chmod(self.folder, 0o755)
        unprivileged = ['setpriv', '--reuid=65534', '--clear-groups'] if os.geteuid() == 0 else []
        done = subprocess.run([*unprivileged, program.PROGRAM, 'render', str(path), '--db', str(database)],
                              capture_output=True, text=True)
        self.assert_clean_failure(done, 3, 'v.xml: ', 'permission')

    def test_empty_file(self):
        self.assert_clean_failure(self.render_of(''), 1, 'v.xml', 'empty')

    def test_empty_configuration(self):
        self.assert_clean_failure(self.render_of('<viewpoint/>'), 1, 'Pane config is empty')

    def test_unclosed_element_says_where(self):
        self.assert_clean_failure(self.render_of('<viewpoint>\n <diagram>\n</viewpoint>'), 1, 'v.xml:3:', 'diagram')

    def test_bad_entity(self):
        self.assert_clean_failure(self.render_of('<v>\n&nothing;</v>'), 1, 'v.xml:2:1: ')

    def test_not_utf8(self):
        self.assert_clean_failure(self.render_of(b'<v a="\xff"/>'), 1, 'v.xml:1:')

    def test_entity_bomb_dies_at_its_declaration(self):
        bomb = '<!DOCTYPE v [<!ENTITY a "aaaaaaaaaa">\n' + ''.join(
            f'<!ENTITY a{i} "{("&a" + (str(i - 1) if i else "") + ";") * 10}">\n' for i in range(12)) + ']><v>&a11;</v>'
        self.assert_clean_failure(self.render_of(bomb), 1, 'v.xml:1:', 'entity declarations are not accepted')

    def test_external_entity_is_not_read(self):
        secret = self.write('secret.txt', 'sesame')
        text = f'<!DOCTYPE v [<!ENTITY s SYSTEM "file://{secret}">]><v>&s;</v>'
        done = self.render_of(text)
        self.assert_clean_failure(done, 1, 'entity declarations are not accepted')
        self.assertNotIn('sesame', done.stderr)

    def test_hundred_thousand_levels_of_nesting(self):
        depth = 100_000
        nested = ''.join(f'<node id="n{i}">' for i in range(depth)) + '</node>' * depth
        path = self.write('deep.xml', document(f'<graph>{nested}</graph>'))
        limited = lambda: resource.setrlimit(resource.RLIMIT_STACK, (1 << 20, 1 << 20))
        done = self.run_program('render', path, '--db', self.database(), '--format', 'xml',
                                preexec_fn=None if program.SLOW > 1 else limited)
        self.assertEqual(done.returncode, 0, done.stderr[-1000:])
        self.assertEqual(done.stdout.count('<node '), depth)


class Databases(Case):
    def render_with(self, database, *more):
        return self.run_program('render', self.write('v.xml', GOOD), '--db', database, *more)

    def test_no_file(self):
        self.assert_clean_failure(self.render_with(self.folder / 'none.db'), 3, 'none.db: ')
        self.assertFalse((self.folder / 'none.db').exists())

    def test_a_directory(self):
        self.assert_clean_failure(self.render_with(self.folder), 3, 'directory')

    def test_no_database(self):
        self.assert_clean_failure(self.render_with(self.write('x.db', 'not a database ' * 1000)), 3, 'x.db: ')

    def test_truncated_database(self):
        whole = self.database('CREATE TABLE t(a, b);' + 'INSERT INTO t VALUES (1, randomblob(900));' * 400).read_bytes()
        path = self.write('cut.db', whole[:len(whole) // 2])
        done = self.render_with(path)
        self.assertIn(done.returncode, (1, 3))
        self.assertIn('malformed', done.stderr)

    def test_database_cut_inside_its_last_page(self):
        whole = self.database().read_bytes()
        for missing in (1, 5, 18, 1000):
            done = self.render_with(self.write('cut.db', whole[:-missing]))
            self.assert_clean_failure(done, 3, 'cut.db: ', 'truncated')

    def test_locked_database(self):
        path = self.database()
        with sqlite3.connect(path, isolation_level=None) as writer:
            writer.execute('BEGIN EXCLUSIVE')
            done = self.render_with(path)
            writer.execute('ROLLBACK')
        writer.close()
        self.assert_clean_failure(done, 3, 'locked')


class Queries(Case):
    """A query that fails is reported with its place in the document. The diagram is written, and the exit status is 1."""

    def broken(self, content, *texts, sql='CREATE TABLE t(a, b); INSERT INTO t VALUES (1, 2);', value=None, options=()):
        database = self.database(sql)
        before = database.read_bytes()
        done = self.run_program('render', self.write('v.xml', content), '--db', database, *options)
        self.assertEqual(done.returncode, 1, done.stderr)
        for text in texts:
            self.assertIn(text, done.stderr)
        self.assertIn('v.xml:1:', done.stderr)
        self.assertEqual(shown_value(json.loads(done.stdout)), value)
        self.assertEqual(database.read_bytes(), before)
        self.assertEqual(sorted(p.name for p in self.folder.iterdir()), ['result.db', 'v.xml'])

    def test_missing_table(self):
        self.broken(showing('SUM(a)', **{'from': 'gone'}), 'no such table', 'gone')

    def test_missing_column(self):
        self.broken(showing('SUM(gone)'), 'query "q"', 'no such column', 'gone')

    def test_syntax_error(self):
        self.broken(showing('SUM('), 'query "q"')

    def test_writing(self):
        self.broken(showing('COUNT(*)) FROM t; DELETE FROM t --'), 'query "q"')

    def test_attaching(self):
        self.broken(showing("COUNT(*)) FROM t; ATTACH 'other.db' AS o --"), 'query "q"')

    def test_extension(self):
        self.broken(showing("MAX(load_extension('x'))"), 'query "q"', 'load_extension')

    def test_reading_a_file(self):
        self.broken(showing("MAX(readfile('/etc/passwd'))"), 'query "q"', 'readfile')

    def test_setting(self):
        self.broken(showing('(SELECT MAX(user_version) FROM pragma_user_version)'), 'query "q"')

    def test_no_aggregate(self):
        self.broken(showing('a'), 'query "q"', 'aggregate')

    def test_escaping_the_filter(self):
        self.broken(showing('COUNT(*)) FROM t /*'), 'query "q"', options=('--filter', 'global=a > 100'))

    def test_filter_on_a_column_that_the_table_lacks(self):
        self.broken(GOOD, 'query "q"', 'selection', 'missing', options=('--filter', 'selection=missing = 1'))

    def test_the_other_queries_still_run(self):
        content = document(
            '<graph><node id="bad"/><node id="n"/></graph><display>'
            '<node id="bad"><rowSet><queryRef>/bad</queryRef></rowSet></node>'
            '<node id="n"><rowSet><queryRef>/q</queryRef></rowSet></node></display>',
            '<query id="bad" from="gone">SUM(a)</query><query id="q" from="t">SUM(b)</query>')
        self.broken(content, 'no such table', value='2')

    def test_undeclared_reference(self):
        content = GOOD.replace('>/q<', '>/other<')
        self.broken(content, '"/other"')


class Requests(Case):
    def ask(self, *lines):
        answers, done = self.session(self.write('v.xml', GOOD), self.database(), lines)
        self.assertEqual(done.returncode, 0, done.stderr)
        return answers

    def test_malformed_requests_are_answered_and_the_session_continues(self):
        lines = ['no JSON', '', '{}', '[]', '"create"', '{"request":5}', '{"request":"create","in":3}',
                 '{"request":"create"', '{"request":"create"} x', '{"request":null}', '{"a":' * 200_000, '[' * 200_000]
        answers = self.ask(*lines, {'request': 'create'})
        self.assertEqual(len(answers), len(lines) + 1)
        for number, answer in enumerate(answers[:-1], start=1):
            self.assertEqual((answer['code'], answer['out']), ('IsNot.Valid.Data', {}))
            self.assertEqual(answer['request'], 'create' if number == 7 else '')  # its name was read, its "in" is not a bag
            self.assertIn(f'line {number} ', answer['message'])
        self.assertEqual(answers[-1]['code'], 'success')

    def test_bytes_that_are_not_utf8(self):
        process = subprocess.run([program.PROGRAM, 'session', str(self.write('v.xml', GOOD)), '--db', str(self.database())],
                                 input=b'{"request":"\xff"}\n{"request":"create"}\n', capture_output=True)
        answers = [json.loads(line) for line in process.stdout.splitlines()]
        self.assertEqual([answer['code'] for answer in answers], ['IsNot.Valid.Data', 'success'])

    def test_line_of_100_megabytes(self):
        answers = self.ask('{"request":"' + 'x' * 100_000_000 + '"}', {'request': 'create'})
        self.assertEqual([answer['code'] for answer in answers], ['IsNot.Valid.Data', 'success'])
        self.assertLess(len(json.dumps(answers[0])), 1000)

    def test_mode_that_is_not_a_string(self):
        answers = self.ask({'request': 'create'}, {'request': 'changeDisplayMode', 'in': {'mode': {'': 5}}},
                           {'request': 'refresh'})
        self.assertEqual([answer['code'] for answer in answers], ['success', 'IsNot.Valid.Data', 'success'])
        self.assertEqual(answers[2]['out'], answers[0]['out'])

    def test_unknown_requests(self):
        answers = self.ask(*({'request': name} for name in ('Create', 'create ', 'config', 'close', '')))
        for answer in answers:
            self.assertEqual((answer['code'], answer['out']), ('FailedTo', {}))
            self.assertEqual(answer['message'], answer['request'])

    def test_last_line_without_end(self):
        process = subprocess.run([program.PROGRAM, 'session', str(self.write('v.xml', GOOD)), '--db', str(self.database())],
                                 input='{"request":"create"}', capture_output=True, text=True)
        self.assertEqual([json.loads(line)['code'] for line in process.stdout.splitlines()], ['success'])


class Outputs(Case):
    def test_standard_output_closed(self):
        for command in ('render', 'session'):
            reader, writer = os.pipe()
            os.close(reader)
            done = subprocess.run([program.PROGRAM, command, str(self.write('v.xml', GOOD)), '--db', str(self.database())],
                                  input='{"request":"create"}\n', stdout=writer, stderr=subprocess.PIPE, text=True)
            os.close(writer)
            self.assertEqual(done.returncode, 3, (command, done.stderr))
            self.assertIn('tessera: standard output: cannot write', done.stderr)

    def test_an_input_is_not_written_over(self):
        document, database = self.write('v.xml', GOOD), self.database()
        link = self.folder / 'link.json'
        link.symlink_to(document)
        for output in (document, database, link):
            before = output.read_bytes()
            done = self.run_program('render', document, '--db', database, '-o', output, '--format', 'json')
            self.assert_clean_failure(done, 2, f'{output}: ')
            self.assertEqual(output.read_bytes(), before)

    def test_started_without_standard_descriptors(self):
        document, database = self.write('v.xml', GOOD), self.database()
        for redirection, command, status in (('<&-', 'session', 0), ('<&-', 'render', 0), ('>&-', 'render', 3),
                                             ('2>&-', 'render', 0), ('<&- >&- 2>&-', 'render', 3)):
            done = subprocess.run(['bash', '-c', f'"$0" "$@" {redirection}', program.PROGRAM, command, document,
                                   '--db', database], capture_output=True, text=True, timeout=30 * program.SLOW)
            self.assertEqual(done.returncode, status, (redirection, command, done.stderr))

    def test_full_device(self):
        with open('/dev/full', 'w') as full:
            done = subprocess.run([program.PROGRAM, 'render', str(self.write('v.xml', GOOD)), '--db', str(self.database())],
                                  stdout=full, stderr=subprocess.PIPE, text=True)
        self.assertEqual(done.returncode, 3)
        self.assertIn('No space left', done.stderr)

    def test_a_limit_on_the_size_of_files(self):
        rows = ''.join(f'<node id="{"n" * 100}{at}"/>' for at in range(100))
        viewpoint, database = self.write('v.xml', document(f'<graph id="g">{rows}</graph>')), self.database()
        done = self.run_program('render', viewpoint, '--db', database, '-o', self.folder / 'out.json',
                                preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (4096, 4096)))
        self.assert_clean_failure(done, 3, 'File too large')
        self.assertEqual(sorted(each.name for each in self.folder.iterdir()), ['result.db', 'v.xml'])

    def test_a_new_file_gains_no_rights_of_the_old_one(self):
        target = self.write('out.json', 'earlier')
        target.chmod(0o6755)
        done = self.run_program('render', self.write('v.xml', GOOD), '--db', self.database(), '-o', target)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(target.stat().st_mode & 0o7777, 0o755)

    def test_the_program_is_not_written_over(self):
        before = os.stat(program.PROGRAM).st_ino
        done = self.run_program('render', self.write('v.xml', GOOD), '--db', self.database(), '-o', '/proc/self/exe')
        self.assertEqual(os.stat(program.PROGRAM).st_ino, before)
        self.assert_clean_failure(done, 2, '--format')
        done = self.run_program('render', self.write('v.xml', GOOD), '--db', self.database(), '-o', '/proc/self/exe',
                                '--format', 'json')
        self.assert_clean_failure(done, 3, '/proc/self/exe: cannot write')
        self.assertEqual(os.stat(program.PROGRAM).st_ino, before)

    def test_folder_that_does_not_exist(self):
        done = self.run_program('render', self.write('v.xml', GOOD), '--db', self.database(), '-o', self.folder / 'no/out.json')
        self.assert_clean_failure(done, 3, 'out.json: cannot write')

    def test_failing_request_leaves_the_earlier_file(self):
        output = self.write('out.json', 'earlier')
        done = self.run_program('render', self.write('v.xml', '<v/>'), '--db', self.database(), '-o', output)
        self.assertEqual(done.returncode, 1)
        self.assertEqual(output.read_text(), 'earlier')
        self.assertEqual(sorted(p.name for p in self.folder.iterdir()), ['out.json', 'result.db', 'v.xml'])

    def test_file_is_replaced_whole_and_keeps_mode_and_link(self):
        target = self.write('target.json', 'earlier')
        target.chmod(0o640)
        link = self.folder / 'out.json'
        link.symlink_to(target)
        done = self.run_program('render', self.write('v.xml', GOOD), '--db', self.database(), '-o', link)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertTrue(link.is_symlink())
        self.assertEqual(target.stat().st_mode & 0o777, 0o640)
        self.assertEqual(shown_value(json.loads(target.read_text())), '1')


    def test_link_to_a_file_that_is_not_there_yet(self):
        link = self.folder / 'out.json'
        link.symlink_to('later.json')
        done = self.run_program('render', self.write('v.xml', GOOD), '--db', self.database(), '-o', link)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertTrue(link.is_symlink())
        self.assertEqual(shown_value(json.loads((self.folder / 'later.json').read_text())), '1')

    def test_names_of_open_descriptors(self):
        """An output that is already open is written from its current position, as if no name had been given."""
        document, database = self.write('v.xml', GOOD), self.database()
        for name in ('/dev/stdout', '/dev/fd/1', '/proc/self/fd/1', '-'):
            log = self.write('all.log', 'earlier\n')
            command = [program.PROGRAM, 'render', document, '--db', database, '--format', 'json', '-o', name]
            with open(log, 'a', encoding='utf-8') as file:
                done = subprocess.run(command, stdout=file, stderr=subprocess.PIPE, text=True)
                file.write('later\n')
            self.assertEqual(done.returncode, 0, (name, done.stderr))
            text = log.read_text()
            self.assertTrue(text.startswith('earlier\n{') and text.endswith('}\nlater\n'), (name, text))
            done = subprocess.run(command, capture_output=True, text=True)  # to a pipe
            self.assertEqual(done.returncode, 0, (name, done.stderr))
            self.assertEqual(shown_value(json.loads(done.stdout)), '1')

    def test_name_of_a_descriptor_that_is_not_open(self):
        done = self.run_program('render', self.write('v.xml', GOOD), '--db', self.database(), '--format', 'json', '-o', '/dev/fd/99')
        self.assert_clean_failure(done, 3, '/dev/fd/99: cannot write')

    def test_links_that_form_a_cycle(self):
        link = self.folder / 'out.json'
        link.symlink_to('out.json')
        done = self.run_program('render', self.write('v.xml', GOOD), '--db', self.database(), '-o', link)
        self.assert_clean_failure(done, 3, 'out.json: cannot write: Too many levels of symbolic links')
        self.assertTrue(link.is_symlink())

    def test_name_as_long_as_a_name_may_be(self):
        output = self.folder / ('x' * 250 + '.json')
        done = self.run_program('render', self.write('v.xml', GOOD), '--db', self.database(), '-o', output)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(shown_value(json.loads(output.read_text())), '1')


class Usage(Case):
    def test_wrong_usage(self):
        path, database = self.write('v.xml', GOOD), self.database()
        for arguments in ([], ['unknown'], ['render', path], ['render', '--db', database], ['session', path],
                          ['render', path, '--db', database, '--format', 'svgz'],
                          ['render', path, '--db', database, '-o', 'x.unknown'],
                          ['render', path, '--db', database, '--filter', 'selection'],
                          ['render', path, '--db', database, '--filter', 'other=1'],
                          ['render', path, '--db', database, '--catalogs', self.folder],
                          ['render', path, '--db', database, '--locale', 'de'],
                          ['render', path, '--db', database, '-o', ''], ['render', path, '--db', ''], ['check', ''],
                          ['render', path, '--db', database, '--mode', 'Ratio'],
                          ['render', path, '--db', database, '--query-timeout', 'nan'],
                          ['render', path, '--db', database, '--query-timeout', '0'],
                          ['check', path, '--log-level', 'loud'], ['render', path, '--db', database, '--bogus']):
            self.assert_clean_failure(self.run_program(*arguments), 2)

    def test_unknown_command_is_named(self):
        self.assert_clean_failure(self.run_program('frob', 'v.xml'), 2, 'there is no command frob')

    def test_help_and_version(self):
        for arguments in (['--help'], ['render', '--help'], ['--version']):
            done = self.run_program(*arguments)
            self.assertEqual((done.returncode, done.stderr), (0, ''))
            self.assertIn('tessera', done.stdout)

    def test_folder_of_catalogues_that_is_not_there(self):
        done = self.run_program('render', self.write('v.xml', GOOD), '--db', self.database(), '--locale', 'de',
                                '--catalogs', self.folder / 'none')
        self.assert_clean_failure(done, 3, 'none: there is no such folder')


if __name__ == '__main__':
    program.main()
