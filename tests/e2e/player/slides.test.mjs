// The slide index: what it shows, how it drives the movie and follows it.
import assert from 'node:assert/strict';
import test from 'node:test';
import { colourOf, currentTitle, nearest, play, standsAt, timeOf, until, watch } from './browser.mjs';
import { COLOURS, Publication, SECONDS, TITLES, entriesOf, makeMovie } from './fixture.mjs';

const SLIDE = SECONDS * 1000;
const video = '#video';

test('Each entry has its number, title and time', async (t) => {
  const page = await watch(t, new Publication());
  assert.deepEqual(await page.locator('.entry .name').allTextContents(), TITLES);
  assert.deepEqual(await page.locator('.entry .number').allTextContents(), TITLES.map((_, at) => String(at + 1)));
  assert.equal(await page.locator('.entry .time').nth(2).textContent(), '00:10');
  assert.equal(await page.locator('#count').textContent(), '8 slides');
  assert.equal(await page.title(), 'A Lecture');
  assert.equal(await page.locator('h1').textContent(), 'A Lecture');
  assert.equal(await page.locator('#author').textContent(), 'Anna Keller');
});

test('A click on an entry shows exactly its slide', async (t) => {
  const page = await watch(t, new Publication());
  for (const [place, title] of TITLES.entries()) {
    await page.locator('.entry').nth(place).click();
    await standsAt(page, place * SLIDE, 1);
    assert.equal(nearest(await colourOf(page, video), COLOURS), place);
    assert.equal(await currentTitle(page), title);
    assert.equal(await page.locator('.now-title').textContent(), title);
  }
});

test('A place one picture before a change shows the slide before it', async (t) => {
  const page = await watch(t, new Publication(), { suffix: `?t=${2 * SECONDS - 0.03}` });
  await standsAt(page, 2 * SLIDE - 30, 1);
  assert.equal(nearest(await colourOf(page, video), COLOURS), 1);
  assert.equal(await currentTitle(page), TITLES[1]);
});

test('The index follows the movie while it plays', async (t) => {
  const page = await watch(t, new Publication(), { suffix: `?t=${SECONDS - 1}` });
  assert.equal(await currentTitle(page), TITLES[0]);
  await play(page);
  await until(page, (title) => document.querySelector('[aria-current] .name')?.textContent === title, TITLES[1]);
  assert.ok(await timeOf(page) >= SLIDE);
  assert.equal(await page.locator('.now-count').textContent(), '2 / 8');
});

test('Previous goes to the begin of the slide first, then to the slide before', async (t) => {
  const page = await watch(t, new Publication(), { suffix: `?t=${2 * SECONDS + 3}` });
  await page.click('#previous');
  await standsAt(page, 2 * SLIDE, 1);
  await page.click('#previous');
  await standsAt(page, SLIDE, 1);
  await page.click('#next');
  await standsAt(page, 2 * SLIDE, 1);
});

test('There is no slide after the last', async (t) => {
  const page = await watch(t, new Publication());
  await page.locator('.entry').last().click();
  await until(page, () => document.querySelector('#next').disabled);
  await page.locator('.entry').first().click();
  await until(page, () => !document.querySelector('#next').disabled);
});

test('Entries at one place can each be chosen', async (t) => {
  const entries = entriesOf(TITLES);
  entries[1].time = '0';
  const page = await watch(t, new Publication({ config: { index: entries } }));
  for (const place of [0, 1, 0]) {
    await page.locator('.entry').nth(place).click();
    await until(page, (wanted) => document.querySelectorAll('.entry')[wanted].matches('[aria-current]'), place);
    await standsAt(page, 0, 1);
  }
});

test('Entries that are not in the order of time are still followed', async (t) => {
  const entries = entriesOf(TITLES);
  [entries[1].time, entries[3].time] = [entries[3].time, entries[1].time];
  const page = await watch(t, new Publication({ config: { index: entries } }), { suffix: `?t=${SECONDS + 1}` });
  assert.equal(await currentTitle(page), TITLES[3]);
});

test('An index of type "not numbered" shows no numbers', async (t) => {
  const page = await watch(t, new Publication({ config: { hideSN: 1 } }));
  assert.deepEqual(await page.locator('.entry .number').allTextContents(), TITLES.map(() => ''));
});

test('An entry can stand below another, and one without a title has a name', async (t) => {
  const entries = entriesOf(['First', 'Second', '  ']);
  entries[1].indent = '1';
  const page = await watch(t, new Publication({ config: { index: entries } }));
  const lefts = await page.locator('.thumb').evaluateAll((all) => all.map((one) => one.getBoundingClientRect().left));
  assert.ok(lefts[1] > lefts[0] + 10);
  assert.equal(lefts[2], lefts[0]);
  assert.equal(await page.locator('.entry .name').nth(2).textContent(), '(without a title)');
});

test('A lecture without entries plays', async (t) => {
  const page = await watch(t, new Publication({ titles: [] }));
  await play(page);
  assert.equal(await page.locator('.entry').count(), 0);
  assert.ok(await page.locator('#previous').isDisabled());
});

test('Entries with half their data do not stop the page', async (t) => {
  const page = await watch(t, new Publication({ config: { index: [null, {}, { title: 'Last', time: 'x' }], author: null } }));
  assert.equal(await page.locator('.entry').count(), 3);
  assert.equal(await page.locator('.entry .name').last().textContent(), 'Last');
});

test('The list scrolls to the current slide, but not under the hand of the reader', async (t) => {
  const titles = Array.from({ length: 40 }, (_, at) => `Slide ${at + 1}`);
  const entries = entriesOf(titles, 1);
  const page = await watch(t, new Publication({ config: { index: entries } }), { suffix: '#slide=30' });
  await until(page, () => document.querySelector('#entries').scrollTop > 500);
  await page.locator('#entries').hover();
  await page.mouse.wheel(0, -100000);
  await until(page, () => document.querySelector('#entries').scrollTop === 0);
  await page.evaluate(() => { document.querySelector('#video').currentTime = 35.5; });
  await until(page, () => document.querySelector('.now-title').textContent === 'Slide 36');
  assert.equal(await page.locator('#entries').evaluate((list) => list.scrollTop), 0);
});

test('Each slide gets its picture, and the lecture does not move meanwhile', async (t) => {
  const page = await watch(t, new Publication(), { height: 1100 });
  await until(page, (all) => document.querySelectorAll('.thumb canvas').length === all, TITLES.length);
  for (const place of TITLES.keys()) {
    assert.equal(nearest(await colourOf(page, `li:nth-child(${place + 1}) .thumb`), COLOURS), place);
  }
  assert.equal(await timeOf(page), 0);
  assert.ok(await page.locator(video).evaluate((one) => one.paused));
});

test('Pictures are made for the slides in sight only, and all of them in time when the reader scrolls', async (t) => {
  const titles = Array.from({ length: 300 }, (_, at) => `Slide ${at + 1}`);
  const publication = new Publication({ config: { index: entriesOf(titles, 0.1) } });
  const page = await watch(t, publication);
  await until(page, () => document.querySelectorAll('.thumb canvas').length >= 5);
  await page.waitForTimeout(1000);
  assert.ok(await page.locator('.thumb canvas').count() < 40);
  await page.locator('#entries').evaluate((list) => { list.scrollTop = list.scrollHeight; });
  await until(page, () => document.querySelector('li:last-child .thumb canvas'));
});

test('A movie without a picture for the index keeps the numbers and plays', async (t) => {
  const page = await watch(t, new Publication(), { init: () => {
    Object.defineProperty(navigator, 'connection', { value: { saveData: true } });
  } });
  await play(page);
  assert.equal(await page.locator('.thumb canvas').count(), 0);
});

test('The time line shows which slide lies under the pointer, and Escape takes it away', async (t) => {
  const page = await watch(t, new Publication());
  const line = await page.locator('#seek').boundingBox();
  await page.mouse.move(line.x + line.width * 5.5 / 8, line.y + line.height / 2);
  await until(page, () => !document.querySelector('#peek').hidden);
  assert.equal(await page.locator('.peek-title').textContent(), TITLES[5]);
  await until(page, () => document.querySelector('.peek-picture canvas'));
  assert.equal(nearest(await colourOf(page, '.peek-picture'), COLOURS), 5);
  await page.locator('#peek').hover();
  assert.ok(await page.locator('#peek').isVisible());
  await page.keyboard.press('Escape');
  assert.ok(!await page.locator('#peek').isVisible());
});

test('A click on the time line goes there; its marks are the begins of the slides', async (t) => {
  const page = await watch(t, new Publication());
  const marks = await page.locator('.mark').evaluateAll((all) => all.map((one) => Math.round(parseFloat(one.style.insetInlineStart))));
  assert.deepEqual(marks, [13, 25, 38, 50, 63, 75, 88].map((part) => part));
  const mark = await page.locator('.mark').nth(3).boundingBox();
  await page.mouse.click(mark.x + 1, mark.y + 3);
  await standsAt(page, 4 * SLIDE, 200);
});

test('A movie of another shape keeps its shape', async (t) => {
  const movie = makeMovie(['203864', '8a1c1c'], 1);
  const page = await watch(t, new Publication({ movie, config: { width: 1024, height: 768, index: entriesOf(['One', 'Two'], 1) } }));
  const box = await page.locator(video).boundingBox();
  assert.ok(Math.abs(box.width / box.height - 4 / 3) < 0.01);
});
