// The help pages, opened as a teacher opens them: straight from the disk.
import assert from 'node:assert/strict';
import fs from 'node:fs';
import { createRequire } from 'node:module';
import path from 'node:path';
import test from 'node:test';
import { fileURLToPath, pathToFileURL } from 'node:url';
import { theBrowser } from '../player/browser.mjs';

const HELP = fileURLToPath(new URL('../../../install/help/', import.meta.url));
const AXE = createRequire(import.meta.url).resolve('axe-core/axe.min.js');
const PAGES = fs.readdirSync(HELP).filter((name) => name.endsWith('.html'));

async function open(t, name, context = {}) {
  const profile = await (await theBrowser()).newContext({ viewport: { width: 1280, height: 800 }, ...context });
  t.after(() => profile.close());
  const page = await profile.newPage();
  const asked = [];
  page.on('request', (request) => asked.push(request.url()));
  await page.goto(pathToFileURL(path.join(HELP, name)).href);
  return { page, asked };
}

test('Every link leads to a page or a place that is there', async (t) => {
  assert.ok(PAGES.includes('index.html') && PAGES.length >= 7, PAGES.join());
  const { page } = await open(t, 'index.html');
  for (const name of PAGES) {
    await page.goto(pathToFileURL(path.join(HELP, name)).href);
    const links = await page.$$eval('a[href]', (all) => all.map((link) => link.getAttribute('href')));
    for (const link of links) {
      const [file, mark] = link.split('#');
      assert.ok(fs.existsSync(path.join(HELP, file || name)), `${name}: ${link}`);
      if (mark) assert.ok(fs.readFileSync(path.join(HELP, file || name), 'utf8').includes(`id="${mark}"`), `${name}: ${link}`);
    }
    assert.deepEqual(PAGES.filter((other) => !links.includes(other)), [], `${name} leads to every page`);
    assert.equal(await page.locator('nav a[aria-current="page"]').getAttribute('href'), name);
  }
});

test('Every picture is shown in its own size, says what it shows, and is used', async (t) => {
  const { page } = await open(t, 'index.html');
  const used = new Set();
  for (const name of PAGES) {
    await page.goto(pathToFileURL(path.join(HELP, name)).href);
    for (const one of await page.$$eval('img', (all) => all.map((img) => ({ src: img.getAttribute('src'), alt: img.alt,
      wide: img.naturalWidth, high: img.naturalHeight, width: img.getAttribute('width'), height: img.getAttribute('height') })))) {
      used.add(path.basename(one.src));
      assert.ok(one.wide > 0, `${name}: ${one.src} is no picture`);
      if (!one.src.endsWith('.png')) continue;
      assert.deepEqual([one.width, one.height], [String(one.wide), String(one.high)], `${name}: ${one.src}`);
      assert.ok(one.alt.length > 30, `${name}: ${one.src} says too little`);
    }
  }
  assert.deepEqual(fs.readdirSync(path.join(HELP, 'pictures')).filter((name) => !used.has(name)), []);
});

test('The pages need no script and nothing from elsewhere', async (t) => {
  for (const name of PAGES) {
    const { page, asked } = await open(t, name, { javaScriptEnabled: false });
    assert.ok((await page.locator('main').innerText()).length > 300, name);
    assert.deepEqual(asked.filter((address) => !address.startsWith(pathToFileURL(HELP).href)), []);
    assert.equal(await page.locator('script').count(), 0);
  }
});

test('On a telephone nothing has to be scrolled sideways', async (t) => {
  for (const name of PAGES) {
    const { page } = await open(t, name, { viewport: { width: 360, height: 740 } });
    assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= innerWidth), name);
  }
});

for (const look of ['light', 'dark']) {
  test(`No violation is found, ${look}`, async (t) => {
    for (const name of PAGES) {
      const { page } = await open(t, name, { colorScheme: look });
      await page.addScriptTag({ path: AXE });
      const found = await page.evaluate(() => window.axe.run(document, { resultTypes: ['violations'], runOnly: { type: 'tag',
        values: ['wcag2a', 'wcag2aa', 'wcag21a', 'wcag21aa', 'wcag22aa', 'best-practice'] } }));
      assert.ok(found.passes.length > 5, 'the checker has checked');
      assert.deepEqual(found.violations.flatMap((one) => one.nodes.map((node) => `${one.id}: ${node.target}`)), [], name);
    }
  });
}
