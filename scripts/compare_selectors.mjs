#!/usr/bin/env node
// Compares what random selectors find in pages with what a headless Chromium and cheerio find.
//
// Each page is read by the library alone: browser and cheerio are given its tree, node by node. Beside the files, random
// pages full of forms, lists and languages are made. Each selector is made of names, classes and values of its page.
// Some are broken on purpose: what the library takes, the browser has to take, too.
//
// The browser is right. What cheerio finds otherwise is shown, but is a fault only for :contains(), which is not the
// browser's.
//
// usage: compare_selectors.mjs [--driver PROGRAM] [--selectors N] [--pages N] [--seed N] [--show N] [FILE|FOLDER...]
//   --driver      tests/selector_driver of a build (default: build/dev/tests/selector_driver)
//   --selectors   how many for each page (default 100)
//   --pages       how many random pages (default 40)
//
// Beforehand: npm install --prefix build/compare cheerio

import { isUtf8 } from 'node:buffer';
import { spawnSync } from 'node:child_process';
import { mkdtempSync, readFileSync, readdirSync, rmSync, statSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { parseArgs } from 'node:util';

const modules = new URL('../build/compare/node_modules/', import.meta.url);
const { load } = await import(new URL('cheerio/dist/esm/index.js', modules));
const { Comment, Document, Element, Text } = await import(new URL('domhandler/lib/esm/index.js', modules));

const { values: options, positionals } = parseArgs({
  allowPositionals: true,
  options: {
    driver: { type: 'string', default: 'build/dev/tests/selector_driver' },
    selectors: { type: 'string', default: '100' },
    pages: { type: 'string', default: '40' },
    seed: { type: 'string', default: '1' },
    show: { type: 'string', default: '20' },
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
const chance = (share) => random() < share;
const upTo = (count) => Math.floor(random() * count);
const pick = (list) => list[upTo(list.length)];
const some = (count, make) => Array.from({ length: 1 + upTo(count) }, make);

// --- Random pages ---

const inputTypes = ['text', 'CHECKBOX', 'radio', 'hidden', 'submit', 'reset', 'image', 'button', 'number', 'Date', 'tel',
  'range', 'color', 'file', 'search', 'password', 'what'];
const containers = ['div', 'ul', 'li', 'p', 'section', 'span', 'b', 'form', 'fieldset', 'legend', 'svg', 'bdi', 'x-y'];
let serial = 0;

function randomAttributes(tag) {
  const out = [];
  const add = (share, make) => chance(share) && out.push(make());
  add(0.3, () => `class="${some(3, () => pick(['a', 'b', 'c', 'A', 'x&amp;y'])).join(' ')}"`);
  add(0.1, () => `id="${pick(['i', 'j', 'k', 'I'])}"`);
  add(0.1, () => `lang="${pick(['en', 'en-GB', 'de', 'de-Latn-CH', '', 'EN-us'])}"`);
  add(0.1, () => `dir="${pick(['ltr', 'RTL', 'auto', 'what'])}"`);
  add(0.1, () => `title="${pick(['', 'one', 'one two', 'one-two', 'ONE', 'a&lt;b'])}"`);
  add(0.05, () => `contenteditable="${pick(['', 'true', 'false', 'plaintext-only', 'what'])}"`);
  if (/^(input|button|select|textarea|fieldset|optgroup|option)$/.test(tag)) add(0.25, () => 'disabled');
  if (/^(input|select|textarea)$/.test(tag)) {
    add(0.2, () => 'required');
    add(0.2, () => 'readonly');
    add(0.3, () => `placeholder="${pick(['', 'p'])}"`);
  }
  return out.map((attribute) => ` ${attribute}`).join('');
}

function randomControl() {
  const attributes = (tag) => randomAttributes(tag);
  switch (upTo(6)) {
    case 0:
      return `<button type=${pick(['submit', 'reset', 'button', 'what'])}${attributes('button')}>ok</button>`;
    case 1:
      return `<textarea${attributes('textarea')}>${pick(['', 'text', '\n'])}</textarea>`;
    case 2:
      return `<select multiple${attributes('select')}><optgroup${attributes('optgroup')}>` +
        `<option${pick(['', ' selected'])}${attributes('option')}>1</optgroup><option>2</select>`;
    case 3:
      return `<a${pick(['', ' href=x', ' name=x'])}${attributes('a')}>l</a>`;
    default:
      return `<input type=${pick(inputTypes)} name=n${(serial += 1)}${pick(['', ' checked', ' value=1', ' value=""'])}` +
        `${attributes('input')}>`;
  }
}

function randomContent(depth) {
  if (depth === 0 || chance(0.2)) return pick(['', ' ', 'text', '\u05d0\u05d1', '<!--c-->', '1', 'a&amp;b']);
  if (chance(0.3)) return randomControl();
  const tag = pick(containers);
  return `<${tag}${randomAttributes(tag)}>${some(5, () => randomContent(depth - 1)).join('')}</${tag}>`;
}

const randomPage = () => `<!DOCTYPE html><html${pick(['', ' lang=de'])}><head>` +
  `${pick(['', '<meta http-equiv=Content-Language content=fr>'])}</head><body>` +
  `${some(8, () => randomContent(5)).join('')}</body></html>`;

// --- Random selectors ---

const escaped = (name) => name.replace(/^-?\d|[^-\w\x80-\uffff]/g, (text) =>
  [...text].map((c) => (c === '-' ? '-' : `\\${c.codePointAt(0).toString(16)} `)).join(''));
const quoted = (text) => `"${text.replace(/["\\]/g, '\\$&').replace(/[\n\r\f]/g, (c) => `\\${c.codePointAt(0).toString(16)} `)}"`;
const isName = (text) => /^[a-z_][-\w]*$/i.test(text);

// Their text is no part of that around them, other than in cheerio.
const isCode = (node) => /^(script|style)$/.test(node.tag);

// What is in a page to ask for.
class Vocabulary {
  constructor(nodes) {
    const elements = nodes.filter((node) => node.kind === 'element');
    this.tags = [...new Set(elements.map((node) => node.tag))];
    this.attributes = elements.flatMap((node) => Object.entries(node.attrs)).filter(([name]) => isName(name));
    const isShown = (node) => node.kind === 'text' && !isCode(nodes[node.parent]) && node.text.trim() !== '' &&
      !node.text.includes('<');  // would be markup to cheerio
    this.texts = nodes.filter(isShown).map((node) => node.text.trim());
  }

  values(wanted) {
    return this.attributes.filter(([name]) => name === wanted).flatMap(([, value]) => value.split(/\s+/)).filter(Boolean);
  }
}

const simplePseudos = ['root', 'scope', 'empty', 'first-child', 'last-child', 'only-child', 'first-of-type',
  'last-of-type', 'only-of-type', 'checked', 'disabled', 'enabled', 'required', 'optional', 'read-only', 'read-write',
  'placeholder-shown', 'default', 'link', 'any-link', 'lang(en)', 'lang(de)', 'lang(fr)', 'lang(en-GB)', 'lang(EN)',
  'dir(ltr)', 'dir(rtl)'];  // the browser knows neither strings nor lists in lang()

class SelectorMaker {
  constructor(vocabulary) {
    this.words = vocabulary;
  }

  attribute() {
    const [name, value] = this.words.attributes.length > 0 ? pick(this.words.attributes) : ['title', 'x'];
    const shown = chance(0.1) ? name.toUpperCase() : name;
    if (chance(0.25)) return `[${shown}]`;
    const from = upTo(value.length + 1);
    let wanted = pick([value, value.slice(from), value.slice(0, from), pick(value.split(/\s/)), value.slice(from, from + 3)]);
    if (chance(0.1)) wanted = wanted.toUpperCase();
    const written = isName(wanted) && chance(0.3) ? wanted : quoted(wanted);
    const flag = pick(['', '', '', ' i', written.endsWith('"') ? 'I' : ' I']);  // the browser has no "s"
    return `[${shown}${pick(['=', '~=', '|=', '^=', '$=', '*='])}${written}${flag}]`;
  }

  nth() {
    return pick(['even', 'odd', '2n+1', '3n', '-n+3', 'n+2', '2', '1', '3n - 1', '-2n+5', '0n+1', '0', '-3']);
  }

  pseudo(depth, inHas) {
    const nested = () => this.list(depth - 1, inHas);
    switch (depth > 0 ? upTo(9) : 8) {
      case 0:
        return `:is(${nested()})`;
      case 1:
      case 2:
        return `:not(${nested()})`;
      case 3:
        return inHas ? `:where(${nested()})` : `:has(${pick(['', '> ', '+ ', '~ '])}${this.list(depth - 1, true)})`;
      case 4:
        return `:nth-${pick(['', 'last-'])}child(${this.nth()} of ${nested()})`;
      case 5:
        return `:nth-${pick(['child', 'last-child', 'of-type', 'last-of-type'])}(${this.nth()})`;
      default:
        return `:${pick(simplePseudos)}`;
    }
  }

  tag() {
    return chance(0.2) ? '*' : escaped(pick(this.words.tags));
  }

  simple(depth, inHas) {
    const classes = this.words.values('class');
    const ids = this.words.values('id');
    const kind = random();
    if (kind < 0.25 && classes.length > 0) return `.${escaped(pick(classes))}`;
    if (kind < 0.3 && ids.length > 0) return `#${escaped(pick(ids))}`;
    return kind < 0.5 ? this.attribute() : this.pseudo(depth, inHas);
  }

  compound(depth, inHas) {
    const rest = chance(0.6) ? '' : some(2, () => this.simple(depth, inHas)).join('');
    return rest === '' || chance(0.4) ? this.tag() + rest : rest;
  }

  complex(depth, inHas) {
    let out = this.compound(depth, inHas);
    while (chance(0.4)) out += pick([' ', ' ', ' > ', '>', ' + ', ' ~ ']) + this.compound(depth, inHas);
    return out;
  }

  list(depth, inHas = false) {
    let out = this.complex(depth, inHas);
    while (chance(0.15)) out += `, ${this.complex(depth, inHas)}`;
    return out;
  }

  broken() {
    const text = this.list(2);
    const at = upTo(text.length);
    return text.slice(0, at) + pick(['', ...'()[]"\':.#*+>~|,=-n0 \\!@&a']) + text.slice(at + upTo(3));
  }

  next() {
    if (chance(0.1) && this.words.texts.length > 0) {
      const text = pick(this.words.texts);
      return `${this.tag()}:not(script, style):contains(${quoted(text.slice(upTo(text.length)).slice(0, 1 + upTo(12)))})`;
    }
    return chance(0.15) ? this.broken() : this.list(2);
  }
}

// --- The three ---

function drive(file, selectors) {
  const run = spawnSync(options.driver, [file], { input: selectors.join('\n'), maxBuffer: 2 ** 30 });
  if (run.status !== 0) throw new Error(`${options.driver} ${file}: ${run.stderr || run.signal}`);
  return run.stdout.toString().split('\n').filter(Boolean).map((line) => JSON.parse(line));
}

// Runs in the browser, over [{nodes, selectors}].
function inBrowser(pages) {
  const namespaces = { svg: 'http://www.w3.org/2000/svg', math: 'http://www.w3.org/1998/Math/MathML' };
  const attach = (made, parent, child) => {
    if (parent === made[0] && child.nodeType === 3) return;
    parent.appendChild(child);
  };
  const makers = {
    element: (page, node) => (node.space === 'html' ? page.createElement(node.tag)
      : page.createElementNS(namespaces[node.space], node.tag)),
    text: (page, node) => page.createTextNode(node.text),
    cdata: (page, node) => page.createTextNode(node.text),
    comment: (page, node) => page.createComment(node.text),
    code: (page) => page.createComment(''),
  };
  const build = (nodes) => {
    const page = document.implementation.createHTMLDocument('');
    page.documentElement.remove();
    const made = [page];
    for (const node of nodes.slice(1)) {
      const maker = makers[node.kind];
      const child = maker ? maker(page, node) : null;
      made.push(child);
      if (child === null) continue;
      for (const [name, value] of Object.entries(node.attrs ?? {})) {
        try {
          child.setAttribute(name, value);
        } catch {  // no name for a script
        }
      }
      attach(made, made[node.parent], child);
    }
    return made;
  };
  return pages.map(({ nodes, selectors }) => {
    let made;
    try {
      made = build(nodes);
    } catch (error) {
      return String(error);
    }
    const positions = new Map(made.map((node, i) => [node, i]));
    return selectors.map((selector) => {
      try {
        return [...made[0].querySelectorAll(selector)].map((node) => positions.get(node));
      } catch {
        return null;
      }
    });
  });
}

function browse(pages) {
  const folder = mkdtempSync(join(tmpdir(), 'compare-'));
  const data = JSON.stringify(pages).replace(/</g, '\\u003c');
  const result = 'btoa(unescape(encodeURIComponent(JSON.stringify(inBrowser(pages)))))';
  writeFileSync(join(folder, 'page.html'), `<!DOCTYPE html><meta charset=utf-8><pre></pre><script>const pages = ${data};
    ${inBrowser}; document.querySelector('pre').textContent = ${result};</script>`);
  const run = spawnSync('chromium', ['--headless', '--no-sandbox', '--disable-gpu', '--disable-dev-shm-usage', '--disable-quic',
    '--no-first-run', '--disable-background-networking', '--disable-component-update', '--disable-sync',
    `--user-data-dir=${join(folder, 'profile')}`, '--dump-dom', `file://${join(folder, 'page.html')}`], { maxBuffer: 2 ** 30 });
  rmSync(folder, { recursive: true, force: true });
  const found = /<pre>([^<]*)<\/pre>/.exec(run.stdout.toString());
  if (!found || found[1] === '') throw new Error(`the browser gave no result: ${run.stderr}`);
  return JSON.parse(Buffer.from(found[1], 'base64').toString());
}

// The functions of cheerio over the tree.
function cheerioOf(nodes) {
  const makers = {
    document: () => new Document([]),
    element: (node) => new Element(node.tag, node.attrs, []),
    text: (node) => new Text(isCode(nodes[node.parent]) ? '' : node.text),
    cdata: (node) => new Text(node.text),
  };
  const made = nodes.map((node) => (makers[node.kind] ?? ((other) => new Comment(other.text)))(node));
  nodes.forEach((node, i) => {
    if (i === 0) return;
    const siblings = made[node.parent].children;
    made[i].parent = made[node.parent];
    made[i].prev = siblings.at(-1) ?? null;
    if (made[i].prev) made[i].prev.next = made[i];
    siblings.push(made[i]);
  });
  const positions = new Map(made.map((node, i) => [node, i]));
  const $ = load(made[0]);
  return (selector) => {
    try {
      return $(selector).toArray().map((node) => positions.get(node)).sort((a, b) => a - b);
    } catch {
      return null;
    }
  };
}

// --- Comparison ---

// Where the library is stricter than the browser, on purpose: what it cannot know, what has no end, and what browsers drop
// from the lists of :is() and :where().
const strict = /asks for what|pseudo-element|namespaces|has no end|to end the argument|not the end|parts that depend|"&"|ltr or rtl|pseudo-class :end$/;
const isStricter = (selector, message) => strict.test(message) || /:(is|where)\(/i.test(selector) || /\\(?!\d)/.test(selector);

// What the browser does not know of Selectors Level 4.
const isNewer = (selector) => /:lang\([^)]*[,"']|["'\s]s\s*\]/i.test(selector);

class Report {
  kinds = new Map();
  count = 0;

  add(kind, text) {
    if (!this.kinds.has(kind)) this.kinds.set(kind, []);
    this.kinds.get(kind).push(text);
  }

  compare(page, selector, ours, browser, cheerio) {
    this.count += 1;
    const isOwn = /:(contains|matches|comment)\b/.test(selector);
    const same = (a, b) => JSON.stringify(a) === JSON.stringify(b);
    const shown = (theirs) => {
      const [mine, other] = [new Set(ours.error ? [] : ours), new Set(theirs ?? [])];
      const place = page.nodes.findIndex((node, i) => mine.has(i) !== other.has(i));
      const lists = [ours, theirs].map((found) => JSON.stringify(found).slice(0, 150));
      return [page.name, selector, `ours ${lists[0]}`, `theirs ${lists[1]}`, `first at ${JSON.stringify(page.nodes[place])}`]
        .join('\n      ');
    };
    if (ours.error) {
      if (!isOwn && browser !== null) this.add(isStricter(selector, ours.error) ? 'refused on purpose' : 'REFUSED', shown(browser));
      return;
    }
    if (ours.length > 0) this.add('found something', '');
    if (!isOwn && browser === null) return this.add(isNewer(selector) ? 'unknown to the browser' : 'TAKEN', shown(browser));
    if (!isOwn && !same(ours, browser)) return this.add('OTHERWISE IN THE BROWSER', shown(browser));
    if (cheerio === null || same(ours, cheerio)) return;
    this.add(isOwn ? 'TEXT OTHERWISE IN CHEERIO' : 'otherwise in cheerio alone', shown(cheerio));
  }

  print() {
    console.log(`${this.count} selectors`);
    for (const [kind, places] of this.kinds) console.log(`${String(places.length).padStart(8)}  ${kind}`);
    for (const [kind, places] of this.kinds) {
      if (places[0] === '') continue;
      console.log([`\n${kind}:`, ...places.slice(0, Number(options.show))].join('\n    '));
    }
  }

  isAlike() {
    return this.count > 0 && [...this.kinds.keys()].every((kind) => kind !== kind.toUpperCase());
  }
}

function pagesIn(path) {
  if (!statSync(path).isDirectory()) return [path];
  const names = readdirSync(path, { recursive: true }).filter((name) => /\.x?html?$/i.test(name)).sort();
  return names.map((name) => join(path, name)).filter((name) => statSync(name).isFile());
}

// Pages that are not UTF-8 cannot be told in JSON; a browser's document has one element at its top.
function prepared(name, file) {
  if (!isUtf8(readFileSync(file))) return null;
  const [nodes] = drive(file, []);
  if (nodes.filter((node) => node.parent === 0 && node.kind === 'element').length !== 1) return null;
  const maker = new SelectorMaker(new Vocabulary(nodes));
  const selectors = Array.from({ length: Number(options.selectors) }, () => maker.next().replace(/[\n\r\f]/g, ' '));
  return { name, nodes, selectors, ours: drive(file, selectors).slice(1) };
}

const report = new Report();
const folder = mkdtempSync(join(tmpdir(), 'compare-'));
const files = positionals.flatMap(pagesIn).map((file) => [file, file]);
for (let i = 0; i < Number(options.pages); i += 1) {
  const file = join(folder, `${i}.html`);
  writeFileSync(file, randomPage());
  files.push([`random page ${i}`, file]);
}
const pages = files.map(([name, file]) => prepared(name, file)).filter(Boolean);
rmSync(folder, { recursive: true });
for (let begin = 0; begin < pages.length; begin += 20) {
  const batch = pages.slice(begin, begin + 20);
  const browser = browse(batch.map(({ nodes, selectors }) => ({ nodes, selectors })));
  batch.forEach((page, i) => {
    if (typeof browser[i] === 'string') return report.add(`not in the browser: ${browser[i]}`, page.name);
    const cheerio = cheerioOf(page.nodes);
    page.selectors.forEach((selector, k) =>
      report.compare(page, selector, page.ours[k], browser[i][k], cheerio(selector)));
  });
}
report.print();
process.exitCode = report.isAlike() ? 0 : 1;
