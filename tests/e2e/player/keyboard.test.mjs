// The lecture driven by keys alone.
import assert from 'node:assert/strict';
import test from 'node:test';
import { standsAt, timeOf, until, watch } from './browser.mjs';
import { Publication, SECONDS } from './fixture.mjs';

const SLIDE = SECONDS * 1000;
const ofVideo = (page, name) => page.evaluate((wanted) => document.querySelector('#video')[wanted], name);
const activeId = (page) => page.evaluate(() => document.activeElement.id);

test('Space plays and pauses; arrows, J and L move; Page Down, Page Up, Home and End go to slides', async (t) => {
  const page = await watch(t, new Publication());
  await page.keyboard.press(' ');
  await until(page, () => !document.querySelector('#video').paused);
  await page.keyboard.press('k');
  await until(page, () => document.querySelector('#video').paused);
  await page.keyboard.press('Home');
  await standsAt(page, 0, 1);
  for (const [key, ms] of [['l', 10000], ['ArrowRight', 15000], ['j', 5000], ['ArrowLeft', 0], ['PageDown', SLIDE],
    ['n', 2 * SLIDE], ['PageUp', SLIDE], ['End', 7 * SLIDE], ['p', 6 * SLIDE]]) {
    await page.keyboard.press(key);
    await standsAt(page, ms, 3);
  }
});

test('Speed, sound, colours: a key each, and they are remembered', async (t) => {
  const page = await watch(t, new Publication());
  for (const key of ['.', '.', '-', 't']) await page.keyboard.press(key);
  assert.equal(await ofVideo(page, 'playbackRate'), 1.5);
  assert.equal(Math.round(100 * await ofVideo(page, 'volume')), 90);
  assert.equal(await page.evaluate(() => document.documentElement.dataset.look), 'dark');
  await page.keyboard.press('m');
  assert.ok(await ofVideo(page, 'muted'));
  await page.reload();
  await until(page, () => document.querySelector('#video').readyState >= 2);
  assert.equal(await ofVideo(page, 'playbackRate'), 1.5);
  assert.equal(await page.locator('#speed').inputValue(), '1.5');
  assert.equal(Math.round(100 * await ofVideo(page, 'volume')), 90);
  assert.equal(await page.evaluate(() => document.documentElement.dataset.look), 'dark');
  for (let i = 0; i < 20; ++i) await page.keyboard.press('.');
  assert.equal(await ofVideo(page, 'playbackRate'), 3);
  for (let i = 0; i < 20; ++i) await page.keyboard.press(',');
  assert.equal(await ofVideo(page, 'playbackRate'), 0.5);
});

test('The list of keys opens by a key, names every one of them, closes by Escape and gives the focus back', async (t) => {
  const page = await watch(t, new Publication({ captions: [{ lang: 'en', label: '', text: 'WEBVTT\n\n00:00.000 --> 00:05.000\nHello' }] }));
  await page.locator('#mute').focus();
  await page.keyboard.press('?');
  assert.ok(await page.locator('#keys-dialog').isVisible());
  const keys = await page.locator('#keys-list kbd').allTextContents();
  for (const key of ['Space', 'K', '←', '→', 'J', 'L', 'Page Up', 'P', 'Page Down', 'N', 'Home', 'End', ',', '.', '-', '+', 'M',
    'C', 'F', 'I', 'Y', '/', 'T', '?']) assert.ok(keys.includes(key), key);
  await page.keyboard.press('l');
  assert.equal(await timeOf(page), 0, 'keys rest while a dialog is open');
  await page.keyboard.press('Escape');
  assert.ok(!await page.locator('#keys-dialog').isVisible());
  assert.equal(await activeId(page), 'mute');
});

test('Letters and signs can be switched off; Space, arrows and Page keys stay', async (t) => {
  const page = await watch(t, new Publication());
  await page.click('#keys-open');
  await page.click('#keys-single');
  await page.keyboard.press('Escape');
  await page.locator('h1').click();
  await page.keyboard.press('m');
  await page.keyboard.press('l');
  assert.equal(await ofVideo(page, 'muted'), false);
  assert.equal(await timeOf(page), 0);
  await page.keyboard.press('PageDown');
  await standsAt(page, SLIDE, 1);
  await page.reload();
  await until(page, () => document.querySelector('#video').readyState >= 2);
  await page.keyboard.press('m');
  assert.equal(await ofVideo(page, 'muted'), false);
});

test('A control keeps the keys that are its own', async (t) => {
  const page = await watch(t, new Publication());
  await page.locator('#search').focus();
  await page.keyboard.type('k m.');
  assert.equal(await page.locator('#search').inputValue(), 'k m.');
  assert.ok(await ofVideo(page, 'paused'));
  await page.locator('#mute').focus();
  await page.keyboard.press(' ');
  assert.ok(await ofVideo(page, 'muted'));
  assert.ok(await ofVideo(page, 'paused'));
  await page.locator('#volume').focus();
  await page.keyboard.press('ArrowLeft');
  assert.equal(await timeOf(page), 0);
  await page.locator('#speed').focus();
  await page.keyboard.press('End');
  assert.equal(await ofVideo(page, 'playbackRate'), 3);
  assert.equal(await timeOf(page), 0);
});

test('The time line moves by arrows and Page keys, and tells time and slide', async (t) => {
  const page = await watch(t, new Publication());
  await page.locator('#seek').focus();
  await page.keyboard.press('ArrowRight');
  await standsAt(page, 5000, 3);
  await until(page, () => document.querySelector('#seek').getAttribute('aria-valuetext').startsWith('00:05 of 00:40, slide 2'));
  await page.keyboard.press('PageDown');
  await standsAt(page, 2 * SLIDE, 1);
  await page.keyboard.press('End');
  await standsAt(page, 7 * SLIDE, 1);
  await page.keyboard.press('Home');
  await standsAt(page, 0, 1);
});

test('With a modifier a key belongs to the browser', async (t) => {
  const page = await watch(t, new Publication());
  await page.keyboard.press('Control+m');
  await page.keyboard.press('Alt+ArrowRight');
  assert.equal(await ofVideo(page, 'muted'), false);
  assert.equal(await timeOf(page), 0);
});

test('Tab reaches every control, in the order of the page, each with a focus that is seen', async (t) => {
  const page = await watch(t, new Publication({ titles: ['One', 'Two', 'Three'], captions: [
    { lang: 'en', label: '', text: 'WEBVTT\n\n00:00.000 --> 00:05.000\nHello' }] }));
  const walk = [];
  for (let step = 0; step < 40; ++step) {
    await page.keyboard.press('Tab');
    const at = await page.evaluate(() => {
      const one = document.activeElement;
      if (one === document.body) return null;
      const style = getComputedStyle(one);
      const box = one.getBoundingClientRect();
      const seen = document.elementFromPoint(box.left + box.width / 2, box.top + box.height / 2);
      return { name: one.id || one.className, ring: style.outlineStyle !== 'none' && parseFloat(style.outlineWidth) >= 2,
        onTop: one === seen || one.contains(seen) || seen?.contains(one) || one.matches('#seek') };
    });
    if (at === null) break;
    walk.push(at);
  }
  assert.deepEqual(walk.map((at) => at.name), ['skip', 'keys-open', 'look', 'seek', 'previous', 'play', 'next', 'mute', 'volume',
    'speed', 'captions-toggle', 'link-open', 'window', 'full', 'search', 'entry', 'entry', 'entry']);
  for (const at of walk) assert.ok(at.ring && at.onTop, `the focus on ${at.name} is not seen`);
  await page.keyboard.press('Shift+Tab');
  assert.equal(await page.evaluate(() => document.activeElement.className), 'entry', 'the list is no trap');
});

test('The first Tab offers the way to the slides', async (t) => {
  const page = await watch(t, new Publication());
  await page.keyboard.press('Tab');
  await page.keyboard.press('Enter');
  await page.keyboard.press('Tab');
  assert.equal(await activeId(page), 'search');
});
