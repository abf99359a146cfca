"""`session`: another process sends requests and reads answers, line by line."""
import json
import sqlite3
import subprocess
import threading

import program
from program import Case, showing, shown_value


class Session(Case):
    def test_answers_come_at_once_and_see_what_was_written_before(self):
        database = self.database()
        process = subprocess.Popen([program.PROGRAM, 'session', self.write('v.xml', showing('SUM(a)')), '--db', database],
                                   stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        values = []
        for number in range(5):
            request = 'create' if number == 0 else 'refresh'
            process.stdin.write(json.dumps({'request': request}) + '\n')
            process.stdin.flush()
            values.append(shown_value(json.loads(process.stdout.readline())['out']))
            with sqlite3.connect(database) as connection:  # the session holds no lock meanwhile
                connection.execute('INSERT INTO t VALUES (10, 0)')
            connection.close()
        process.stdin.close()
        self.assertEqual(process.wait(60), 0)
        process.stdout.close()
        self.assertEqual(values, ['1', '11', '21', '31', '41'])

    def test_each_answer_is_a_bag_of_its_own(self):
        answers, done = self.session(self.write('v.xml', showing('SUM(a)')), self.database(),
                                     [{'request': 'create'}] * 2 + [{'request': 'refresh'}])
        self.assertEqual(done.returncode, 0)
        self.assertEqual([answer['out'] for answer in answers], [answers[0]['out']] * 3)
        self.assertEqual(list(answers[0]), ['request', 'code', 'out'])

    def test_end_of_input_at_once(self):
        answers, done = self.session(self.write('v.xml', showing('SUM(a)')), self.database(), [])
        self.assertEqual((answers, done.returncode, done.stderr), ([], 0, ''))

    def test_one_request_sees_one_state_of_the_database(self):
        """Two queries read both sides of an account while another process moves money from one side to the other."""
        document = program.document(
            '<graph><node id="n"/></graph><display><node id="n"><rowSet><queryRef>/a</queryRef><queryRef>/b</queryRef>'
            '</rowSet></node></display>',
            '<query id="a" from="t">SUM(a)</query><query id="b" from="t">SUM(b)</query>')
        database = self.database('PRAGMA journal_mode = WAL; CREATE TABLE t(a, b); INSERT INTO t VALUES (500, 500);')
        done = threading.Event()

        def move():
            connection = sqlite3.connect(database, isolation_level=None, timeout=30)
            while not done.is_set():
                connection.execute('UPDATE t SET a = a + 1, b = b - 1')
            connection.close()

        mover = threading.Thread(target=move)
        mover.start()
        try:
            answers, process = self.session(self.write('v.xml', document), database,
                                            [{'request': 'create'}] + [{'request': 'refresh'}] * 200)
        finally:
            done.set()
            mover.join()
        self.assertEqual(process.returncode, 0, process.stderr)
        sums = set()
        for answer in answers:
            rows = answer['out']['nodes']['node'][0]['info']['rows']['row']
            sums.add(sum(int(row['value']) for row in rows))
        self.assertEqual(sums, {1000})

    def test_log_goes_where_the_configuration_says(self):
        log = self.folder / 'log.txt'
        configuration = self.write('log.properties', f'''log4cplus.rootLogger=ERROR, FILE
log4cplus.appender.FILE=log4cplus::FileAppender
log4cplus.appender.FILE.File={log}
log4cplus.appender.FILE.layout=log4cplus::PatternLayout
log4cplus.appender.FILE.layout.ConversionPattern=[%p] %m%n
''')
        document = self.write('v.xml', program.document('<graph><edge/></graph>'))
        answers, done = self.session(document, self.database(), [{'request': 'create'}], '--log-config', configuration)
        self.assertEqual((len(answers), done.stderr), (1, ''))
        lines = log.read_text().splitlines()
        self.assertEqual(len(lines), 1, lines)  # the INFO line is below the level
        self.assertTrue(lines[0].startswith('[ERROR] Unknown element <edge> found under <graph>.'), lines)

    def test_the_hosts_own_log(self):
        done = self.run_program('render', self.write('v.xml', showing('SUM(a)')), '--db', self.database(), '--log-level', 'debug')
        lines = [line for line in done.stderr.splitlines() if line.startswith('DEBUG tessera.host - ')]
        self.assertEqual(len(lines), 2, done.stderr)
        self.assertIn('1 queries, 0 filters', lines[0])
        self.assertIn('request "create" answered success', lines[1])

    def test_log_level(self):
        document = self.write('v.xml', program.document('<graph><edge/></graph>'))
        for level, count in (('off', 0), ('error', 1), ('info', 2)):
            done = self.run_program('render', document, '--db', self.database(name=f'{level}.db'), '--log-level', level)
            self.assertEqual(len(done.stderr.splitlines()), count, done.stderr)


if __name__ == '__main__':
    program.main()
