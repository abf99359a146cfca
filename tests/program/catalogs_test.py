"""Display names from message catalogues made by msgfmt."""
import os
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

    def test_a_damaged_hash_table_does_no_harm(self):
        self.catalog('de', 'viewpoint', {'title': 'Übersicht', 'both': 'beide'})
        path = self.folder / 'de/LC_MESSAGES/viewpoint.mo'
        whole = path.read_bytes()
        table = int.from_bytes(whole[24:28], 'little')
        for at, content in ((20, (1).to_bytes(4, 'little')), (20, (2).to_bytes(4, 'little')), (20, b'\x7f\0\0\0'),
                            (24, bytes(4)), (24, b'\xff' * 4), (table, b'\xff' * 8)):
            path.write_bytes(whole[:at] + content + whole[at + len(content):])
            self.assertEqual(self.names('de')[:2], ['Übersicht', 'beide'], (at, content))

    def test_what_the_library_could_not_end_is_refused(self):
        folder = self.folder / 'de/LC_MESSAGES'
        self.catalog('de', 'viewpoint', {'title': 'Übersicht'})
        plural = '(' * 100_000 + 'n' + ')' * 100_000
        header = f'Content-Type: text/plain; charset=UTF-8\nPlural-Forms: nplurals=1; plural={plural};\n'.encode()
        start = 28 + 2 * 8
        deep = b''.join(word.to_bytes(4, 'little') for word in (0x950412de, 0, 1, 28, 36, 0, 0, 0, start, len(header), start + 1))
        (folder / 'slicer2.mo').write_bytes(deep + b'\0' + header + b'\0')
        os.mkfifo(folder / 'storeiface1.mo')
        done = self.run_program('render', self.write('v.xml', DOCUMENT), '--db', self.database(), '--catalogs', self.folder,
                                '--locale', 'de', '--format', 'xml')
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertIn('Übersicht', done.stdout)
        for name in ('slicer2.mo', 'storeiface1.mo'):
            self.assertIn(name + ': is not a message catalogue that can be read', done.stderr)

    def test_a_locale_is_a_language_and_not_a_path(self):
        document, database = self.write('v.xml', DOCUMENT), self.database()
        for locale in ('', '../de', '/de', 'de/..', '.', 'd e'):
            done = self.run_program('render', document, '--db', database, '--catalogs', self.folder, '--locale', locale)
            self.assert_clean_failure(done, 2, 'is not the name of a language')


if __name__ == '__main__':
    program.main()
