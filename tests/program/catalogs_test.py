"""Display names from message catalogues made by msgfmt."""
import subprocess

import program
from program import Case

DOCUMENT = program.document('<graph id="g"><node id="a"/><node id="b"/><node id="c"/><node id="d"/></graph><display>'
                            '<graph displayName="title"/><node id="a" displayName="both"/><node id="b" displayName="empty"/>'
                            '<node id="c" displayName="nowhere"/><node id="d" displayName=""/></display>')


class Catalogs(Case):
    def catalog(self, locale, name, texts, charset='UTF-8'):
        folder = self.folder / locale / 'LC_MESSAGES'
        folder.mkdir(parents=True, exist_ok=True)
        entries = ''.join(f'\nmsgid "{key}"\nmsgstr "{text}"\n' for key, text in texts.items())
        source = self.folder / 'source.po'
        header = f'msgid ""\nmsgstr "Content-Type: text/plain; charset={charset}\\n"\n'
        source.write_bytes((header + entries).encode(charset))
        subprocess.run(['msgfmt', '-o', folder / f'{name}.mo', source], check=True)

    def names(self, locale):
        diagram = self.render(self.write('v.xml', DOCUMENT), self.database(), '--catalogs', self.folder, '--locale', locale)
        return [diagram['diagram']['name']] + [node['displayName'] for node in diagram['nodes']['node']]

    def test_first_catalogue_that_has_a_text_wins(self):
        self.catalog('de', 'slicer2', {'both': 'aus slicer2'})
        self.catalog('de', 'viewpoint', {'both': 'aus viewpoint', 'title': 'Übersicht'})
        self.catalog('de', 'storeiface1', {'empty': 'aus storeiface1'})
        self.assertEqual(self.names('de'), ['Übersicht', 'aus slicer2', 'aus storeiface1', 'nowhere', ''])
        self.assertEqual(self.names('fr'), ['title', 'both', 'empty', 'nowhere', ''])

    def test_country_falls_back_to_its_language(self):
        self.catalog('de', 'viewpoint', {'title': 'Übersicht'})
        self.catalog('de_AT', 'slicer2', {'both': 'beide'})
        self.assertEqual(self.names('de_AT')[:2], ['Übersicht', 'beide'])
        self.assertEqual(self.names('de_AT.UTF-8')[:2], ['Übersicht', 'beide'])

    def test_other_encodings_become_utf8(self):
        self.catalog('de', 'viewpoint', {'title': 'Übersicht'}, 'ISO-8859-1')
        self.assertEqual(self.names('de')[0], 'Übersicht')

    def test_files_that_are_not_catalogues_are_reported_and_skipped(self):
        self.catalog('de', 'viewpoint', {'title': 'Übersicht'})
        path = self.folder / 'de/LC_MESSAGES/slicer2.mo'
        whole = (self.folder / 'de/LC_MESSAGES/viewpoint.mo').read_bytes()
        table = int.from_bytes(whole[16:20], 'little')
        outside = whole[:table + 4] + b'\xf0\xff\xff\xff' + whole[table + 8:]
        for content in (b'', b'no catalogue', outside, whole[:-1], whole[:28], b'\xde\x12\x04\x95' + b'\xff' * 40):
            path.write_bytes(content)
            done = self.run_program('render', self.write('v.xml', DOCUMENT), '--db', self.database(f'CREATE TABLE t(a);', 'e.db'),
                                    '--catalogs', self.folder, '--locale', 'de', '--format', 'xml')
            (self.folder / 'e.db').unlink()
            self.assertEqual(done.returncode, 0, done.stderr)
            self.assertIn('Übersicht', done.stdout)
            self.assertIn('slicer2.mo', done.stderr)


if __name__ == '__main__':
    program.main()
