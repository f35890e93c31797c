#!/usr/bin/env node
// Compares the tool's trees of real pages with those of parse5, a browser-like parser, element by element.
//
// For each element that is in the source of a page, and not invented by parse5: the name of its tag, its attributes,
// and its parent, which is the nearest ancestor that is in the source. Elements are told by where their tags begin.
// parse5 builds the tree of a browser, which reopens formatting elements, moves content out of tables and drops
// tags, so that some parents must differ: these are counted by their reasons, and the places of others are shown.
//
// Template code is text to parse5: such pages only compare with a command that takes it for text, too.
//
// usage: compare_trees.mjs [--command 'COMMAND'] [--show N] FILE|FOLDER...
//   --command   what prints, for each element, {"tag", "attrs", "start", "end"} in a line, when "'*' FILE" is added
//               (default: build/dev/src/cli/qo select -j --fields tag,attrs,start,end)
//   --show      how many places to show of each kind of difference, most frequent tags first (default 10)
//
// The status is 1 when a tag or an attribute differs, or parse5 has an element that the tool has not.
//
// Beforehand: npm install --prefix build/compare parse5

import { spawnSync } from 'node:child_process';
import { readFileSync, readdirSync, statSync } from 'node:fs';
import { join } from 'node:path';
import { parseArgs } from 'node:util';

const { parse } = await import(new URL('../build/compare/node_modules/parse5/dist/index.js', import.meta.url));

const pageSuffix = /\.(html?|xhtml|php|phtml|tpl|tmpl|twig|erb|ejs|ep|jsp|hbs|mustache|j2|jinja2?|tt2?)$/i;

// --- Text whose offsets are bytes ---

// Each byte is one character, those of UTF-8 sequences in a private area, so that they differ from decoded references.
const privateArea = 0xf700;

function bytesToText(bytes) {
  const toPrivate = (c) => String.fromCharCode(privateArea + c.charCodeAt(0));
  const text = bytes.toString('latin1').replace(/[\x80-\xff]/g, toPrivate);
  return text.replace(/^\uf7ef\uf7bb\uf7bf/, '   ');  // a byte order mark
}

function plainText(text) {
  if (!/[^\0-\x7f]/.test(text)) return text;
  const raw = /[\uf780-\uf7ff]/;
  const pieces = [...text].map((c) => (raw.test(c) ? Buffer.from([c.charCodeAt(0) - privateArea]) : Buffer.from(c)));
  return Buffer.concat(pieces).toString();
}

// What a browser makes of line ends and zero bytes.
const normalized = (text) => text.replace(/\r\n?/g, '\n').replace(/\0/g, '\ufffd');

const isUtf16 = (bytes) => ['fffe', 'feff'].includes(bytes.subarray(0, 2).toString('hex'));

// --- The two trees: elements in document order, each with its parent ---

const root = { tag: '#document', start: -1, parent: null };

function theirAttributes(attributes) {
  return new Map(attributes.map(({ prefix, name, value }) => {
    const written = prefix ? `${prefix}:${name}` : name;
    return [plainText(written).toLowerCase(), normalized(plainText(value))];
  }));
}

function theirElement(node, parent, cloneAround) {
  return {
    tag: plainText(node.tagName).toLowerCase(),
    attributes: theirAttributes(node.attrs),
    start: node.sourceCodeLocation.startTag.startOffset,
    bodyEnd: ['body', 'html'].includes(node.tagName) ? node.sourceCodeLocation.endTag?.startOffset : undefined,
    parent,
    cloneAround,
  };
}

// A copy of a formatting element that was closed within a block has no place, and shares the attributes of the first.
function theirElements(text) {
  const elements = [];
  const cloned = new Set();
  const starts = new Map();
  const pending = [[parse(text, { sourceCodeLocationInfo: true, scriptingEnabled: false }), root, undefined]];
  while (pending.length > 0) {
    const [node, parent, cloneAround] = pending.pop();
    const original = starts.get(node.attrs);
    if (original !== undefined) cloned.add(original);
    let inside = [parent, original ?? cloneAround];
    if (node.sourceCodeLocation?.startTag) {
      const element = theirElement(node, parent, cloneAround);
      elements.push(element);
      starts.set(node.attrs, element.start);
      inside = [element, undefined];
    }
    const children = (node.content ?? node).childNodes ?? [];
    for (const child of children.slice().reverse()) pending.push([child, ...inside]);
  }
  return { elements, cloned };
}

function ourAttributes(attributes) {
  const first = new Map();
  for (const [name, value] of Object.entries(attributes)) {
    const key = normalized(name).toLowerCase();
    if (!first.has(key)) first.set(key, value === true ? '' : normalized(value));
  }
  return first;
}

function ourElements(command, file) {
  const [program, ...options] = command;
  const run = spawnSync(program, [...options, '*', file], { maxBuffer: 2 ** 30 });
  if (run.error || run.status === null || run.status > 1) {
    throw new Error(`${file}: ${run.error ?? run.signal ?? run.stderr}`);
  }
  let open = { ...root, end: Infinity };
  return run.stdout.toString().split('\n').filter(Boolean).map((line) => {
    const { tag, attrs, start, end } = JSON.parse(line);
    while (open.end <= start) open = open.parent;
    const element = { tag: normalized(tag).toLowerCase(), attributes: ourAttributes(attrs), start, end, parent: open };
    open = element;
    return element;
  });
}

// --- Kinds of difference ---

const kinds = {
  noTree: 'no tree',
  onlyOurs: 'only ours',
  onlyTheirs: 'only theirs',
  tag: 'other tag',
  attributes: 'other attributes',
};

const parentKinds = [
  'reopened formatting', 'moved out of a table', 'after </body>', 'parent dropped by parse5', 'other parent',
];
const [reopened, outOfTable, afterBody, dropped, otherParent] = parentKinds;

function* ancestors(element) {
  for (let up = element.parent; up; up = up.parent) yield up;
}

// The starts of the element and its ancestors below the nearest that is one of `others`, and of clones around them.
function belowCommon(element, others) {
  const starts = [element.start, element.cloneAround];
  for (const { start, cloneAround } of ancestors(element)) {
    if (others.has(start)) break;
    starts.push(start, cloneAround);
  }
  return starts;
}

function reason(ours, theirs, page) {
  const ourAbove = new Set([...ancestors(ours)].map(({ start }) => start));
  const theirAbove = new Set([...ancestors(theirs)].map(({ start }) => start));
  const ourParentInTheirs = page.theirs.get(ours.parent.start) ?? root;
  const between = [
    ...belowCommon(theirs, ourAbove), ...belowCommon(ours, theirAbove), ...belowCommon(ourParentInTheirs, theirAbove),
  ];
  if (between.some((start) => page.cloned.has(start))) return reopened;
  const table = [...ancestors(ours)].find(({ tag }) => tag === 'table');
  if (table && !theirAbove.has(table.start)) return outOfTable;
  if (ours.start > page.bodyEnd) return afterBody;
  if ([...ourAbove].some((start) => start >= 0 && !page.theirs.has(start))) return dropped;
  return otherParent;
}

// --- A page ---

// The first element of each start: the others are its clones.
function byStart(elements) {
  const first = new Map();
  for (const element of elements) {
    if (!first.has(element.start)) first.set(element.start, element);
  }
  return first;
}

// The names of attributes that one of the two lacks or has another value of. html and body get the attributes of
// later tags of their name.
function differentAttributes(ours, theirs) {
  const mayHaveMore = ['html', 'body'].includes(theirs.tag);
  const names = new Set([...ours.attributes.keys(), ...(mayHaveMore ? [] : theirs.attributes.keys())]);
  return [...names].filter((name) => ours.attributes.get(name) !== theirs.attributes.get(name));
}

const named = ({ tag, start }) => (start < 0 ? tag : `${tag}@${start}`);

const quoted = (value) => (value === undefined ? 'none' : JSON.stringify(value.slice(0, 80)));

function* differencesOfElement(ours, theirs, page) {
  if (ours.tag !== theirs.tag) yield [kinds.tag, `parse5 has ${theirs.tag}`];
  for (const name of differentAttributes(ours, theirs)) {
    const values = [ours, theirs].map(({ attributes }) => quoted(attributes.get(name)));
    yield [kinds.attributes, `${name}: ${values[0]}, parse5 has ${values[1]}`];
  }
  if (ours.parent.start !== theirs.parent.start) {
    yield [reason(ours, theirs, page), `in ${named(ours.parent)}, parse5 has it in ${named(theirs.parent)}`];
  }
}

// [element, kind of difference, what is different]
function* differences(ours, page) {
  for (const element of ours) {
    const theirs = page.theirs.get(element.start);
    if (!theirs) yield [element, kinds.onlyOurs, `in ${named(element.parent)}`];
    else for (const difference of differencesOfElement(element, theirs, page)) yield [element, ...difference];
  }
  const starts = new Set(ours.map(({ start }) => start));
  for (const [start, element] of page.theirs) {
    if (!starts.has(start)) yield [element, kinds.onlyTheirs, `in ${named(element.parent)}`];
  }
}

// --- The report ---

class Report {
  pages = 0;
  elements = 0;
  kinds = new Map();

  constructor(shown) {
    this.shown = shown;
  }

  add(file, kind, element, what) {
    if (!this.kinds.has(kind)) this.kinds.set(kind, { elements: new Set(), files: new Set(), places: new Map() });
    const found = this.kinds.get(kind);
    found.elements.add(`${file}:${element.start}`);
    found.files.add(file);
    // one place for differences between the same tags
    const alike = `<${element.tag}> ${what.replace(/@\d+/g, '').replace(/: .*/, '')}`;
    const place = found.places.get(alike) ?? { text: `${file}:${element.start}: <${element.tag}> ${what}`, count: 0 };
    place.count += 1;
    found.places.set(alike, place);
  }

  count(kind) {
    return this.kinds.get(kind)?.elements.size ?? 0;
  }

  // Whether nothing differs but what must.
  isAlike() {
    const faults = [kinds.noTree, kinds.onlyTheirs, kinds.tag, kinds.attributes];
    return this.pages > 0 && faults.every((kind) => this.count(kind) === 0);
  }

  print() {
    const both = this.elements - this.count(kinds.onlyOurs);
    const moved = parentKinds.reduce((sum, kind) => sum + this.count(kind), 0);
    console.log(`${this.pages} pages, ${this.elements} elements, ${both} of them in both trees`);
    console.log(`${both - this.count(kinds.attributes)} have the same attributes, ${both - moved} the same parent`);
    const share = (count) => `${((100 * count) / Math.max(this.elements, 1)).toFixed(4)} %`;
    const found = [...this.kinds].sort((a, b) => b[1].elements.size - a[1].elements.size);
    for (const [kind, { elements, files }] of found) {
      console.log(`${String(elements.size).padStart(8)}  ${share(elements.size)}  ${kind}, in ${files.size} pages`);
    }
    for (const [kind, { places }] of found) {
      const mostFrequent = [...places.values()].sort((a, b) => b.count - a.count).slice(0, this.shown);
      console.log(['', `${kind}:`, ...mostFrequent.map(({ text, count }) => `${count} like ${text}`)].join('\n'));
    }
  }
}

function comparePage(file, command, report) {
  const bytes = readFileSync(file);
  if (isUtf16(bytes)) return;
  const { elements: theirs, cloned } = theirElements(bytesToText(bytes));
  const ours = ourElements(command, file);
  const bodyEnd = theirs.reduce((first, element) => Math.min(first, element.bodyEnd ?? Infinity), Infinity);
  const page = { theirs: byStart(theirs), cloned, bodyEnd };
  report.pages += 1;
  report.elements += ours.length;
  for (const [element, kind, what] of differences(ours, page)) report.add(file, kind, element, what);
}

function pagesIn(path) {
  if (!statSync(path).isDirectory()) return [path];
  const entries = readdirSync(path, { recursive: true }).filter((name) => pageSuffix.test(name)).sort();
  return entries.map((name) => join(path, name)).filter((name) => statSync(name).isFile());
}

const { values, positionals } = parseArgs({
  allowPositionals: true,
  options: {
    command: { type: 'string', default: 'build/dev/src/cli/qo select -j --fields tag,attrs,start,end' },
    show: { type: 'string', default: '10' },
  },
});
const report = new Report(Number(values.show));
for (const file of positionals.flatMap(pagesIn)) {
  try {
    comparePage(file, values.command.split(' '), report);
  } catch (error) {
    report.add(file, kinds.noTree, { tag: '', start: 0 }, error.message.trim());
  }
}
report.print();
process.exitCode = report.isAlike() ? 0 : 1;
