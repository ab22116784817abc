// Search over the titles.
import assert from 'node:assert/strict';
import test from 'node:test';
import { standsAt, until, watch } from './browser.mjs';
import { Publication, SECONDS, TITLES } from './fixture.mjs';

const shown = (page) => page.locator('.entry:visible .name').allTextContents();
const marks = (page) => page.locator('.entry:visible mark').allTextContents();

test('Case, accents and joined letters do not count, and what was found is marked', async (t) => {
  const page = await watch(t, new Publication());
  await page.click('#search');
  for (const [typed, title, marked] of [['ETUDE', TITLES[1], ['Étude']], ['repetition', TITLES[1], ['répétition']],
    ['strasse', TITLES[2], ['Straße']], ['Größe', TITLES[2], ['Größe']], ['grosse', TITLES[2], ['Größe']],
    ['关键', TITLES[3], ['关键']], ['שלום', TITLES[4], ['שלום']], ['frame KEY costs', TITLES[5], ['key', 'frame', 'costs']]]) {
    await page.fill('#search', typed);
    assert.deepEqual(await shown(page), [title], typed);
    assert.deepEqual(await marks(page), marked, typed);
    assert.equal(await page.locator('#count').textContent(), '1 of 8');
  }
  await page.fill('#search', 'key frame');
  for (const name of await page.locator('.entry:visible .name').all()) {
    const [one, other] = await Promise.all((await name.locator('mark').all()).map((mark) => mark.boundingBox()));
    assert.ok(other.y > one.y || other.x > one.x + one.width + 2, 'the blank between two marked words stays');
  }
});

test('A letter with a separate accent is found and marked whole', async (t) => {
  const page = await watch(t, new Publication({ titles: ['Cafe\u0301 au lait', 'Łódź', 'Smørrebrød'] }));
  await page.fill('#search', 'cafe');
  assert.deepEqual(await marks(page), ['Cafe\u0301']);
  await page.fill('#search', 'lodz');
  assert.deepEqual(await marks(page), ['Łódź']);
  await page.fill('#search', 'smorrebrod');
  assert.deepEqual(await shown(page), ['Smørrebrød']);
});

test('Without a hit the page says so; Escape brings the list back as it was', async (t) => {
  const page = await watch(t, new Publication());
  await page.fill('#search', 'zebra');
  assert.deepEqual(await shown(page), []);
  assert.ok(await page.getByText('No slide has this text.').isVisible());
  assert.equal(await page.locator('#count').textContent(), '0 of 8');
  await page.press('#search', 'Escape');
  assert.deepEqual(await shown(page), TITLES);
  assert.equal(await page.locator('mark').count(), 0);
  assert.equal(await page.locator('#count').textContent(), '8 slides');
});

test('By keys alone: slash, type, Enter opens the first hit, arrows walk the hits', async (t) => {
  const page = await watch(t, new Publication());
  await page.keyboard.press('/');
  await page.keyboard.type('key frame');
  await page.keyboard.press('Enter');
  await standsAt(page, 0, 1);
  await page.keyboard.press('ArrowDown');
  await page.keyboard.press('ArrowDown');
  assert.equal(await page.evaluate(() => document.activeElement.querySelector('.name').textContent), TITLES[5]);
  await page.keyboard.press('Enter');
  await standsAt(page, 5 * SECONDS * 1000, 1);
  await page.keyboard.press('Home');
  await page.keyboard.press('ArrowUp');
  assert.equal(await page.evaluate(() => document.activeElement.id), 'search');
});

test('Five hundred slides are searched at each key without a miss', async (t) => {
  const titles = Array.from({ length: 500 }, (_, at) => `Überschrift ${at + 1} of a long lecture`);
  const page = await watch(t, new Publication({ titles }));
  await page.click('#search');
  await page.keyboard.type('uberschrift 499');
  await until(page, () => document.querySelectorAll('.entry mark').length === 2);
  assert.deepEqual(await shown(page), [titles[498]]);
});
