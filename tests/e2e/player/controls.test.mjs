// The buttons: what a pointer can do.
import assert from 'node:assert/strict';
import test from 'node:test';
import { play, until, watch } from './browser.mjs';
import { Publication } from './fixture.mjs';

const ofVideo = (page, name) => page.evaluate((wanted) => document.querySelector('#video')[wanted], name);
/** Waits until a button says that it is pressed ('true') or not ('false'): it follows the movie's own events. */
const saysPressed = (page, id, state) => page.locator(`${id}[aria-pressed="${state}"]`).waitFor();
/** Waits until the button that plays and pauses has this name. */
const playsAs = (page, name) => page.locator(`#play[aria-label="${name}"]`).waitFor();

test('The button and the picture play and pause', async (t) => {
  const page = await watch(t, new Publication());
  await play(page);
  await playsAs(page, 'Pause');
  await page.locator('#start').waitFor({ state: 'hidden' });
  await page.click('#video');
  await until(page, () => document.querySelector('#video').paused);
  await playsAs(page, 'Play');
});

test('Speed goes from a half to three, with the pitch kept', async (t) => {
  const page = await watch(t, new Publication());
  const speeds = await page.locator('#speed option').evaluateAll((all) => all.map((one) => Number(one.value)));
  assert.equal(Math.min(...speeds), 0.5);
  assert.equal(Math.max(...speeds), 3);
  assert.ok(await ofVideo(page, 'preservesPitch'));
  await page.selectOption('#speed', '2.5');
  await play(page);
  assert.equal(await ofVideo(page, 'playbackRate'), 2.5);
});

test('The length is told as the data write it, to the nearest second', async (t) => {
  const page = await watch(t, new Publication(), { init: () => {
    Object.defineProperty(HTMLMediaElement.prototype, 'duration', { get: () => 39.521 });
  } });
  await until(page, () => document.querySelector('#whole').textContent === '00:40');
  assert.match(await page.locator('#seek').getAttribute('aria-valuetext'), /^00:00 of 00:40/);
});

test('Sound can be set and silenced', async (t) => {
  const page = await watch(t, new Publication());
  const volume = await page.locator('#volume').boundingBox();
  await page.mouse.click(volume.x + volume.width / 2, volume.y + volume.height / 2);
  assert.ok(Math.abs(await ofVideo(page, 'volume') - 0.5) < 0.1);
  await page.click('#mute');
  assert.ok(await ofVideo(page, 'muted'));
  await saysPressed(page, '#mute', 'true');
  await until(page, () => document.querySelector('#volume').value === '0');
  await page.click('#mute');
  assert.equal(await ofVideo(page, 'muted'), false);
});

test('Full screen takes picture, captions and buttons along, and the buttons leave while nobody moves', async (t) => {
  const page = await watch(t, new Publication(), { init: () => {
    const real = window.setTimeout;
    window.setTimeout = (act, ms) => real(act, ms === 3000 ? 300 : ms);
  } });
  await page.click('#full');
  await until(page, () => document.fullscreenElement?.id === 'stage');
  await saysPressed(page, '#full', 'true');
  await play(page);
  await until(page, () => getComputedStyle(document.querySelector('.panel')).opacity === '0');
  await page.keyboard.press('Tab');
  await until(page, () => getComputedStyle(document.querySelector('.panel')).opacity === '1');
  await page.keyboard.press('f');
  await until(page, () => document.fullscreenElement === null);
  await saysPressed(page, '#full', 'false');
});

test('Picture in picture is offered where the browser has it', async (t) => {
  const publication = new Publication();
  const with_ = await watch(t, publication);
  assert.ok(await with_.locator('#window').isVisible());
  const without = await watch(t, publication, { init: () => {
    Object.defineProperty(document, 'pictureInPictureEnabled', { value: false });
  } });
  assert.ok(!await without.locator('#window').isVisible());
});

test('The colours are the system\'s, also when it changes, until the reader chooses', async (t) => {
  const page = await watch(t, new Publication(), { colorScheme: 'dark' });
  const look = () => page.evaluate(() => document.documentElement.dataset.look);
  assert.equal(await look(), 'dark');
  await page.emulateMedia({ colorScheme: 'light' });
  await until(page, () => document.documentElement.dataset.look === 'light');
  await page.click('#look');
  assert.equal(await look(), 'dark');
  await page.emulateMedia({ colorScheme: 'dark' });
  await page.emulateMedia({ colorScheme: 'light' });
  assert.equal(await look(), 'dark');
  await page.click('#look');
  assert.equal(await look(), 'light');
  await page.emulateMedia({ colorScheme: 'dark' });
  await until(page, () => document.documentElement.dataset.look === 'dark');
});

test('The page speaks the reader\'s language', async (t) => {
  const page = await watch(t, new Publication(), { locale: 'zh-CN' });
  assert.equal(await page.evaluate(() => document.documentElement.lang), 'zh-Hans');
  assert.equal(await page.locator('#play').getAttribute('aria-label'), '播放');
  const texts = await page.evaluate(() => {
    const left = [];
    for (const one of document.querySelectorAll('[data-text]')) if (one.textContent === 'undefined') left.push(one.dataset.text);
    for (const one of document.querySelectorAll('[data-name]')) if (one.title === 'undefined') left.push(one.dataset.name);
    return left;
  });
  assert.deepEqual(texts, []);
});
