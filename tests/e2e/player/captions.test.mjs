// Captions, as captions.js carries them.
import assert from 'node:assert/strict';
import test from 'node:test';
import { standsAt, until, watch } from './browser.mjs';
import { Publication } from './fixture.mjs';

const VTT = `WEBVTT - a lecture\n\nNOTE made by hand\n\nSTYLE\n::cue { color: red }\n\nintro\n00:01.000 --> 00:04.000 align:start
<v Anna>A <i>key</i> frame\nstands alone.\n\n00:00:05.500 --> 00:00:09.000\n<b>Two</b> &amp; three <script>alert(1)</script>\n`;
const SRT = '\uFEFF1\r\n00:00:01,000 --> 00:00:04,000\r\n{\\an8}Ein Schlüsselbild\r\n\r\n2\r\n00:00:05,500 --> 00:00:09,000\r\n'
  + '<font color="red">steht allein</font>\r\n\r\n3\r\n00:00:09,000 --> 00:00:08,000\r\nrückwärts\r\n';
const cues = (page) => page.locator('#captions .cue').allTextContents();

async function at(page, seconds) {
  await page.evaluate((time) => { document.querySelector('#video').currentTime = time; }, seconds);
  await standsAt(page, seconds * 1000, 1);
}

test('A WebVTT file is shown, below the picture, at its times', async (t) => {
  const page = await watch(t, new Publication({ captions: [{ lang: 'en', label: '', text: VTT }] }));
  assert.ok(!await page.locator('#captions').isVisible());
  await page.keyboard.press('c');
  await at(page, 2);
  await until(page, () => document.querySelector('.cue'));
  assert.deepEqual(await cues(page), ['A key frame\nstands alone.']);
  assert.equal(await page.locator('.cue i').textContent(), 'key');
  const picture = await page.locator('#video').boundingBox();
  const captions = await page.locator('#captions').boundingBox();
  assert.ok(captions.y >= picture.y + picture.height - 1);
  await at(page, 4.5);
  await until(page, () => !document.querySelector('.cue'));
  await at(page, 6);
  await until(page, () => document.querySelector('.cue'));
  assert.equal(await page.locator('.cue script').count(), 0);
  assert.match((await cues(page))[0], /^Two & three/);
});

test('A SubRip file is shown, and a cue that ends before it begins is left out', async (t) => {
  const page = await watch(t, new Publication({ captions: [{ lang: 'de', label: '', text: SRT }] }));
  await page.click('#captions-toggle');
  await page.locator('#captions-toggle[aria-pressed="true"]').waitFor();
  await at(page, 2);
  await until(page, () => document.querySelector('.cue'));
  assert.deepEqual(await cues(page), ['Ein Schlüsselbild']);
  assert.equal(await page.locator('.cue').getAttribute('lang'), 'de');
  await at(page, 6);
  await until(page, () => document.querySelector('.cue')?.textContent === 'steht allein');
  assert.equal(await page.evaluate(() => document.querySelector('#video').textTracks[0].cues.length), 2);
});

test('Of several languages the reader chooses one, and it is remembered', async (t) => {
  const page = await watch(t, new Publication({ captions: [{ lang: 'en', label: '', text: VTT },
    { lang: 'de', label: 'Deutsch (Anna)', text: SRT }, { lang: 'not a language', label: '', text: SRT }] }));
  const names = await page.locator('#captions-choice option').allTextContents();
  assert.deepEqual(names, ['No captions', 'English', 'Deutsch (Anna)', 'Captions 3']);
  assert.ok(!await page.locator('#captions-toggle').isVisible());
  await page.selectOption('#captions-choice', { label: 'Deutsch (Anna)' });
  await at(page, 2);
  await until(page, () => document.querySelector('.cue')?.textContent === 'Ein Schlüsselbild');
  await page.reload();
  await until(page, () => document.querySelector('#video').readyState >= 2);
  assert.equal(await page.locator('#captions-choice').inputValue(), '1');
  await page.locator('h1').click();
  await page.keyboard.press('c');
  assert.equal(await page.locator('#captions-choice').inputValue(), '-1');
});

test('Without captions there is no button, and half a file does not stop the page', async (t) => {
  const page = await watch(t, new Publication());
  assert.ok(!await page.locator('#captions-toggle').isVisible());
  const broken = await watch(t, new Publication({ captions: [null, {}, { text: 'WEBVTT' }, { text: 42 }, { lang: 7, text: SRT }] }));
  assert.ok(await broken.locator('#captions-toggle').isVisible());
});

test('In full screen captions lie on the picture', async (t) => {
  const page = await watch(t, new Publication({ captions: [{ lang: 'en', label: '', text: VTT }] }));
  await page.keyboard.press('c');
  await at(page, 2);
  await page.click('#full');
  await until(page, () => document.querySelector('.stage').classList.contains('is-full') && document.querySelector('.cue'));
  assert.ok(await page.locator('.cue').isVisible());
  const cue = await page.locator('.cue').boundingBox();
  const panel = await page.locator('.panel').boundingBox();
  assert.ok(cue.y + cue.height <= panel.y);
});
