"""Compares every value in a diagram with the output of the sqlite3 program for the same question, formatted by a second
implementation of the rules."""
import collections
import decimal
import subprocess
import urllib.parse
import xml.etree.ElementTree as ElementTree

import program
from program import Case

MODES = ('bandwidth', 'ratio', 'size')


def significant(number, digits):
    """Returns the number with that many significant digits, with trailing zeros, never in exponent form."""
    number = decimal.Decimal(number)
    if number == 0:
        return '0' if digits == 1 else '0.' + '0' * (digits - 1)
    rounded = decimal.Context(prec=digits, rounding=decimal.ROUND_HALF_EVEN).plus(number)
    places = digits - 1 - rounded.adjusted()
    return f'{rounded:.{max(places, 0)}f}'


def scaled(number, digits, step, prefixes):
    """Returns number and prefix. The shown number is below `step` when a larger prefix exists."""
    number = decimal.Decimal(number)
    index = 0
    while True:
        text = significant(number, digits)
        if abs(decimal.Decimal(text)) < step or index + 1 == len(prefixes):
            return text, prefixes[index]
        number /= step
        index += 1


def duration(number, digits):
    number = decimal.Decimal(number)
    seconds = abs(number)
    sign = '-' if number < 0 else ''
    if seconds == 0:
        return '0 s'
    if seconds < 60:
        for unit, factor in (('s', 1), ('ms', 1000), ('µs', 1000000), ('ns', 1000000000)):
            text = significant(seconds * factor, digits)
            if decimal.Decimal(text) >= 1 or unit == 'ns':
                break
        if decimal.Decimal(text) < 60 or unit != 's':
            return f'{sign}{text} {unit}'
    raise NotImplementedError('the examples show no duration of a minute and more')


def formatted(value, form, unit):
    """Formats `value`, which is as the sqlite3 program prints it; '' is NULL."""
    if value == '':
        return ''
    name, _, digits = form.partition(':')
    try:
        number = decimal.Decimal(value)
    except decimal.InvalidOperation:
        name = 'plain'
    digits = int(digits or 0)
    if name == 'si':
        text, prefix = scaled(number, digits, 1000, ['', 'k', 'M', 'G', 'T', 'P'])
        return f'{text} {prefix}{unit}'.rstrip()
    if name == 'binary':
        text, prefix = scaled(number, digits, 1024, ['', 'Ki', 'Mi', 'Gi', 'Ti', 'Pi'])
        return f'{text} {prefix}{unit}'.rstrip()
    if name == 'percent':
        return f'{number * 100:.{digits}f} %'
    if name == 'duration':
        return duration(number, digits)
    text = f'{number:.{digits}f}' if name == 'fixed' else value
    return f'{text} {unit}' if unit else text


class Oracle:
    """Runs the statement with the sqlite3 program."""

    def __init__(self, document, database, filters):
        root = ElementTree.parse(document).getroot()
        self.display = root.find('diagram/display')
        self.queries = {query.get('id'): query for query in root.findall('queries/query')}
        self.filters = {f.get('name'): (f.text or '').strip() for f in root.findall('filters/filter')}
        self.filters.update(filters)
        self.database = database
        self.values = self.answers(ref.text.strip() for mode in MODES for _, row_set in self.row_sets(mode)
                                   for ref in row_set.findall('queryRef'))

    def statement(self, reference):
        name, *keys = reference[1:].split('/')
        query = self.queries[name]
        terms = [query.get('where')] + list(self.filters.values())
        for column, key in zip((query.get('key') or '').split(), keys, strict=True):
            text = urllib.parse.unquote(key).replace("'", "''")
            terms.append(f'"{column}" = \'{text}\'')
        where = ' AND '.join(f'({term})' for term in terms if term) or '1'
        # All seventeen digits: the program's own output has fifteen.
        return (f"SELECT CASE typeof(v) WHEN 'real' THEN printf('%!.17g', v) ELSE v END "
                f'FROM (SELECT ({query.text}) AS v FROM "{query.get("from")}" WHERE {where});')

    def answers(self, references):
        references = sorted(set(references))
        script = '\n'.join(self.statement(reference) for reference in references)
        done = subprocess.run(['sqlite3', '-readonly', self.database], input=script, capture_output=True, text=True, check=True)
        lines = done.stdout.split('\n')[:-1]
        assert len(lines) == len(references), done.stderr
        return {reference: formatted(value, self.queries[reference[1:].split('/')[0]].get('format') or 'plain',
                                     self.queries[reference[1:].split('/')[0]].get('unit') or '')
                for reference, value in zip(references, lines)}

    def row_sets(self, mode):
        """Yields (name of the info, row set) for everything that a mode shows."""
        for node in self.display.findall('node'):
            for row_set in node.findall('rowSet')[-1:]:
                yield '', row_set
        for transfer in self.display.findall('link/label/dataTransfer'):
            for row_set in transfer.findall(f'{mode}/rowSet')[-1:]:
                yield transfer.get('displayName') or '', row_set

    def expected(self, mode):
        """Counts how often each info should be shown: (name, row set, ((row, value), ...))."""
        values = self.values
        shown = collections.Counter()
        for name, row_set in self.row_sets(mode):
            rows = tuple((ref.get('displayName') or '', values[ref.text.strip()]) for ref in row_set.findall('queryRef')
                         if values[ref.text.strip()])
            if rows:
                shown[name, row_set.get('displayName') or '', rows] += 1
        return shown


def infos(diagram):
    for node in diagram['nodes'].get('node', []):
        yield node['info']
    for link in diagram['links'].get('link', []):
        yield from (link['fromInfo'], link['toInfo'], link['totalInfo'])


def shown(diagram):
    counted = collections.Counter()
    for info in infos(diagram):
        if info:
            rows = tuple((row['name'], row['value']) for row in info['rows']['row'])
            counted[info['name'], info['rows']['name'], rows] += 1
    return counted


class Values(Case):
    def compare(self, document, database, filters=None):
        oracle = Oracle(document, database, filters or {})
        options = [f'--filter={name}={sql}' for name, sql in (filters or {}).items()]
        for mode in MODES:
            expected = oracle.expected(mode)
            self.assertGreater(sum(expected.values()), 0)
            self.assertEqual(shown(self.render(document, database, '--mode', mode, *options)), expected)

    def build(self, folder, script):
        database = self.folder / 'result.db'
        with open(folder / script) as text:
            subprocess.run(['sqlite3', database], stdin=text, cwd=folder, check=True)
        return database


class ShippedExample(Values):
    def setUp(self):
        super().setUp()
        self.example = program.ROOT / 'examples/backup'
        self.path = self.build(self.example, 'backup.sql')

    def test_all_values_in_all_modes(self):
        self.compare(self.example / 'backup.xml', self.path)

    def test_with_a_selection(self):
        self.compare(self.example / 'backup.xml', self.path, {'selection': 'ts BETWEEN 0 AND 0.5'})

    def test_first_steps(self):
        (self.folder / 'result.db').unlink()
        self.compare(self.example / 'first.xml', self.build(self.example, 'first.sql'))


if __name__ == '__main__':
    program.main()
