"""Documents whose links go in circles: what `render` and `session` tell of them, --acyclic, and `check --fix`."""
import json
import os

import program
from program import Case

NODES = '<node id="a"/><node id="b"/><node id="c"/>\n'
CHAIN = '<link id="1" from="a" to="b" direction="forward"/>\n<link id="2" from="b" to="c"/>\n'
CIRCLE = NODES + CHAIN + '<link id="3" from="c" to="a" direction="forward"/>'
TURNED = NODES + CHAIN + '<link id="3" from="a" to="c" direction="back"/>'
TOLD = ('4:1: warning: the links "1" (line 4), "2" (line 5) and "3" (line 6) go in a circle at the top level; --acyclic '
        'turns as few of them around as it can')


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

    def test_circle_is_told_and_drawn_as_ever(self):
        out, messages = self.rendered(document(CIRCLE))
        self.assertEqual(messages, [TOLD])
        self.assertEqual(self.levels(out), {'a': -1, 'b': -1, 'c': -1})

    def test_acyclic_turns_a_link(self):
        out, messages = self.rendered(document(CIRCLE), '--acyclic')
        self.assertEqual(messages, [' the link "3" (line 6) was turned around, because links went in circles'])
        self.assertEqual(self.levels(out)['c'], 2)
        self.assertEqual(out, self.rendered(document(TURNED))[0])

    def test_without_circles_nothing_changes(self):
        plain = self.rendered(document(TURNED))
        self.assertEqual(plain, self.rendered(document(TURNED), '--acyclic'))
        self.assertEqual(plain[1], [])

    def test_example_stays_as_it_is(self):
        example = program.ROOT / 'examples/backup/backup.xml'
        done = self.run_program('check', example, '--fix')
        self.assertEqual((done.returncode, done.stderr), (0, ''))
        self.assertEqual(done.stdout.encode(), example.read_bytes())

    def test_loop_is_no_help(self):
        _, messages = self.rendered(document(NODES + '<link id="1" from="a" to="a"/>'), '--acyclic')
        self.assertEqual(messages, ['4:1: warning: link "1" leads from "a" to itself; turning it around does not help'])

    def test_session_does_the_same(self):
        path = self.write('v.xml', document(CIRCLE))
        create = {'request': 'create'}
        answers, done = self.session(path, self.database(), [create], '--acyclic')
        self.assertIn('tessera: ' + str(path) + ': the link "3" (line 6) was turned around', done.stderr)
        self.assertEqual(answers[0]['code'], 'success')
        self.assertEqual({node['hierarchicalLevel'] for node in answers[0]['out']['nodes']['node']}, {0, 1, 2})
        _, done = self.session(path, self.database(), [create])
        self.assertIn(f'tessera: {path}:{TOLD}\n', done.stderr)

    def test_messages_name_the_places_of_the_document(self):
        display = '\n<node id="a"><rowSet><queryRef>/none</queryRef></rowSet></node>'
        for options in ((), ('--acyclic',)):
            _, messages = self.rendered(document(CIRCLE, display), *options, status=1)
            self.assertTrue(any(line.startswith('9:22: error: ') for line in messages), messages)

    def fixed(self, text, *options, status=0):
        path = self.write('v.xml', text)
        done = self.run_program('check', path, '--fix', *options)
        self.assertEqual(done.returncode, status, done.stderr)
        return done.stdout, [line[len(str(path)) + 1:] for line in done.stderr.splitlines()]

    def test_fix_changes_the_links_and_no_other_byte(self):
        text, findings = self.fixed(document(CIRCLE))
        self.assertEqual(text, document(TURNED))
        self.assertEqual(findings, ['6:1: note: link "3" is turned around: it leads from "a" to "c" now, and its '
                                    'direction and labels are exchanged with it'])

    def test_fix_exchanges_labels(self):
        label = '<link id="3"><label location="{}"/><label location="center"/></link>'
        text, _ = self.fixed(document(CIRCLE, label.format('from')))
        self.assertEqual(text, document(TURNED, label.format('to')))

    def test_fix_leaves_a_sound_document(self):
        text = document(TURNED).replace('\n', '\r\n')
        path = self.write('v.xml', text.encode())
        out = self.folder / 'out.xml'
        done = self.run_program('check', path, '--fix', '-o', out)
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, '', ''))
        self.assertEqual(out.read_bytes(), text.encode())

    def test_fix_in_place(self):
        path = self.write('v.xml', document(CIRCLE))
        done = self.run_program('check', path, '--fix', '-o', path)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(path.read_text(), document(TURNED))
        self.assertEqual(os.listdir(self.folder), ['v.xml'])

    def test_fix_still_reports_what_is_left(self):
        text, findings = self.fixed(document(CIRCLE + '\n<link id="4" from="a" to="x"/>'), status=1)
        self.assertEqual(text, document(TURNED + '\n<link id="4" from="a" to="x"/>'))
        self.assertEqual(len(findings), 2)
        self.assertTrue(findings[1].startswith('7:1: error: link "4": there is no node "x"'), findings)

    def test_fix_writes_nothing_of_what_is_no_document(self):
        out = self.folder / 'out.xml'
        path = self.write('v.xml', '<v><diagram>')
        done = self.run_program('check', path, '--fix', '-o', out)
        self.assertEqual((done.returncode, done.stdout, out.exists()), (1, '', False))

    def test_fix_of_another_encoding(self):
        path = self.write('v.xml', ('<?xml version="1.0" encoding="UTF-16"?>' + document(CIRCLE)).encode('utf-16'))
        done = self.run_program('check', path, '--fix')
        self.assert_clean_failure(done, 1, f'{path}: links go in circles, and only documents in UTF-8 can be fixed')
        sound = ('<?xml version="1.0" encoding="UTF-16"?>' + document(TURNED)).encode('utf-16')
        out = self.folder / 'out.xml'
        self.assertEqual(self.run_program('check', self.write('v.xml', sound), '--fix', '-o', out).returncode, 0)
        self.assertEqual(out.read_bytes(), sound)

    def test_usage(self):
        path = self.write('v.xml', document(CIRCLE))
        self.assert_clean_failure(self.run_program('check', path, '-o', self.folder / 'x.xml'), 2)
        self.assert_clean_failure(self.run_program('check', path, '--fix', '-o', self.folder / 'no/x.xml'), 3)
        self.assert_clean_failure(self.run_program('check', path, '--acyclic'), 2)

    def test_large_tangles_in_little_time(self):
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
