"""Documents whose links form cycles: what `render` and `session` report, --acyclic, and `check --fix`."""
import json
import os

import program
from program import Case

NODES = '<node id="a"/><node id="b"/><node id="c"/>\n'
CHAIN = '<link id="1" from="a" to="b" direction="forward"/>\n<link id="2" from="b" to="c"/>\n'
CYCLE = NODES + CHAIN + '<link id="3" from="c" to="a" direction="forward"/>'
REVERSED = NODES + CHAIN + '<link id="3" from="a" to="c" direction="back"/>'
WARNING = ('4:1: warning: links "1" (line 4), "2" (line 5) and "3" (line 6) form a cycle at the top level: a -> b -> c -> a; '
           'pictures follow the links anyway; for the levels in the data, --acyclic reverses as few links as possible')


def document(graph, display=''):
    return (f'<v><diagram><!-- kept -->\n<graph id="g">\n{graph}\n</graph>\n'
            f'<display>{display}</display></diagram></v>\n')


class Acyclic(Case):
    def rendered(self, text, *options, status=0):
        """The diagram and the messages without their beginning."""
        path = self.write('v.xml', text)
        done = self.run_program('render', path, '--db', self.database(), '--log-level', 'off', *options)
        self.assertEqual(done.returncode, status, done.stderr)
        lines = done.stderr.splitlines()
        for line in lines:
            self.assertTrue(line.startswith(f'tessera: {path}:'), line)
        return done.stdout, [line[len(f'tessera: {path}:'):] for line in lines]

    def levels(self, text):
        return {node['id']: node['hierarchicalLevel'] for node in json.loads(text)['nodes']['node']}

    def test_cycle_is_reported_and_drawn_as_before(self):
        out, messages = self.rendered(document(CYCLE))
        self.assertEqual(messages, [WARNING])
        self.assertEqual(self.levels(out), {'a': -1, 'b': -1, 'c': -1})

    def test_acyclic_reverses_a_link(self):
        out, messages = self.rendered(document(CYCLE), '--acyclic')
        self.assertEqual(messages, [' link "3" (line 6) was reversed, because links formed cycles'])
        self.assertEqual(self.levels(out)['c'], 2)
        self.assertEqual(out, self.rendered(document(REVERSED))[0])

    def test_without_cycles_nothing_changes(self):
        plain = self.rendered(document(REVERSED))
        self.assertEqual(plain, self.rendered(document(REVERSED), '--acyclic'))
        self.assertEqual(plain[1], [])

    def test_example_stays_as_it_is(self):
        example = program.ROOT / 'examples/backup/backup.xml'
        done = self.run_program('check', example, '--fix')
        self.assertEqual((done.returncode, done.stderr), (0, ''))
        self.assertEqual(done.stdout.encode(), example.read_bytes())

    def test_loop_is_no_help(self):
        _, messages = self.rendered(document(NODES + '<link id="1" from="a" to="a"/>'), '--acyclic')
        self.assertEqual(messages, ['4:1: warning: link "1" from "a" to itself forms a cycle at the top level: '
                                    'a -> a; reversing the link does not help'])

    def test_session_does_the_same(self):
        path = self.write('v.xml', document(CYCLE))
        create = {'request': 'create'}
        answers, done = self.session(path, self.database(), [create], '--acyclic')
        self.assertIn('tessera: ' + str(path) + ': link "3" (line 6) was reversed', done.stderr)
        self.assertEqual(answers[0]['code'], 'success')
        self.assertEqual({node['hierarchicalLevel'] for node in answers[0]['out']['nodes']['node']}, {0, 1, 2})
        _, done = self.session(path, self.database(), [create])
        self.assertIn(f'tessera: {path}:{WARNING}\n', done.stderr)

    def test_messages_name_the_places_of_the_document(self):
        display = '\n<node id="a"><rowSet><queryRef>/none</queryRef></rowSet></node>'
        for options in ((), ('--acyclic',)):
            _, messages = self.rendered(document(CYCLE, display), *options, status=1)
            self.assertTrue(any(line.startswith('9:22: error: ') for line in messages), messages)

    def fixed(self, text, *options, status=0):
        path = self.write('v.xml', text)
        done = self.run_program('check', path, '--fix', *options)
        self.assertEqual(done.returncode, status, done.stderr)
        return done.stdout, [line[len(str(path)) + 1:] for line in done.stderr.splitlines()]

    def test_fix_changes_the_links_and_no_other_byte(self):
        text, findings = self.fixed(document(CYCLE))
        self.assertEqual(text, document(REVERSED))
        self.assertEqual(findings, ['6:1: note: link "3" is reversed: it leads from "a" to "c" now, and its '
                                    'direction and labels are exchanged with it'])

    def test_fix_exchanges_labels(self):
        label = '<link id="3"><label location="{}"/><label location="center"/></link>'
        text, _ = self.fixed(document(CYCLE, label.format('from')))
        self.assertEqual(text, document(REVERSED, label.format('to')))

    def test_fix_leaves_a_sound_document(self):
        text = document(REVERSED).replace('\n', '\r\n')
        path = self.write('v.xml', text.encode())
        out = self.folder / 'out.xml'
        done = self.run_program('check', path, '--fix', '-o', out)
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, '', ''))
        self.assertEqual(out.read_bytes(), text.encode())

    def test_fix_in_place(self):
        path = self.write('v.xml', document(CYCLE))
        done = self.run_program('check', path, '--fix', '-o', path)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(path.read_text(), document(REVERSED))
        self.assertEqual(os.listdir(self.folder), ['v.xml'])

    def test_fix_still_reports_what_is_left(self):
        text, findings = self.fixed(document(CYCLE + '\n<link id="4" from="a" to="x"/>'), status=1)
        self.assertEqual(text, document(REVERSED + '\n<link id="4" from="a" to="x"/>'))
        self.assertEqual(len(findings), 2)
        self.assertTrue(findings[1].startswith('7:1: error: link "4": there is no node "x"'), findings)

    def test_fix_writes_nothing_when_the_document_is_malformed(self):
        out = self.folder / 'out.xml'
        path = self.write('v.xml', '<v><diagram>')
        done = self.run_program('check', path, '--fix', '-o', out)
        self.assertEqual((done.returncode, done.stdout, out.exists()), (1, '', False))

    def test_fix_of_another_encoding(self):
        path = self.write('v.xml', ('<?xml version="1.0" encoding="UTF-16"?>' + document(CYCLE)).encode('utf-16'))
        done = self.run_program('check', path, '--fix')
        self.assert_clean_failure(done, 1, f'{path}: links form cycles, and only documents in UTF-8 can be fixed')
        sound = ('<?xml version="1.0" encoding="UTF-16"?>' + document(REVERSED)).encode('utf-16')
        out = self.folder / 'out.xml'
        self.assertEqual(self.run_program('check', self.write('v.xml', sound), '--fix', '-o', out).returncode, 0)
        self.assertEqual(out.read_bytes(), sound)

    def test_usage(self):
        path = self.write('v.xml', document(CYCLE))
        self.assert_clean_failure(self.run_program('check', path, '-o', self.folder / 'x.xml'), 2)
        self.assert_clean_failure(self.run_program('check', path, '--fix', '-o', self.folder / 'no/x.xml'), 3)
        self.assert_clean_failure(self.run_program('check', path, '--acyclic'), 2)

    def test_large_components_in_little_time(self):
        count = 50_000
        nodes = ''.join(f'<node id="n{i}"/>' for i in range(count))
        links = ''.join(f'<link id="f{i}" from="n{i}" to="n{(i + 1) % count}"/>'
                        f'<link id="c{i}" from="n{i}" to="n{(i + 7919) ** 2 % count}"/>' for i in range(1, count)
                        if (i + 7919) ** 2 % count != i)
        path = self.write('v.xml', document(nodes + links))
        done = self.run_program('check', path, '--fix', '-o', self.folder / 'out.xml', timeout=60 * program.SLOW)
        self.assertEqual(done.returncode, 0, done.stderr[:1000])
        again = self.run_program('check', self.folder / 'out.xml', timeout=60 * program.SLOW)
        self.assertEqual((again.returncode, again.stderr), (0, ''))


if __name__ == '__main__':
    program.main()
