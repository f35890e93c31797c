#!/usr/bin/env python3
"""What qo tells of how host processes read pages. usage: cli_host_test.py QO SOURCE_FOLDER"""

import os
import resource
import subprocess

from cli_support import QO, SOURCE, Cli, main, qo


class Host(Cli):
    def test_check(self):
        """Rows of a page and the lines on it, without the file's name."""
        for page, *lines in [
                ("<!DOCTYPE html>\n<ul class=\"a\">\n<li>a &lt; b</li>\n</ul><br><!-- c --><script>'<b>'</script>",),
                ("",),
                # An element that only qo closes, and what follows from it.
                ("<p>a<div>x</div><span>s</span>", '1:5: "<div>" is in "<p>" (1:1) for a host, at the top for qo'),
                ("<ul>\n<li>a\n<li>b\n</ul><p>x</p><i></i>",
                 '3:1: "<li>" is in "<li>" (2:1) for a host, in "<ul>" (1:1) for qo',
                 '4:1: "</ul>" closes nothing for a host: "<li>" (3:1) is open'),
                ("<ul><li><b><i></b></ul><p>", '1:15: "</b>" closes nothing for a host: "<i>" (1:12) is open',
                 '1:19: "</ul>" closes nothing for a host: "<li>" (1:5) is open'),
                ("<table><tr><td>a<td>b</table>", '1:17: "<td>" is in "<td>" (1:12) for a host, in "<tr>" (1:8) for qo',
                 '1:22: "</table>" closes nothing for a host: "<td>" (1:17) is open'),
                ("<div></DIV><p></p>", '1:6: "</DIV>" closes nothing for a host: "<div>" (1:1) has another name'),
                ("<param>x", '1:8: "x" is in "<param>" (1:1) for a host, at the top for qo'),
                # One that only a host closes.
                ("<div/>x</div><p></p>", '1:1: "<div/>" is empty for a host, and open for qo'),
                ("<div><div/>x</div></div><p></p>", '1:6: "<div/>" closes "<div>" (1:1) for a host'),
                # Markup for a host alone, and for qo alone: told once for each text.
                ("<textarea><b><i></textarea><p>x</p>", '1:11: "<b>" is an element for a host, text for qo'),
                ("a < b>c <i></i>", '1:3: "< b>" is an element for a host, text for qo'),
                ("a</p>", '1:2: "</p>" closes nothing, and is an element for a host'),
                ("<svg><style><g></g><a></a></style></svg>", '1:13: "<g>" is text for a host, an element for qo'),
                ("<![CDATA[a<b]]>", '1:1: "<![CDATA[a<b]]>" is a CDATA section for a host, a comment for qo'),
                # What ends elsewhere, or has another name.
                ("<!--> <b> -->", '1:1: "<!-->" ends at 1:14 for a host, at 1:6 for qo'),
                ("<script>'</script>'<b></b></script>",
                 '1:1: "<script>" ends at 1:27 for a host, at 1:10 for qo'),
                ("<p a='{{ '>' }}'></p>", '1:1: "<p a=\'{{ \'>\' }}\'>" ends at 1:12 for a host, at 1:18 for qo'),
                ("<p>a</p >b", '1:5: "</p >" ends at 1:8 for a host, at 1:10 for qo'),
                ("<br/ >", '1:1: "<br/ >" is called "br/" for a host'),
                ("<b></documentRoot></b></documentRoot><p>",
                 '1:4: "</documentRoot>" closes nothing, and is an element for a host', "1:23: here a host stops reading"),
                # Values.
                ("<p a='1'\n b=\"2\" c d=''>",),
                ("<p width=50 id=\"a\" title=x'y' alt = 'b'>", '1:1: "width" is "" for a host, "50" for qo',
                 '1:1: "title" is "y" for a host, "x\'y\'" for qo', '1:1: "alt" is "" for a host, "b" for qo'),
                ("<p a='1' a='2' b\nc>", '1:1: "a" is "2" for a host, "1" for qo', '1:1: "b" is missing for a host',
                 '1:1: "c" is missing for a host')]:
            self.lines(["check"], page, lines)

    def lines(self, arguments, page, lines):
        with self.subTest(arguments=arguments, page=page):
            status, results, complaint = qo(*arguments, stdin=page)
            self.assertEqual(results.decode().replace("(standard input):", "").splitlines(), lines)
            self.assertEqual((status, complaint), (1 if lines else 0, ""))

    def test_check_of_template_code(self):
        page = "<p class='{{ a }}' {% if b %} hidden {% endif %}>{# <b> #}</p>"
        self.lines(["check"], page, ['1:53: "<b>" is an element for a host, text for qo'])
        self.lines(["check", "--no-templates"], "<p>{{ '<b>' }}</b></p>", [])
        self.lines(["check"], "<p>{{ '<b>' }}</p>", ['1:8: "<b>" is an element for a host, text for qo'])

    def test_check_of_refused_pages(self):
        for page, line in [
                ("<p>\n <my-widget a>", '2:2: refused: "-" cannot be in a name: "my-widget"'),
                ("<?php a ?>", '1:1: refused: "?" cannot be in a name: "?php"'),
                ("<!ELEMENT x>", '1:1: refused: "!" cannot be in a name: "!ELEMENT"'),
                ("<aé>", '1:1: refused: "é" cannot be in a name: "aé"'),
                ("< b\x1b\">", '1:1: refused: "\\x1b" cannot be in a name: "b\\x1b""'),
                ("<><!-- <a-b> -->\n\n<!-- c", '3:1: refused: no "-->" ends this comment'),
                ("<![CDATA[x", '1:1: refused: no "]]>" ends this CDATA section'),
                ("<p><script>'</script>", "1:4: refused: no </script> outside quotes ends this script"),
                ("<style a='b'>", "1:1: refused: no </style> ends this style")]:
            with self.subTest(page=page):
                status, results, complaint = qo("check", stdin=page)
                self.assertEqual(results.decode().splitlines()[-1], "(standard input):" + line)
                self.assertEqual((status, complaint), (1, ""))
                self.complaint(["select", "--host", "p"], f"qo: (standard input):{line}\n", page)
        # What was read before is told; a line of the page cannot give the reason.
        self.lines(["check"], "<p a=1>\ninvalid tag name 1: 'x'\n<a-b>",
                   ['1:1: "a" is "" for a host, "1" for qo', '3:1: refused: "-" cannot be in a name: "a-b"'])
        self.assertLess(len(qo("check", stdin="<a-" + "b" * 100000 + ">")[1]), 300)

    def test_check_of_bytes(self):
        for page, *lines in [
                ('<!DOCTYPE html><p a="b">c<br/></p><!-- d --><script>e</script>',),
                ("<p class='a'\n>b<br></p >", '1:1: "<p class=\'a\'\\n>" comes back as "<p class="a">"',
                 '2:3: "<br>" comes back as "<br/>"', '2:7: "</p >" ends at 2:10 for a host, at 2:12 for qo',
                 '2:7: "</p" comes back as "</p>"'),
                ("<p><svg:a></svg:a><b/>", '1:19: "<b/>" comes back as "<b></b>"', '1:23: comes back with "</p>"'),
                ('<p id="a" title="some text" lang=\'en\'></p>',
                 '1:1: " text" lang=\'en\'>" comes back as " text" lang="en">"'),
                ("<p><i><a-b>", '1:7: refused: "-" cannot be in a name: "a-b"'),
                ("< !-- a -->", '1:1: "< !-- a -->" is a comment for a host, text for qo',
                 '1:1: "< !-- a -->" comes back as "<!-- a -->"')]:
            self.lines(["check", "--bytes"], page, lines)

    def test_check_of_files(self):
        self.write("good.html", "<p></p>")
        self.write("bad.html", "<p a=b>")
        self.assertEqual(qo("check", "good.html"), (0, b"", ""))
        line = b'bad.html:1:1: "a" is "" for a host, "b" for qo\n'
        self.assertEqual(qo("check", "good.html", "bad.html", "good.html"), (1, line, ""))
        self.assertEqual(qo("check", "bad.html", "none.html"), (2, line, "qo: none.html: No such file or directory\n"))
        self.write("wide.html", "<p>".encode("utf-16"))
        self.assertEqual(qo("check", "wide.html")[:2], (2, b""))

    def test_check_knows_every_page_of_the_manual(self):
        with open(os.path.join(SOURCE, "docs", "markup.md"), encoding="utf-8") as manual:
            rows = [line.split("|") for line in manual if line.startswith("| `")]
        self.assertGreater(len(rows), 50)
        for _, page, tree, *_ in rows:
            page = page.strip()[1:-1].replace("\\n", "\n").replace("\\t", "\t")
            with self.subTest(page=page):
                self.assertEqual(b"refused: " in qo("check", stdin=page)[1], "refused" in tree)

    def test_tree(self):
        page = "<!doctype html><?php a ?>\n<p a='1' {{ b }}> <b\nc=d>t\x01</b><!--c--><br>{{ '<i>' }}<b>\n"
        self.check([
            (["tree"], page,
             '<!doctype html>\ncode "<?php a ?>"\n<p a=\'1\' {{ b }}>\n  <b\\nc=d>\n    "t\\x01"\n  comment "c"\n'
             '  <br>\n  "{{ \'<i>\' }}"\n  <b>\n'),
            (["tree", "-b", "--no-templates"], "<p>{{<i>}}</p> ", '<p>\n  "{{"\n  <i>\n    "}}"\n" "\n'),
            (["tree", "--host"], "<!doctype html><p a='1' b=c> <b>t</b><!--c--><![CDATA[d]]><br></div>",
             '<!doctype html>\n<p a="1" b="">\n  <b>\n    "t"\n  comment "c"\n  cdata "d"\n  <br>\n  <div>\n'),
            (["tree", "--host", "--drop-comments"], "<!--a--><p>", "<p>\n"),
            (["tree", "-b"], "<p> \n", '<p>\n  " \\n"\n'),
            (["tree", "--color=always"], "<p a>", "\x1b[34m<p\x1b[m\x1b[33m a\x1b[m\x1b[34m>\x1b[m\n"),
        ])
        self.complaint(["tree", "--host"], 'qo: (standard input):1:1: refused: "-" cannot be in a name: "a-b"\n', "<a-b>")
        # The outline of a deep page grows with the page, not with its square.
        for arguments in ([], ["--host"]):
            self.assertLess(len(qo("tree", *arguments, stdin="<b>" * 100000)[1]), 100000 * 140)

    def test_decode(self):
        self.check([
            (["decode"], "&lt;&eacute;&#60;&amp&nbsp;&NotEqualTilde;&x;\xff", "<é<& ≂̸&x;\xff"),
            (["decode", "--host"], "&lt;&eacute;&#60;&amp&nbsp;", "<é&#60;&amp "),
        ])
        self.assertEqual(qo("decode", stdin=b"\xff&lt;\0")[1], b"\xff<\0")

    def test_select_and_form_as_a_host(self):
        self.check([
            (["select", "--host", "p"], "<p class='a'>x<p>y", '<p class="a">x<p>y</p></p>\n<p>y</p>\n'),
            (["select", "--host", "--inner", "p"], "<p>a<br></p>", "a<br/>\n"),
            (["select", "--host", "-t", "p"], "<p>a&amp;b<!--c-->", "a&amp;bc\n"),
            (["select", "--host", "-t", "p", "--drop-comments"], "<p>a<!--c-->", "a\n"),
            (["select", "--host", "-a", "id,b", "p"], "<p id=a b='c'>", "\tc\n"),
            (["select", "--host", "-c", "*"], "<p>a<!--c--></p>", "2\n"),  # the document itself is no match
            (["select", "--host", "-c", "textNode"], "<p>a</p>b", "2\n"),
            (["select", "--host", "-t", "p"], "<>\nbad alloc<p>a</p>", "a\n"),  # what the library prints is no result
            (["select", "--host", "-at", "div p"], "<div><div><p t='1'></p></div><p t='2'></p></div>", "1\n2\n"),
            (["select", "--host", "b p"], "<p>", "", 1),
            (["form", "--host", "--compact"], "<form><input name='a b' value='c d'><input name='m[]' value=\"1\"></form>",
             '{"a b":"<![CDATA[c d]]>","m":["1"]}\n'),
            (["form", "--host", "--compact", "div"], "<div><input name='a' value=1></div>", '{"a":""}\n'),
        ])
        for option in ("--strict", "--drop-comments"):
            self.complaint(["select", option, "p"], f"qo: select: {option} needs --host\n")
        self.complaint(["form", "--host"], "qo: (standard input): controls of one name are plain, in [] or in [key], "
                       "not several\n", "<form><input name='a'><input name='a[]'></form>")

    def test_selector_hints(self):
        self.assertEqual(self.complaint(["select", "--host", "-at", "div >:x p"], "qo: hint: :x has no effect\n",
                                        "<div><b><p t='1'></p></b><p t='2'></p></div>", 0), "2\n")
        for selector, hints in [
                ("h1, h2", ['"h1," is read as one name, "," included']),
                ("a + b ~ c", ['"+" is read as one name, "+" included', '"~" is read as one name, "~" included']),
                ("[href^=x]", ['[href^=x] looks for an attribute called "href^": "=" is the only operator']),
                ("[a='b.c']", ["[a='b is read without a \"]\": \".\" ends it, in quotes or not",
                               '"c\'" is read as one name, "\'" included']),
                (".a\\.b", ['"a\\": a backslash only takes a ":" into a name']),
                ("[a", ['[a is read without a "]": nothing follows, in quotes or not']),
                ("li:first-child", [":first-child has no effect"]),
                ("div#a.b > * c\\:d[e='f'][g]", [])]:
            self.complaint(["select", "--host", selector], "".join("qo: hint: " + hint + "\n" for hint in hints), "", 1)
            if hints:
                self.complaint(["select", "--host", "--strict", selector], "qo: selector: " + hints[0] + "\n")

    def test_memory_that_runs_out_costs_no_page(self):
        def limited():
            resource.setrlimit(resource.RLIMIT_AS, (60 << 20, 60 << 20))
        if subprocess.run([QO, "--version"], capture_output=True, preexec_fn=limited).returncode != 0:
            self.skipTest("this build needs more memory to begin with")
        self.write("large", "<p class='a'>x</p>" * 1500000)
        for arguments in (["select", "--host", "-c", "p"], ["check"], ["tree"], ["tree", "--host"]):
            self.assertEqual(qo(*arguments, "large", preexec_fn=limited), (2, b"", "qo: large: out of memory\n"))

    def test_no_time_that_grows_with_the_square(self):
        refused = "<b>" * 10000 + "<script>" + "if (a<b) c();" * 50000 + "</script><a-b>" + "<b>" * 10000
        self.assertIn(b":1:680018: refused", qo("check", stdin=refused)[1])
        for page, count in [("<ul>" + "<li>a\n" * 100000, 99999), ("<b>" * 100000 + "</i>" * 100000, 100000),
                            ("<div/>" * 100000, 99999), ("<div/>" * 50000 + "</div>" * 50000, 50000),
                            ("<p" + "".join(f" a{i}=b" for i in range(50000)) + ">", 50000),
                            ("<textarea>" + "<b>" * 100000 + "</textarea>" + "<p></p>" * 100000, 1)]:
            with self.subTest(page=page[:20]):
                self.assertEqual(qo("check", stdin=page)[1].count(b"\n"), count)
        deep = "<p>" * 100000
        self.assertEqual(qo("select", "--host", "-c", "p p p", stdin=deep)[1], b"100000\n")


if __name__ == "__main__":
    main()
