// Links into a lecture, and where one left off.
import assert from 'node:assert/strict';
import fs from 'node:fs';
import test from 'node:test';
import { currentTitle, play, standsAt, theBrowser, timeOf, until, watch } from './browser.mjs';
import { Publication, SECONDS, TITLES } from './fixture.mjs';

const SLIDE = SECONDS * 1000;

test('A link opens a slide or a time', async (t) => {
  const publication = new Publication();
  for (const [suffix, ms, place] of [['#slide=4', 3 * SLIDE, 3], ['?t=12', 12000, 2], ['?t=0:12.5', 12500, 2], ['#t=7s', 7000, 1],
    ['?slide=2', SLIDE, 1], ['?t=12#slide=4', 3 * SLIDE, 3], ['?from=mail&t=12', 12000, 2]]) {
    const page = await watch(t, publication, { suffix });
    await standsAt(page, ms, 1);
    assert.equal(await currentTitle(page), TITLES[place], suffix);
    assert.ok(await page.evaluate(() => document.querySelector('#video').paused), 'a link does not make noise');
    await page.context().close();
  }
});

test('A link that makes no sense opens the beginning', async (t) => {
  const publication = new Publication();
  for (const suffix of ['#slide=99', '#slide=0', '#slide=x', '?t=soon', '?t=-5', '#%']) {
    const page = await watch(t, publication, { suffix });
    assert.equal(await timeOf(page), 0, suffix);
    await page.context().close();
  }
});

test('A link beyond the end opens the last slide', async (t) => {
  const page = await watch(t, new Publication(), { suffix: '?t=9999' });
  await until(page, (last) => document.querySelector('[aria-current] .name')?.textContent === last, TITLES.at(-1));
});

test('Another place in the address line of the open page is gone to', async (t) => {
  const page = await watch(t, new Publication());
  await page.evaluate(() => { location.hash = '#slide=3'; });
  await standsAt(page, 2 * SLIDE, 1);
});

test('The reader copies a link to the slide, to the moment or to the beginning', async (t) => {
  const publication = new Publication();
  const page = await watch(t, publication, { suffix: '?t=12' });
  await page.click('#link-open');
  assert.equal(await page.locator('#link-address').inputValue(), publication.address + '#slide=3');
  assert.match(await page.locator('#link-slide-text').textContent(), /slide 3: .*Straße/);
  await page.check('#link-time');
  assert.equal(await page.locator('#link-address').inputValue(), publication.address + '?t=12');
  await page.click('#link-copy');
  await page.getByText('The link is copied.').waitFor();
  await page.keyboard.press('Escape');
  await page.locator('#search').focus();
  await page.keyboard.press('Control+v');
  assert.equal(await page.locator('#search').inputValue(), publication.address + '?t=12');
  await page.click('#link-open');
  await page.check('#link-begin');
  assert.equal(await page.locator('#link-address').inputValue(), publication.address);
});

test('Where the browser refuses the clipboard, the address is marked and the page says what to press', async (t) => {
  const page = await watch(t, new Publication(), { init: () => {
    Object.defineProperty(navigator, 'clipboard', { value: undefined });
    document.execCommand = () => false;
  } });
  await page.keyboard.press('y');
  await page.click('#link-copy');
  await page.getByText('Press Ctrl+C').waitFor();
  assert.ok(await page.evaluate(() => {
    const field = document.activeElement;
    return field.id === 'link-address' && field.selectionEnd - field.selectionStart === field.value.length;
  }));
});

async function leaveAt(page, seconds) {
  await play(page);
  await page.evaluate((time) => { document.querySelector('#video').currentTime = time; }, seconds);
  await standsAt(page, seconds * 1000, 2000);
  await page.click('#play');
  await until(page, () => document.querySelector('#video').paused);
  return timeOf(page);
}

/** Opens a publication in a profile that lasts. */
async function openIn(profile, publication, suffix = '') {
  const page = await profile.newPage();
  await page.goto(publication.address + suffix);
  await page.waitForSelector('html[data-ready]', { state: 'attached' });
  await until(page, () => document.querySelector('#video').readyState >= 2);
  return page;
}

test('Each lecture continues where one left it, and says so', async (t) => {
  const profile = await (await theBrowser()).newContext({ locale: 'en-GB' });
  t.after(() => profile.close());
  const one = new Publication();
  const other = new Publication();
  const left = await leaveAt(await openIn(profile, one), 17);
  const fresh = await openIn(profile, other);
  assert.equal(await timeOf(fresh), 0, 'another lecture starts at its beginning');
  assert.ok(!await fresh.locator('#notice').isVisible());

  const again = await openIn(profile, one);
  await standsAt(again, left, 50);
  assert.match(await again.locator('#notice-text').textContent(), /where you left off, at 00:1[78]/);
  assert.equal(await currentTitle(again), TITLES[3]);
  await again.click('#notice-act');
  await standsAt(again, 0, 1);
  assert.ok(!await again.locator('#notice').isVisible());

  await leaveAt(again, 17);
  const linked = await openIn(profile, one, '#slide=2');
  await standsAt(linked, SLIDE, 1);
  await leaveAt(linked, 38);
  assert.equal(await timeOf(await openIn(profile, one)), 0, 'a lecture seen to its end starts again');

  await leaveAt(await openIn(profile, one), 17);
  const config = fs.readFileSync(one.file('config.js'), 'latin1');
  one.write('config.js', config.replace('A Lecture', 'Another Lecture'));
  assert.equal(await timeOf(await openIn(profile, one)), 0, 'what is published in its place is another lecture');
});

test('Without storage everything works until the page is left', async (t) => {
  const page = await watch(t, new Publication(), { init: () => {
    Object.defineProperty(window, 'localStorage', { get() { throw new DOMException('refused', 'SecurityError'); } });
  } });
  await page.keyboard.press('t');
  await page.keyboard.press('.');
  assert.equal(await page.evaluate(() => document.documentElement.dataset.look), 'dark');
  await leaveAt(page, 17);
});
