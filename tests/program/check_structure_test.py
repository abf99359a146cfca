"""What `tessera check` reports about conflicting ids, display entries and declarations."""
import program
from check_case import CheckCase


def names(diagram):
    """Returns the display names of a finished diagram's nodes, by (id, whether it is a group)."""
    return {(node['id'], node['isGroup']): node['displayName'] for node in diagram['nodes']['node']}


class Ids(CheckCase):
    def test_later_of_two_nodes_is_found(self):
        self.assert_finds(self.graph('<node id="x"/>\n<node id="x"/>\n<node id="x"/>'),
                          '4:1: error: duplicate node id "x": the node at line 3 loses the id and gets no layer',
                          '5:1: error: duplicate node id "x": the node at line 4 ')

    def test_group_is_found_before_its_members(self):
        text = self.graph('<node id="x"><node id="y">\n<node id="x"/></node></node>', '<display><node id="x" '
                          'displayName="found"/></display>')
        self.assert_finds(text, '3:1: error: duplicate node id "x": the node inside this group at line 4 loses the id and gets '
                          'no layer')
        diagram = self.render(self.write('v.xml', text), self.database())
        self.assertEqual(names(diagram), {('x', False): '', ('y', True): '', ('x', True): 'found'})

    def test_links_reach_the_group_rather_than_its_member(self):
        # b is inside x, so a link from b to it is a cycle at the top level. A link to the inner x would not be.
        self.assert_finds(self.graph('<node id="x"><node id="x"/><node id="b"/></node>\n<link id="1" from="b" to="x"/>'),
                          '3:1: error: duplicate node id "x": the node inside this group at column 14 of this line ',
                          '4:1: error: link "1" from "b" to group "x" around it forms a cycle at the top level: x -> x;')

    def test_links_between_two_nodes_of_one_id_reach_the_first(self):
        # The first a takes no part in layering, so there is no cycle.
        self.assert_finds(self.graph('<node id="a"/><node id="b"/><link id="1" from="a" to="b"/>'
                                     '<link id="2" from="b" to="a"/>\n<node id="a"/>'),
                          '4:1: error: duplicate node id "a": the node at line 3 ')

    def test_doubled_link_ids(self):
        self.assert_finds(self.graph('<node id="a"/><node id="b"/><link id="l" from="a" to="b"/>\n'
                                     '<link id="l" from="a" to="b"/>'),
                          '4:1: error: duplicate link id "l": the link at line 3 loses the id')

    def test_missing_ids_and_empty_ones(self):
        self.assert_finds(self.graph('<node/>\n<node id=""/>\n<node id="a"/>\n<link from="a" to="a2"/>\n'
                                     '<link id="" from="a" to="b2"/>'),
                          '3:1: error: a node without id',
                          '4:1: error: a node with an empty id',
                          '6:1: error: a link without id', '6:1: error: link "": there is no node "a2" for its "to"',
                          '7:1: error: a link with an empty id', '7:1: error: link "": there is no node "b2" for its "to"')

    def test_link_ends_that_are_missing_or_empty(self):
        self.assert_finds(self.graph('<node id="a"/>\n<link id="1" to="a"/>\n<link id="2" from="" to="a"/>\n'
                                     '<link id="3" from="a"/>'),
                          '4:1: error: link "1": has no "from"',
                          '5:1: error: link "2": there is no node "" for its "from"',
                          '6:1: error: link "3": has no "to"')

    def test_empty_end_finds_the_node_with_the_empty_id(self):
        text = self.graph('<node id="a"/><node id="">\n<node id="m"/></node>\n<link id="1" to="a"/>\n'
                          '<link id="2" from="" to="a"/>\n<link id="3" from="a" to="m"/>')
        tied = '; it is connected to the node without id at line 3'
        self.assert_finds(text, '3:15: error: a node with an empty id',
                          '5:1: error: link "1": has no "from"' + tied,
                          '5:1: error: links "1" (line 5) and "3" (line 7) form a cycle at the top level: "" -> a -> ""; cycles connected with it hold 1 more link')

    def test_display_entries_that_are_missing_or_empty(self):
        self.assert_finds(self.graph('<node id="a"/>', '\n<display><node/>\n<node id=""/></display>'),
                          '5:10: error: a display entry of a node without id',
                          '6:1: error: display entry of node "": there is no such node')
        text = self.graph('<node/>', '\n<display><node displayName="found"/></display>')
        self.assert_finds(text, '3:1: error: a node without id',
                          '5:10: error: a display entry of a node without id; it counts for the node whose id is empty')
        diagram = self.render(self.write('v.xml', text), self.database())
        self.assertEqual(names(diagram), {('', False): 'found'})

    def test_links_inside_nodes_are_ignored(self):
        self.assert_finds(self.graph('<node id="a">\n<link id="l" from="a" to="a"/></node>',
                                     '\n<display><link id="l"/></display>'),
                          '4:1: error: unknown element <link> in <node>',
                          '6:10: error: display entry of link "l": there is no such link')

    def test_ids_stay_on_one_line(self):
        id = 'a&#10;b&#9;c&#x85;d&#x2028;e'
        shown = '"a b c d e"'
        found = self.findings(self.graph(
            f'<node id="{id}"/>\n<node id="{id}"/>\n<link id="{id}" from="{id}" to="{id}"/>\n'
            f'<link id="{id}" from="{id}" to="x{id}" direction="{id}"/>',
            f'\n<display><node id="x{id}"><rowSet><queryRef>{id}</queryRef></rowSet></node></display>').replace(
                '<v>', f'<v><queries><query id="{id}" from="t">(</query><query id="{id}" from="t">1</query></queries>'
                f'<filters><filter name="{id}">(</filter><filter name="{id}">1</filter></filters>'))
        self.assertTrue(all(': error: ' in line or ': warning: ' in line for line in found), found)
        everything = '\n'.join(found)
        for part in (f'duplicate node id {shown}:', f'duplicate link id {shown}:', f'there is no node "x{shown[1:]} for',
                     f'direction {shown} ', f'display entry of node "x{shown[1:]}:', f'{shown} is not a reference',
                     f'duplicate query id {shown}:', f'query {shown}: ', f'filter {shown} is never', f'duplicate filter {shown}:',
                     f'cycle at the top level: {shown} -> {shown};'):
            self.assertIn(part, everything)


class Display(CheckCase):
    def display(self, content):
        return self.graph('<node id="a"/><node id="b"/><link id="l" from="a" to="b"/>', f'<display>\n{content}\n</display>')

    def test_repeated_entries(self):
        self.assert_finds(self.display('<node id="a"/>\n<node id="a"/>\n<link id="l"/>\n<link id="l"/>\n'
                                       '<graph displayName="one"/>\n<graph displayName="two"/>'),
                          '6:1: warning: display entry of node "a" replaces displayName and rows of the one at line 5',
                          '8:1: warning: display entry of link "l" replaces displayName of the one at line 7',
                          '10:1: warning: this <graph> replaces the displayName of the one at line 9', status=0)

    def test_entries_for_two_nodes_of_one_id_do_not_replace_each_other(self):
        text = self.graph('<node id="a"/>', '<display><node id="a" displayName="one"/></display>\n<graph id="g"><node id="a">'
                          '<node id="m"/></node></graph><display><node id="a" displayName="two"/></display>')
        self.assert_finds(text, '5:15: error: duplicate node id "a": the node at line 3 ')
        diagram = self.render(self.write('v.xml', text), self.database())
        self.assertEqual(names(diagram), {('a', False): 'one', ('m', False): '', ('a', True): 'two'})

    def test_repeated_labels(self):
        self.assert_finds(self.display('<link id="l"><label location="to"/>\n<label location="from"/></link>\n'
                                       '<link id="l"><label location="to"/><label/>\n<label location="center"/></link>'),
                          '7:1: warning: display entry of link "l" replaces displayName of the one at line 5',
                          '7:14: warning: this label at "to" replaces the one at line 5',
                          '8:1: warning: this label at "center" replaces the one at line 7', status=0)

    def test_repeated_modes(self):
        self.assert_finds(self.display('<link id="l"><label><dataTransfer>\n<ratio/><size/>\n<ratio/></dataTransfer>\n'
                                       '<dataTransfer>\n<size/></dataTransfer></label>\n'
                                       '<label location="to"><dataTransfer><size/></dataTransfer></label></link>'),
                          '7:1: warning: this <ratio> replaces the one of this label at line 6',
                          '9:1: warning: this <size> replaces the one of this label at line 6', status=0)

    def test_repeated_row_sets(self):
        self.assert_finds(self.display('<node id="a"><rowSet/>\n<rowSet/></node>'),
                          '6:1: warning: this rowSet replaces the one at line 5', status=0)

    def test_equal_references_in_one_row_set(self):
        rows = ('<rowSet><queryRef displayName="one">/q</queryRef>\n<queryRef displayName="two">/q</queryRef>\n'
                '<queryRef displayName="three">/k/1</queryRef><queryRef displayName="four">/k/%31</queryRef></rowSet>')
        text = self.display(f'<node id="a">{rows}</node>\n<node id="b">{rows}</node>').replace(
            '<v>', '<v><queries><query id="q" from="t">SUM(a)</query><query id="k" from="t" key="a">SUM(b)</query></queries>')
        begin = ': warning: duplicate reference "/q" in this rowSet: the row at line '
        self.assert_finds(text, f'6:1{begin}5 shows the value, and this one is never shown', f'9:1{begin}8 ', status=0)
        # The diagram agrees with the finding: two different references to one query are two rows, equal ones are one.
        diagram = self.render(self.write('v.xml', text), self.database())
        shown = diagram['nodes']['node'][0]['info']['rows']['row']
        self.assertEqual([row['name'] for row in shown], ['one', 'three', 'four'])

    def test_wrong_references_are_reported_each(self):
        self.assert_finds(self.display('<node id="a"><rowSet><queryRef>/q</queryRef>\n<queryRef>/q</queryRef></rowSet></node>'),
                          '5:22: error: "/q" is not a reference: ', '6:1: error: "/q" is not a reference: ')


class Declared(CheckCase):
    def declared(self, content):
        return f'<v>{content}<diagram><graph><node id="a"/></graph></diagram></v>'

    def test_repeated_queries(self):
        self.assert_finds(self.declared('<queries><query id="q" from="t">1</query>\n<query id="q" from="t">2</query></queries>\n'
                                        '<queries><query id="q" from="t">3</query></queries>'),
                          '2:1: error: duplicate query id "q": the query at line 1 is not used',
                          '3:10: error: duplicate query id "q": the query at line 2 is not used')

    def test_repeated_filters(self):
        self.assert_finds(self.declared('<filters><filter name="global">a = 1</filter>\n'
                                        '<filter name="selection">a = 1</filter></filters>\n'
                                        '<filters><filter name="global"/></filters>'),
                          '3:10: error: duplicate filter "global": the filter at line 1 is not applied')
        self.assert_finds(self.declared('<filters><filter name="mine">a = 1</filter>\n<filter name="mine"/></filters>'),
                          '1:13: warning: filter "mine" is never applied;',
                          '2:1: warning: filter "mine" is never applied;', '2:1: error: duplicate filter "mine": ')


if __name__ == '__main__':
    program.main()
