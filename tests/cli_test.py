#!/usr/bin/env python3
"""Runs qo as its users do. usage: cli_test.py QO SOURCE_FOLDER"""

import json
import os
import pty
import re
import resource
import signal
import subprocess
import sys
import tempfile
import unittest

QO, SOURCE = (os.path.abspath(path) for path in sys.argv[1:3])

PAGE = """<!DOCTYPE html>
<html>
<body class='x'>
<br>
<p class='a b' hidden>one &amp; two</p>
<a href="/x" title='t'>x</a>
<a href='/y'
   >y</a>
<a name="">z</a><!-- c -->
<form id=f><input name="n" value='a b'><input name='m[]' value="1"><input name="k[q]"></form>
<form><input name="&lt;"></form>
</body>
</html>
"""


def qo(*arguments, stdin=b"", **options):
    """Returns exit status, results and messages."""
    data = stdin.encode() if isinstance(stdin, str) else stdin
    run = subprocess.run([QO, *arguments], input=data, capture_output=True, timeout=100, **options)
    return run.returncode, run.stdout, run.stderr.decode()


class Cli(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(folder.name)
        self.write("page.html", PAGE)

    def write(self, name, text):
        with open(name, "wb") as file:
            file.write(text.encode() if isinstance(text, str) else text)

    def read(self, name):
        with open(name, "rb") as file:
            return file.read().decode()

    def check(self, rows):
        """Rows of arguments, standard input, results and, where it is not 0, the exit status."""
        for arguments, stdin, results, *status in rows:
            with self.subTest(arguments=arguments, stdin=stdin):
                found = qo(*arguments, stdin=stdin)
                self.assertEqual((found[0], found[1].decode()), (status[0] if status else 0, results))
                self.assertEqual(found[2], "")

    def complaint(self, arguments, message, stdin="", status=2):
        with self.subTest(arguments=arguments):
            found = qo(*arguments, stdin=stdin)
            self.assertEqual((found[0], found[2]), (status, message))
            return found[1].decode()

    def test_select(self):
        self.check([
            (["select", "a", "page.html"], "",
             '<a href="/x" title="t">x</a>\n<a href="/y">y</a>\n<a name="">z</a>\n'),
            (["select", "-t", "p"], "<p>a<b>c</b></p><p>d", "ac\nd\n"),
            (["select", "--inner", "p"], "<p>a<br></p>", "a<br/>\n"),
            (["select", "-a", "href,title", "a", "page.html"], "", "/x\tt\n/y\t\n"),
            (["select", "-a", "href", "-a", "name", "a", "page.html"], "", "/x\t\n/y\t\n\t\n"),
            (["select", "-c", "a", "page.html"], "", "3\n"),
            (["select", "-c", "div", "page.html"], "", "0\n", 1),
            (["select", "-q", "a", "page.html"], "", ""),
            (["select", "-10t", "a", "page.html"], "", "x\0"),
            (["select", "!--", "--drop-comments"], "<!--c-->", "", 1),
            (["select", "[hidden]", "-"], "<p hidden>", "<p hidden></p>\n"),
            (["select", "-t", "p"], "<>\nbad alloc<p>a</p>", "a\n"),  # what the library prints is no result
            (["select", "-c", "*"], "<p>a<!--c--></p>", "2\n"),  # the document itself is no match
            # Each match once, in the order of the page.
            (["select", "-at", "div p"], "<div><div><p t='1'></p></div><p t='2'></p></div>", "1\n2\n"),
            (["select", "-at", "div > p"], "<div><div><p t='1'></p></div><p t='2'></p></div>", "1\n2\n"),
            # What finds nothing stays nothing.
            (["select", "b p"], "<p>", "", 1),
            (["select", "p.a.b"], "<p class='b'>", "", 1),
            (["edit", "b p", "--remove"], "<p>", "<p>", 1),
            # Several files.
            (["select", "-t", "b", "page.html", "-"], "<b>q</b>", "(standard input):q\n"),
            (["select", "-t", "b", "--no-filename", "page.html", "-"], "<b>q</b>", "q\n"),
            (["select", "-cH", "a", "page.html"], "", "page.html:3\n"),
            (["select", "-l", "a", "page.html", "-"], "<b>q</b>", "page.html\n"),
            (["select", "-t", "a", "--color=always", "-H"], "<a>q",
             "\x1b[35m(standard input)\x1b[m\x1b[36m:\x1b[mq\n"),
        ])

    def test_form_decode_tree_check(self):
        self.check([
            (["form", "--compact", "page.html"], "",
             '{"k":{"q":""},"m":["1"],"n":"<![CDATA[a b]]>"}\n'),
            (["form", "--compact", "--all", "page.html"], "",
             '[{"k":{"q":""},"m":["1"],"n":"<![CDATA[a b]]>"},{"&lt;":""}]\n'),
            (["form", "p"], "<p><input name='a'></p>", '{\n  "a": ""\n}\n'),
            (["form", "--all"], "<p>", "[]\n", 1),
            (["form"], "<p>", "", 1),
            (["decode"], "&lt;&eacute;&#60;&amp", "<é&#60;&amp"),
            (["check"], '<p a="b">c</p>', ""),
            (["check"], "<p>\n a<br>\nb</p>", '(standard input):2:6: " a<br>" comes back as " a<br/>"\n', 1),
            (["tree"], "<p a='1'> <b>t\x01</b><!--c--></p>\n",
             '<p a="1">\n  <b>\n    "t\\x01"\n  comment "c"\n'),
            (["tree", "-b"], "<p> \n", '<p>\n  " \\n"\n'),
        ])
        # The outline of a deep page grows with the page, not with its square.
        self.assertLess(len(qo("tree", stdin="<p>" * 100000)[1]), 100000 * 140)

    def test_json_is_valid_whatever_the_page(self):
        page = b"<p a='\xff' \xc3='\"'>\x00\x01\xed\xa0\x80\xf4\x90\x80\x80\xc3\xa9\xc3<b/>\\</p>"
        line = json.loads(qo("select", "-j", "p", stdin=page)[1].decode())
        self.assertEqual(line["tag"], "p")
        self.assertEqual(line["attrs"], {"a": "\ufffd", "\ufffd": '"'})
        self.assertEqual(line["text"], "\x00\x01" + "\ufffd" * 7 + "é\ufffd\\")
        deep = json.loads(qo("select", "-jH", "#x", stdin="<p id='x' b>" + "<i>" * 50000)[1])
        self.assertEqual((deep["attrs"], deep["file"]), ({"id": "x", "b": True}, "(standard input)"))
        values = qo("form", stdin=b"<form><input name='\xff[\xfe]' value='\xc3'></form>")[1]
        self.assertEqual(json.loads(values.decode()), {"\ufffd": {"\ufffd": "\ufffd"}})
        values = qo("form", stdin=b"<form><input name='\xff' value='1'><input name='\xfe' value='2'></form>")[1]
        self.assertEqual(json.loads(values.decode()), {"\ufffd": "2", "\ufffd\ufffd": "1"})

    def test_edit_takes_the_edited_form_of_what_it_touches(self):
        page = "<p class='a b'\n>x<br>y</p><img src='i'>"
        self.check([
            (["edit", *operation], page, results) for operation, results in [
                (["br", "--attr", "id=\"&"], "<p class='a b'\n>x<br id=\"&quot;&amp;\"/>y</p><img src='i'>"),
                (["img", "--bare-attr", "h", "--del-attr", "src"], "<p class='a b'\n>x<br>y</p><img h/>"),
                (["p", "--add-class", "c", "--del-class", "a"], '<p class="b c">x<br>y</p><img src=\'i\'>'),
                (["p", "--attr", "class=z", "--add-class", "y"], '<p class="z y">x<br>y</p><img src=\'i\'>'),
                (["p", "--add-class", "a"], page),
                (["p", "--html", "x<br>y"], page),
                (["p", "--replace", "<p class='a b'>x<br>y</p>"], page),
                (["p", "--text", "<&>"], "<p class='a b'\n>&lt;&amp;&gt;</p><img src='i'>"),
                (["p", "--text="], "<p class='a b'\n></p><img src='i'>"),
                (["p", "--html", "<b>q<br>"], "<p class='a b'\n><b>q<br/></b></p><img src='i'>"),
                (["p", "--replace", "<hr>"], "<hr/><img src='i'>"),
                (["p", "--remove"], "<img src='i'>"),
                (["br", "--before", "1", "--after", "2", "--before", "3"],
                 "<p class='a b'\n>x13<br>2y</p><img src='i'>"),
                (["textNode", "--text", "-"], "<p class='a b'\n>-<br>-</p><img src='i'>"),
            ]])
        self.check([
            # End tags that the page does not have appear where something follows them.
            (["edit", "b", "--after", "c"], "<p><b>a", "<p><b>a</b>c"),
            (["edit", "b", "--after", "c"], "<p><b/>a", "<p><b/>ca"),
            (["edit", "b", "--text", "c"], "<p><b/>a", "<p><b>c</b>a"),
            # Inner matches go with the outer ones; raw content is taken as it is.
            (["edit", "p", "--replace", "."], "<p><p></p></p>a<p>", ".a."),
            (["edit", "script", "--text", "a<b"], "<script>x</script>", "<script>a<b</script>"),
            (["edit", "!--", "--html", "<p"], "a<!-- x -->", "a<!--<p-->"),
            (["edit", "b", "--text", "c", "--drop-comments"], "<p><!--1--><b><!--2--></b >a<!--3-->",
             "<p><b>c</b >a"),
            (["edit", "p", "--add-class", "c"], "<p data='{\"a\":1}'>", "<p data='{\"a\":1}' class=\"c\">"),
            (["edit", "p", "--del-class", "[&]:a"], "<p class='[&]:a b'>", '<p class="b">'),
            (["edit", "p", "--html", "<p>a</p>"], "<p><p><br></p></p>", "<p><p>a</p></p>"),
            (["edit", "p", "--html", "<p>a</p>"], "<p><p >a</p></p>", "<p><p >a</p></p>"),
            (["edit", "p", "--add-class", "c"], "<b>a", "<b>a", 1),
        ])
        stays_out = "qo: (standard input):1:2: the new content would not stay in "
        self.complaint(["edit", "!--", "--text", "a-->b"], stays_out + "<!--\n", "a<!--c-->")
        self.complaint(["edit", "script", "--text", "1</script>a<script>"], stays_out + "<script>\n",
                       "a<script></script>")
        self.assertEqual(self.complaint(["edit", "p", "--html", "<a b=c>"],
                                        'qo: --html:1:1: "b" loses its value, which has no quotes\n', "<p>", 0),
                         '<p><a b=""></a>')
        self.assertEqual(self.complaint(["edit", "p", "--add-class", "c"], "qo: (standard input):2:1: "
                         '"id" loses its value, which has no quotes (and 1 more)\n', "\n<p x-id='' id=a b=c d='' >", 0),
                         '\n<p x-id="" id="" b="" d="" class="c">')

        self.assertIn('"" loses', qo("edit", "p", "--add-class", "c", stdin="<p =y>")[2])
        self.assertIn('"a" loses', qo("edit", "p", "--add-class", "c", stdin="<p a=x'y'>")[2])
        for operation in (["--attr", "id=b"], ["--del-attr", "id"]):
            self.assertEqual(qo("edit", "p", *operation, stdin="<p id=a>")[2], "")

    def test_edit_keeps_every_page_of_the_manual(self):
        with open(os.path.join(SOURCE, "docs", "markup.md"), encoding="utf-8") as manual:
            rows = [line.split("|") for line in manual if line.startswith("| `")]
        self.assertGreater(len(rows), 50)
        for _, page, tree, *_ in rows:
            page = page.strip()[1:-1].replace("\\n", "\n").replace("\\t", "\t")
            status, results, complaint = qo("edit", "*", "--del-attr", "none", stdin=page)
            if "refused" in tree:
                self.assertIn(": refused: ", complaint)
            else:
                self.assertEqual((results.decode(), complaint), (page, ""))

    def test_edit_refuses_what_it_cannot_keep(self):
        rewrite = ": this edit cannot keep the page as written (--allow-rewrite rewrites it)\n"
        unclosed = "\n<p>a<b "
        self.complaint(["edit", "b", "--after", "c"], "qo: (standard input):2:7" + rewrite, unclosed)
        self.check([(["edit", "b", "--after", "c", "--allow-rewrite"], unclosed, "\n<p>a<b></b>c</p>")])
        self.complaint(["edit", "p", "--html", "</script>"], "", "<p>", 0)
        self.complaint(["edit", "br", "--text", "x"], "qo: (standard input):2:1: <br> has no content to set\n",
                       "\n<br>")

    def test_edit_shows_a_diff(self):
        self.check([(["edit", "-n", "p", "--text", "a"], "<p>a</p>", "")])
        self.write("a", "1\n<b>2</b> <b>3</b>\n" + "<i>\n" * 7 + "<b>4</b>\n5\n6\n7\n8\n<b>9</b>")
        self.check([(["edit", "-n", "b", "--text", "x", "a"], "", """--- a
+++ a
@@ -1,5 +1,5 @@
 1
-<b>2</b> <b>3</b>
+<b>x</b> <b>x</b>
 <i>
 <i>
 <i>
@@ -7,9 +7,9 @@
 <i>
 <i>
 <i>
-<b>4</b>
+<b>x</b>
 5
 6
 7
 8
-<b>9</b>
\\ No newline at end of file
+<b>x</b>
\\ No newline at end of file
"""), (["edit", "-n", "i", "--remove"], "<i>\n</i>", "--- (standard input)\t\n+++ (standard input)\t\n"
       "@@ -1,2 +0,0 @@\n-<i>\n-</i>\n\\ No newline at end of file\n"),
                    (["edit", "-n", "b", "--text", "2", "a", "-i"], "", qo("edit", "-n", "b", "--text",
                                                                          "2", "a")[1].decode())])
        self.assertIn("<b>9</b>", self.read("a"))

    def test_edit_in_place(self):
        os.chmod("page.html", 0o640)
        os.symlink("page.html", "link")
        self.assertEqual(qo("edit", "-i.old", "br", "--remove", "link"), (0, b"", ""))
        self.assertTrue(os.path.islink("link"))
        self.assertEqual(self.read("page.html"), PAGE.replace("<br>", ""))
        self.assertEqual(os.stat("page.html").st_mode & 0o777, 0o640)
        self.assertEqual(self.read("link.old"), PAGE)
        for arguments in (["-itrue"], ["--in-place=true"]):
            self.write("other.html", "<p>")
            self.assertEqual(qo("edit", *arguments, "p", "--text", "a", "other.html"), (0, b"", ""))
            self.assertEqual((self.read("other.html"), self.read("other.htmltrue")), ("<p>a", "<p>"))
            os.remove("other.htmltrue")
        self.complaint(["edit", "-i.old", "p", "--after", "b", "other.html", "./other.html"],
                       "qo: ./other.html: has been edited already\n")
        self.assertEqual((self.read("other.html"), self.read("other.html.old")), ("<p>a</p>b", "<p>a"))
        self.complaint(["edit", "-i", "p", "--text", "a", "/dev/stdin"], "qo: /dev/stdin: is no regular file\n",
                       "<p>")
        self.complaint(["edit", "-i.old", "p", "--text", "c", "other.html", "other.html.old"],
                       "qo: other.html: other.html.old is to be edited, too\n")
        self.assertEqual((self.read("other.html"), self.read("other.html.old")), ("<p>a</p>b", "<p>c"))
        for name in ("other.html", "other.html.old", "other.html.old.old"):
            os.remove(name)
        before = os.stat("page.html")
        self.assertEqual(qo("edit", "-i", "p", "--add-class", "a", "page.html")[0], 0)
        self.assertEqual(qo("edit", "--in-place", "div", "--add-class", "a", "page.html")[0], 1)
        self.assertEqual(os.stat("page.html"), before)

        # What cannot be written leaves the old page, and nothing else.
        def no_room():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (100, 100))
        found = qo("edit", "-i", "p", "--remove", "page.html", preexec_fn=no_room)
        self.assertEqual((found[0], found[2].count("\n")), (2, 1))
        self.assertEqual(os.stat("page.html"), before)
        self.assertEqual(sorted(os.listdir()), ["link", "link.old", "page.html"])

    def test_output_file(self):
        self.write("out", "old")
        self.assertEqual(qo("select", "-o", "out", "-t", "a", "none.html")[0], 2)
        self.assertEqual(self.read("out"), "old")
        self.assertEqual(qo("select", "-o", "out", "-t", "a", "none.html", "page.html")[0], 2)
        self.assertEqual(self.read("out"), "page.html:x\npage.html:y\npage.html:z\n")
        self.assertEqual(qo("edit", "-o", "page.html", "br", "--remove", "page.html")[0], 0)
        self.assertEqual(self.read("page.html"), PAGE.replace("<br>", ""))
        self.assertEqual(qo("select", "-o", "/dev/stdout", "-c", "a", "page.html")[1], b"3\n")
        self.complaint(["select", "-o", "no/where", "a", "page.html"], "qo: no/where: No such file or directory\n")
        self.assertEqual(qo("select", "a", "page.html", "-co", "[out]"), (0, b"", ""))
        self.assertEqual(self.read("[out]"), "3\n")
        if os.path.exists("/dev/full"):
            with open("/dev/full", "wb") as full:
                run = subprocess.run([QO, "decode", "page.html"], stdout=full, stderr=subprocess.PIPE)
            self.assertEqual((run.returncode, run.stderr),
                             (2, b"qo: standard output: No space left on device\n"))

    def test_usage_and_bad_files(self):
        for arguments, message in [
                ([], "A subcommand is required"),
                (["find"], 'there is no subcommand "find"; see qo --help'),
                (["select"], "SEL is required"),
                (["select", "a", "--no"], "The following argument was not expected: --no"),
                (["select", "-tc", "a"], "select: only one of -t, --inner, -a, -j, -c, -l and -q can be given"),
                (["edit", "a"], "edit: nothing to do: give an operation, such as --text"),
                (["edit", "a", "--attr", "x"], '--attr: "x" has no "="; --bare-attr sets a name alone'),
                (["edit", "a", "--attr", "x y=1"], '--attr: "x y" is no attribute name'),
                (["edit", "a", "--add-class", "x y"], '--add-class: "x y" is not one class'),
                (["edit", "a", "--html", "<!--"], '--html:1:1: refused: no end to "<!--"'),
                (["edit", "a", "--remove", "-i"], "edit: -i needs files to write to"),
                (["select", "a", "."], ".: Is a directory"),
                (["select", "a", "++"], "++: No such file or directory"),
                (["check", "[page.html,page.html]"], "[page.html,page.html]: No such file or directory"),
                (["form", "none.html"], "none.html: No such file or directory"),
                (["select", "a", "no\nfile"], "no\\nfile: No such file or directory"),
                (["form", "./none.html"], "./none.html: No such file or directory"),
                (["form", "page.html", "none.html"], "none.html: No such file or directory"),
                (["tree", "--select", "a"], "--select requires --html")]:
            self.complaint(arguments, "qo: " + message + "\n")
        for page, place in [("<p>\n <a-b>", "2:2: refused: invalid tag name 1: 'a-b' at char index: 1 '-'"),
                            ("<><!-- <a-b> -->\n\n<!-- c", '3:1: refused: no end to "<!-- c"'),
                            ("<p><script>'</script>", '1:4: refused: no end to "<script>\'</script>"')]:
            self.complaint(["check"], "qo: (standard input):" + place + "\n", page)
        self.complaint(["form"], "qo: (standard input): controls of one name are plain, in [] or in [key], "
                       "not several\n", "<form><input name='a'><input name='a[]'></form>")
        self.assertEqual(qo("edit", "--remove=false", "p", "page.html")[0], 2)
        self.assertLess(len(qo("check", stdin="<a-" + "b" * 100000 + ">")[2]), 300)
        self.write("bad.html", "<a-b>")
        self.write("select", "<a>q")  # a file named like a subcommand
        self.assertEqual(self.complaint(["select", "-t", "a", "bad.html", "select"],
                                        "qo: bad.html:1:1: refused: invalid tag name 1: 'a-b' at char "
                                        "index: 1 '-'\n"), "select:q\n")
        self.assertEqual(qo("select", "-q", "a", "bad.html", "page.html")[0], 0)

    def test_memory_that_runs_out_costs_no_page(self):
        def limited():
            resource.setrlimit(resource.RLIMIT_AS, (60 << 20, 60 << 20))
        if subprocess.run([QO, "--version"], capture_output=True, preexec_fn=limited).returncode != 0:
            self.skipTest("this build needs more memory to begin with")
        self.write("large", "<p class='a'>x</p>" * 150000)
        for arguments in (["select", "-c", "p"], ["check"], ["tree"], ["edit", "p", "--remove", "-i", "--allow-rewrite"]):
            found = qo(*arguments, "large", preexec_fn=limited)
            self.assertEqual(found, (2, b"", "qo: large: out of memory\n"))
        self.assertEqual(self.read("large"), "<p class='a'>x</p>" * 150000)

    def test_selector_hints(self):
        self.assertEqual(self.complaint(["select", "-at", "div >:x p"], "qo: hint: :x has no effect\n",
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
            self.complaint(["select", selector], "".join("qo: hint: " + hint + "\n" for hint in hints), "", 1)
            if hints:
                self.complaint(["select", "--strict", selector], "qo: selector: " + hints[0] + "\n")

    def test_ends_quietly_when_nobody_reads(self):
        for ignored in (False, True):
            run = subprocess.Popen([QO, "select", "p"], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE, preexec_fn=(lambda: signal.signal(
                                       signal.SIGPIPE, signal.SIG_IGN)) if ignored else None)
            run.stdout.close()
            self.assertEqual(run.communicate(b"<p>a</p>" * 100000)[1], b"")

    def on_terminal(self, *arguments, **environment):
        try:
            controller, terminal = pty.openpty()
        except OSError as error:
            self.skipTest(f"there is no terminal to be had: {error}")
        run = subprocess.run([QO, *arguments], stdout=terminal, stderr=terminal,
                             env={**os.environ, "TERM": "xterm", **environment})
        os.close(terminal)
        output = b""
        try:
            while chunk := os.read(controller, 65536):
                output += chunk
        except OSError:  # all of it was read
            pass
        os.close(controller)
        return output.decode()

    def test_terminal(self):
        self.assertIn("\x1b[35m", self.on_terminal("select", "-H", "a", "page.html", NO_COLOR=""))
        self.assertNotIn("\x1b", self.on_terminal("select", "-H", "a", "page.html", NO_COLOR="1"))
        self.assertNotIn("\x1b", self.on_terminal("select", "-H", "a", "page.html", "--color=never"))
        self.write("large", "<p>a</p>" * 100000)
        progress = self.on_terminal("select", "-q", "b", *["large"] * 40)
        self.assertRegex(progress, r"^(\r\d+ of 40 files)+\r\x1b\[K$")

    def test_no_time_that_grows_with_the_square(self):
        wide = "<ul>" + "<li>a</li>" * 100000 + "</ul>"
        self.assertEqual(qo("edit", "li", "--remove", stdin=wide)[1], b"<ul></ul>")
        many = "<p" + "".join(f" a{i}=b" for i in range(50000)) + ">"
        self.assertIn("49999 more", qo("edit", "p", "--add-class", "c", stdin=many)[2])
        self.assertIn("+" + wide.replace("a", "b"), qo("edit", "-n", "li", "--text", "b", stdin=wide)[1].decode())
        refused = "<p>" * 10000 + "<script>" + "if (a<b) c();" * 50000 + "</script><a-b>" + "<p>" * 10000
        self.assertIn(":1:680018: refused", qo("check", stdin=refused)[2])
        deep = "<p>" * 100000
        self.assertEqual(qo("select", "-c", "p p p", stdin=deep)[1], b"100000\n")
        self.assertEqual(qo("edit", "b", "--text", "x", stdin=deep + "<b>")[1].decode(), deep + "<b>x")

    def test_manual_and_completions_know_every_option(self):
        texts = {}
        for name in ("qo.1.scd", "completions/qo.bash", "completions/_qo", "completions/qo.fish"):
            with open(os.path.join(SOURCE, "src", "cli", name), encoding="utf-8") as file:
                texts[name] = file.read().replace("\\", "")
        commands = re.findall(r"^  ([a-z]+)  ", qo("--help")[1].decode(), re.M)
        self.assertEqual(len(commands), 6)
        for command in [None, *commands]:
            help_text = qo(*([command] if command else []), "--help")[1].decode()
            options = re.findall(r"(?<=[ ,])--?[a-zA-Z0-9][a-z-]*", "\n".join(
                line[:29] for line in help_text.splitlines() if line.startswith("  -")))
            self.assertGreaterEqual(len(options), 3)
            for option in options:
                in_fish = ("-l " if option.startswith("--") else "-s ") + option.lstrip("-")
                for name, text in texts.items():
                    wanted = in_fish if name.endswith("fish") else option
                    self.assertRegex(text, r"(?<![\w-])" + re.escape(wanted) + r"(?![\w])", name)
        script = "source %s/src/cli/completions/qo.bash; COMP_WORDS=(%s) COMP_CWORD=%d; _qo; echo ${COMPREPLY[*]}"
        for words, position, reply in [("qo se", 1, "select"), ("qo select --js", 2, "--json"),
                                       ("qo edit a --color a", 4, "auto always"), ("qo tree pa", 2, "page.html")]:
            run = subprocess.run(["bash", "-c", script % (SOURCE, words, position)], capture_output=True, text=True)
            self.assertEqual(run.stdout.strip(), reply)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
