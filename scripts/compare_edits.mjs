#!/usr/bin/env node
// Edits templates with the tool, and lets the compilers of their languages read what comes out.
//
// Each edit changes one element, drawn by chance. Where a compiler tells of elements, its tree of the result has to be
// its tree of the source with just the asked change: names, nesting, the source of attributes, texts and code. Where it
// tells of code alone, as Nunjucks does, the nodes of the code have to be the same; those in a part that the edit takes
// away have to be a template of their own, so that no block loses one of its ends.
//
// A second table tells how many elements begin and end where the compiler says.
//
// usage: compare_edits.mjs [--tool PROGRAM] [--edits N] [--seed N] [--show N] [--all] [--language NAME]... FOLDER
//   --tool       the tool (default: build/dev/src/cli/qo)
//   --edits      how many for each language (default 1000)
//   --show       how many broken edits to show of each language (default 5); --all shows all
//   --language   only this one
//   FOLDER       holds a folder of templates for each language, as fetch_templates.py makes it
//
// The status is 1 when an edit broke a template, or nothing was kept.

import { spawnSync } from 'node:child_process';
import { existsSync, readFileSync, readdirSync, statSync } from 'node:fs';
import { join } from 'node:path';
import { parseArgs } from 'node:util';

import { languages } from './template_languages.mjs';

const { values: options, positionals } = parseArgs({
  allowPositionals: true,
  options: {
    tool: { type: 'string', default: 'build/dev/src/cli/qo' },
    edits: { type: 'string', default: '1000' },
    seed: { type: 'string', default: '1' },
    show: { type: 'string', default: '5' },
    all: { type: 'boolean', default: false },
    language: { type: 'string', multiple: true, default: Object.keys(languages) },
  },
});

// --- Chance ---

let state = Number(options.seed);
function random() {
  state = (state + 0x6d2b79f5) | 0;
  let bits = Math.imul(state ^ (state >>> 15), 1 | state);
  bits = (bits + Math.imul(bits ^ (bits >>> 7), 61 | bits)) ^ bits;
  return ((bits ^ (bits >>> 14)) >>> 0) / 2 ** 32;
}
const pick = (list) => list[Math.floor(random() * list.length)];
const shuffled = (list) => list.map((item) => [random(), item]).sort(([a], [b]) => a - b).map(([, item]) => item);

// --- A tree as a list of lines ---

const element = (name, attributes, content) => [
  `<${name}`, ...attributes.map((source) => `@${source}`), '>', ...content, '</',
];

const sources = ({ attributes }) => attributes.map(({ source }) => source);

function* linesOf(nodes, change) {
  for (const node of nodes) {
    if (node.kind === 'text') yield `'${node.text}`;
    else if (node === change?.target) yield* change.operation.gives(node, [...linesOf(node.children)], change.choice, change.language);
    else if (node.kind === 'element') yield* element(node.name, sources(node), linesOf(node.children, change));
    else yield* [`{${node.label}`, ...linesOf(node.children, change), '}'];
  }
}

// An attribute whose value needs no quotes is the same with any.
const withoutQuotes = (line) => line.replace(/^(@[^=]+=)(["'])([\w-]+)\2$/, '$1$3');

// With one line for texts that are beside each other. Blanks in front of the first tag and at the end are left out:
// Astro and Svelte drop them.
function joined(lines) {
  const list = [];
  for (const line of [...lines].map(withoutQuotes)) {
    if (line.startsWith("'") && list.at(-1)?.startsWith("'")) list.push(list.pop() + line.slice(1));
    else list.push(line);
  }
  const firstTag = list.findIndex((line) => line.startsWith('<'));
  const shown = list.map((line, at) => (at < firstTag || firstTag < 0 ? line.replace(/^'\s+/, "'") : line));
  if (/^'\s*$/.test(shown.at(-1))) shown.pop();
  return shown.filter((line) => line !== "'");
}

function* elementsIn(nodes, depth = 0) {
  for (const node of nodes) {
    if (node.kind === 'element') yield { node, depth };
    yield* elementsIn(node.children ?? [], depth + 1);
  }
}

// --- Operations: what the tool is asked, and what it has to give ---

const markup = '<qo-new class="qo-c">qo</qo-new>';
const markupLines = element('qo-new', ['class="qo-c"'], ["'qo"]);

const unquoted = (value) => value.replace(/^(["'])(.*)\1$/s, '$2');
const isCode = (value) => /^[{`]/.test(value);
const same = (a, b) => a.toLowerCase() === b.toLowerCase();
const wholeTag = (node, content) => element(node.name, sources(node), content);

// Around a value that had none: as elsewhere in the tag, unless the value has that one.
function quoteFor(attributes, value) {
  const found = attributes.map((one) => one.value?.[0]).find((first) => first === '"' || first === "'") ?? '"';
  if (!value.includes(found)) return found;
  return found === '"' ? "'" : '"';
}

// The attributes with a class more, or none if the value is code that a class cannot be added to.
function withClass({ attributes }, keepsCode) {
  const old = attributes.find(({ name }) => same(name, 'class'));
  if (!old) return [...sources({ attributes }), 'class="qo-k"'];
  const value = old.value ?? '';
  if (isCode(value) && !(keepsCode && value.startsWith('{'))) return undefined;
  const plain = unquoted(value);
  const gap = plain === '' || /\s$/.test(plain) ? '' : ' ';
  const quote = isCode(value) ? quoteFor(attributes, value) : value.startsWith("'") ? "'" : '"';
  const added = `${old.name}=${quote}${plain}${gap}qo-k${quote}`;
  return attributes.map((one) => (one === old ? added : one.source));
}

function withValue({ attributes }, chosen) {
  const [first] = attributes.filter(({ name }) => same(name, chosen));
  const quote = first.value?.startsWith("'") ? "'" : '"';
  return attributes.map((one) => (one !== first ? one.source : `${one.name}=${quote}qo${quote}`));
}

const rawContent = ['script', 'style', 'textarea', 'title', 'iframe', 'noscript', 'template'];
const takesMarkup = ({ name }) => !rawContent.includes(name);

const isName = ({ name }) => /^[\w:@.*#()[\]-]+$/.test(name);
const nameIn = (node) => pick(node.attributes.filter(isName).map(({ name }) => name));
const isPlainName = ({ name, value }) => /^(?!v-)[\w-]+$/.test(name) && value !== undefined;
const plainNameIn = (node) => pick(node.attributes.filter(isPlainName).map(({ name }) => name));

// `choose` draws what the arguments and the result depend on; `deletes` tells which part of the element goes away.
const operations = {
  addClass: {
    args: () => ['--add-class', 'qo-k'],
    gives: (node, content, choice, language) => {
      const attributes = withClass(node, language.quotesKeepCode);
      return attributes ? element(node.name, attributes, content) : ['no class can be added'];
    },
  },
  newAttribute: {
    args: () => ['--attr', 'data-qo=qo'],
    gives: (node, content) => element(node.name, [...sources(node), 'data-qo="qo"'], content),
  },
  setAttribute: {
    suits: (node) => node.attributes.some(isPlainName),
    choose: plainNameIn,
    args: (name) => ['--attr', `${name}=qo`],
    gives: (node, content, name) => element(node.name, withValue(node, name), content),
    deletes: 'attribute',
  },
  deleteAttribute: {
    suits: (node) => node.attributes.some(isName),
    choose: nameIn,
    args: (name) => ['--del-attr', name],
    gives: (node, content, chosen) => {
      const rest = node.attributes.filter(({ name }) => !same(name, chosen));
      return element(node.name, sources({ attributes: rest }), content);
    },
    deletes: 'attribute',
  },
  text: {
    suits: takesMarkup,
    args: () => ['--text', 'qo text'],
    gives: (node) => wholeTag(node, ["'qo text"]),
    deletes: 'inner',
  },
  prepend: {
    suits: takesMarkup,
    args: () => ['--prepend', markup],
    gives: (node, content) => wholeTag(node, [...markupLines, ...content]),
  },
  append: {
    suits: takesMarkup,
    args: () => ['--append', markup],
    gives: (node, content) => wholeTag(node, [...content, ...markupLines]),
  },
  before: {
    args: () => ['--before', markup],
    gives: (node, content) => [...markupLines, ...wholeTag(node, content)],
  },
  after: {
    args: () => ['--after', markup],
    gives: (node, content) => [...wholeTag(node, content), ...markupLines],
  },
  remove: {
    args: () => ['--remove'],
    gives: () => [],
    deletes: 'html',
  },
  replace: {
    args: () => ['--replace', markup],
    gives: () => markupLines,
    deletes: 'html',
  },
  wrap: {
    args: () => ['--wrap', '<qo-wrap class="qo-c"></qo-wrap>'],
    gives: (node, content) => element('qo-wrap', ['class="qo-c"'], wholeTag(node, content)),
  },
  unwrap: {
    suits: takesMarkup,
    args: () => ['--unwrap'],
    gives: (node, content) => content,
    deletes: 'tags',
  },
  rename: {
    suits: (node) => takesMarkup(node) && /^[\w:.-]+$/.test(node.name),
    args: () => ['--rename', 'qo-renamed'],
    gives: (node, content) => element('qo-renamed', sources(node), content),
  },
};

// --- The tool ---

function run(args) {
  const done = spawnSync(options.tool, args, { maxBuffer: 2 ** 28 });
  const faults = [null, 126, 127];  // a signal, and what did not start
  if (done.error || faults.includes(done.status)) {
    throw new Error(`${options.tool} ${args.join(' ')}: ${done.error ?? done.signal ?? done.stderr}`);
  }
  return { status: done.status, out: done.stdout.toString(), err: done.stderr.toString().trim() };
}

// For each byte of the source, and its end, how many units of a string come before it.
function unitsOfBytes(source) {
  const units = [];
  let count = 0;
  for (const character of source) {
    for (let left = Buffer.byteLength(character); left > 0; left -= 1) units.push(count);
    count += character.length;
  }
  units.push(count);
  return units;
}

// The tool's elements by where they begin.
function toolElements({ path, source, language }) {
  const { status, out, err } = run(['select', ...(language.options ?? []), '-j', '--fields', 'tag,attrs,html,inner,start,end,path', '*', path]);
  if (status > 1) throw new Error(`${path}: ${err}`);
  const units = language.inBytes ? undefined : unitsOfBytes(source);
  const place = (offset) => (units ? units[offset] : offset);
  const found = out.split('\n').filter(Boolean).map((line) => JSON.parse(line));
  return new Map(found.map((one) => [place(one.start), { ...one, start: place(one.start), end: place(one.end) }]));
}

// --- Judging a result ---

function lineAndColumn(source, offset) {
  const lines = source.slice(0, offset).split('\n');
  return `${lines.length}:${lines.at(-1).length + 1}`;
}

const shortened = (line) => (line === undefined ? 'the end' : JSON.stringify(line.slice(0, 90)));

// What is wrong with the tree of the result, or undefined.
async function faultOfTree(file, target, operation, choice, result) {
  const wanted = joined(linesOf(file.tree, { target: target.node, operation, choice, language: file.language }));
  const found = joined(linesOf(await file.language.read(result)));
  const at = wanted.findIndex((line, index) => line !== found[index]);
  if (at < 0 && found.length === wanted.length) return undefined;
  const index = at < 0 ? wanted.length : at;
  return `${shortened(found[index])} instead of ${shortened(wanted[index])}`;
}

function typesIn(nodes) {
  const counts = new Map();
  JSON.stringify(nodes, (key, value) => {
    if (['type', 'kind'].includes(key) && typeof value === 'string') counts.set(value, (counts.get(value) ?? 0) + 1);
    return value;
  });
  return counts;
}

// The parts of the source that the edit took away.
function deletedParts(source, target, operation, choice, result) {
  const { html, inner, start } = target.ours;
  if (operation.deletes === 'html') return [html];
  if (operation.deletes === 'inner') return [inner];
  if (operation.deletes === 'tags') {
    const at = html.indexOf(inner, html.length - inner.length - /<\/[^<]*$/.exec(html)?.[0].length || 0);
    return [html.slice(0, at), html.slice(at + inner.length)];
  }
  return [deletedAttribute(source, start, choice, result)];
}

// What stood between the parts that source and result share. Where these may be told otherwise, it begins at the name.
function deletedAttribute(source, start, name, result) {
  let suffix = 0;
  const most = Math.min(source.length, result.length) - start;
  while (suffix < most && source.at(-1 - suffix) === result.at(-1 - suffix)) suffix += 1;
  let prefix = 0;
  while (prefix < result.length && source[prefix] === result[prefix]) prefix += 1;
  const overlap = Math.max(0, prefix + suffix - result.length);
  for (let back = overlap; back >= 0; back -= 1) {
    const part = source.slice(prefix - back, source.length - suffix + overlap - back);
    if (back === 0 || same(part.trim().slice(0, name.length), name)) return part;
  }
}

function faultOfNodes(file, target, operation, choice, result) {
  const found = file.language.nodes(result);
  if (!operation.deletes) {
    return JSON.stringify(found) === JSON.stringify(file.nodes) ? undefined : 'the nodes of the code differ';
  }
  const parts = deletedParts(file.source, target, operation, choice, result);
  const counts = typesIn(file.nodes);
  for (const nodes of [found, ...parts.map((part) => nodesOfPart(file, part))]) {
    for (const [type, count] of typesIn(nodes)) counts.set(type, (counts.get(type) ?? 0) - count);
  }
  const [wrong] = [...counts].filter(([type, count]) => count !== 0);
  return wrong ? `${Math.abs(wrong[1])} ${wrong[0]} ${wrong[1] > 0 ? 'lost' : 'more'}` : undefined;
}

function nodesOfPart(file, part) {
  try {
    return file.language.nodes(part);
  } catch (error) {
    throw new Error(`${shortened(part)} is gone, and no template of its own: ${error.message}`);
  }
}

async function judged(file, target, operation, choice) {
  const args = operation.args(choice);
  const { status, out, err } = run(['edit', ...(file.language.options ?? []), target.ours.path, ...args, file.path]);
  const edit = `${target.ours.path} ${args.map((arg) => `'${arg}'`).join(' ')}`;
  if (status === 2) return { verdict: 'refused', edit, what: err };
  if (status !== 0) return { verdict: 'broken', edit, what: `status ${status} ${err}` };
  try {
    const fault = file.tree ? await faultOfTree(file, target, operation, choice, out)
      : faultOfNodes(file, target, operation, choice, out);
    return { verdict: fault ? 'broken' : 'kept', edit, what: fault };
  } catch (error) {
    return { verdict: 'broken', edit, what: `not read any more: ${error.message.split('\n').slice(0, 2).join(' ')}` };
  }
}

// --- Files ---

function filesIn(folder) {
  if (!existsSync(folder)) return [];
  const names = readdirSync(folder, { recursive: true }).sort().map((name) => join(folder, name));
  return names.filter((name) => statSync(name).isFile());
}

// A file that its language's compiler takes, or undefined.
async function readFile(path, language) {
  const bytes = readFileSync(path);
  const source = bytes.toString();
  if (!bytes.equals(Buffer.from(source)) || source.startsWith('\ufeff')) return undefined;
  try {
    return { path, source, language, tree: await language.read?.(source), nodes: language.nodes?.(source) };
  } catch {
    return undefined;
  }
}

const isPlainTarget = ({ node }) => !['script', 'style'].includes(node.name) && !node.name.startsWith('svelte:');

// An element of a language without a tree. Attributes that may be written twice, as in two branches, are left out.
function nodeOf({ tag, attrs, html, inner }) {
  const startTag = html.slice(0, html.length - inner.length).toLowerCase();
  const isOnce = ([name]) => startTag.split(name.toLowerCase()).length === 2;
  const attributes = Object.entries(attrs).filter(isOnce);
  return {
    name: tag,
    attributes: attributes.map(([name, value]) => ({ name, value: value === true ? undefined : value })),
  };
}

// Elements that both the tool and the compiler have.
function targetsIn(file, ours) {
  if (!file.tree) return [...ours.values()].map((one) => ({ node: nodeOf(one), ours: one })).filter(isPlainTarget);
  const inside = [...elementsIn(file.tree)].filter(({ depth }) => !file.language.isOuter?.(depth));
  const both = inside.map(({ node }) => ({ node, ours: ours.get(node.start) }));
  return both.filter((one) => one.ours && isPlainTarget(one));
}

function comparePlaces(file, ours, places) {
  if (!file.tree) return;
  const theirs = [...elementsIn(file.tree)].map(({ node }) => node);
  for (const { start, end, name } of theirs) {
    const one = ours.get(start);
    places.elements += 1;
    places.begin += one ? 1 : 0;
    places.told += end === undefined ? 0 : 1;
    places.end += one && end === one.end ? 1 : 0;
    if (!one || (end !== undefined && end !== one.end)) {
      const ends = one ? [one.end, end].map((offset) => lineAndColumn(file.source, offset)) : [];
      const what = one ? `ends at ${ends[0]}, not ${ends[1]}` : 'is none';
      places.other.push(`${file.path}:${lineAndColumn(file.source, start)}: <${name}> ${what}`);
    }
  }
  const starts = new Set(theirs.map(({ start }) => start));
  for (const { start, tag } of ours.values()) {
    if (starts.has(start)) continue;
    places.onlyOurs += 1;
    places.other.push(`${file.path}:${lineAndColumn(file.source, start)}: <${tag}> is ours alone`);
  }
}

// --- A language ---

async function compareLanguage(name, folder) {
  const language = languages[name];
  const files = [];
  for (const path of filesIn(join(folder, name))) files.push(await readFile(path, language));
  return compareFiles(name, files.filter(Boolean));
}

async function compareFiles(name, files) {
  const verdicts = { kept: [], refused: [], broken: [] };
  const places = { elements: 0, begin: 0, told: 0, end: 0, onlyOurs: 0, other: [] };
  const perFile = Math.ceil(Number(options.edits) / Math.max(files.length, 1));
  const turns = Object.entries(operations);
  let turn = 0;
  for (const file of shuffled(files)) {
    const ours = toolElements(file);
    comparePlaces(file, ours, places);
    const targets = targetsIn(file, ours);
    for (let left = targets.length > 0 ? perFile : 0; left > 0; left -= 1) {
      const [kind, operation] = turns[turn % turns.length];
      turn += 1;
      const suited = targets.filter(({ node }) => operation.suits?.(node) ?? true);
      if (suited.length === 0) continue;
      const target = pick(suited);
      const { verdict, edit, what } = await judged(file, target, operation, operation.choose?.(target.node));
      verdicts[verdict].push({ kind, place: `${file.path}: ${edit}`, what });
    }
  }
  return { name, files: files.length, verdicts, places };
}

// --- The report ---

const share = (part, whole) => `${((100 * part) / Math.max(whole, 1)).toFixed(2)} %`;

function printRow(cells) {
  console.log(cells.map((cell, at) => (at === 0 ? String(cell).padEnd(12) : String(cell).padStart(11))).join(''));
}

function printVerdicts(reports) {
  printRow(['', 'files', 'edits', 'kept', 'refused', 'broken']);
  for (const { name, files, verdicts } of reports) {
    const counts = ['kept', 'refused', 'broken'].map((verdict) => verdicts[verdict].length);
    printRow([name, files, counts.reduce((a, b) => a + b), ...counts]);
  }
}

function printPlaces(reports) {
  printRow(['', 'elements', 'same begin', 'end told', 'same end', '', 'ours alone']);
  for (const { name, places } of reports.filter((report) => report.places.elements > 0)) {
    const { elements, begin, told, end, onlyOurs } = places;
    printRow([name, elements, share(begin, elements), told, end, share(end, told), onlyOurs]);
  }
}

function printFaults({ name, verdicts, places }) {
  const most = options.all ? Infinity : Number(options.show);
  const list = (title, faults) => {
    if (faults.length > 0) console.log([`\n${name}, ${title}:`, ...faults.slice(0, most)].join('\n'));
  };
  list('broken', verdicts.broken.map(({ kind, place, what }) => `${kind}: ${place}\n    ${what}`));
  list('other places', places.other);
}

if (positionals.length !== 1) throw new Error('usage: compare_edits.mjs [OPTION...] FOLDER');
const reports = [];
for (const name of options.language) reports.push(await compareLanguage(name, positionals[0]));
printVerdicts(reports);
console.log();
printPlaces(reports);
reports.forEach(printFaults);
const isRight = ({ verdicts }) => verdicts.broken.length === 0 && verdicts.kept.length > 0;
process.exitCode = reports.every(isRight) ? 0 : 1;
