#!/usr/bin/env python3
"""Runs the jobs that people have for qo: folders, columns, tables, forms, edits of many pages.
usage: cli_jobs_test.py QO SOURCE_FOLDER"""

import json
import os
import random
import re
import signal
import stat
import subprocess
import threading
import time

from cli_support import QO, Cli, main, qo


class Jobs(Cli):
    def tree(self):
        """A folder of pages, and what is none of them."""
        for name in ("b.html", "a.HTM", "c/d.twig", "c/e/f.php", "c.txt", ".hidden/g.html", "node_modules/h.html",
                     "c/.i.html", "j"):
            os.makedirs(os.path.dirname(os.path.join("site", name)), exist_ok=True)
            self.write(os.path.join("site", name), f"<p>{os.path.basename(name)}</p>")
        os.symlink("../site", "site/link")
        os.symlink("b.html", "site/k.html")

    def test_folders(self):
        self.tree()
        select = ["select", "-rt", "p"]
        below = "site/a.HTM:a.HTM\nsite/b.html:b.html\nsite/c/.i.html:.i.html\nsite/c/d.twig:d.twig\nsite/c/e/f.php:f.php\n"
        self.check([
            ([*select, "site"], "", below),
            ([*select, "site/"], "", below),
            ([*select, "site/j", "site/c"], "", "site/j:j\n" + below[below.index("site/c/.i"):]),
            ([*select, "--include", "*.txt", "--include", "c/*.twig", "site"], "", "site/c/d.twig:d.twig\nsite/c.txt:c.txt\n"),
            ([*select, "--exclude", "./c/", "--exclude", "a*", "site"], "", "site/b.html:b.html\n"),
            ([*select, "--include", "**/*.html", "site"], "", "site/b.html:b.html\nsite/c/.i.html:.i.html\n"),
            (["select", "-rc", "--no-filename", "p", "site/c/e"], "", "1\n"),
            (["check", "-r", "site/c"], "", ""),
            (["form", "-r", "--all", "form", "site"], "", "", 1),
            (["select", "-rl", "b", "site"], "", "", 1),
        ])
        os.chdir("site")
        self.check([(["select", "-rl", "p"], "", "a.HTM\nb.html\nc/.i.html\nc/d.twig\nc/e/f.php\n")])
        # A file that has the name of standard input.
        self.write("-", "<p>dash</p>")
        self.check([([*select, "--include", "-"], "", "./-:dash\n"), ([*select, "--include", "-", "."], "", "./-:dash\n"),
                    ([*select, "-"], "<p>in</p>", "(standard input):in\n"), ([*select, "./-"], "", "./-:dash\n")])
        self.assertEqual(qo("edit", "-r", "-i", "--include", "-", "p", "--text", "x"), (0, b"", ""))
        self.assertEqual(self.read("-"), "<p>x</p>")
        os.unlink("-")
        os.chdir("..")
        self.assertEqual(qo("edit", "-r", "-i", "p", "--text", "x", "site"), (0, b"", "qo: changed 5 of 5 files\n"))
        self.assertEqual((self.read("site/c.txt"), self.read("site/c/d.twig")), ("<p>c.txt</p>", "<p>x</p>"))
        self.assertTrue(os.path.islink("site/k.html"))
        self.complaint(["select", "-r", "p", "none"], "qo: none: No such file or directory\n")

    def test_threads_give_what_one_gives(self):
        random.seed(5)
        for i in range(700):
            self.write(f"{i}.html", "<p>" + "x" * random.choice([1, 10, 100000]) + f"</p><b>{i}</b>" * (i % 3))
        os.chmod("7.html", 0)
        self.write("8.html", "\ufeffa".encode("utf-16-le"))
        names = [f"{i}.html" for i in random.sample(range(700), 700)] + ["none.html"]
        alone = qo("select", "p, b", *names, "--threads", "1")
        self.assertEqual(alone[0], 2)
        for threads in ("2", "5"):
            self.assertEqual(qo("select", "p, b", *names, "--threads", threads), alone)
            self.assertEqual(qo("select", "-q", "b", *names, "--threads", threads), (0, b"", ""))

    def test_complaints_that_are_alike_are_counted(self):
        for i in range(30):
            self.write(f"{i:02}.html", "<p>a" if i % 2 else "<br>")
        status, _, complaints = qo("edit", "-n", "*", "--text", "x", *sorted(os.listdir()))
        self.assertEqual(status, 2)
        lines = complaints.splitlines()
        self.assertEqual(len(lines), 11)
        self.assertEqual(lines[-1], "qo: and 5 more files: refused: <br> has no content")

    def test_what_is_printed(self):
        page = "<ul id=u><li>one  &amp;\n<b>two</b><li title='a\tb\\\nc'>x</ul><p>é"
        self.check([
            (["select", "-a", "title,:text", "li"], page, "\tone  &\\ntwo\na\\tb\\\\\\nc\tx\n"),
            (["select", "-a", "title", "--csv", "li"], page, '"a\tb\\\nc"\n'),
            (["select", "-0", "-a", "title", "li"], page, "a\tb\\\nc\0"),
            (["select", "-0", "-a", "title,:tag", "li"], page, "\tli\0a\\tb\\\\\\nc\tli\0"),
            (["select", "-sa", ":tag,:line,:column,:text,title", "--csv", "li"], page,
             "li,1,10,one & two,\nli,2,11,x,a b\\ c\n"),
            (["select", "-a", ":start,:end,:inner", "b"], page, "24\t34\ttwo\n"),
            (["select", "-Ha", ":html,:file", "b"], page, "(standard input):<b>two</b>\t(standard input)\n"),
            (["select", "-n", "b, p"], page, "2:<b>two</b>\n3:<p>é\n"),
            (["select", "-nHt", "b"], page, "(standard input):2:two\n"),
            (["select", "-a", ":path", "*"], page,
             "#u\n#u > li:nth-of-type(1)\nb\n#u > li:nth-of-type(2)\np\n"),
            (["select", "-a", 'h3@:text,a[rel="x,y"]@href,p:is(.a,.b)@:tag', "div"],
             "<div><h3>A</h3><a href=1>B</a><a rel=x,y href=2>C</a></div><div><p class=b><h3>D</h3></div>",
             "A\t2\t\nD\t\tp\n"),
            (["select", "-a", "b@title", "p"], "<p>a</p><p><b title=c></b></p>", "c\n"),
            (["select", "-a", "b@@click,@x", "p"], "<p @x=1><b @click=2></b></p>", "2\t1\n"),
            (["select", "-a", ":path,:text", ":comment"], "<!--c-->", "\tc\n"),
            (["select", "-j", "--fields", "path,line", "b"], page, '{"path":"b","line":2}\n'),
            (["select", "-s", "table"], "<table><tr><td> a<td>&nbsp;<br>b<tr><td>c<i>d</i></table>", "a b cd\n"),
            (["select", "-s", "p"], "<p>a<button>b</button><button>c</button><select><option>d<option>e</select>f", "a b c d e f\n"),
            (["select", "-s", "div"], "<div>\n<h1>A</h1><p>b<script>x</script><!-- y --></p><pre>\n c\n</pre></div>", "A b c\n"),
            (["select", "-L", "b", "-"], "<p>", "(standard input)\n"),
            (["select", "-L", "p", "-"], "<p>", "", 1),
        ])
        self.complaint(["select", "-a", "a@hrfe", "p"], 'qo: no match has an attribute "a@hrfe"\n', "<p><a href=x></a></p>", 0)
        self.complaint(["select", "-a", "text", "p"], 'qo: no match has an attribute "text"; did you mean ":text"?\n', "<p>a", 0)
        self.complaint(["select", "-a", "b@", "p"], 'qo: select: -a: after the "@" of "b@" comes a name\n', page)
        self.complaint(["select", "--host", "-a", "b@c", "p"], 'qo: select: -a: the library finds no "b@c"\n', page)
        self.complaint(["select", "-a", "hrfe", "li"], 'qo: no match has an attribute "hrfe"\n', page, 0)
        self.check([
            (["select", "-a", ":src", "i"], "<i :src=x>", "x\n"),
            (["select", "-1a", "href", "a"], "<a><a href=x><a href=y>", "x\n"),
            (["select", "--csv", "-nHa", "t", "a"], "<a t='x,y'>", '(standard input),1,"x,y"\n'),
        ])

    def test_all_fields(self):
        page = "<p>\n<b c=d>e</b><i>f</i>"
        values = {"tag": "b", "attrs": {"c": "d"}, "text": "e", "html": "<b c=d>e</b>", "inner": "e", "line": 2, "column": 1,
                  "start": 4, "end": 16, "path": "b", "file": "(standard input)"}
        found = qo("select", "-j", "--fields", ",".join(values), "b", stdin=page)[1]
        self.assertEqual(found.decode(), json.dumps(values, separators=(",", ":")) + "\n")
        for name, value in values.items():
            shown = json.dumps(value, separators=(",", ":")) if name == "attrs" else str(value)
            self.check([(["select", "-a", ":" + name, "b"], page, shown + "\n"),
                        (["select", "-j", "--fields", name, "b"], page,
                         json.dumps({name: value}, separators=(",", ":")) + "\n")])

    def test_paths_find_their_element_again(self):
        pages = ["<a{{ x }}>b</a{{ x }}><{{ t }}>c</{{ t }}><{{ t }}>d</{{ t }}>",
                 """<p id="a{{ x }}"><p id="it's"><p id='a"b'><p id='"&#39;'><p id="a\\b"><p id="1a"><p id="a&#9;b"><p id="-">""",
                 "<c:if>a</c:if><div><c:if>b</c:if><c:if><i>c</i></c:if></div><x.y>d</x.y>",
                 "<p id=-1><p id=--><p id=-a><p id=- ><p id='-\u00e9'>", "<a{{ x }}></a{{ x }}><a{{ x }}>b</a{{ x }}>",
                 "<{{ x }}}>a</{{ x }}}><{{ x }}}>b", "<x--><-a><x:y><x:y><x\U0001f600><x\U0001f600>",
                 "<p id='\U0001f600'><p id='&#x1f600;&#x1f600;'>",
                 "<p id=A><p id=a><p id=é><p id='a b'><p id='a&amp;b'><p id='{% if x %}c{% endif %}'>"]
        for page in pages:
            for line in qo("select", "-a", ":path,:start", "*", stdin=page)[1].decode().splitlines():
                path, start = line.split("\t")
                with self.subTest(page=page, path=path):
                    self.assertEqual(qo("select", "-a", ":start", path, stdin=page)[1].decode(), start + "\n")

    def test_a_path_finds_one_element(self):
        random.seed(11)
        for _ in range(40):
            page = "".join(random.choice(["<div>", "</div>", "<p>", "<B id=x>", "</b>", "<i id=é>", "</i>", "<x-é.1>",
                                          "</x-é.1>", "<html>", "<p id='1 \"2'>", "<svg>", "</svg>", "t"])
                           for _ in range(40))
            lines = [json.loads(line) for line in qo("select", "-j", "--fields", "path,start", "*", stdin=page)[1].splitlines()]
            for line in lines:
                found = qo("select", "-j", "--fields", "start", line["path"], stdin=page)[1]
                self.assertEqual(found.decode(), '{"start":%d}\n' % line["start"], (page, line))

    def test_tables(self):
        page = ("<table id=a><caption>c</caption><tfoot><tr><td>f</tfoot><thead><tr><th rowspan=2>Name<th colspan=2>Size"
                "<tr><th>a\tb<th>c</thead><tr><td rowspan=0>x &lt;<td colspan=2>1 <table><tr><td>in</table>"
                "<tr><td rowspan=9>2<td>3<td>4</table><div><table><tr><td>,<tr><th>q\"</table></div>")
        outer = "Name\tSize\tSize\t\nName\ta b\tc\t\nx <\t1\t1\t\nx <\t2\t3\t4\nf\t\t\t\n"
        self.check([
            (["table"], page, outer + "\nin\n\n,\nq\"\n"),
            (["table", "-1"], page, outer),
            (["table", "div"], page, ",\nq\"\n"),
            (["table", "div", "--csv"], page, '","\n"q"""\n'),
            (["table", "--json", "#a"], page,
             '{"Name":"x <","Size a b":"1","Size c":"1","column 4":""}\n'
             '{"Name":"x <","Size a b":"2","Size c":"3","column 4":"4"}\n'
             '{"Name":"f","Size a b":"","Size c":"","column 4":""}\n'),
            (["table", "-H", "--json"], "<table><tr><th>a<th>a<tr><td>1<td>2</table>",
             '{"file":"(standard input)","a":"1","a 2":"2"}\n'),
            (["table", "-H", "--csv"], "<table><tr><td>1<td>2</table>", '(standard input),1,2\n'),
            (["table", "-H"], "<table><tr><td>1<td>2</table>", '(standard input):1\t2\n'),
            (["table", "--json", "div"], page, '[","]\n["q\\""]\n'),
            (["table"], "<table><td>a<td>b<tr><td>c</table>", "a\tb\nc\t\n"),
            (["table"], "<p>", "", 1),
            # Each once, whatever is around it.
            (["table", "div, #b, p"], "<div><table id=a><td>1</table></div><table><td>2</table><table id=b><td>3<p><table>"
             "<td>4</table></p></table><p><i></i><table><td>5</table></p>", "1\n\n3\n\n4\n\n5\n"),
            (["table", "--json"], "<table><tr><th>a<th>a<th>a 2<th>a<tr><td>1<td>2<td>3<td>4</table>",
             '{"a":"1","a 2":"2","a 2 2":"3","a 3":"4"}\n'),
        ])
        found = qo("table", stdin="<table>" + "<tr><td colspan=9999 rowspan=0>a" * 200)
        self.assertEqual((found[0], found[2]), (2, "qo: (standard input): the table has too many cells\n"))

    def test_forms(self):
        page = ("<form id=f><input name=a value='1&amp;2'><input name='u[a][s]' value=3><input name='u[b]'><select name=s[]>"
                "<option>x<option selected> y  z</select><textarea name=t>\nq\n</textarea><input type=checkbox name=a checked>"
                "<button name=go value=1></button></form><input form=f name='m[' value='é +'>")
        self.check([
            (["form", "--compact"], page, '{"a":["1&2","on"],"m[":"é +","s":["y z"],"t":"q\\n","u":{"a":{"s":"3"},"b":""}}\n'),
            (["form", "--pairs", "--compact"], page, '[["a","1&2"],["u[a][s]","3"],["u[b]",""],["s[]","y z"],["t","q\\n"],'
             '["a","on"],["m[","é +"]]\n'),
            (["form", "--urlencoded", "--submit", "go"], page, "a=1%262&u%5Ba%5D%5Bs%5D=3&u%5Bb%5D=&s%5B%5D=y+z&t=q%0D%0A&"
             "a=on&go=1&m%5B=%C3%A9+%2B\n"),
            (["form", "-H", "#f"], "<form id=f><input name=a>", '{"file":"(standard input)","values":{"a":""}}\n'),
            (["form", "--compact"], "<form><input name='a[b]'><input name=a value=1><input name=b[]><input name=c><input "
             "name=a value=2>", '{"a":["1","2"],"a[b]":"","b":[""],"c":""}\n'),
            (["form", "--all", "--compact", "form"], "<form><input name=a></form><form>", '[{"a":""},{}]\n'),
        ])
        self.complaint(["form", "--submit", "no"], 'qo: (standard input): the form has no button "no" to press\n', page)
        deep = qo("form", "--compact", stdin="<form><input name='a" + "[b]" * 100000 + "'>")
        self.assertEqual(len(json.loads(deep[1])), 1)

    def test_edits_from_files(self):
        self.write("marked", "\ufeffp --before-file markup\n")
        self.write("markup", "\ufeff<hr>")
        self.assertEqual(qo("edit", "-f", "marked", stdin="<p>a"), (0, b"<hr><p>a", ""))
        self.write("m", "<i>new</i>\n")
        page = "<p>a</p>"
        for option, result in [("--html-file", "<p><i>new</i>\n</p>"), ("--text-file", "<p>&lt;i>new&lt;/i>\n</p>"),
                               ("--append-file", "<p>a<i>new</i>\n</p>"), ("--prepend-file", "<p><i>new</i>\na</p>"),
                               ("--before-file", "<i>new</i>\n<p>a</p>"), ("--after-file", "<p>a</p><i>new</i>\n"),
                               ("--replace-file", "<i>new</i>\n")]:
            self.check([(["edit", "p", option, "m"], page, result)])
        self.write("script", "# both\n\nb  --rename 'strong' --attr \"t=a \\\"b\\\" c\"\n  b --after ' - '\nstrong --remove\n#x --remove\n")
        page = "<p>1\n<b>2</b>\n3\n\n\n\n\n\n\n<b>4</b><i id=x></i></p>"
        edited = "<p>1\n<strong t='a \"b\" c'>2</strong> - \n3\n\n\n\n\n\n\n<strong t='a \"b\" c'>4</strong> - </p>"
        edited = edited.replace("'a \"b\" c'", '"a &quot;b&quot; c"')
        self.check([(["edit", "-f", "script"], page, edited)])
        self.write("page", page)
        diff = qo("edit", "-n", "-f", "script", "page")[1]
        self.assertEqual([line for line in diff.decode().splitlines() if line[0] in "+-"][2:],
                         ["-<b>2</b>", "+" + edited.split("\n")[1], "-" + page.split("\n")[-1], "+" + edited.split("\n")[-1]])
        for line, message in [("b", "nothing to do: give an operation, such as --text"),
                              ("b c --remove", "a line is one selector with its operations"),
                              ("b --remove -i", 'there is no option "-i"'), ("b --text 'x", "there is no ' that closes"),
                              ("b[ --remove", 'selector: ')]:
            self.write("script", "\n" + line)
            status, _, complaint = qo("edit", "-f", "script", "page")
            self.assertEqual(status, 2)
            self.assertRegex(complaint, "^qo: (edit: )?script:2: " + re.escape(message))
        self.write("script", "# nothing\n")
        self.check([(["edit", "-f", "script", "page"], "", page, 1)])
        for lines, message in [("b --text x\ni --remove\nb --remove", '2:1: script:1: script:3: refused: "set the text" '
                                'and "remove" contradict each other'),
                               ("i --remove\np --move-into b", "1:1: script:2: refused: the place to move to has to be one "
                                'element: "b" finds 2'),
                               ("i --remove\nb --after '</p>'", "2:9: script:2: refused: </p> would end <p>")]:
            self.write("script", lines)
            self.complaint(["edit", "-f", "script", "page"], f"qo: page:{message}\n")

    def test_changes_of_a_script_make_the_diff(self):
        random.seed(3)
        operations = ["--text x", "--append 'a\nb'", "--before '<u>1</u>\n'", "--remove", "--unwrap", "--rename q",
                      "--attr k=v", "--wrap '<s></s>'", "--sub-text '[ab]' ''"]
        for _ in range(60):
            page = "".join(random.choice(["<b>a</b>", "<i>b\n</i>", "\n", "c\n", "<u>\n</u>", "<p>d</p>"]) for _ in range(30))
            self.write("page", page)
            self.write("script", "\n".join(f"{random.choice(['b', 'i', 'u', 'p', 'q', 's'])} "
                                           + random.choice(operations).replace("\n", " ") for _ in range(4)))
            edited = qo("edit", "-f", "script", "page")
            diff = qo("edit", "-n", "-f", "script", "page")
            self.assertEqual(edited[0], diff[0])
            self.assertEqual(applied(page, diff[1].decode()), edited[1].decode() if edited[0] < 2 else page)

    def test_in_place_with_care(self):
        page = "<p>a</p>"
        self.write("a.html", page)
        self.write("b.html", page)
        os.link("a.html", "other")
        edit = ["edit", "-i", "p", "--text", "b"]
        self.complaint([*edit, "a.html"], "qo: 1 of the files had other names (hard links), which keep the old pages\n",
                       status=0)
        self.assertEqual((self.read("a.html"), self.read("other")), ("<p>b</p>", page))
        for arguments, message in [
                (["-i", "-n"], "-i and -n exclude each other: -n writes nothing; see the changes first, then write them"),
                (["-in"], "-in would keep the old pages as NAMEn; options after -i are written apart"),
                (["-ir"], "-ir would keep the old pages as NAMEr; options after -i are written apart"),
                (["-i", "-o", "x", "a.html"], "-i and -o exclude each other"),
                (["-i", "-"], "-i: standard input is no file to write to"),
                (["-o", "x", "a.html", "b.html"], "-o takes one page; -i writes each back"),
                (["-r"], "-r prints pages one after the other: -i writes each back, -n shows the changes")]:
            self.complaint(["edit", "p", "--text", "c", *arguments], f"qo: edit: {message}\n")
        for arguments in (["-f", "-"], ["p", "--html-file", "-"]):
            self.complaint(["edit", *arguments], "qo: edit: standard input cannot be a page and something else, too\n",
                           "p --remove")
        if os.getuid() == 0:
            os.chmod("b.html", 0o4755)
            os.chown("b.html", 1234, 1234)
            os.chmod("b.html", 0o6755)
            self.assertEqual(qo(*edit, "b.html")[0], 0)
            self.assertEqual(stat.S_IMODE(os.stat("b.html").st_mode), 0o6755)
        self.write("out", "old")
        self.assertEqual(qo("select", "i", "-o", "out", "a.html")[0], 1)
        self.assertEqual(self.read("out"), "old")
        self.assertEqual(qo("edit", "i", "--remove", "-o", "-", "a.html")[1], b"<p>b</p>")
        with open("out", "ab") as out:
            run = subprocess.run([QO, "select", "p", "-o", "out", "a.html"], stdout=out, stderr=subprocess.PIPE)
        self.assertEqual((run.returncode, run.stderr), (2, b"qo: -o: out is where standard output goes\n"))

    def test_a_signal_leaves_whole_files(self):
        for i in range(3000):
            self.write(f"{i}.html", "<p>a</p>" * 50)
        for delay in (0.02, 0.05, 0.1):
            run = subprocess.Popen([QO, "edit", "-r", "-i", "p", "--append", "b"], stderr=subprocess.PIPE)
            threading.Timer(delay, run.send_signal, [signal.SIGINT]).start()
            run.communicate()
            self.assertIn(run.returncode, (0, -signal.SIGINT))
            self.assertEqual(len(os.listdir()), 3000)
        for i in range(3000):
            self.assertRegex(self.read(f"{i}.html"), r"^(<p>ab*</p>){50}$")

    def gate(self):
        """A file that is not read before the gate is opened."""
        os.mkfifo("gate.html")

    def opened_gate(self, run):
        """To write to, once the run reads it."""
        while run.poll() is None:
            try:
                return os.fdopen(os.open("gate.html", os.O_WRONLY | os.O_NONBLOCK), "wb")
            except OSError:
                time.sleep(0.01)
        return self.fail(run.communicate()[1])

    def behind_gate(self, arguments, page, before=lambda run: None, **options):
        """Runs qo on the gate and others, which gets its page when the others have had their time."""
        with subprocess.Popen([QO, *arguments], stderr=subprocess.PIPE, **options) as run:
            try:
                with self.opened_gate(run) as gate:
                    before(run)
                    gate.write(page)
                complaints = run.communicate(timeout=60)[1]
            finally:
                run.kill()
        return run.returncode, complaints.decode()

    def test_a_slow_file_in_front_of_many(self):
        names = [f"{i}.html" for i in range(700)]
        for name in names:
            self.write(name, f"<b>{name}</b>" + "<p>x</p>" * 100)
        pages = [self.read(name) for name in names]
        slow = b"<p>slow</p>"
        self.gate()

        def wait(_):
            time.sleep(0.3)

        for threads in ("2", "3", "8"):
            threaded = ["select", "--threads", threads, "--no-filename"]
            with self.subTest(threads=threads), open("out", "wb") as out:
                found = self.behind_gate([*threaded, "p", "gate.html", *names], slow, wait, stdout=out)
                self.assertEqual(found, (0, ""))
                self.assertEqual(self.read("out"), "<p>slow</p>\n" + "<p>x</p>\n" * 100 * len(pages))
                # What fails, and what ends the run, ends it for those that wait, too.
                with open("/dev/full", "wb") as full:
                    found = self.behind_gate([*threaded, "p", "gate.html", *names], slow, wait, stdout=full)
                self.assertEqual(found, (2, "qo: standard output: No space left on device\n"))
                found = self.behind_gate([*threaded, "-q", ":contains(slow)", "gate.html", "none.html", *names], slow,
                                         wait)
                self.assertEqual(found, (0, ""))
                self.assertEqual(self.behind_gate([*threaded, "-q", "i", "gate.html", *names], slow, wait)[0], 1)

    def test_a_signal_ends_the_run_between_two_files(self):
        names = [f"{i}.html" for i in range(600)]
        self.gate()

        def interrupt(run):
            run.send_signal(signal.SIGINT)

        def blocked():
            signal.pthread_sigmask(signal.SIG_BLOCK, [signal.SIGINT])
            os.kill(os.getpid(), signal.SIGINT)

        for threads in ("1", "4"):
            for prepare, status in ((None, -signal.SIGINT), (blocked, 0)):
                with self.subTest(threads=threads, status=status):
                    for name in ("first.html", *names):
                        self.write(name, "<p>a</p>")
                    run = self.behind_gate(["edit", "-i", "p", "--append", "b", "--threads", threads, "first.html",
                                            "gate.html", *names], b"<i>", interrupt, preexec_fn=prepare)
                    edited = sum(self.read(name) == "<p>ab</p>" for name in names)
                    self.assertEqual(run[0], status)
                    self.assertEqual(self.read("first.html"), "<p>ab</p>")
                    self.assertTrue(edited == 600 if status == 0 else edited == 0 if threads == "1" else edited < 300)
                    self.assertEqual(len(os.listdir()), 602)

    def test_help(self):
        general = qo("--help")[1]
        self.assertEqual(qo("help")[1], general)
        for command in ("select", "table", "form", "edit", "check", "tree", "decode"):
            self.assertIn(command.encode(), general)
            help_text = qo("help", command)
            self.assertEqual(help_text, qo(command, "--help"))
            self.assertIn(b"\nExamples:\n", help_text[1])
            self.assertLessEqual(max(map(len, help_text[1].splitlines())), 100)
        self.assertEqual(qo("-V"), qo("--version"))
        self.complaint(["help", "selct"], 'qo: there is no subcommand "selct"; did you mean select?\n')


def applied(text, diff):
    """The text with a unified diff made."""
    if not diff:
        return text
    old = text.splitlines(keepends=True) if "\r" not in text else text.split("\n")
    new, position, lines = [], 0, diff.split("\n")[2:-1]
    for i, line in enumerate(lines):
        if line.startswith("@@"):
            start, _, count = line.split()[1][1:].partition(",")
            begin = int(start) - (1 if count != "0" else 0)
            new += old[position:begin]
            position = begin
        elif line[0] in " -+":
            ended = not (i + 1 < len(lines) and lines[i + 1].startswith("\\"))
            body = line[1:] + ("\n" if ended else "")
            if line[0] != "+":
                assert old[position] == body, (old[position], body)
                position += 1
            if line[0] != "-":
                new.append(body)
    return "".join(new + old[position:])


if __name__ == "__main__":
    main()
