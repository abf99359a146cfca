"""What `tessera check` reports about links that form cycles."""
import program
from check_case import CheckCase


class Cycles(CheckCase):
    def test_cycle_at_top_level(self):
        self.assert_finds(self.graph('<node id="a"/><node id="b"/><node id="c"/>\n<link id="1" from="a" to="b"/>\n'
                                     '<link id="2" from="b" to="c"/>\n<link id="3" from="c" to="a"/>'),
                          '4:1: error: links "1" (line 4), "2" (line 5) and "3" (line 6) form a cycle at the top level: '
                          'a -> b -> c -> a; no node without incoming links leads to '
                          'it, so its nodes get no layer')

    def test_link_to_itself(self):
        self.assert_finds(self.graph('<node id="a"/><link id="1" from="a" to="a"/>'),
                          '3:15: error: link "1" from "a" to itself forms a cycle at the top level: a -> a; no node')

    def test_cycle_inside_a_group(self):
        self.assert_finds(self.graph('<node id="G"><node id="a"/><node id="b"/></node>\n<link id="1" from="a" to="b"/>\n'
                                     '<link id="2" from="b" to="a"/>'),
                          '4:1: error: links "1" (line 4) and "2" (line 5) form a cycle inside group "G": a -> b -> a; no node')

    def test_links_between_groups_count_for_the_groups(self):
        self.assert_finds(self.graph('<node id="G"><node id="a"/></node><node id="H"><node id="b"/><node id="c"/></node>\n'
                                     '<link id="1" from="a" to="b"/>\n<link id="2" from="c" to="a"/>'),
                          '4:1: error: links "1" (line 4) and "2" (line 5) form a cycle at the top level: G -> H -> G; no node')

    def test_link_from_a_member_to_its_own_group(self):
        self.assert_finds(self.graph('<node id="G"><node id="a"/></node>\n<link id="1" from="a" to="G"/>'),
                          '4:1: error: link "1" from "a" to group "G" around it forms a cycle at the top level: G -> G; no node')

    def test_two_paths_to_one_node_are_not_a_cycle(self):
        self.assert_finds(self.graph('<node id="a"/><node id="b"/><link id="1" from="a" to="b" direction="both"/>'
                                     '<link id="2" from="a" to="b" direction="back"/>'), status=0)

    def test_cycle_after_a_node_without_incoming_links(self):
        reached = '"r", which has no incoming links, leads to it, so the layering stops there'
        cycle = '4:1: error: links "1" (line 4) and "2" (line 4) form a cycle at the top level: a -> b -> a; '
        nodes = '<node id="r"/><node id="m"/><node id="a"/><node id="b"/>\n'
        links = '<link id="1" from="a" to="b"/><link id="2" from="b" to="a"/>'
        self.assert_finds(self.graph(nodes + links + '<link id="3" from="r" to="m"/><link id="4" from="m" to="b"/>'),
                          cycle + reached)
        # What comes after a cycle, or lies beside it, does not lead to it.
        self.assert_finds(self.graph(nodes + links + '<link id="3" from="b" to="m"/>'),
                          cycle + 'no node without incoming links')

    def test_way_to_a_cycle_leads_through_groups(self):
        self.assert_finds(self.graph('<node id="R"><node id="r"/><node id="s"/></node><node id="G"><node id="a"/></node>\n'
                                     '<link id="1" from="r" to="s"/><link id="2" from="s" to="a"/>\n'
                                     '<link id="3" from="a" to="G"/>'),
                          '5:1: error: link "3" from "a" to group "G" around it forms a cycle at the top level: G -> G; "R", which has no incoming links, leads to it')

    def test_cycle_after_a_cycle_has_no_beginning_either(self):
        self.assert_finds(self.graph('<node id="a"/><node id="b"/>\n<link id="1" from="a" to="a"/>\n'
                                     '<link id="2" from="a" to="b"/>\n<link id="3" from="b" to="b"/>'),
                          '4:1: error: link "1" from "a" to itself forms a cycle at the top level: a -> a; no node without incoming links',
                          '6:1: error: link "3" from "b" to itself forms a cycle at the top level: b -> b; no node without incoming links')

    def test_what_a_cycle_leaves_out_is_counted(self):
        nodes = '<node id="a"/><node id="b"/><node id="c"/><node id="d"/>\n'
        links = '<link id="1" from="a" to="b"/><link id="2" from="b" to="a"/>'
        begin = '4:1: error: links "1" (line 4) and "2" (line 4) form a cycle at the top level: a -> b -> a; '
        self.assert_finds(self.graph(nodes + links + '<link id="3" from="b" to="a"/>'),
                          begin + 'cycles connected with it hold 1 more link; no node')
        self.assert_finds(self.graph(nodes + links + '<link id="3" from="b" to="c"/><link id="4" from="c" to="a"/>'
                                     '<link id="5" from="c" to="d"/>'),
                          begin + 'cycles connected with it hold 1 more node and 2 more links; no node')
        self.assert_finds(self.graph(nodes + links + '<link id="3" from="b" to="c"/><link id="4" from="c" to="d"/>'
                                     '<link id="5" from="d" to="c"/>\n<link id="6" from="d" to="b"/>'),
                          begin + 'cycles connected with it hold 2 more nodes and 4 more links; no node')

    def test_separate_cycles_are_reported_each(self):
        self.assert_finds(self.graph('<node id="a"/><node id="b"/>\n<link id="1" from="a" to="a"/>\n'
                                     '<link id="2" from="b" to="b"/>'),
                          '4:1: error: link "1" from "a" to itself forms a cycle at the top level: a -> a; no node',
                          '5:1: error: link "2" from "b" to itself forms a cycle at the top level: b -> b; no node')

    def test_long_cycle_is_shortened(self):
        count = 1000
        nodes = ''.join(f'<node id="n{i}"/>' for i in range(count))
        links = ''.join(f'<link id="{i}" from="n{i}" to="n{(i + 1) % count}"/>' for i in range(count))
        found = self.findings(self.graph(nodes + links))
        self.assertEqual(len(found), 1)
        self.assertIn('n0 -> n1 -> n2', found[0])
        # n0 to n7 are named and 992 of the thousand are not.
        self.assertIn(' -> (992 more) -> n0; no node', found[0])
        self.assertLess(len(found[0]), 400)

    def test_large_components_in_little_time(self):
        count = 100_000
        nested = ''.join(f'<node id="n{i}">' for i in range(count)) + '<node id="m"/>' + '</node>' * count
        flat = ''.join(f'<node id="f{i}"/>' for i in range(count))
        # Every nested node to its own innermost one: a cycle at each depth. The flat ones: one large component.
        links = ''.join(f'<link id="l{i}" from="m" to="n{i}"/><link id="f{i}" from="f{i}" to="f{(i + 1) % count}"/>'
                        f'<link id="b{i}" from="f{(i + 1) % count}" to="f{i}"/>' for i in range(count))
        path = self.write('v.xml', self.graph(nested + flat + links))
        done = self.run_program('check', path, timeout=30 * program.SLOW)
        found = done.stderr.splitlines()
        self.assertEqual((done.returncode, len(found)), (1, count + 1))
        self.assertEqual(sum(f': f0 -> f1 -> f0; cycles connected with it hold {count - 2} more nodes and '
                             f'{2 * count - 2} more links; ' in line for line in found), 1)


if __name__ == '__main__':
    program.main()
