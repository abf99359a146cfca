"""A small document whose diagram is very large: the default limits keep the program below 2 GiB."""
import random

import program
from program import Case, document


class SmallDocument(Case):
    def test_cycles_with_many_long_links(self):
        numbers = random.Random(1)
        nodes = ''.join(f'<node id="{i}"/>' for i in range(1000))
        links = ''.join(f'<link id="{i}" from="{numbers.randrange(1000)}" to="{numbers.randrange(1000)}"/>' for i in range(2500))
        path = self.write('document.xml', document(f'<graph>{nodes}{links}</graph>'))
        self.assertLess(path.stat().st_size, 1000000)
        done = program.measured(self, 'render', path, '--db', self.database(), '-o', self.folder / 'diagram.svg', seconds=60,
                                mebibytes=2048)
        self.assertIn('does not get all of its dummy nodes: the limit is ', done.stderr)
        self.assertIn('--max-elements or --max-id-bytes raises it', done.stderr)


if __name__ == '__main__':
    program.main()
