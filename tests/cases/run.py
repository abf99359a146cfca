#!/usr/bin/env python3
"""Runs cases against the program: run.py PROGRAM [CASE...] [--write]. See README.md beside this file."""
import argparse
import json
import pathlib
import re
import sqlite3
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
REPORT = re.compile(r'^(ERROR|INFO) tessera - (.*)$')
PLACE = re.compile(r', at file: core/[\w/]+:\d+$')
SIGNATURE = re.compile(r' in (?:(?! in )[^\n])*\([^\n]*$')


def reports(log):
    """The library's reports, without signature and source line."""
    found = []
    for line in log.splitlines():
        match = REPORT.match(line)
        if not match:
            continue
        level, text = match.groups()
        if level == 'ERROR':
            if not PLACE.search(text):
                raise ValueError(f'no place: {line}')
            text = SIGNATURE.sub('', PLACE.sub('', text))
            text = f'check {text[14:]}' if text.startswith('Check failed: ') else f'alert {text}'
        found.append(f'{level} {text}')
    return found


def run(program, case):
    """Runs one case; returns the answers and the reports."""
    requests = [json.loads(line) for line in (case / 'requests.jsonl').read_text('utf-8').splitlines()]
    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder, 'result.db')
        database = sqlite3.connect(path, isolation_level=None)
        database.executescript((case / 'values.sql').read_text('utf-8'))
        with open(pathlib.Path(folder, 'log'), 'w+', encoding='utf-8') as log:
            process = subprocess.Popen([program, 'session', case / 'viewpoint.xml', '--db', path], stdin=subprocess.PIPE,
                                       stdout=subprocess.PIPE, stderr=log, text=True, encoding='utf-8')
            answers = []
            for request in requests:
                database.executescript(request.pop('sql', ''))
                process.stdin.write(json.dumps(request) + '\n')
                process.stdin.flush()
                answers.append(json.loads(process.stdout.readline()))
            process.stdin.close()
            status = process.wait(60)
            log.seek(0)
            text = log.read()
        database.close()
    if status != 0:
        raise ValueError(f'exit status {status}: {text}')
    return answers, reports(text)


def normal(answer, keys):
    return json.dumps({key: answer.get(key) for key in keys}, ensure_ascii=False)


def difference(program, case):
    expected = [json.loads(line) for line in (case / 'expected.jsonl').read_text('utf-8').splitlines()]
    answers, log = run(program, case)
    for number, (want, got) in enumerate(zip(expected, answers, strict=True), start=1):
        if normal(want, want) != normal(got, want):
            return f'answer {number}:\n  expected {normal(want, want)}\n  got      {normal(got, want)}'
    want = (case / 'expected.log').read_text('utf-8').splitlines()
    if want != log:
        return 'log:\n  expected ' + '\n           '.join(want) + '\n  got      ' + '\n           '.join(log)
    return None


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument('program')
    parser.add_argument('cases', nargs='*', type=pathlib.Path)
    parser.add_argument('--write', action='store_true', help='replace the expected answers and log by the current ones')
    options = parser.parse_args()
    cases = options.cases or sorted(path.parent for path in HERE.glob('*/viewpoint.xml'))
    failed = 0
    for case in cases:
        if options.write:
            answers, log = run(options.program, case)
            lines = (normal(answer, ('request', 'code', 'out')) + '\n' for answer in answers)
            (case / 'expected.jsonl').write_text(''.join(lines), 'utf-8')
            (case / 'expected.log').write_text(''.join(line + '\n' for line in log), 'utf-8')
            continue
        try:
            found = difference(options.program, case)
        except Exception as error:  # any failure of one case must not stop the others
            found = f'{type(error).__name__}: {error}'
        if found:
            failed += 1
            print(f'{case.name}: {found}')
    print(f'{len(cases) - failed} cases as expected, {failed} differ')
    return 1 if failed or not cases else 0


if __name__ == '__main__':
    sys.exit(main())
