// Titles, names and questions are data: whatever they hold, they change nothing but their own text.
import assert from 'node:assert/strict';
import fs from 'node:fs';
import path from 'node:path';
import test from 'node:test';
import { fileURLToPath } from 'node:url';
import { standsAt, until, watch } from './browser.mjs';
import { Publication, SECONDS } from './fixture.mjs';

const HOSTILE = ['</script><script>window.broken = 1</script>', '<img src=x onerror="window.broken = 1">', '"quoted" \'single\' `back` \\',
  '&amp; &lt;b&gt; ${1+1} {{1}}', 'line\u2028separator\u2029paragraph', 'tab\tand\r\nnewline\u0000nul', '👩‍🏫 emoji 🇨🇳 \uD83D lone',
  '\u202Eright to left override', 'שלום עולם — مرحبا', '"><svg onload="window.broken = 1">', '<!-- comment -- > ]]> ', 'W'.repeat(5000),
  'word '.repeat(1000), 'constructor', '__proto__', 'javascript:window.broken=1'];
const lone = (text) => text.replace(/\uD83D(?![\uDC00-\uDFFF])/g, '\uD83D');

test('Hostile titles are shown as they are written, by every part of the page', async (t) => {
  const publication = new Publication({ titles: HOSTILE, config: { title: HOSTILE[0], author: { name: HOSTILE[1], photo: 'author.png' } },
    captions: [{ lang: HOSTILE[9], label: HOSTILE[1], text: `WEBVTT\n\n00:00.000 --> 00:30.000\n${HOSTILE[1]}` }] });
  const page = await watch(t, publication);
  const shape = () => page.evaluate(() => [document.querySelectorAll('body *:not(canvas):not(mark):not(.mark)').length,
    document.scripts.length]);
  const before = await shape();
  const names = await page.locator('.entry .name').evaluateAll((all) => all.map((one) => one.textContent));
  assert.deepEqual(names, HOSTILE.map(lone));
  assert.equal(await page.locator('h1').textContent(), HOSTILE[0]);
  assert.equal(await page.locator('#author').textContent(), HOSTILE[1]);
  for (const place of HOSTILE.keys()) {
    if (place * SECONDS < 40) {
      await page.locator('.entry').nth(place).click();
      await standsAt(page, place * SECONDS * 1000, 1);
    }
  }
  for (const place of HOSTILE.keys()) {
    await page.fill('#search', HOSTILE[place].slice(0, 12));
    assert.ok(await page.locator('.entry:visible').count() > 0, `searching for title ${place + 1}`);
  }
  await page.fill('#search', '');
  await page.locator('h1').click();
  await page.keyboard.press('c');
  await page.keyboard.press('y');
  await page.keyboard.press('Escape');
  await page.keyboard.press('c');
  assert.deepEqual(await shape(), before, 'a title has made elements');
  assert.equal(await page.evaluate(() => window.broken), undefined);
  for (const width of [1280, 360]) {
    await page.setViewportSize({ width, height: 800 });
    assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= window.innerWidth), `too wide at ${width}`);
  }
});

test('A long title leaves room for the rest of the page', async (t) => {
  const page = await watch(t, new Publication({ titles: ['First', 'W'.repeat(5000), 'Third'], config: { title: 'W '.repeat(2500) } }));
  await page.locator('.entry').nth(1).click();
  await standsAt(page, SECONDS * 1000, 1);
  const play = await page.locator('#play').boundingBox();
  assert.ok(play.y + play.height < 800, 'the buttons are in the window');
  await page.locator('.entry').nth(2).click();
  await until(page, () => document.querySelector('.now-title').textContent === 'Third');
});

test('A title that is written from right to left keeps its direction to itself', async (t) => {
  const page = await watch(t, new Publication({ titles: ['שלום 123', 'Plain', '\u202Eabc'] }));
  const directions = await page.locator('.entry .name').evaluateAll((all) => all.map((one) => getComputedStyle(one).direction));
  assert.deepEqual(directions, ['rtl', 'ltr', 'ltr']);
  await page.locator('.entry').first().click();
  assert.equal(await page.locator('.now-title').evaluate((one) => getComputedStyle(one).direction), 'rtl');
  const lefts = await page.locator('.entry').evaluateAll((all) => all.map((one) =>
    [one.querySelector('.thumb'), one.querySelector('.number')].map((part) => part.getBoundingClientRect().left)));
  assert.deepEqual(lefts[0], lefts[1]);
  assert.deepEqual(lefts[2], lefts[1]);
});

test('The page has no way to make markup out of text', () => {
  const folder = path.resolve(path.dirname(fileURLToPath(import.meta.url)), '../../../install/mp4');
  const scripts = fs.readdirSync(folder, { recursive: true }).map(String).filter((name) => name.endsWith('.js'));
  assert.ok(scripts.length > 10);
  for (const name of scripts) {
    assert.doesNotMatch(fs.readFileSync(path.join(folder, name), 'utf8'),
      /innerHTML|outerHTML|insertAdjacentHTML|document\.write|\beval\(|new Function|createContextualFragment|DOMParser/, name);
  }
});
